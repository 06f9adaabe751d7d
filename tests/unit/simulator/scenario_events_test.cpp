// What happens in a scenario, and when.
#include "scenario_fixture.h"

namespace {

using test_support::eventually;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::run;
using test_support::ScenarioTest;
using test_support::Simulator;
using testing::ElementsAre;

class ScenarioEvents : public ScenarioTest {
  protected:
    /// Does the library have a thread for events of its scenario?
    static bool hasThread() { return test_support::hasThreadNamed("scenario"); }
};

constexpr const char* kPullAndPlug = R"("events": [
    {"at": 2.5, "do": {"unplugCamera": {"camera": "DEV_000F31A10001"}}},
    {"at": 4.000000001, "do": {"plugCamera": {"camera": "DEV_000F31A10001"}}}])";

TEST_F(ScenarioEvents, HappenAtTheirTimeToTheNanosecond) {
    start(kPullAndPlug);
    advanceTo(2'500'000'000 - 1);
    EXPECT_TRUE(isThere());
    advance(1);
    EXPECT_FALSE(isThere());
    EXPECT_TRUE(isThere(kMonochromeCamera));
    advanceTo(4 * kSecond);
    EXPECT_FALSE(isThere());
    advance(1);
    EXPECT_TRUE(isThere());
}

TEST_F(ScenarioEvents, CountTheirTimeFromTheStartOfTheLibrary) {
    const std::string cameras = R"({"cameras": [{"model": "Manta_G-033C"}], )";
    ASSERT_EQ(load(cameras + kPullAndPlug + "}"), VmbErrorSuccess);
    advance(100 * kSecond);
    ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
    advance(2'500'000'000 - 1);
    EXPECT_TRUE(isThere());
    advance(1);
    EXPECT_FALSE(isThere());
}

TEST_F(ScenarioEvents, ThatComeEverySoOftenComeUntilTheirNumberIsReached) {
    start(R"("events": [
        {"at": 1, "every": 10, "times": 3, "do": {"unplugCamera": {"camera": "DEV_000F31A10001"}}},
        {"at": 2, "every": 10, "do": {"plugCamera": {"camera": "DEV_000F31A10001"}}}])");
    std::vector<std::uint64_t> absences;
    for (std::uint64_t half = 0; half < 100; ++half) {
        if (!isThere()) absences.push_back(half);
        advance(kSecond / 2);
    }
    EXPECT_THAT(absences, ElementsAre(2, 3, 22, 23, 42, 43)) << "in halves of a second";
}

TEST_F(ScenarioEvents, WithoutANumberNeverEnd) {
    start(R"("events": [
        {"at": 0.5, "every": 3600, "do": {"unplugCamera": {"camera": "DEV_000F31A10001"}}},
        {"at": 1.5, "every": 3600, "do": {"plugCamera": {"camera": "DEV_000F31A10001"}}}])");
    EXPECT_EQ(VmbSimRunUntilIdle(1'000'000 * kSecond), VmbErrorTimeout);
    advanceTo(1000 * 3600 * kSecond + kSecond / 2 - 1);
    EXPECT_TRUE(isThere());
    advance(1);
    EXPECT_FALSE(isThere());
}

TEST_F(ScenarioEvents, LeaveNothingToDoWhenTheyAreOver) {
    start(kPullAndPlug);
    EXPECT_EQ(VmbSimRunUntilIdle(10 * kSecond), VmbErrorSuccess);
    EXPECT_EQ(VmbSimTime(), 4'000'000'001u);
}

TEST_F(ScenarioEvents, AfterAnAcquisitionCountFromItsFirstStart) {
    start(R"("events": [{"at": 0.25, "after": "DEV_000F31A10001",
                         "do": {"unplugCamera": {"camera": "DEV_000F31A10002"}}}])");
    const VmbHandle_t other = open(kMonochromeCamera);
    run(other, "AcquisitionStart");
    advance(3 * kSecond + 17);
    EXPECT_TRUE(isThere(kMonochromeCamera)) << "another camera's start does not count";
    const VmbHandle_t camera = open();
    run(camera, "AcquisitionStart");
    advance(kSecond / 4 - 1);
    EXPECT_TRUE(isThere(kMonochromeCamera));
    advance(1);
    EXPECT_FALSE(isThere(kMonochromeCamera));

    VmbSimPlugCamera(kMonochromeCamera);
    run(camera, "AcquisitionStop");
    advance(kSecond);
    run(camera, "AcquisitionStart");
    advance(kSecond);
    EXPECT_TRUE(isThere(kMonochromeCamera)) << "only the first start counts";
}

