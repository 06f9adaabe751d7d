#include <gmock/gmock.h>

#include "assertion_monitor.h"
#include "captured_console.h"
#include "full_files.h"
#include "host_failure.h"
#include "log_console.h"
#include "progress.h"
#include "quantity_text.h"
#include "temporary_directory.h"
#include "text_table.h"

using host_test::CapturedConsole;
using testing::HasSubstr;

namespace {

TEST(Console, ReplacesWhatNeedsUtf8WhereTheUserCannotSeeIt) {
    EXPECT_EQ(host::toAscii("a \u00b7 656\u00d7492 41 \u00b5s \u2501\u2501 \u00e9"),
              "a - 656x492 41 us ## ?");
    CapturedConsole captured(false);
    captured.console().print("656\u00d7492\n");
    captured.console().tell("5 \u00b5s");
    EXPECT_EQ(captured.out(), "656x492\n");
    EXPECT_EQ(captured.error(), "5 us\n");
}

TEST(Console, WritesUtf8ForProgramsWhateverTheUserSees) {
    CapturedConsole captured(false);
    captured.console().printForPrograms();
    captured.console().print("0 \u00b0\n");
    captured.console().tell("5 \u00b5s");
    EXPECT_EQ(captured.out(), "0 \u00b0\n");
    EXPECT_EQ(captured.error(), "5 us\n");
}

TEST(Console, SaysThatTheResultCannotBeWritten) {
    const test_support::TemporaryDirectory directory;
    const test_support::FullFile nowhere(directory.path() / "full");
    std::FILE* const full = std::fopen((directory.path() / "full").string().c_str(), "w");
    ASSERT_NE(full, nullptr);
    host::Console console(full, stderr, true);
    try {
        console.print("a result\n");
        ADD_FAILURE();
    } catch (const host::HostFailure& failure) {
        EXPECT_EQ(failure.code(), host::ExitCode::WriteFailed);
        EXPECT_THAT(failure.what(),
                    HasSubstr("cannot be written to the standard output (No space left on device)"));
    }
    std::fclose(full);
}

TEST(Console, CountsCharactersNotBytes) {
    EXPECT_EQ(host::displayWidth(""), 0u);
    EXPECT_EQ(host::displayWidth("656\u00d7492"), 7u);
    EXPECT_EQ(host::displayWidth("\u2501\u2501"), 2u);
}

TEST(Console, TakesTheProgressLineAwayBeforeAnythingElse) {
    CapturedConsole captured(true);
    captured.console().setProgressStream(captured.errorStream());
    captured.console().drawProgress("one");
    captured.console().drawProgress("two");
    captured.console().tell("line");
    captured.console().tell("line");
    captured.console().drawProgress("three");
    captured.console().clearProgress();
    captured.console().clearProgress();
    EXPECT_EQ(captured.error(), "one\r\x1b[Ktwo\r\x1b[Kline\nline\nthree\r\x1b[K");
}

TEST(Console, DrawsNoProgressWhereThereIsNoTerminal) {
    CapturedConsole captured(true);
    captured.console().drawProgress("one");
    EXPECT_FALSE(captured.console().hasProgressLine());
    EXPECT_EQ(captured.error() + captured.out(), "");
}

TEST(LogConsole, WritesOneLinePerRecordFromTheLevelOn) {
    CapturedConsole captured(true);
    {
        const host::LogConsole log(captured.console(), {UniLogSeverityLevel::Warning});
        ZELT_LOG(diagnostics::unilogger_zelt_plugin_gige_camera(), Notice) << "hidden";
        ZELT_LOG(diagnostics::unilogger_zelt_plugin_gige_camera(), Warning) << "two\nlines";
        ZELT_LOG(diagnostics::unilogger_CONFIG_ITEMS(), Error) << "Camera %1 has its say as a message";
        ZELT_LOG(diagnostics::unilogger_CONFIG_ITEMS(), Error) << "number " << 5;
    }
    ZELT_LOG(diagnostics::unilogger_CONFIG_ITEMS(), Error) << "after the end";
    EXPECT_EQ(captured.error(),
              "warning  zelt_plugin_gige_camera  two lines\n"
              "error    CONFIG_ITEMS  number 5\n");
}

TEST(LogConsole, WritesNothingWhenOff) {
    CapturedConsole captured(true);
    const host::LogConsole log(captured.console(), {});
    ZELT_LOG(diagnostics::unilogger_CONFIG_ITEMS(), Error) << "hidden";
    EXPECT_EQ(captured.error(), "");
}

TEST(AssertionMonitor, CountsAllAndShowsTheFirstOfEveryPlace) {
    CapturedConsole captured(true);
    const host::AssertionMonitor monitor(captured.console());
    EXPECT_EQ(diagnostics::assertFailed("a == b", "lib/some/src/file", 12), 1);
    EXPECT_EQ(diagnostics::assertFailed("a == b", "lib/some/src/file", 12), 1);
    EXPECT_EQ(diagnostics::assertFailed("c", "lib/some/src/file", 13, "value %d", 7), 1);
    EXPECT_EQ(monitor.count(), 3u);
    EXPECT_EQ(captured.error(),
              "assertion failed: a == b at lib/some/src/file:12\n"
              "assertion failed: c (value 7) at lib/some/src/file:13\n");
}

TEST(AssertionMonitor, GivesTheHookBack) {
    CapturedConsole captured(true);
    { const host::AssertionMonitor monitor(captured.console()); }
    diagnostics::assertFailed("a", "b", 1);
    EXPECT_EQ(captured.error(), "");
}

TEST(QuantityText, WritesTimesInTheUnitThatSuitsThem) {
    EXPECT_EQ(host::duration(0), "0 ns");
    EXPECT_EQ(host::duration(999), "999 ns");
    EXPECT_EQ(host::duration(1000), "1.0 \u00b5s");
    EXPECT_EQ(host::duration(9'940), "9.9 \u00b5s");
    EXPECT_EQ(host::duration(41'000), "41 \u00b5s");
    EXPECT_EQ(host::duration(999'499), "999 \u00b5s");
    EXPECT_EQ(host::duration(999'500), "1.00 ms");
    EXPECT_EQ(host::duration(37'020'000), "37.02 ms");
    EXPECT_EQ(host::duration(999'994'000), "999.99 ms");
    EXPECT_EQ(host::duration(999'995'000), "1.000 s");
    EXPECT_EQ(host::duration(-41'000), "-41 \u00b5s");
}

TEST(QuantityText, CountsFrames) {
    EXPECT_EQ(host::frameCount(0), "0 frames");
    EXPECT_EQ(host::frameCount(1), "1 frame");
    EXPECT_EQ(host::frameCount(2), "2 frames");
    EXPECT_EQ(host::decimals(49.996, 2), "50.00");
}

TEST(TextTable, AlignsByCharacters) {
    EXPECT_EQ(host::formatTable({{"n", true}, {"size"}, {"end"}}, {{"5", "6\u00d74", "x"}, {"123", "1", ""}}),
              "    n  size  end\n"
              "    5  6\u00d74   x\n"
              "  123  1\n");
}

TEST(ProgressLine, ShowsShareFramesAndLosses) {
    const host::Progress progress{5, 3.01, 300, 0, "recordings/a"};
    // 12 of 20 cells, and the share in five columns behind one blank.
    EXPECT_EQ(host::progressLine(progress, 200, false),
              "recording 5.0 s to recordings/a   "
              "\u2501\u2501\u2501\u2501\u2501\u2501\u2501\u2501\u2501\u2501\u2501\u2501"
              "          60 %   300 frames   0 lost");
}

TEST(ProgressLine, EndsAtAHundredPercent) {
    EXPECT_THAT(host::progressLine({1, 7, 50, 2, "d"}, 200, false), HasSubstr(" 100 %   50 frames   2 lost"));
    EXPECT_THAT(host::progressLine({1, 0, 0, 0, "d"}, 200, false), HasSubstr("   0 %   0 frames   0 lost"));
}

TEST(ProgressLine, ShortensTheDirectoryToFitTheTerminal) {
    const host::Progress progress{5, 5, 300, 0, "/a/very/long/path/to/some/folder/of/recordings/run-17"};
    const std::string line = host::progressLine(progress, 79, false);
    EXPECT_EQ(host::displayWidth(line), 79u);
    EXPECT_THAT(line, HasSubstr("to ..."));
    EXPECT_THAT(line, HasSubstr("run-17   "));
}

}  // namespace
