#include "command_line.h"

#include <gmock/gmock.h>

#include "host_failure.h"
#include "host_platform.h"
#include "regex_matcher.h"

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
    EXPECT_EQ(line.cameras.channels, (std::set<std::uint32_t>{1, 3}));
    EXPECT_EQ(parse({"record", "--seconds", "1", "--out", "d", "--channel", "0", "2"}).cameras.channels,
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
    EXPECT_EQ(parse({"record", "--out", "d", "--seconds", "0.001"}).seconds, 0.001);
    for (const char* seconds : {"1e-10", "0.00099"}) {
        EXPECT_EQ(refusal({"record", "--out", "d", "--seconds", seconds}),
                  std::string("--seconds takes 0.001 (a millisecond) at least, not \"") + seconds + "\".");
    }
    for (const char* seconds : {"1e9", "1e99", "inf"}) {
        EXPECT_EQ(refusal({"record", "--out", "d", "--seconds", seconds}),
                  std::string("--seconds takes 100000000 (three years) at most, not \"") + seconds + "\".");
    }
}

TEST(CommandLine, TakesHowFarTimesMayScatter) {
    EXPECT_EQ(parse({"record", "--out", "d", "--seconds", "1"}).maxSpreadNs, 1'000'000);
    EXPECT_EQ(parse({"record", "--out", "d", "--seconds", "1", "--max-spread", "2.5"}).maxSpreadNs, 2500);
    for (const char* spread : {"0", "-1", "1e7", "nan", "50us", ""}) {
        EXPECT_EQ(refusal({"record", "--out", "d", "--seconds", "1", "--max-spread", spread}),
                  std::string("--max-spread takes a number of microseconds from 0.001 to 1000000, such as "
                              "1000, not \"") +
                      spread + "\".");
    }
}

TEST(CommandLine, TellsAllItsOptions) {
    const CommandLine line = parse({"record", "--seconds", "2", "--out", "d", "--set", "A=1", "--set", "B=2",
                                    "--counters", "--plugin", "p.so"});
    std::map<std::string, std::vector<std::string>> options;
    for (const host::OptionTexts& option : line.options) options[option.name] = option.texts;
    EXPECT_EQ(options, (std::map<std::string, std::vector<std::string>>{{"--aux", {}},
                                                                        {"--channel", {}},
                                                                        {"--counters", {"true"}},
                                                                        {"--from", {}},
                                                                        {"--json", {"false"}},
                                                                        {"--log-level", {"warning"}},
                                                                        {"--max-spread", {"1000"}},
                                                                        {"--out", {"d"}},
                                                                        {"--plugin", {"p.so"}},
                                                                        {"--seconds", {"2"}},
                                                                        {"--set", {"A=1", "B=2"}}}));
}

TEST(CommandLine, NamesAChannelThatIsNone) {
    for (const char* channel : {"-1", "x", "1.5", "4294967296"}) {
        EXPECT_EQ(refusal({"record", "--out", "d", "--seconds", "1", "--channel", channel}),
                  std::string("--channel takes the id of a channel, such as 0, not \"") + channel +
                      "\"; zelt_host devices lists them.");
    }
}

TEST(CommandLine, TakesSettingsAndActions) {
    const CommandLine line =
        parse({"settings", "--channel", "1", "--set", "CAMERA/Gain=3", "--set", "Name=a=b", "--action",
               "ACTION:Camera/AutoGain", "--from", "in.txt", "--to", "out.txt"});
    EXPECT_EQ(line.command, Command::Settings);
    EXPECT_EQ(line.cameras.channels, std::set<std::uint32_t>{1});
    EXPECT_EQ(line.cameras.from, "in.txt");
    EXPECT_EQ(line.to, "out.txt");
    ASSERT_EQ(line.cameras.orders.size(), 3u);
    EXPECT_EQ(line.cameras.orders[0].key, "CAMERA/Gain");
    EXPECT_EQ(line.cameras.orders[0].value, "3");
    EXPECT_EQ(line.cameras.orders[1].value, "a=b");
    EXPECT_EQ(line.cameras.orders[1].kind, host::SettingOrder::Kind::Set);
    EXPECT_EQ(line.cameras.orders[2].key, "ACTION:Camera/AutoGain");
    EXPECT_EQ(line.cameras.orders[2].kind, host::SettingOrder::Kind::RunAction);
}

TEST(CommandLine, TakesSettingsOfOneChannel) {
    const auto orders = parse({"settings", "--set", "0/FrameWidth=320", "--set", "DEV_1/CAMERA/Gain=3",
                               "--set", "CAMERA/Gain=a/b", "--set", "/x=1"})
                            .cameras.orders;
    std::vector<std::string> texts;
    for (const auto& order : orders) texts.push_back(order.channel + '|' + order.key + '|' + order.value);
    EXPECT_THAT(texts,
                testing::ElementsAre("0|FrameWidth|320", "DEV_1|CAMERA/Gain|3", "|CAMERA/Gain|a/b", "|/x|1"));
    EXPECT_THAT(refusal({"settings", "--set", "0/=320"}), HasSubstr("\"0/=320\" has no key"));
}

