#include <gmock/gmock.h>

#include "program_run.h"

using scenario::binaries;
using scenario::kPlugin;
using scenario::kVendor;
using scenario::ProgramResult;
using scenario::runProgram;
using scenario::fs::path;
using testing::HasSubstr;

namespace {

class TroublesAreNamed : public testing::Test {
  protected:
    std::string out() const { return (m_directory.path() / "out").string(); }

    /// Expects the code, exactly one sentence with these words, and no output.
    void expect(const ProgramResult& result, int code, const std::vector<std::string>& words) {
        EXPECT_EQ(result.code, code) << result.out << result.error;
        ASSERT_EQ(result.sentences().size(), 1u) << result.error;
        for (const std::string& text : words) EXPECT_THAT(result.sentences()[0], HasSubstr(text));
    }
    ProgramResult record(const std::string& seconds, const std::vector<std::string>& more) {
        std::vector<std::string> arguments = {"record", "--seconds", seconds};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runProgram(arguments);
    }
    path copyPlugin() const {
        path copy = m_directory.path() / kPlugin;
        scenario::fs::copy_file(binaries() / kPlugin, copy);
        return copy;
    }

    scenario::TemporaryDirectory m_directory;
};

TEST_F(TroublesAreNamed, WrongLength) {
    for (const char* seconds : {"0", "-1", "abc"}) {
        expect(record(seconds, {"--out", out()}), 2, {"--seconds", std::string("\"") + seconds + "\""});
    }
    EXPECT_FALSE(scenario::fs::exists(out()));
}

TEST_F(TroublesAreNamed, NoCommand) {
    expect(runProgram({}), 2, {"devices, settings, check, record, watch or topology", "--help"});
}

TEST_F(TroublesAreNamed, MissingPlugin) {
    expect(runProgram({"devices", "--plugin", "/none/plugin.so"}), 3, {"/none/plugin.so", "--plugin"});
}

TEST_F(TroublesAreNamed, LibraryThatIsNoPlugin) {
    const std::string file = (binaries() / test_support::libraryFileName("zelt_base")).string();
    expect(runProgram({"devices", "--plugin", file}), 4, {file, "does not export ZELT_getPluginDllName"});
}

TEST_F(TroublesAreNamed, MissingVendorLibrary) {
    const path plugin = copyPlugin();
    expect(runProgram({"devices", "--plugin", plugin.string()}), 5,
           {kVendor, "was not found", plugin.string()});
}

TEST_F(TroublesAreNamed, VendorLibraryThatIsNone) {
    const path plugin = copyPlugin();
    std::ofstream(m_directory.path() / kVendor) << "no library";
    expect(runProgram({"devices", "--plugin", plugin.string()}), 6, {kVendor, "is not the right one"});
}

TEST_F(TroublesAreNamed, VendorLibraryElsewhereIsFoundBesideThePlugin) {
    const path plugin = copyPlugin();
    scenario::fs::copy_file(binaries() / kVendor, m_directory.path() / kVendor);
    const ProgramResult result = runProgram({"devices", "--plugin", plugin.string()});
    EXPECT_EQ(result.code, 0) << result.error;
    EXPECT_THAT(result.out, HasSubstr("(simulator: two-cameras)"));
}

TEST_F(TroublesAreNamed, AnOutputStreamWithoutRoom) {
    const std::vector<std::vector<std::string>> commands{{"devices"},
                                                         {"settings"},
                                                         {"check"},
                                                         {"topology"},
                                                         {"watch", "--seconds", "0.1"},
                                                         {"record", "--seconds", "0.1", "--out", out()},
                                                         {"--help"}};
    for (std::vector<std::string> command : commands) {
        for (const bool json : {false, true}) {
            if (json) command.emplace_back("--json");
            expect(runProgram(command, {.fullOutput = true}), 11,
                   {"cannot be written to the standard output (" + std::string(test_support::kFullOutput) +
                    ")"});
            scenario::fs::remove_all(out());
        }
    }
}

TEST_F(TroublesAreNamed, AnOutputStreamWithoutRoomForAFailure) {
    const ProgramResult result =
        runProgram({"devices", "--plugin", "/none/plugin.so", "--json"}, {.fullOutput = true});
    EXPECT_EQ(result.code, 11);
    EXPECT_THAT(result.sentences(),
                testing::ElementsAre(HasSubstr("/none/plugin.so"),
                                     HasSubstr("cannot be written to the standard output")));
}

TEST_F(TroublesAreNamed, UnknownChannel) {
    expect(record("1", {"--out", out(), "--channel", "7"}), 9,
           {"There is no channel 7; the channels are 0, 1."});
    EXPECT_FALSE(scenario::fs::exists(out()));
}

TEST_F(TroublesAreNamed, DirectoryThatCannotBeMade) {
    const path file = m_directory.path() / "file";
    std::ofstream(file) << "x";
    expect(record("1", {"--out", (file / "out").string()}), 10, {(file / "out").string(), "--out"});
    expect(record("1", {"--out", file.string()}), 10, {file.string()});
}

}  // namespace
