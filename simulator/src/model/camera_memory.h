/// A camera's memory: 64 KiB, of which the first part are the standard bootstrap registers. Registers have
/// 32 bits, the highest byte first. Not synchronised.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "result.h"

namespace simulator {

struct CameraRow;

class CameraMemory {
  public:
    static constexpr std::uint64_t kSize = 0x10000;
    /// From here on the memory can be written.
    static constexpr std::uint64_t kBootstrapEnd = 0x0A00;

    explicit CameraMemory(const CameraRow& camera);

    /// Transfers as many bytes as there are and says in `done` how many. Incomplete when some are missing,
    /// InvalidAccess, without any effect, for a change of bootstrap registers.
    Result read(std::uint64_t address, std::uint32_t size, char* bytes, std::uint32_t& done) const;
    Result write(std::uint64_t address, std::uint32_t size, const char* bytes, std::uint32_t& done);
    /// As above, up to the first register that is not there; BadParameter, without any effect, when one of
    /// the addresses is no multiple of four. A register keeps the lower 32 bits of what it is given.
    Result readRegisters(const std::uint64_t* addresses, std::uint32_t count, std::uint64_t* values,
                         std::uint32_t& done) const;
    Result writeRegisters(const std::uint64_t* addresses, std::uint32_t count, const std::uint64_t* values,
                          std::uint32_t& done);

  private:
    void put(std::uint64_t address, std::uint64_t value);
    void put(std::uint64_t address, std::string_view text);

    std::vector<char> m_bytes;
};

}  // namespace simulator
