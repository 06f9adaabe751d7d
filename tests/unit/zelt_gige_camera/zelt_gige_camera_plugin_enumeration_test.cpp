// Numbers of channels, and cameras that come and go while others are opened.
#include <boost/algorithm/string/case_conv.hpp>

#include "four_cameras_fixture.h"

namespace {

using test_support::cameraId;
using test_support::HookedCameraApi;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::PluginTest;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt_gige_camera::CameraPlugin;

constexpr const char* kGone = "Camera %1 is no longer connected";
constexpr std::uint32_t kNoChannel = ~std::uint32_t{0};

TEST_F(PluginTest, NumbersTheFirstCamerasFromZero) {
    const LogCapture log(UniLogSeverityLevel::Detail);
    enumerate();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Detail), Contains("Enumerating available GigE devices"));
    EXPECT_EQ(text(0, config_keys::kShortId), kColourCamera);
    EXPECT_EQ(text(1, config_keys::kShortId), kMonochromeCamera);
    EXPECT_TRUE(plugin->isReadyForAcquisition());
}

TEST_F(PluginTest, KeepsTheChannelsOfCamerasThatStay) {
    enumerate();
    const auto before = plugin->getChannel(0);
    plugin->enumerateDevices();
    EXPECT_EQ(plugin->getChannel(0), before);
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
}

TEST_F(PluginTest, FindsChannelsByCameraId) {
    enumerate();
    EXPECT_EQ(plugin->findChannelId(kColourCamera), 0u);
    EXPECT_EQ(plugin->findChannelId(kMonochromeCamera), 1u);
    EXPECT_EQ(plugin->findChannelId("dev_000f31a10001"), kNoChannel);
    EXPECT_EQ(plugin->findChannelId(""), kNoChannel);
}

TEST_F(PluginTest, LeavesOutACameraWithoutAnId) {
    plugin->initialize();
    // The list is said to have grown between the two questions, and nothing of it fits.
    VmbSimFailCall("VmbCamerasList", nullptr, 2, VmbErrorMoreData);
    const LogCapture log(UniLogSeverityLevel::Warning);
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), IsEmpty());
    const std::string told = "A camera without an id is left out, model '', serial number ''";
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning), ElementsAre(told, told));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), IsEmpty());
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
}

TEST_F(PluginTest, DropsAVanishedCameraAtTheNextEnumerationNotBefore) {
    enumerate();
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(1u));
}

TEST_F(PluginTest, NumbersOnFromTheLargestIdThereWasBeforeTheRemoval) {
    enumerate();
    VmbSimUnplugCamera(kMonochromeCamera);
    VmbSimWaitForEvents(kPatienceMs);
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u));
    VmbSimPlugCamera(kMonochromeCamera);
    VmbSimWaitForEvents(kPatienceMs);
    plugin->enumerateDevices();
    // 1 was the largest id when it was dropped, so it is free again.
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    plugin->enumerateDevices();
    VmbSimPlugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(1u, 2u));
}

TEST_F(PluginTest, PassesOnThatTheCamerasCannotBeListedBeforeAnythingChanged) {
    enumerate();
    VmbSimFailCall("VmbCamerasList", nullptr, 1, VmbErrorOther);
    EXPECT_THROW(plugin->enumerateDevices(), zelt_gige_api::CameraApiError);
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
}

TEST_F(PluginTest, RefusesAFrameCounterSettingOfAnotherKindAfterTheRemovals) {
    enumerate();
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    plugin->getPluginConfig()->setItem("FrameCounterChannels",
                                       config_items::SingleValueConfigItem<std::string>("yes"));
    EXPECT_THROW(plugin->enumerateDevices(), boost::bad_get);
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(1u));
}

TEST_F(PluginTest, AddsWhatAFailedEnumerationLeftOutAlthoughTheListIsTheSame) {
    VmbSimUnplugCamera(kMonochromeCamera);
    enumerate();
    ASSERT_THAT(plugin->getChannelIds(), ElementsAre(0u));
    VmbSimPlugCamera(kMonochromeCamera);
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    plugin->getPluginConfig()->setItem("FrameCounterChannels",
                                       config_items::SingleValueConfigItem<std::string>("yes"));
    EXPECT_THROW(plugin->enumerateDevices(), boost::bad_get);
    wantFrameCounters(false);
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
}

