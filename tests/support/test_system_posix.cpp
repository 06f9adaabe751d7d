#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include <dlfcn.h>
#include <elf.h>
#include <sys/mman.h>

#include "temporary_directory.h"
#include "test_system.h"

namespace test_support {
namespace {

void* mapPages(void* where, std::size_t size) {
    return mmap(where, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
}

/// Every block has a place of its own.
std::ptrdiff_t nextDistance(std::size_t size) {
    static std::atomic<std::ptrdiff_t> s_distance{std::ptrdiff_t{64} << 30};
    constexpr std::size_t kGap = std::size_t{1} << 20;
    return s_distance += static_cast<std::ptrdiff_t>((size / kGap + 2) * kGap);
}

}  // namespace

void setEnvironment(const std::string& name, const std::string& value) {
    setenv(name.c_str(), value.c_str(), 1);
}

void clearEnvironment(const std::string& name) {
    unsetenv(name.c_str());
}

std::filesystem::path makeTemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "zelt_test_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    return name;
}

std::filesystem::path programDirectory() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::string programFileName(const std::string& name) {
    return name;
}

std::string libraryFileName(const std::string& name) {
    return "lib" + name + ".so";
}

std::filesystem::path libraryHolding(const void* address) {
    Dl_info library{};
    if (dladdr(address, &library) == 0) throw std::runtime_error("no library holds that address");
    return library.dli_fname;
}

void* loadedSymbol(const std::string& libraryFile, const std::string& name) {
    void* const library = dlopen(libraryFile.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (library == nullptr) return nullptr;
    void* const symbol = dlsym(library, name.c_str());
    dlclose(library);
    return symbol;
}

std::set<std::string> exportedNames(const std::filesystem::path& library) {
    const std::string bytes = readFile(library);
    Elf64_Ehdr header;
    std::memcpy(&header, bytes.data(), sizeof header);
    std::vector<Elf64_Shdr> sections(header.e_shnum);
    std::memcpy(sections.data(), bytes.data() + header.e_shoff, sizeof(Elf64_Shdr) * header.e_shnum);
    std::set<std::string> names;
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_type != SHT_DYNSYM) continue;
        std::vector<Elf64_Sym> symbols(section.sh_size / sizeof(Elf64_Sym));
        std::memcpy(symbols.data(), bytes.data() + section.sh_offset, section.sh_size);
        const char* const texts = bytes.data() + sections[section.sh_link].sh_offset;
        for (const Elf64_Sym& symbol : symbols) {
            if (symbol.st_shndx != SHN_UNDEF) names.insert(texts + symbol.st_name);
        }
    }
    return names;
}

bool hasThreadNamed(const std::string& name) {
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        if (readFile(task.path() / "comm") == name + '\n') return true;
    }
    return false;
}

void* reserveFarPages(std::size_t size) {
    void* const near = mapPages(nullptr, size);
    munmap(near, size);
    return mapPages(static_cast<std::uint8_t*>(near) - nextDistance(size), size);
}

void releaseFarPages(void* pages, std::size_t size) {
    munmap(pages, size);
}

}  // namespace test_support
