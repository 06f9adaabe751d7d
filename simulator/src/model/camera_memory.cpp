#include "camera_memory.h"

#include <algorithm>

#include "camera_row.h"

namespace simulator {
namespace {

constexpr std::uint64_t kRegisterSize = 4;
constexpr std::uint64_t kVersion = 0x0000;
constexpr std::uint64_t kDeviceMode = 0x0004;
constexpr std::uint64_t kMacHigh = 0x0008;
constexpr std::uint64_t kMacLow = 0x000C;
constexpr std::uint64_t kCurrentIp = 0x0024;
constexpr std::uint64_t kCurrentMask = 0x0034;
constexpr std::uint64_t kManufacturer = 0x0048;
constexpr std::uint64_t kModel = 0x0068;
constexpr std::uint64_t kFirmware = 0x0088;
constexpr std::uint64_t kSerial = 0x00D8;

constexpr std::size_t kLongText = 31;  // of 32 bytes, with the terminating zero
constexpr std::size_t kShortText = 15;

constexpr std::uint64_t kProtocolOneTwo = 0x0001'0002;
constexpr std::uint64_t kBigEndianAscii = 0x8000'0001;

/// How many of `size` bytes from `address` on are there?
std::uint32_t within(std::uint64_t address, std::uint32_t size) {
    if (address >= CameraMemory::kSize) return 0;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(size, CameraMemory::kSize - address));
}

bool areAligned(const std::uint64_t* addresses, std::uint32_t count) {
    return std::all_of(addresses, addresses + count,
                       [](std::uint64_t address) { return address % kRegisterSize == 0; });
}

Result outcome(std::uint32_t done, std::uint32_t asked) {
    return done == asked ? Result::Success : Result::Incomplete;
}

}  // namespace

CameraMemory::CameraMemory(const CameraRow& camera) : m_bytes(kSize) {
    put(kVersion, kProtocolOneTwo);
    put(kDeviceMode, kBigEndianAscii);
    put(kMacHigh, camera.macAddress() >> 32);
    put(kMacLow, camera.macAddress());
    put(kCurrentIp, camera.ipAddress);
    put(kCurrentMask, camera.subnetMask);
    put(kManufacturer, std::string_view(kVendorName).substr(0, kLongText));
    put(kModel, std::string_view(camera.model).substr(0, kLongText));
    put(kFirmware, std::string_view(camera.firmware).substr(0, kLongText));
    put(kSerial, std::string_view(camera.serial).substr(0, kShortText));
}

void CameraMemory::put(std::uint64_t address, std::uint64_t value) {
    for (std::uint64_t i = 0; i < kRegisterSize; ++i) {
        m_bytes[address + i] = static_cast<char>(value >> 8 * (kRegisterSize - 1 - i) & 0xFF);
    }
}

void CameraMemory::put(std::uint64_t address, std::string_view text) {
    std::copy(text.begin(), text.end(), m_bytes.begin() + static_cast<std::ptrdiff_t>(address));
}

Result CameraMemory::read(std::uint64_t address, std::uint32_t size, char* bytes, std::uint32_t& done) const {
    done = within(address, size);
    if (done > 0) std::copy_n(m_bytes.data() + address, done, bytes);
    return outcome(done, size);
}

Result CameraMemory::write(std::uint64_t address, std::uint32_t size, const char* bytes,
                           std::uint32_t& done) {
    if (address < kBootstrapEnd) return Result::InvalidAccess;
    done = within(address, size);
    if (done > 0) std::copy_n(bytes, done, m_bytes.data() + address);
    return outcome(done, size);
}

Result CameraMemory::readRegisters(const std::uint64_t* addresses, std::uint32_t count, std::uint64_t* values,
                                   std::uint32_t& done) const {
    if (!areAligned(addresses, count)) return Result::BadParameter;
    for (done = 0; done < count && addresses[done] < kSize; ++done) {
        std::uint64_t value = 0;
        for (std::uint64_t i = 0; i < kRegisterSize; ++i) {
            value = value << 8 | static_cast<unsigned char>(m_bytes[addresses[done] + i]);
        }
        values[done] = value;
    }
    return outcome(done, count);
}

Result CameraMemory::writeRegisters(const std::uint64_t* addresses, std::uint32_t count,
                                    const std::uint64_t* values, std::uint32_t& done) {
    const bool fixed = std::any_of(addresses, addresses + count,
                                   [](std::uint64_t address) { return address < kBootstrapEnd; });
    if (fixed) return Result::InvalidAccess;
    if (!areAligned(addresses, count)) return Result::BadParameter;
    for (done = 0; done < count && addresses[done] < kSize; ++done) put(addresses[done], values[done]);
    return outcome(done, count);
}

}  // namespace simulator