TEST_F(PluginTest, RefusesAFrameCounterSettingOfAnotherKindAlsoWithoutANewCamera) {
    enumerate();
    plugin->enumerateDevices();
    plugin->getPluginConfig()->setItem("FrameCounterChannels",
                                       config_items::SingleValueConfigItem<std::string>("yes"));
    EXPECT_THROW(plugin->enumerateDevices(), boost::bad_get);
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
}

class SomeOfSixteenCameras : public PluginTest {
  protected:
    SomeOfSixteenCameras() : PluginTest("sixteen-cameras") {
        for (unsigned number = 2; number < 16; ++number) VmbSimUnplugCamera(cameraId(number).c_str());
    }
    static void waitForEvents() { EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess); }
};

TEST_F(SomeOfSixteenCameras, ANewOneIsNumberedAfterTheLargestThatWasThereBeforeItCame) {
    enumerate();
    ASSERT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
    // In one enumeration the second goes and a third comes.
    VmbSimUnplugCamera(cameraId(1).c_str());
    VmbSimPlugCamera(cameraId(2).c_str());
    waitForEvents();
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 2u));
    EXPECT_EQ(plugin->findChannelId(cameraId(2)), 2u);
    // By the next one the number 2 is free again.
    VmbSimUnplugCamera(cameraId(2).c_str());
    waitForEvents();
    plugin->enumerateDevices();
    VmbSimPlugCamera(cameraId(1).c_str());
    waitForEvents();
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u, 1u));
}

TEST_F(PluginTest, IsReadyAlthoughACameraIsAway) {
    enumerate();
    VmbSimUnplugCamera(kColourCamera);
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    EXPECT_TRUE(plugin->isReadyForAcquisition());
}

TEST_F(PluginTest, ClosesACameraThatVanishedAlsoWhenItsChannelIsHeld) {
    enumerate();
    const auto held = channel(0);
    VmbSimUnplugCamera(kColourCamera);
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    VmbSimJournalStart();
    plugin->enumerateDevices();
    EXPECT_THAT(test_support::hostCalls(), Contains(std::string("VmbCameraClose(") + kColourCamera + ")"));
}

TEST_F(PluginTest, TakesAnIdInOtherLettersForAnotherCamera) {
    enumerate();
    const LogCapture log(UniLogSeverityLevel::Info);
    EXPECT_EQ(VmbSimRaiseDiscoveryEvent("Missing", "dev_000f31a10001"), VmbErrorSuccess);
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Info),
                ElementsAre("GigE-Camera 'dev_000f31a10001' was removed"));
    EXPECT_EQ(lastMessage(0), "");
}

TEST_F(PluginTest, PreparesTheSecondCameraAlthoughTheFirstAnswersNo) {
    enumerate();
    VmbSimFailCall("VmbFeatureEnumSet", "AcquisitionMode", 1, VmbErrorOther);
    VmbSimJournalStart();
    EXPECT_FALSE(plugin->prepareAcquisition());
    const auto calls = test_support::hostCalls();
    EXPECT_THAT(calls, Contains(std::string("VmbCaptureStart(") + kMonochromeCamera + ")"));
    EXPECT_THAT(calls, ::testing::Not(Contains(std::string("VmbCaptureStart(") + kColourCamera + ")")));
}

TEST_F(PluginTest, PassesOnTheFirstOfTwoFailures) {
    VmbSimTakeControl(kColourCamera, true);
    VmbSimTakeControl(kMonochromeCamera, true);
    enumerate();
    VmbSimFailCall("VmbCameraOpen", kColourCamera, 1, VmbErrorTimeout);
    try {
        plugin->prepareAcquisition();
        FAIL();
    } catch (const exception_manager::Exception& error) {
        EXPECT_EQ(exception_manager::fillPlaceholders(error),
                  "Cannot open camera 'Manta_G-033C (50-0503300001)': Could not open camera: "
                  "Timeout during wait");
    }
    EXPECT_EQ(lastMessage(1),
              "Cannot open camera 'Manta_G-032B (50-0503200002)': Could not open camera: "
              "Operation is invalid with the current access mode");
}