TEST_F(ScenarioEvents, AfterAnAcquisitionNeverComeWithoutOne) {
    start(R"("events": [{"at": 0, "after": "DEV_000F31A10001",
                         "do": {"unplugCamera": {"camera": "DEV_000F31A10001"}}}])");
    open();
    EXPECT_EQ(VmbSimRunUntilIdle(100 * kSecond), VmbErrorSuccess);
    EXPECT_TRUE(isThere());
}

TEST_F(ScenarioEvents, AtZeroHaveHappenedWhenTheLibraryIsStarted) {
    start(R"("events": [{"at": 0, "do": {"unplugCamera": {"camera": "DEV_000F31A10002"}}}])");
    EXPECT_FALSE(isThere(kMonochromeCamera));
    EXPECT_TRUE(isThere());
}

TEST_F(ScenarioEvents, OfTheSameTimeComeInTheOrderOfTheFile) {
    start(R"("events": [
        {"at": 1, "do": {"loseFrames": {"camera": "DEV_000F31A10001", "count": 1}}},
        {"at": 1, "do": {"loseFrames": {"camera": "DEV_000F31A10001", "count": 2}}},
        {"at": 0.5, "every": 0.5, "do": {"loseFrames": {"camera": "DEV_000F31A10001", "count": 3}}}])");
    VmbSimJournalStart();
    advance(kSecond);
    const std::string line = R"(loseFrames {"camera":"DEV_000F31A10001","count":)";
    EXPECT_THAT(Simulator::journal("scenario"),
                ElementsAre(line + "3} = 0", line + "1} = 0", line + "2} = 0", line + "3} = 0"));
}

TEST_F(ScenarioEvents, ComeBeforeWhateverElseHappensAtTheSameTime) {
    // The camera exposes 4.2 microseconds after its start, then every 10 milliseconds by its own clock.
    startWith(R"({"cameras": [{"model": "Manta_G-033C", "oscillator": {"errorPpb": 0}}],
                  "events": [{"at": 0.0500042, "after": "DEV_000F31A10001",
                              "do": {"loseFrames": {"camera": "DEV_000F31A10001", "count": 1}}}]})");
    const VmbHandle_t camera = openFast();
    const auto stream = acquire(camera);
    advance(95 * kMillisecond);
    const auto ids = stream->ids();
    EXPECT_THAT(ids, ElementsAre(1, 2, 3, 4, 5, 7, 8, 9, 10));
    stream->endCapture();
}

TEST_F(ScenarioEvents, ThatCannotBeSaySoInTheJournal) {
    start(R"("events": [{"at": 1, "do": {"takeControl": {"camera": "DEV_000F31A10001"}}},
                        {"at": 2, "do": {"takeControl": {"camera": "DEV_000F31A10002"}}}])");
    open();
    VmbSimJournalStart();
    advance(2 * kSecond);
    EXPECT_THAT(Simulator::journal("scenario"),
                ElementsAre(R"(takeControl {"camera":"DEV_000F31A10001"} = -6)",
                            R"(takeControl {"camera":"DEV_000F31A10002"} = 0)"));
}

TEST_F(ScenarioEvents, EndWithTheLibraryAndBeginAgainWithIt) {
    start(R"("events": [
        {"at": 5, "do": {"unplugCamera": {"camera": "DEV_000F31A10001"}}},
        {"at": 1, "after": "DEV_000F31A10002", "do": {"unplugCamera": {"camera": "DEV_000F31A10002"}}}])");
    run(open(kMonochromeCamera), "AcquisitionStart");
    advance(kSecond);
    VmbShutdown();
    advance(100 * kSecond);
    ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
    EXPECT_TRUE(isThere());
    EXPECT_FALSE(isThere(kMonochromeCamera)) << "what happened before stays";
    VmbSimPlugCamera(kMonochromeCamera);
    advance(5 * kSecond - 1);
    EXPECT_TRUE(isThere());
    advance(1);
    EXPECT_FALSE(isThere());
    run(open(kMonochromeCamera), "AcquisitionStart");
    advance(kSecond - 1);
    EXPECT_TRUE(isThere(kMonochromeCamera));
    advance(1);
    EXPECT_FALSE(isThere(kMonochromeCamera)) << "the first start since the library's";
}

