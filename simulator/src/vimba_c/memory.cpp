// Memory and registers of a camera.
#include "vendor_call.h"

using namespace simulator;

namespace {

/// `access(memory, done)` transfers; the count reaches the client when anything was tried.
template <typename Access>
VmbError_t withMemory(VmbHandle_t handle, bool change, bool given, VmbUint32_t* done, Access&& access) {
    return withCamera(handle, {given}, [&](CameraSession& camera) {
        return camera.useMemory(change, [&](CameraMemory& memory) {
            std::uint32_t transferred = 0;
            const Result result = access(memory, transferred);
            const bool tried = result == Result::Success || result == Result::Incomplete;
            if (tried && done != nullptr) *done = transferred;
            return result;
        });
    });
}

Argument number(VmbUint64_t value) {
    return static_cast<VmbInt64_t>(value);
}

}  // namespace

VmbError_t VmbMemoryRead(const VmbHandle_t handle, VmbUint64_t address, VmbUint32_t size, char* buffer,
                         VmbUint32_t* done) {
    return vendorCall("VmbMemoryRead", {handle, number(address), size}, {done}, [&] {
        return withMemory(handle, false, buffer != nullptr && size != 0, done,
                          [&](CameraMemory& memory, std::uint32_t& count) {
                              return memory.read(address, size, buffer, count);
                          });
    });
}

VmbError_t VmbMemoryWrite(const VmbHandle_t handle, VmbUint64_t address, VmbUint32_t size, const char* buffer,
                          VmbUint32_t* done) {
    return vendorCall("VmbMemoryWrite", {handle, number(address), size}, {done}, [&] {
        return withMemory(handle, true, buffer != nullptr && size != 0, done,
                          [&](CameraMemory& memory, std::uint32_t& count) {
                              return memory.write(address, size, buffer, count);
                          });
    });
}

VmbError_t VmbRegistersRead(const VmbHandle_t handle, VmbUint32_t count, const VmbUint64_t* addresses,
                            VmbUint64_t* data, VmbUint32_t* done) {
    return vendorCall("VmbRegistersRead", {handle, count}, {done}, [&] {
        const bool given = addresses != nullptr && data != nullptr && count != 0;
        return withMemory(handle, false, given, done, [&](CameraMemory& memory, std::uint32_t& transferred) {
            return memory.readRegisters(addresses, count, data, transferred);
        });
    });
}

VmbError_t VmbRegistersWrite(const VmbHandle_t handle, VmbUint32_t count, const VmbUint64_t* addresses,
                             const VmbUint64_t* data, VmbUint32_t* done) {
    return vendorCall("VmbRegistersWrite", {handle, count}, {done}, [&] {
        const bool given = addresses != nullptr && data != nullptr && count != 0;
        return withMemory(handle, true, given, done, [&](CameraMemory& memory, std::uint32_t& transferred) {
            return memory.writeRegisters(addresses, count, data, transferred);
        });
    });
}
