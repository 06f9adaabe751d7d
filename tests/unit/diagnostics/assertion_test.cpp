#include "assertion.h"

#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"

namespace {

using test_support::AssertionCapture;
using test_support::FailedAssertion;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST(Assertion, WithTheDefaultHookReturnsOneAndGoesOn) {
    EXPECT_EQ(diagnostics::assertFailed("a < b", "lib/some/source", 7), 1);
    ZELT_ASSERT(false);
}

TEST(Assertion, WithoutAHookReturnsOne) {
    const diagnostics::AssertionHook before = diagnostics::setAssertionHook(nullptr);
    EXPECT_EQ(diagnostics::assertFailed("a < b", "lib/some/source", 7), 1);
    EXPECT_EQ(diagnostics::setAssertionHook(before), nullptr);
}

TEST(Assertion, ReturnsTheHooksResult) {
    const AssertionCapture capture(42);
    EXPECT_EQ(diagnostics::assertFailed("a < b", "lib/some/source", 7), 42);
}

TEST(Assertion, TellsTheHookExpressionPathAndLineAndNoMessage) {
    const AssertionCapture capture;
    const int one = 1;
    const int line = __LINE__ + 1;
    ZELT_ASSERT(one == 2);
    const std::vector<FailedAssertion> failures = capture.failures();
    ASSERT_THAT(failures, SizeIs(1));
    EXPECT_EQ(failures[0].expression, "one == 2");
    EXPECT_EQ(failures[0].message, std::nullopt);
    EXPECT_EQ(failures[0].file, "tests/unit/diagnostics/assertion_test");
    EXPECT_EQ(failures[0].line, line);
}

TEST(Assertion, NamesASourceFromTheRepositorysRootWithoutExtension) {
    using diagnostics::SourcePath;
    EXPECT_STREQ(SourcePath("lib/a.b/src/some_source.cpp").text, "lib/a.b/src/some_source");
    EXPECT_STREQ(SourcePath("/home/lib/me/lib/a/inc/header.h").text, "lib/a/inc/header");
    EXPECT_STREQ(SourcePath("C:\\code\\lib\\a\\some_source.cpp").text, "lib/a/some_source");
    EXPECT_STREQ(SourcePath("tests/unit/glib/a_test.cpp").text, "tests/unit/glib/a_test");
    EXPECT_STREQ(SourcePath("../../tests/unit/a_test.cpp").text, "tests/unit/a_test");
    EXPECT_STREQ(SourcePath("../lib/a/some_source.cpp").text, "lib/a/some_source");
    EXPECT_STREQ(SourcePath("lib/without_extension").text, "lib/without_extension");
}

TEST(Assertion, PassesNoMessageAsNull) {
    static bool wasNull = false;
    const auto before = diagnostics::setAssertionHook(
        [](const char*, const char* message, const char*, int) { return wasNull = message == nullptr, 1; });
    diagnostics::assertFailed("a", "f", 1);
    EXPECT_TRUE(wasNull);
    diagnostics::assertFailed("a", "f", 1, "text");
    EXPECT_FALSE(wasNull);
    diagnostics::setAssertionHook(before);
}

TEST(Assertion, FormatsItsMessage) {
    const AssertionCapture capture;
    ZELT_ASSERT_AS(false, "d == 0", "%s != %d", "dropped", 3);
    EXPECT_EQ(capture.failures().at(0).message, "dropped != 3");
}

TEST(Assertion, CutsAMessageAfter255Characters) {
    const AssertionCapture capture;
    diagnostics::assertFailed("e", "f", 1, "%s", std::string(300, 'x').c_str());
    EXPECT_EQ(capture.failures().at(0).message, std::string(255, 'x'));
}

TEST(Assertion, SaysNothingWhenTheConditionHolds) {
    const AssertionCapture capture;
    ZELT_ASSERT(1 + 1 == 2);
    EXPECT_THAT(capture.failures(), IsEmpty());
}

TEST(Assertion, HandsBackThePreviousHook) {
    const auto hook = [](const char*, const char*, const char*, int) { return 5; };
    const diagnostics::AssertionHook before = diagnostics::setAssertionHook(hook);
    EXPECT_EQ(diagnostics::setAssertionHook(before), static_cast<diagnostics::AssertionHook>(hook));
}

TEST(Assertion, MayBeRaisedWhileTheHookIsReplaced) {
    std::thread replacing([] {
        for (int round = 0; round < 1000; ++round)
            diagnostics::setAssertionHook(diagnostics::setAssertionHook(nullptr));
    });
    for (int round = 0; round < 1000; ++round) EXPECT_EQ(diagnostics::assertFailed("a", "f", 1), 1);
    replacing.join();
}

#if defined(_WIN32)
const ::testing::ExitedWithCode stoppedAtABreakpoint(static_cast<int>(0x80000003));
#else
const ::testing::KilledBySignal stoppedAtABreakpoint(SIGTRAP);
#endif

TEST(AssertionDeathTest, StopsAtABreakpointWhenTheHookAnswersZero) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto stop = [] {
        diagnostics::setAssertionHook([](const char*, const char*, const char*, int) { return 0; });
        ZELT_ASSERT(false);
    };
    EXPECT_EXIT(stop(), stoppedAtABreakpoint, "");
}

}  // namespace