TEST(CommandLine, TakesAWatchWithOrWithoutAnEnd) {
    EXPECT_EQ(parse({"watch"}).command, Command::Watch);
    EXPECT_EQ(parse({"watch"}).seconds, std::nullopt);
    EXPECT_EQ(parse({"watch", "--seconds", "2.5"}).seconds, 2.5);
    EXPECT_THAT(refusal({"watch", "--seconds", "0"}), HasSubstr("--seconds takes a number greater than 0"));
    EXPECT_EQ(parse({"topology", "--out", "rig.xml"}).out, "rig.xml");
    EXPECT_TRUE(parse({"record", "--seconds", "1", "--out", "d", "--counters"}).counters);
}

TEST(CommandLine, OffersEveryCommandOnlyWhatItCanDo) {
    EXPECT_THAT(refusal({"devices", "--set", "a=b"}), HasSubstr("--set"));
    EXPECT_THAT(refusal({"settings", "--aux", "10"}), HasSubstr("--aux"));
    EXPECT_THAT(refusal({"check", "--action", "a"}), HasSubstr("--action"));
    EXPECT_THAT(refusal({"check", "--counters"}), HasSubstr("--counters"));
    EXPECT_THAT(refusal({"topology", "--channel", "0"}), HasSubstr("--channel"));
}

TEST(CommandLine, NamesASettingThatIsNone) {
    for (const char* text : {"Gain", "=3", ""}) {
        EXPECT_EQ(refusal({"settings", "--set", text}),
                  std::string("--set takes KEY=VALUE, such as CAMERA/Gain=3, not \"") + text +
                      "\"; zelt_host settings lists the keys.");
    }
}

TEST(CommandLine, TakesTheFrequencyOfATriggerOutput) {
    for (const auto& [text, numerator, denominator] :
         {std::tuple("100", 100, 1), {"30000/1001", 30000, 1001}, {"29.97", 2997, 100}, {"4/6", 2, 3}}) {
        const CommandLine line = parse({"check", "--aux", text});
        ASSERT_TRUE(line.cameras.aux) << text;
        EXPECT_EQ(line.cameras.aux->numerator, numerator) << text;
        EXPECT_EQ(line.cameras.aux->denominator, denominator) << text;
    }
    EXPECT_FALSE(parse({"check"}).cameras.aux);
}

TEST(CommandLine, NamesAFrequencyThatIsNone) {
    for (const char* text : {"", "abc", "1/0", "1/-2", "1/2/3", "1.", "1e3"}) {
        EXPECT_THAT(refusal({"record", "--seconds", "1", "--out", "d", "--aux", text}),
                    testing::AllOf(HasSubstr("--aux takes a frequency in Hz, such as 100 or 30000/1001"),
                                   HasSubstr(std::string("\"") + text + "\"")));
    }
    for (const char* text : {"0", "-5", "1/1000000001", "1000000001"}) {
        EXPECT_THAT(refusal({"check", "--aux", text}), HasSubstr("greater than 0 Hz"));
    }
}

TEST(CommandLine, NamesATriggerModeThatContradictsAux) {
    EXPECT_EQ(refusal({"check", "--aux", "20", "--set", "CAMERA/TriggerMode=GIGE/TriggerModeFixed"}),
              "--set CAMERA/TriggerMode=GIGE/TriggerModeFixed contradicts --aux, which needs "
              "GIGE/TriggerModeAux; leave one of them out.");
    EXPECT_TRUE(
        parse({"check", "--aux", "20", "--set", "CAMERA/TriggerMode=GIGE/TriggerModeAux"}).cameras.aux);
    EXPECT_FALSE(parse({"check", "--set", "CAMERA/TriggerMode=GIGE/TriggerModeFixed"}).cameras.aux);
}

TEST(CommandLine, NamesAPathThatIsEmpty) {
    EXPECT_EQ(refusal({"settings", "--from", ""}), "--from takes a file, not an empty text.");
    EXPECT_EQ(refusal({"settings", "--to", ""}), "--to takes a file, not an empty text.");
    EXPECT_EQ(refusal({"topology", "--out", ""}), "--out takes a file, not an empty text.");
    EXPECT_EQ(refusal({"record", "--seconds", "1", "--out", ""}),
              "--out takes a directory, not an empty text.");
}

TEST(CommandLine, NamesALevelThatIsNone) {
    EXPECT_EQ(
        refusal({"devices", "--log-level", "loud"}),
        "--log-level takes one of trace, debug, detail, info, notice, warning, error, off, not \"loud\".");
}

TEST(CommandLine, NeedsACommandAndItsOptions) {
    EXPECT_EQ(
        refusal({}),
        "Say what to do: devices, settings, check, record, watch or topology; zelt_host --help explains "
        "them.");
    EXPECT_THAT(refusal({"record", "--seconds", "1"}), HasSubstr("--out"));
    EXPECT_THAT(refusal({"record", "--out", "d"}), HasSubstr("--seconds"));
    EXPECT_THAT(refusal({"record", "--seconds", "1", "--out", ""}), HasSubstr("--out"));
}

TEST(CommandLine, NamesWhatItDoesNotKnow) {
    EXPECT_THAT(refusal({"frobnicate"}), HasSubstr("frobnicate"));
    EXPECT_THAT(refusal({"devices", "--frob"}), HasSubstr("--frob"));
    EXPECT_THAT(refusal({"record", "--secnds", "5", "--out", "d"}), HasSubstr("--secnds"));
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
    EXPECT_THAT(line.helpText, test_support::FindsRegex("^zelt_host [0-9]+\\.[0-9]+\\.[0-9]+\n$"));
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
