// How cameras are found, and the news of those that come and go.
#include "simulator_fixture.h"

namespace {

using test_support::Door;
using test_support::enumOf;
using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::kSystem;
using test_support::run;
using test_support::setInt;
using test_support::SimulatorTest;
using test_support::stringOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Discovery : public SimulatorTest {
  protected:
    Discovery() {
        news.hook = [this](VmbHandle_t handle, const char*) {
            heard.push_back(enumOf(handle, "DiscoveryCameraEvent") + " " +
                            stringOf(handle, "DiscoveryCameraIdent"));
        };
    }
    // Callbacks use members of the fixture.
    ~Discovery() override { VmbShutdown(); }

    void listen() { news.registerOn(kSystem, "DiscoveryCameraEvent"); }
    static std::vector<std::string> list() {
        VmbCameraInfo_t cameras[4];
        VmbUint32_t found = 0;
        EXPECT_EQ(VmbCamerasList(cameras, 4, &found, sizeof cameras[0]), VmbErrorSuccess);
        std::vector<std::string> ids;
        for (VmbUint32_t i = 0; i < found; ++i) ids.emplace_back(cameras[i].cameraIdString);
        return ids;
    }
    /// News since the last call; only after waiting, so that the discovery thread is through.
    std::vector<std::string> next() {
        EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
        return std::exchange(heard, {});
    }

    Invalidations news;
    std::vector<std::string> heard;
};

TEST_F(Discovery, WithoutARoundNoCameraIsListed) {
    EXPECT_THAT(list(), IsEmpty());
}

TEST_F(Discovery, OneRoundBlocksForItsDurationAndFindsAll) {
    EXPECT_EQ(test_support::intOf(kSystem, "GeVDiscoveryAllDuration"), 150);
    setInt(kSystem, "GeVDiscoveryAllDuration", 30);
    const VmbUint64_t before = VmbSimTime();
    run(kSystem, "GeVDiscoveryAllOnce");
    EXPECT_GE(VmbSimTime() - before, 30'000'000u);
    EXPECT_THAT(list(), ElementsAre(kColourCamera, kMonochromeCamera));
}

TEST_F(Discovery, TheFirstListWaitsForTheFirstAutomaticRound) {
    setInt(kSystem, "GeVDiscoveryAllDuration", 40);
    const VmbUint64_t before = VmbSimTime();
    run(kSystem, "GeVDiscoveryAllAuto");
    EXPECT_THAT(list(), ElementsAre(kColourCamera, kMonochromeCamera));
    EXPECT_GE(VmbSimTime() - before, 40'000'000u);
}

TEST_F(Discovery, AListIsNotKeptWaitingByDiscoveryThatWasSwitchedOff) {
    setInt(kSystem, "GeVDiscoveryAllDuration", 60'000);
    run(kSystem, "GeVDiscoveryAllAuto");
    run(kSystem, "GeVDiscoveryAllOff");
    EXPECT_THAT(list(), IsEmpty());
}

TEST_F(Discovery, AutomaticDiscoveryBeginsWithNewsOfEveryCamera) {
    listen();
    setInt(kSystem, "GeVDiscoveryAllDuration", 1);
    run(kSystem, "GeVDiscoveryAllOnce");
    next();
    run(kSystem, "GeVDiscoveryAllAuto");
    EXPECT_THAT(next(), ElementsAre(std::string("Detected ") + kColourCamera,
                                    std::string("Detected ") + kMonochromeCamera));
    run(kSystem, "GeVDiscoveryAllAuto");
    EXPECT_THAT(next(), IsEmpty());
}

TEST_F(Discovery, AutomaticDiscoveryTellsOfCablesUntilItEnds) {
    listen();
    setInt(kSystem, "GeVDiscoveryAllDuration", 1);
    run(kSystem, "GeVDiscoveryAllAuto");
    next();
    EXPECT_EQ(VmbSimUnplugCamera(kColourCamera), VmbErrorSuccess);
    EXPECT_THAT(next(), ElementsAre(std::string("Missing ") + kColourCamera));
    EXPECT_THAT(list(), ElementsAre(kMonochromeCamera));
    EXPECT_EQ(VmbSimPlugCamera(kColourCamera), VmbErrorSuccess);
    EXPECT_THAT(next(), ElementsAre(std::string("Detected ") + kColourCamera));
    EXPECT_THAT(list(), ElementsAre(kMonochromeCamera, kColourCamera));
    run(kSystem, "GeVDiscoveryAllOff");
    VmbSimUnplugCamera(kColourCamera);
    EXPECT_THAT(next(), IsEmpty());
    EXPECT_THAT(list(), ElementsAre(kMonochromeCamera, kColourCamera));
}

TEST_F(Discovery, ASingleRoundTellsOnlyWhatChanged) {
    listen();
    setInt(kSystem, "GeVDiscoveryAllDuration", 1);
    run(kSystem, "GeVDiscoveryAllOnce");
    EXPECT_EQ(next().size(), 2u);
    VmbSimUnplugCamera(kMonochromeCamera);
    run(kSystem, "GeVDiscoveryAllOnce");
    EXPECT_THAT(next(), ElementsAre(std::string("Missing ") + kMonochromeCamera));
}

TEST_F(Discovery, PluggingWhatIsPluggedIsNoNews) {
    listen();
    setInt(kSystem, "GeVDiscoveryAllDuration", 1);
    run(kSystem, "GeVDiscoveryAllAuto");
    next();
    VmbSimPlugCamera(kColourCamera);
    EXPECT_THAT(next(), IsEmpty());
    EXPECT_EQ(VmbSimUnplugCamera("DEV_9"), VmbErrorNotFound);
    EXPECT_EQ(VmbSimPlugCamera(nullptr), VmbErrorBadParameter);
}

TEST_F(Discovery, RaisedEventsMayBeAnything) {
    listen();
    for (const char* event : {"Unreachable", "gibberish", ""}) {
        EXPECT_EQ(VmbSimRaiseDiscoveryEvent(event, "DEV_1"), VmbErrorSuccess);
    }
    EXPECT_THAT(next(), ElementsAre("Unreachable DEV_1", "gibberish DEV_1", " DEV_1"));
    EXPECT_EQ(VmbSimRaiseDiscoveryEvent(nullptr, ""), VmbErrorBadParameter);
}

TEST_F(Discovery, NewsComeOnTheDiscoveryThread) {
    listen();
    VmbSimJournalStart();
    VmbSimRaiseDiscoveryEvent("Missing", "DEV_1");
    next();
    EXPECT_EQ(test_support::Simulator::journal("discovery").size(), 2u);
}

TEST_F(Discovery, ValuesAreHeldSteadyDuringTheCall) {
    Door entered;
    Door raised;
    std::vector<std::string> second;
    news.hook = [&](VmbHandle_t handle, const char*) {
        if (entered.isOpen()) return;
        entered.open();
        raised.wait();
        second.push_back(stringOf(handle, "DiscoveryCameraIdent"));
    };
    listen();
    VmbSimRaiseDiscoveryEvent("Missing", "first");
    entered.wait();
    VmbSimRaiseDiscoveryEvent("Missing", "second");
    raised.open();
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    EXPECT_THAT(second, ElementsAre("first"));
    EXPECT_EQ(stringOf(kSystem, "DiscoveryCameraIdent"), "second");
}

TEST_F(Discovery, AListInACallbackDoesNotWaitForItsOwnThread) {
    setInt(kSystem, "GeVDiscoveryAllDuration", 200);
    std::vector<std::string> ids = {"not asked"};
    news.hook = [&](VmbHandle_t, const char*) { ids = list(); };
    listen();
    run(kSystem, "GeVDiscoveryAllAuto");
    VmbSimRaiseDiscoveryEvent("Reachable", "DEV_1");
    EXPECT_TRUE(test_support::eventually([&] { return !news.names().empty(); }));
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    EXPECT_EQ(news.names().size(), 3u);
}

TEST_F(Discovery, AShutdownInTheMiddleOfARoundEndsIt) {
    setInt(kSystem, "GeVDiscoveryAllDuration", 60'000);
    std::thread searching([] { VmbFeatureCommandRun(kSystem, "GeVDiscoveryAllOnce"); });
    VmbShutdown();
    searching.join();
}

TEST_F(Discovery, StartsAfreshWithTheLibrary) {
    setInt(kSystem, "GeVDiscoveryAllDuration", 1);
    run(kSystem, "GeVDiscoveryAllAuto");
    next();
    VmbShutdown();
    VmbStartup();
    EXPECT_THAT(list(), IsEmpty());
}

TEST_F(Discovery, NeedsTheLibraryStarted) {
    VmbShutdown();
    EXPECT_EQ(VmbSimRaiseDiscoveryEvent("Missing", "DEV_1"), VmbErrorApiNotStarted);
    EXPECT_EQ(VmbSimUnplugCamera(kColourCamera), VmbErrorSuccess);
    VmbStartup();
    VmbHandle_t camera = nullptr;
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera), VmbErrorNotFound);
}

TEST_F(Discovery, ElapsedCountsSecondsSinceTheStart) {
    const double first = test_support::floatOf(kSystem, "Elapsed");
    EXPECT_GE(first, 0);
    EXPECT_TRUE(test_support::eventually([&] { return test_support::floatOf(kSystem, "Elapsed") > first; }));
    EXPECT_LT(test_support::floatOf(kSystem, "Elapsed"), 60);
}

TEST_F(Discovery, TransportLayersAreTold) {
    bool present = false;
    EXPECT_EQ(VmbFeatureBoolGet(kSystem, "GeVTLIsPresent", &present), VmbErrorSuccess);
    EXPECT_TRUE(present);
    EXPECT_EQ(VmbFeatureBoolGet(kSystem, "UsbTLIsPresent", &present), VmbErrorSuccess);
    EXPECT_FALSE(present);
}

TEST(ZeroCameras, FindNothing) {
    const test_support::Simulator simulator("zero-cameras");
    EXPECT_STREQ(VmbSimScenarioName(), "zero-cameras");
    VmbStartup();
    setInt(kSystem, "GeVDiscoveryAllDuration", 1);
    run(kSystem, "GeVDiscoveryAllOnce");
    VmbUint32_t found = 99;
    EXPECT_EQ(VmbCamerasList(nullptr, 0, &found, 0), VmbErrorSuccess);
    EXPECT_EQ(found, 0u);
    VmbCameraInfo_t camera;
    EXPECT_EQ(VmbCamerasList(&camera, 1, &found, sizeof camera), VmbErrorSuccess);
    EXPECT_EQ(found, 0u);
    VmbShutdown();
}

}  // namespace
