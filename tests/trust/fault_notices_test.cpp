// The matrix itself: what it is there to find, it finds.
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fault_matrix.h"

namespace {

using faults::Baseline;
using faults::Complaints;
using faults::Fault;
using faults::Phase;
using faults::World;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

void nobody(const VmbHandle_t, const char*, void*) {}

/// Worlds in which something is wrong that no plug-in has done.
class TheMatrix : public ::testing::Test {
  protected:
    Complaints recordAgain() { return faults::recordAgain(world, faults::Recovery::Prepare); }

    World world;
};

TEST_F(TheMatrix, HasNothingToSayOfAPluginThatWorks) {
    world.bringTo(Phase::Configure);
    EXPECT_THAT(recordAgain(), IsEmpty());
    EXPECT_THAT(faults::examineEnd(world, {}), IsEmpty());
}

TEST_F(TheMatrix, NoticesAHandleThatIsNotClosed) {
    world.bringTo(Phase::Configure);
    VmbInterfaceInfo_t info{};
    VmbUint32_t found = 0;
    ASSERT_EQ(VmbInterfacesList(&info, 1, &found, sizeof info), VmbErrorSuccess);
    VmbHandle_t leaked = nullptr;
    ASSERT_EQ(VmbInterfaceOpen(info.interfaceIdString, &leaked), VmbErrorSuccess);
    EXPECT_THAT(recordAgain(), Contains(HasSubstr("2 cameras, 1 interfaces")));
    ASSERT_EQ(VmbInterfaceClose(leaked), VmbErrorSuccess);
    EXPECT_THAT(recordAgain(), IsEmpty());
}

TEST_F(TheMatrix, NoticesARegistrationTooMany) {
    world.bringTo(Phase::Configure);
    const VmbHandle_t system = reinterpret_cast<VmbHandle_t>(std::uintptr_t{1});
    ASSERT_EQ(VmbFeatureInvalidationRegister(system, "DiscoveryCameraEvent", &nobody, nullptr),
              VmbErrorSuccess);
    EXPECT_THAT(recordAgain(), Contains(HasSubstr("2 registrations")));
}

TEST_F(TheMatrix, NoticesMemoryThatIsNotGivenBack) {
    world.bringTo(Phase::Configure);
    void* const leaked = world.pages.allocate(1);
    EXPECT_THAT(recordAgain(), Contains(HasSubstr("blocks of frame memory")));
    EXPECT_THAT(faults::examineEnd(world, {}), Contains(HasSubstr("blocks of frame memory left: 1")));
    world.pages.release(leaked, 1);
}

TEST_F(TheMatrix, NoticesALibraryThatIsStillStarted) {
    world.bringTo(Phase::Configure);
    VmbSimChoose(VmbSimChoiceRepeatedStartup, 1);
    ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
    EXPECT_THAT(faults::examineEnd(world, {}), Contains("the library is still started"));
    VmbShutdown();
}

TEST_F(TheMatrix, NoticesFramesThatAreMissing) {
    world.bringTo(Phase::Configure);
    VmbInterfaceInfo_t info{};
    VmbUint32_t found = 0;
    ASSERT_EQ(VmbInterfacesList(&info, 1, &found, sizeof info), VmbErrorSuccess);
    VmbSimLink link{};
    link.lossPpm = 1'000'000;
    ASSERT_EQ(VmbSimSetLink(info.interfaceIdString, &link), VmbErrorSuccess);
    EXPECT_THAT(recordAgain(), Contains(HasSubstr("0 frames instead of 10")));
}

TEST_F(TheMatrix, NoticesAStampThatIsWrong) {
    world.bringTo(Phase::Configure);
    world.clock().fixed = 1;
    EXPECT_THAT(recordAgain(), Contains(HasSubstr("frame 1 is stamped")));
}

TEST_F(TheMatrix, NoticesMisuse) {
    world.bringTo(Phase::Configure);
    const VmbHandle_t system = reinterpret_cast<VmbHandle_t>(std::uintptr_t{1});
    VmbFeatureInvalidationRegister(system, "DiscoveryCameraEvent", &nobody, nullptr);
    VmbFeatureInvalidationRegister(system, "DiscoveryCameraEvent", &nobody, nullptr);
    EXPECT_THAT(faults::examineEnd(world, {}), Contains(HasSubstr("the callback was registered already")));
    world.bringTo(Phase::Initialise);
    VmbFeatureInvalidationRegister(system, "DiscoveryCameraEvent", &nobody, nullptr);
    VmbFeatureInvalidationRegister(system, "DiscoveryCameraEvent", &nobody, nullptr);
    EXPECT_THAT(faults::examineEnd(world, {"the callback was registered already"}), IsEmpty());
}

/// A rule that expects something else than what happens: a text, an answer, a call that does not come.
TEST_F(TheMatrix, NoticesAnotherAnswerThanTheSpecifiedOne) {
    const Baseline baseline = faults::baselineOf(world, Phase::Start);
    const std::vector<Fault> all = faults::faultsOf(baseline, false);
    const auto fault = std::find_if(all.begin(), all.end(), [](const Fault& candidate) {
        return candidate.call.argument == "AcquisitionStart";
    });
    ASSERT_NE(fault, all.end());
    EXPECT_THAT(faults::examine(world, baseline, *fault), IsEmpty());
    Fault wrong = *fault;
    wrong.call.argument = "AcquisitionStop";
    const Complaints complaints = faults::examine(world, baseline, wrong);
    EXPECT_THAT(complaints, Contains("it did not strike"));
    EXPECT_THAT(complaints, Contains(HasSubstr("the exception was: Cannot start acquisition of camera")));
    EXPECT_THAT(complaints, Contains(HasSubstr("the log was: ")));
    EXPECT_THAT(complaints, Contains(HasSubstr("the message was: Cannot start acquisition")));
    wrong.call.nth = 99;
    EXPECT_THAT(faults::examine(world, baseline, wrong), Contains(HasSubstr("the answer was: yes")));
}

TEST_F(TheMatrix, NoticesASettingThatIsNotTheSame) {
    Baseline baseline = faults::baselineOf(world, Phase::Stream);
    const std::vector<Fault> all = faults::faultsOf(baseline, false);
    baseline.settings[test_support::kColourCamera]["CAMERA/Gain"] = "4";
    EXPECT_THAT(faults::examine(world, baseline, all.front()), Contains(HasSubstr("setting CAMERA/Gain of")));
}

TEST_F(TheMatrix, HasEveryFunctionPhaseAndCode) {
    std::set<std::string> functions;
    std::set<VmbError_t> codes;
    for (const Phase phase : faults::kPhases) {
        const std::vector<Fault> part = faults::faultsOf(faults::baselineOf(world, phase), false);
        EXPECT_THAT(part, Not(IsEmpty())) << faults::nameOf(phase);
        for (const Fault& fault : part) {
            functions.insert(fault.call.function);
            codes.insert(fault.code);
        }
    }
    EXPECT_EQ(codes.size(), 20u);
    // All that the access layer calls but VmbShutdown, which has no result.
    EXPECT_THAT(
        functions,
        ::testing::UnorderedElementsAre(
            "VmbVersionQuery", "VmbStartup", "VmbCamerasList", "VmbCameraOpen", "VmbCameraClose",
            "VmbFeaturesList", "VmbFeatureInfoQuery", "VmbFeatureIntGet", "VmbFeatureIntSet",
            "VmbFeatureIntRangeQuery", "VmbFeatureIntIncrementQuery", "VmbFeatureFloatGet",
            "VmbFeatureFloatSet", "VmbFeatureFloatRangeQuery", "VmbFeatureEnumGet", "VmbFeatureEnumSet",
            "VmbFeatureEnumRangeQuery", "VmbFeatureStringGet", "VmbFeatureBoolGet", "VmbFeatureBoolSet",
            "VmbFeatureCommandRun", "VmbFeatureInvalidationRegister", "VmbFeatureInvalidationUnregister",
            "VmbFrameAnnounce", "VmbFrameRevokeAll", "VmbCaptureStart", "VmbCaptureEnd",
            "VmbCaptureFrameQueue", "VmbCaptureQueueFlush"));
}

}  // namespace
