// The plug-in's file for Windows: what it needs, and what its properties say.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <windows.h>

#include "temporary_directory.h"
#include "test_system.h"

namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsSubsetOf;

std::filesystem::path library(const std::string& name) {
    return test_support::programDirectory() / test_support::libraryFileName(name);
}

/// A file of the portable executable format, read as it lies on the disk.
class ExecutableFile {
  public:
    explicit ExecutableFile(const std::filesystem::path& file) : m_bytes(test_support::readFile(file)) {}

    const IMAGE_NT_HEADERS64& header() const {
        return at<IMAGE_NT_HEADERS64>(static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(0).e_lfanew));
    }
    /// Names of the libraries that it imports, in small letters.
    std::set<std::string> imports() const {
        const DWORD table =
            header().OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
        std::set<std::string> names;
        for (std::size_t place = offset(table); at<IMAGE_IMPORT_DESCRIPTOR>(place).Name != 0;
             place += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
            std::string name = &at<char>(offset(at<IMAGE_IMPORT_DESCRIPTOR>(place).Name));
            for (char& letter : name) letter = static_cast<char>(std::tolower(letter));
            names.insert(name);
        }
        return names;
    }
    const std::string& bytes() const { return m_bytes; }

  private:
    template <class Part>
    const Part& at(std::size_t place) const {
        return *reinterpret_cast<const Part*>(m_bytes.data() + place);
    }
    /// Where in the file lies what will lie at that address of the loaded image.
    std::size_t offset(DWORD address) const {
        std::size_t place = static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(0).e_lfanew) +
                            offsetof(IMAGE_NT_HEADERS64, OptionalHeader) +
                            header().FileHeader.SizeOfOptionalHeader;
        for (int i = 0; i < header().FileHeader.NumberOfSections; ++i) {
            const auto& section = at<IMAGE_SECTION_HEADER>(place);
            if (address - section.VirtualAddress < section.SizeOfRawData) {
                return address - section.VirtualAddress + section.PointerToRawData;
            }
            place += sizeof section;
        }
        throw std::runtime_error("no section holds that address");
    }

    std::string m_bytes;
};

/// Values of the version resource.
class VersionInformation {
  public:
    explicit VersionInformation(const std::filesystem::path& file)
        : m_block(::GetFileVersionInfoSizeW(file.c_str(), nullptr)) {
        ::GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(m_block.size()), m_block.data());
    }
    std::wstring text(const std::wstring& name) const {
        UINT length = 0;
        void* value = nullptr;
        const std::wstring path = L"\\StringFileInfo\\040904b0\\" + name;
        if (::VerQueryValueW(m_block.data(), path.c_str(), &value, &length) == FALSE) return {};
        return static_cast<const wchar_t*>(value);
    }

  private:
    std::vector<std::byte> m_block;
};

TEST(WindowsFile, NeedsTheVendorsLibraryOursBoostTheRuntimeAndTheSystem) {
    const std::set<std::string> allowed{"vimbac.dll",          "zelt_base.dll",           "libboost_log.dll",
                                        "libboost_thread.dll", "libboost_filesystem.dll", "libstdc++-6.dll",
                                        "libgcc_s_seh-1.dll",  "libwinpthread-1.dll",     "kernel32.dll",
                                        "msvcrt.dll"};
    const std::set<std::string> imports = ExecutableFile(library("zelt_plugin_gige_camera")).imports();
    EXPECT_THAT(imports, IsSubsetOf(allowed));
    EXPECT_THAT(imports, Contains("vimbac.dll"));
    EXPECT_THAT(imports, Contains("zelt_base.dll"));
    EXPECT_THAT(imports, Contains("libboost_log.dll"));
}

TEST(WindowsFile, IsFor64Bits) {
    const ExecutableFile file(library("zelt_plugin_gige_camera"));
    EXPECT_EQ(file.header().FileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
    EXPECT_EQ(file.header().OptionalHeader.Magic, IMAGE_NT_OPTIONAL_HDR64_MAGIC);
}

/// Does a path into that folder stand there? The same letters within another path are none.
bool names(const std::string& bytes, const std::string& folder) {
    const std::string path = folder + '/';
    for (std::size_t at = bytes.find(path); at != std::string::npos; at = bytes.find(path, at + 1)) {
        const char before = at > 0 ? bytes[at - 1] : '\0';
        const bool isWithin = std::isalnum(static_cast<unsigned char>(before)) != 0 ||
                              std::string_view("_./-").find(before) != std::string_view::npos;
        if (!isWithin) return true;
    }
    return false;
}

TEST(WindowsFile, NamesNoFolderOfTheMachineThatBuiltIt) {
    for (const char* const name : {"zelt_plugin_gige_camera", "zelt_base", "VimbaC"}) {
        const ExecutableFile file(library(name));
        EXPECT_FALSE(names(file.bytes(), ZELT_SOURCE_DIR)) << name;
        EXPECT_FALSE(names(file.bytes(), ZELT_WINDOWS_PREFIX)) << name;
    }
}

TEST(WindowsFile, WouldNameAFolderOnlyWhereAPathBegins) {
    EXPECT_TRUE(names("at /src/lib/x.cpp", "/src"));
    EXPECT_TRUE(names(std::string("\0/src/lib", 9), "/src"));
    EXPECT_FALSE(names("lib/x/src/y.cpp", "/src"));
}

TEST(WindowsFile, TellsWhatItIs) {
    for (const wchar_t* const name :
         {L"zelt_plugin_gige_camera.dll", L"zelt_base.dll", L"VimbaC.dll", L"zelt_host.exe"}) {
        const VersionInformation version(test_support::programDirectory() / name);
        EXPECT_EQ(version.text(L"OriginalFilename"), name);
        EXPECT_EQ(version.text(L"ProductName"), L"GigE camera plug-in");
        EXPECT_EQ(version.text(L"FileVersion"), L"" ZELT_VERSION);
        EXPECT_EQ(version.text(L"ProductVersion"), L"" ZELT_VERSION);
        EXPECT_NE(version.text(L"FileDescription"), L"");
    }
    const std::wstring simulator =
        VersionInformation(test_support::programDirectory() / "VimbaC.dll").text(L"FileDescription");
    EXPECT_THAT(simulator, HasSubstr(L"Simulator")) << "nobody shall take it for the vendor's";
}

}  // namespace