TEST_F(PluginTest, KnowsTheTriggerFrequency) {
    auto& camera = dynamic_cast<CameraPlugin&>(*plugin);
    EXPECT_FALSE(camera.getSyncOutAuxFrequency());
    aux().setSyncOutAuxFrequency(60, 40);
    ASSERT_TRUE(camera.getSyncOutAuxFrequency());
    EXPECT_EQ(camera.getSyncOutAuxFrequency()->numerator(), 3);
    EXPECT_EQ(camera.getSyncOutAuxFrequency()->denominator(), 2);
}

TEST_F(PluginTest, IsNotAcquiringAfterATerminationInTheMiddle) {
    enumerate();
    start();
    plugin->terminate();
    EXPECT_FALSE(plugin->isAcquiring());
}

TEST(PluginWithoutACameraApi, EnumeratesNothing) {
    CameraPlugin plugin(0, nullptr);
    const LogCapture log(UniLogSeverityLevel::Detail);
    plugin.enumerateDevices();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Detail), ElementsAre("Enumerating available GigE devices"));
    EXPECT_THAT(plugin.getChannelIds(), IsEmpty());
}

/// Lists the cameras under ids in small letters from the second time on.
class ShrinkingIds final : public test_support::ForwardingCameraApi {
  public:
    using ForwardingCameraApi::ForwardingCameraApi;
    std::vector<zelt_gige_api::CameraInfo> listCameras() override {
        auto cameras = ForwardingCameraApi::listCameras();
        if (m_listed++ > 0) {
            for (auto& camera : cameras) boost::algorithm::to_lower(camera.cameraId);
        }
        return cameras;
    }

  private:
    int m_listed = 0;
};

TEST_F(PluginTest, TakesACameraListedInOtherLettersForANewOne) {
    destroy();
    const auto api = std::make_shared<ShrinkingIds>(std::make_shared<zelt_gige_api::VimbaCameraApi>());
    api->startup();
    plugin = new CameraPlugin(0, api);
    enumerate();
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(2u, 3u));
}

/// The test does something whenever a camera is about to be opened.
class OpeningCameras : public PluginTest {
  protected:
    OpeningCameras() {
        destroy();
        api->startup();
        plugin = new CameraPlugin(0, api);
    }
    ~OpeningCameras() override { destroy(); }
    /// `action` ahead of the nth opening.
    void atOpening(int nth, std::function<void()> action) {
        api->hook = [this, nth, action = std::move(action)](const std::string& call) {
            if (call == "openCamera" && ++m_openings == nth) action();
        };
    }
    static void raise(const char* event, const char* camera) {
        EXPECT_EQ(VmbSimRaiseDiscoveryEvent(event, camera), VmbErrorSuccess);
        EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    }
    static std::size_t timesGone(const LogCapture& log) {
        const auto lines = log.texts(UniLogSeverityLevel::Error);
        return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), kGone));
    }

    const std::shared_ptr<HookedCameraApi> api =
        std::make_shared<HookedCameraApi>(std::make_shared<zelt_gige_api::VimbaCameraApi>());

  private:
    int m_openings = 0;
};

TEST_F(OpeningCameras, OneThatWasAwayBeforeItIsOpenedIsNotGone) {
    atOpening(1, [] {
        raise("Missing", kMonochromeCamera);
        raise("Detected", kMonochromeCamera);
    });
    const LogCapture log(UniLogSeverityLevel::Error);
    enumerate();
    EXPECT_EQ(timesGone(log), 0u);
    EXPECT_EQ(lastMessage(1), "");
}

TEST_F(OpeningCameras, OneThatGoesWhileItIsOpenedIsSaidToBeGoneOnce) {
    atOpening(2, [] { raise("Missing", kMonochromeCamera); });
    const LogCapture log(UniLogSeverityLevel::Error);
    enumerate();
    EXPECT_EQ(timesGone(log), 1u);
    EXPECT_EQ(lastMessage(1), "Camera Manta_G-032B (50-0503200002) is no longer connected");
    EXPECT_EQ(lastMessage(0), "");
}

TEST_F(OpeningCameras, OneThatGoesWhileAnotherIsOpenedIsSaidToBeGoneOnce) {
    atOpening(2, [] { raise("Missing", kColourCamera); });
    const LogCapture log(UniLogSeverityLevel::Error);
    enumerate();
    EXPECT_EQ(timesGone(log), 1u);
    EXPECT_EQ(lastMessage(0), "Camera Manta_G-033C (50-0503300001) is no longer connected");
}

}  // namespace
