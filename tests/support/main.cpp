// The program of every test suite. Touching core and loggers here, before any other thread exists, keeps
// their one-time creation out of the thread sanitizer's sight; the log library is not instrumented.
#include <boost/log/core.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "full_run.h"
#include "hang_watch.h"
#include "logging.h"

int main(int argc, char** argv) {
    boost::log::core::get()->set_logging_enabled(false);
    diagnostics::unilogger_zelt_plugin_gige_camera();
    diagnostics::unilogger_CONFIG_ITEMS();
    ::testing::InitGoogleMock(&argc, argv);
    // Far more than the longest takes under the slowest sanitizer.
    test_support::limitEveryTest(test_support::isFullRun() ? 3600 : 240);
    return RUN_ALL_TESTS();
}
