/// Windows only: what a loaded library offers and takes from others, and other functions in place of those.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include <windows.h>

namespace test_support {

/// The parts of a library as the loader laid them out.
class LoadedModule {
  public:
    explicit LoadedModule(HMODULE module) : m_base(std::bit_cast<std::byte*>(module)) {}

    /// What lies so many bytes behind the beginning.
    template <class Part>
    Part* at(std::size_t offset) const {
        return std::bit_cast<Part*>(m_base + offset);
    }
    const IMAGE_DATA_DIRECTORY& directory(std::size_t index) const {
        const auto* const dos = at<IMAGE_DOS_HEADER>(0);
        const auto* const header = at<IMAGE_NT_HEADERS>(static_cast<std::size_t>(dos->e_lfanew));
        return header->OptionalHeader.DataDirectory[index];
    }

  private:
    std::byte* m_base;
};

/// Puts `replacement` wherever the module would call `original`; returns how often. Throws
/// std::runtime_error when the table cannot be written.
std::size_t replaceImport(HMODULE module, std::uintptr_t original, std::uintptr_t replacement);

}  // namespace test_support