TEST_F(ScenarioEvents, HaveAThreadOnlyWhenSomethingIsLeftToHappen) {
    start(R"("events": [{"at": 0, "do": {"holdSensor": {"camera": "DEV_000F31A10001"}}}])");
    advance(kSecond);
    EXPECT_FALSE(hasThread());
    VmbShutdown();
    start(kPullAndPlug);
    EXPECT_TRUE(eventually(hasThread));
    VmbShutdown();
    EXPECT_TRUE(eventually([] { return !hasThread(); }));
    start(R"("events": [{"at": 0, "after": "DEV_000F31A10001",
                         "do": {"holdSensor": {"camera": "DEV_000F31A10001"}}}])");
    EXPECT_TRUE(eventually(hasThread));
}

TEST_F(ScenarioEvents, HappenInRealTimeToo) {
    ASSERT_EQ(VmbSimUseVirtualTime(false), VmbErrorSuccess);
    const std::uint64_t before = VmbSimTime();
    start(R"("events": [
        {"at": 0, "do": {"unplugCamera": {"camera": "DEV_000F31A10002"}}},
        {"at": 0.05, "do": {"unplugCamera": {"camera": "DEV_000F31A10001"}}},
        {"at": 0.02, "after": "DEV_000F31A10001", "do": {"plugCamera": {"camera": "DEV_000F31A10002"}}}])");
    EXPECT_FALSE(isThere(kMonochromeCamera));
    run(open(), "AcquisitionStart");
    const std::uint64_t started = VmbSimTime();
    EXPECT_TRUE(eventually([] { return isThere(kMonochromeCamera); }));
    EXPECT_GE(VmbSimTime() + kMillisecond, started + 20 * kMillisecond);
    EXPECT_TRUE(eventually([] { return !isThere(); }));
    EXPECT_GE(VmbSimTime(), before + 50 * kMillisecond);
}

TEST_F(ScenarioEvents, GoTogetherWithWhatAProgramDoesMeanwhile) {
    ASSERT_EQ(VmbSimUseVirtualTime(false), VmbErrorSuccess);
    const auto event = [](const char* at, const std::string& action) {
        return std::string(R"({"every": 0.001, "at": )") + at + R"(, "do": {)" + action + "}}";
    };
    const std::string ofColour = R"(": {"camera": "DEV_000F31A10001"})";
    const std::string ofNetwork = R"(": {"interface": "SimulatedNetwork0"})";
    ASSERT_EQ(load(R"({"cameras": [{"model": "Manta_G-033C"}], "events": [)" +
                   event("0.001", R"("unplugCamera)" + ofColour) + "," +
                   event("0.0013", R"("plugCamera)" + ofColour) + "," +
                   event("0.0014", R"("driveLine": {"rhythm": {"numerator": 1000, "widthNs": 1000}})") + "," +
                   event("0.0015", R"("unplugInterface)" + ofNetwork) + "," +
                   event("0.0016", R"("plugInterface)" + ofNetwork) + "," +
                   R"({"at": 0, "after": "DEV_000F31A10001", "do": {"holdSensor)" + ofColour + "}}]}"),
              VmbErrorSuccess)
        << test_support::scenarioError();
    // At least once while the camera has its cable, however the threads are scheduled.
    std::size_t opened = 0;
    for (int round = 0; round < 50; ++round) {
        ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
        for (int attempt = 0; attempt < 20 || opened == 0; ++attempt) {
            VmbHandle_t camera = nullptr;
            if (VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera) != VmbErrorSuccess) continue;
            ++opened;
            VmbFeatureCommandRun(camera, "AcquisitionStart");
            VmbCaptureStart(camera);
            VmbCaptureEnd(camera);
            VmbCameraClose(camera);
        }
        VmbShutdown();
    }
}

TEST_F(ScenarioEvents, DoNotKeepTheLibraryFromEnding) {
    ASSERT_EQ(VmbSimUseVirtualTime(false), VmbErrorSuccess);
    for (int round = 0; round < 20; ++round) {
        start(R"("events": [{"at": 0.001, "every": 0.001,
                             "do": {"loseFrames": {"camera": "DEV_000F31A10001", "count": 1}}}])");
        open();
        VmbShutdown();
    }
}

}  // namespace
