#include <stdexcept>

#include "import_tables.h"

namespace test_support {
namespace {

void write(std::uintptr_t& entry, std::uintptr_t value) {
    DWORD before = 0;
    if (::VirtualProtect(&entry, sizeof entry, PAGE_READWRITE, &before) == FALSE) {
        throw std::runtime_error("an import table cannot be written");
    }
    entry = value;
    ::VirtualProtect(&entry, sizeof entry, before, &before);
}

}  // namespace

std::size_t replaceImport(HMODULE module, std::uintptr_t original, std::uintptr_t replacement) {
    const LoadedModule image(module);
    const IMAGE_DATA_DIRECTORY& imports = image.directory(IMAGE_DIRECTORY_ENTRY_IMPORT);
    if (imports.VirtualAddress == 0) return 0;
    std::size_t replaced = 0;
    const auto* library = image.at<IMAGE_IMPORT_DESCRIPTOR>(imports.VirtualAddress);
    for (; library->Name != 0; ++library) {
        for (auto* entry = image.at<std::uintptr_t>(library->FirstThunk); *entry != 0; ++entry) {
            if (*entry != original) continue;
            write(*entry, replacement);
            ++replaced;
        }
    }
    return replaced;
}

}  // namespace test_support
