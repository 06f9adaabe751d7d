// What a user reads when a library on the measurement PC is not what it should be.
#include <cstring>

#include <gmock/gmock.h>

#include "program_run.h"
#include "test_system.h"

using scenario::kPlugin;
using scenario::kVendor;
using scenario::ProgramResult;
using scenario::runProgram;
using scenario::fs::path;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// A folder with the plug-in, and a vendor's library that the test makes.
class LoadingIsExplained : public testing::Test {
  protected:
    path folder() const { return m_directory.path() / m_name; }
    void fillFolder() const {
        scenario::fs::create_directories(folder());
        scenario::fs::copy_file(scenario::binaries() / kPlugin, folder() / kPlugin);
    }
    void putVendor(const std::string& bytes) const {
        std::ofstream(folder() / kVendor, std::ios::binary) << bytes;
    }
    static std::string simulator() { return scenario::readFile(scenario::binaries() / kVendor); }
    ProgramResult devices() const {
        return runProgram({"devices", "--plugin", (folder() / kPlugin).string()});
    }

    std::u8string m_name = u8"host";

  private:
    scenario::TemporaryDirectory m_directory;
};

/// The 16 bits that name the processor in the header of a library of either system: 32-bit x86 in both.
std::string forAnotherProcessor(std::string bytes) {
    std::size_t place = 18;  // e_machine of ELF
    std::uint16_t machine = 3;
    if (bytes.rfind("MZ", 0) == 0) {
        std::uint32_t header = 0;
        std::memcpy(&header, bytes.data() + 0x3c, sizeof header);
        place = header + 4;  // Machine of COFF
        machine = 0x14c;
    } else {
        bytes[4] = 1;  // the class of 32 bits
    }
    std::memcpy(bytes.data() + place, &machine, sizeof machine);
    return bytes;
}

/// The library with another name for one of its functions.
std::string without(std::string bytes, const std::string& function) {
    const std::string whole = '\0' + function + '\0';
    for (std::size_t at = bytes.find(whole); at != std::string::npos; at = bytes.find(whole, at + 1)) {
        bytes[at + whole.size() - 2] = '_';
    }
    return bytes;
}

TEST_F(LoadingIsExplained, AVendorLibraryForAnotherProcessor) {
    fillFolder();
    putVendor(forAnotherProcessor(simulator()));
    const ProgramResult result = devices();
    EXPECT_EQ(result.code, 6) << result.out << result.error;
    EXPECT_THAT(result.sentences(),
                ElementsAre(HasSubstr(kVendor + " that was found is not the right one (")));
}

TEST_F(LoadingIsExplained, APluginForAnotherProcessor) {
    fillFolder();
    putVendor(simulator());
    const std::string bytes = forAnotherProcessor(scenario::readFile(folder() / kPlugin));
    std::ofstream(folder() / kPlugin, std::ios::binary) << bytes;
    const ProgramResult result = devices();
    EXPECT_EQ(result.code, 3) << result.out << result.error;
    EXPECT_THAT(result.sentences(), ElementsAre(HasSubstr(kPlugin + " cannot be loaded (")));
}

TEST_F(LoadingIsExplained, AVendorLibraryWithoutOneNeededFunction) {
    fillFolder();
    for (const char* const function : {"VmbVersionQuery", "VmbStartup", "VmbCaptureFrameQueue"}) {
        putVendor(without(simulator(), function));
        const ProgramResult result = devices();
        EXPECT_EQ(result.code, 6) << result.out << result.error;
        EXPECT_THAT(result.sentences(),
                    ElementsAre(testing::AllOf(HasSubstr(kVendor + " that was found is not the right one ("),
                                               HasSubstr(function))));
    }
}

TEST_F(LoadingIsExplained, AVendorLibraryWithoutAFunctionThatNobodyNeeds) {
    fillFolder();
    putVendor(without(simulator(), "VmbCameraSettingsSave"));
    EXPECT_EQ(devices().code, 0);
}

TEST_F(LoadingIsExplained, FoldersMayHaveBlanksAndLettersBeyondAscii) {
    for (const std::u8string name :
         {u8"Program Files (x86)", u8"Me\u00dfplatz f\u00fcr \u00dcbung", u8"\u6e2c\u5b9a"}) {
        m_name = name;
        fillFolder();
        putVendor(simulator());
        const ProgramResult found = devices();
        EXPECT_EQ(found.code, 0) << found.error;
        EXPECT_THAT(found.out, HasSubstr("(simulator: two-cameras)")) << folder();

        const path scenario = folder() / u8"scene \u00e4.json";
        std::ofstream(scenario) << R"({"cameras": [{"model": "Mako_G-030B"}]})";
        const ProgramResult own = runProgram({"devices", "--plugin", (folder() / kPlugin).string()},
                                             {.scenario = scenario.string()});
        EXPECT_EQ(own.code, 0) << own.error;
        EXPECT_THAT(own.out, HasSubstr("Mako_G-030B")) << folder();

        scenario::fs::remove(folder() / kVendor);
        const ProgramResult missing = devices();
        EXPECT_EQ(missing.code, 5) << missing.out << missing.error;
        EXPECT_THAT(missing.sentences(), ElementsAre(HasSubstr(scenario::shown({name.begin(), name.end()}))));
    }
}

}  // namespace
