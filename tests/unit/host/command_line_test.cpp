#include "command_line.h"

#include <gmock/gmock.h>

#include "host_failure.h"
#include "host_platform.h"

using host::Command;
using host::CommandLine;
using host::ExitCode;
using testing::HasSubstr;

namespace {

CommandLine parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "zelt_host");
    return host::parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

std::string refusal(const std::vector<const char*>& arguments) {
    try {
        parse(arguments);
    } catch (const host::HostFailure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::CommandLine);
        return failure.what();
    }
    return "accepted";
}

TEST(CommandLine, HasDefaults) {
    const CommandLine line = parse({"devices"});
    EXPECT_EQ(line.command, Command::Devices);
    EXPECT_EQ(line.plugin, host::platform::executableDirectory() / host::platform::kPluginFileName);
    EXPECT_EQ(line.logLevel.least, UniLogSeverityLevel::Warning);
    EXPECT_FALSE(line.json);
}

TEST(CommandLine, TakesTheCommonOptionsBeforeAndBehindTheCommand) {
    for (const auto& arguments : std::vector<std::vector<const char*>>{
             {"--plugin", "p.so", "--log-level", "trace", "--json", "devices"},
             {"devices", "--plugin", "p.so", "--log-level", "trace", "--json"}}) {
        const CommandLine line = parse(arguments);
        EXPECT_EQ(line.plugin, "p.so");
        EXPECT_EQ(line.logLevel.least, UniLogSeverityLevel::Trace);
        EXPECT_TRUE(line.json);
    }
}

TEST(CommandLine, TakesARecording) {
    const CommandLine line =
        parse({"record", "--seconds", "2.5", "--out", "dir", "--channel", "3", "--channel", "1"});
    EXPECT_EQ(line.command, Command::Record);
    EXPECT_EQ(line.seconds, 2.5);
    EXPECT_EQ(line.out, "dir");
    EXPECT_EQ(line.channels, (std::set<std::uint32_t>{1, 3}));
    EXPECT_EQ(parse({"record", "--seconds", "1", "--out", "d", "--channel", "0", "2"}).channels,
              (std::set<std::uint32_t>{0, 2}));
}

TEST(CommandLine, NamesALengthThatIsNone) {
    for (const char* seconds : {"0", "-5", "0.0", "abc", "5s", "nan", "-inf", ""}) {
        EXPECT_EQ(refusal({"record", "--out", "d", "--seconds", seconds}),
                  std::string("--seconds takes a number greater than 0, such as 5 or 0.5, not \"") + seconds +
                      "\".");
    }
}

TEST(CommandLine, NamesALengthThatIsTooLong) {
    for (const char* seconds : {"1e9", "1e99", "inf"}) {
        EXPECT_EQ(refusal({"record", "--out", "d", "--seconds", seconds}),
                  std::string("--seconds takes 100000000 (three years) at most, not \"") + seconds + "\".");
    }
}

TEST(CommandLine, NamesAChannelThatIsNone) {
    for (const char* channel : {"-1", "x", "1.5", "4294967296"}) {
        EXPECT_EQ(refusal({"record", "--out", "d", "--seconds", "1", "--channel", channel}),
                  std::string("--channel takes the id of a channel, such as 0, not \"") + channel +
                      "\"; zelt_host devices lists them.");
    }
}

TEST(CommandLine, NamesALevelThatIsNone) {
    EXPECT_EQ(
        refusal({"devices", "--log-level", "loud"}),
        "--log-level takes one of trace, debug, detail, info, notice, warning, error, off, not \"loud\".");
}

TEST(CommandLine, NeedsACommandAndItsOptions) {
    EXPECT_EQ(refusal({}), "Say what to do: devices or record; zelt_host --help explains both.");
    EXPECT_THAT(refusal({"record", "--seconds", "1"}), HasSubstr("--out"));
    EXPECT_THAT(refusal({"record", "--out", "d"}), HasSubstr("--seconds"));
    EXPECT_THAT(refusal({"record", "--seconds", "1", "--out", ""}), HasSubstr("--out"));
}

TEST(CommandLine, NamesWhatItDoesNotKnow) {
    EXPECT_THAT(refusal({"frobnicate"}), HasSubstr("frobnicate"));
    EXPECT_THAT(refusal({"devices", "--frob"}), HasSubstr("--frob"));
}

TEST(CommandLine, GivesHelpWithTheExitCodes) {
    for (const auto& arguments :
         std::vector<std::vector<const char*>>{{"--help"}, {"devices", "--help"}, {"record", "--help"}}) {
        const CommandLine line = parse(arguments);
        EXPECT_EQ(line.command, Command::Help);
        EXPECT_THAT(line.helpText, HasSubstr("Exit codes:"));
        EXPECT_THAT(line.helpText, HasSubstr("130  interrupted by Ctrl-C"));
        EXPECT_THAT(line.helpText, HasSubstr("--plugin"));
    }
}

TEST(CommandLine, TellsItsVersion) {
    const CommandLine line = parse({"--version"});
    EXPECT_EQ(line.command, Command::Help);
    EXPECT_THAT(line.helpText, testing::MatchesRegex("zelt_host [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(LogLevel, KnowsEveryName) {
    using namespace UniLogSeverityLevel;
    EXPECT_EQ(host::parseLogLevel("trace")->least, Trace);
    EXPECT_EQ(host::parseLogLevel("debug")->least, Debug);
    EXPECT_EQ(host::parseLogLevel("detail")->least, Detail);
    EXPECT_EQ(host::parseLogLevel("info")->least, Info);
    EXPECT_EQ(host::parseLogLevel("notice")->least, Notice);
    EXPECT_EQ(host::parseLogLevel("warning")->least, Warning);
    EXPECT_EQ(host::parseLogLevel("error")->least, Error);
    EXPECT_EQ(host::parseLogLevel("off")->least, std::nullopt);
    EXPECT_FALSE(host::parseLogLevel("Warning"));
}

}  // namespace
