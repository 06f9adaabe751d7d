// What the built library exports.
#include <cstring>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include <dlfcn.h>
#include <elf.h>

#include "simulator_fixture.h"

namespace {

/// Names of the dynamic symbols that a library defines.
std::set<std::string> definedSymbols(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    Elf64_Ehdr header;
    std::memcpy(&header, bytes.data(), sizeof header);
    std::vector<Elf64_Shdr> sections(header.e_shnum);
    std::memcpy(sections.data(), bytes.data() + header.e_shoff, sizeof(Elf64_Shdr) * header.e_shnum);
    std::set<std::string> names;
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_type != SHT_DYNSYM) continue;
        std::vector<Elf64_Sym> symbols(section.sh_size / sizeof(Elf64_Sym));
        std::memcpy(symbols.data(), bytes.data() + section.sh_offset, section.sh_size);
        const char* texts = bytes.data() + sections[section.sh_link].sh_offset;
        for (const Elf64_Sym& symbol : symbols) {
            if (symbol.st_shndx != SHN_UNDEF) names.insert(texts + symbol.st_name);
        }
    }
    return names;
}

/// Names of the functions that a header declares for export.
std::set<std::string> declared(const std::string& header) {
    std::ifstream file(ZELT_SOURCE_DIR "/" + header);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::set<std::string> names;
    const std::regex declaration(R"(\nIMEXPORTC [\w* ]*?(Vmb\w+)\()");
    for (std::sregex_iterator found(text.begin(), text.end(), declaration), end; found != end; ++found) {
        names.insert((*found)[1]);
    }
    return names;
}

const std::set<std::string> kVendor = declared("lib/vimba_c/inc/vimba_c.h");
const std::set<std::string> kControl = declared("simulator/inc/vimba_simulator.h");

TEST(Exports, AreTheVendorsFiftyEight) {
    EXPECT_EQ(kVendor.size(), 58u);
    EXPECT_EQ(kVendor.count("VmbCameraSettingsLoad"), 1u);
}

TEST(Exports, AreTheVendorsAndTheControlFunctionsAndNothingElse) {
    Dl_info library;
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&VmbSimTime), &library), 0);
    std::set<std::string> expected = kVendor;
    expected.insert(kControl.begin(), kControl.end());
    EXPECT_EQ(definedSymbols(library.dli_fname), expected);
}

TEST(Exports, AreFoundByNameInALibraryOfTheVendorsName) {
    void* library = dlopen("libVimbaC.so", RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr) << dlerror();
    for (const auto& names : {kVendor, kControl}) {
        for (const std::string& name : names) EXPECT_NE(dlsym(library, name.c_str()), nullptr) << name;
    }
    EXPECT_EQ(dlsym(library, "VmbSimTime"), reinterpret_cast<void*>(&VmbSimTime));
    dlclose(library);
}

}  // namespace
