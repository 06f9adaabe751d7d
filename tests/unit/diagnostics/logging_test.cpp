#include "logging.h"

#include <locale>
#include <stdexcept>

#include <boost/log/core.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "log_capture.h"

namespace {

using diagnostics::unilogger_CONFIG_ITEMS;
using diagnostics::unilogger_zelt_plugin_gige_camera;
using test_support::LogCapture;
using test_support::LogLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Counts how often it was turned into text.
struct Counted {
    int& count;
    friend std::ostream& operator<<(std::ostream& stream, const Counted& counted) {
        ++counted.count;
        return stream << "counted";
    }
};

int evaluated(int& count) {
    return ++count;
}

TEST(Severity, HasTheFixedNumbers) {
    EXPECT_EQ(UniLogSeverityLevel::Trace, 0u);
    EXPECT_EQ(UniLogSeverityLevel::Debug, 1u);
    EXPECT_EQ(UniLogSeverityLevel::Detail, 2u);
    EXPECT_EQ(UniLogSeverityLevel::Info, 3u);
    EXPECT_EQ(UniLogSeverityLevel::Notice, 4u);
    EXPECT_EQ(UniLogSeverityLevel::Warning, 5u);
    EXPECT_EQ(UniLogSeverityLevel::Error, 6u);
}

TEST(Logger, WritesSeverityChannelAndText) {
    LogCapture log;
    ZELT_LOG(unilogger_zelt_plugin_gige_camera(), Warning) << "Camera " << 7 << " is late";
    ZELT_LOG(unilogger_CONFIG_ITEMS(), Error) << "odd item";
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{5, "zelt_plugin_gige_camera", "Camera 7 is late"},
                                         LogLine{6, "CONFIG_ITEMS", "odd item"}));
}

TEST(Logger, IsOneInstancePerProcess) {
    EXPECT_EQ(&unilogger_zelt_plugin_gige_camera(), &unilogger_zelt_plugin_gige_camera());
    EXPECT_EQ(&unilogger_CONFIG_ITEMS(), &unilogger_CONFIG_ITEMS());
}

TEST(Logger, FormatsNothingWhileLoggingIsDisabledInTheCore) {
    const LogCapture log;
    boost::log::core::get()->set_logging_enabled(false);
    int formatted = 0;
    int arguments = 0;
    ZELT_LOG(unilogger_zelt_plugin_gige_camera(), Error) << Counted{formatted} << evaluated(arguments);
    EXPECT_EQ(formatted, 0);
    EXPECT_EQ(arguments, 0);
    boost::log::core::get()->set_logging_enabled(true);
    ZELT_LOG(unilogger_zelt_plugin_gige_camera(), Error) << Counted{formatted} << evaluated(arguments);
    EXPECT_EQ(formatted, 1);
    EXPECT_EQ(arguments, 1);
}

TEST(Logger, FormatsNothingForARecordThatTheFilterRefuses) {
    const LogCapture log(UniLogSeverityLevel::Info);
    int formatted = 0;
    ZELT_LOG(unilogger_zelt_plugin_gige_camera(), Detail) << Counted{formatted};
    EXPECT_EQ(formatted, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Logger, DoesNotPushARecordWhoseFormattingThrows) {
    const LogCapture log;
    const auto fail = []() -> int { throw std::runtime_error("no value"); };
    EXPECT_THROW(ZELT_LOG(unilogger_zelt_plugin_gige_camera(), Error) << "value " << fail(),
                 std::runtime_error);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Logger, WritesNumbersWithoutTheHostsLocale) {
    struct German : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new German));
    const LogCapture log;
    ZELT_LOG(unilogger_zelt_plugin_gige_camera(), Info) << 1234567 << " " << 0.5;
    std::locale::global(before);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Info), ElementsAre("1234567 0.5"));
}

}  // namespace
