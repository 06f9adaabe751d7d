#include "trace_scope.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "log_capture.h"
#include "throwing_log.h"

namespace {

using test_support::LogCapture;
using test_support::LogLine;
using ::testing::ElementsAre;

TEST(TraceScope, WritesEntryAndExitAtTrace) {
    const LogCapture log;
    {
        const diagnostics::TraceScope trace(diagnostics::unilogger_zelt_plugin_gige_camera(),
                                            "CameraPlugin::prepareAcquisition()");
        ZELT_LOG(diagnostics::unilogger_zelt_plugin_gige_camera(), Info) << "inside";
    }
    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            LogLine{0, "zelt_plugin_gige_camera", "Entering CameraPlugin::prepareAcquisition() ..."},
            LogLine{3, "zelt_plugin_gige_camera", "inside"},
            LogLine{0, "zelt_plugin_gige_camera", "... exiting CameraPlugin::prepareAcquisition()."}));
}

TEST(TraceScope, WritesItsExitWhenAnExceptionLeavesTheScope) {
    const LogCapture log;
    const auto fail = [] {
        const diagnostics::TraceScope trace(diagnostics::unilogger_zelt_plugin_gige_camera(), "work()");
        throw std::runtime_error("trouble");
    };
    EXPECT_THROW(fail(), std::runtime_error);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Trace),
                ElementsAre("Entering work() ...", "... exiting work()."));
}

TEST(TraceScope, KeepsToItselfThatTheLogFails) {
    const test_support::ThrowingLog log("work()");
    bool worked = false;
    {
        const diagnostics::TraceScope trace(diagnostics::unilogger_zelt_plugin_gige_camera(), "work()");
        worked = true;
    }
    EXPECT_TRUE(worked);
}

}  // namespace
