// What the vendor's documentation leaves open, either way.
#include "virtual_fixture.h"

namespace {

using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kSecond;
using test_support::kSystem;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::Stream;

class Choice : public test_support::VirtualTimeTest {
  protected:
    static void choose(VmbSimChoice choice, VmbUint32_t option) {
        ASSERT_EQ(VmbSimChoose(choice, option), VmbErrorSuccess);
    }
    /// Frame ids of two captures of three frames each.
    static std::vector<std::uint64_t> idsOfTwoCaptures(VmbHandle_t camera) {
        Stream stream(camera);
        for (int capture = 0; capture < 2; ++capture) {
            stream.startCapture();
            run(camera, "AcquisitionStart");
            advance(25 * kMillisecond);
            stream.endCapture();
        }
        return stream.ids();
    }
};

TEST_F(Choice, FrameIdsStartAgainOrGoOn) {
    const VmbHandle_t camera = openFast();
    EXPECT_THAT(idsOfTwoCaptures(camera), ::testing::ElementsAre(1, 2, 3, 1, 2, 3));
    choose(VmbSimChoiceFrameIdAfterRestart, 1);
    EXPECT_THAT(idsOfTwoCaptures(camera), ::testing::ElementsAre(4, 5, 6, 7, 8, 9));
}

TEST_F(Choice, FrameIdsOfSixteenBitsLeaveOutZero) {
    choose(VmbSimChoiceFrameIdWidth, 1);
    const VmbHandle_t camera = openFast(kColourCamera, 700);
    Stream stream(camera);
    stream.startCapture();
    run(camera, "AcquisitionStart");
    advance(95 * kSecond);
    const auto ids = stream.ids();
    ASSERT_GT(ids.size(), 65'600u);
    EXPECT_EQ(ids[65'534], 65'535u);
    EXPECT_EQ(ids[65'535], 1u);
    EXPECT_EQ(ids[65'536], 2u);
    stream.endCapture();
}

TEST_F(Choice, QueueingBeforeTheStartOfCaptureIsAcceptedOrRefused) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 1);
    stream.announceAll();
    EXPECT_EQ(stream.queue(0), VmbErrorSuccess);
    EXPECT_EQ(VmbCaptureQueueFlush(camera), VmbErrorSuccess);
    choose(VmbSimChoiceQueueBeforeStart, 1);
    EXPECT_EQ(stream.queue(0), VmbErrorInvalidCall);
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorSuccess);
    EXPECT_EQ(stream.queue(0), VmbErrorSuccess);
    stream.endCapture();
}

TEST_F(Choice, ARepeatedStartupIsIgnoredCountedOrRefused) {
    VmbUint32_t found = 0;
    const auto isStarted = [&] { return VmbCamerasList(nullptr, 0, &found, 0) == VmbErrorSuccess; };
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
    VmbShutdown();
    EXPECT_FALSE(isStarted());
    choose(VmbSimChoiceRepeatedStartup, 1);
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
    VmbShutdown();
    EXPECT_TRUE(isStarted());
    VmbShutdown();
    EXPECT_FALSE(isStarted());
    choose(VmbSimChoiceRepeatedStartup, 2);
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
    EXPECT_EQ(VmbStartup(), VmbErrorInvalidCall);
    VmbShutdown();
    EXPECT_FALSE(isStarted());
}

TEST_F(Choice, SetsInCallbacksAreRefusedInBothKindsInOneOrNowhere) {
    const VmbHandle_t camera = openFast();
    VmbError_t inFrame = VmbErrorOther;
    VmbError_t inInvalidation = VmbErrorOther;
    Invalidations seen;
    seen.hook = [&](VmbHandle_t, const char*) {
        // Once only, since a set brings the next callback.
        if (seen.names().size() == 1) inInvalidation = VmbFeatureFloatSet(camera, "Gain", 2);
    };
    seen.registerOn(camera, "Gain");
    Stream stream(camera);
    stream.hook = [&](VmbFrame_t&) { inFrame = VmbFeatureFloatSet(camera, "Gamma", 1); };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    const struct {
        VmbError_t frame;
        VmbError_t invalidation;
    } expected[] = {{VmbErrorInvalidCall, VmbErrorInvalidCall},
                    {VmbErrorInvalidCall, VmbErrorSuccess},
                    {VmbErrorSuccess, VmbErrorSuccess}};
    for (VmbUint32_t option = 0; option < 3; ++option) {
        choose(VmbSimChoiceSetInCallback, option);
        seen.clear();
        setFloat(camera, "Gain", 1);
        advance(15 * kMillisecond);
        EXPECT_EQ(inFrame, expected[option].frame) << option;
        EXPECT_EQ(inInvalidation, expected[option].invalidation) << option;
    }
    stream.endCapture();
}

TEST_F(Choice, AllAreAsDocumentedInAFreshScenario) {
    choose(VmbSimChoiceQueueBeforeStart, 1);
    restart();
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 1);
    stream.announceAll();
    EXPECT_EQ(stream.queue(0), VmbErrorSuccess);
    stream.endCapture();
}

TEST_F(Choice, UnknownOnesAreRefused) {
    EXPECT_EQ(VmbSimChoose(static_cast<VmbSimChoice>(5), 0), VmbErrorNotFound);
    const VmbUint32_t counts[] = {2, 2, 2, 3, 3};
    for (VmbUint32_t choice = 0; choice < 5; ++choice) {
        EXPECT_EQ(VmbSimChoose(static_cast<VmbSimChoice>(choice), counts[choice] - 1), VmbErrorSuccess);
        EXPECT_EQ(VmbSimChoose(static_cast<VmbSimChoice>(choice), counts[choice]), VmbErrorInvalidValue);
    }
}

}  // namespace
