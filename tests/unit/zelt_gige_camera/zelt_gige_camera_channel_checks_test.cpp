// What is checked of a channel's settings, when, and how the host hears of it; the automatic values' poll.
#include "settings_fixture.h"
#include "zelt_gige_camera_plugin.h"
#include "zelt_gige_vmb_api.h"

namespace {

using test_support::asText;
using test_support::call;
using test_support::Changes;
using test_support::hostCalls;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::PluginTest;
using test_support::quoted;
using test_support::realGet;
using test_support::select;
using test_support::Settings;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kExposureTooLong = "Camera exposure is too long for selected frame rate";

TEST_F(Settings, ThatExceedALimitAreTakenAndTheHostIsTold) {
    open();
    const LogCapture log(UniLogSeverityLevel::Error);
    const Changes changes(channel(0));
    EXPECT_TRUE(setNumber("CAMERA/Exposure", 30000));
    EXPECT_EQ(text(0, "CAMERA/Exposure"), "30000");
    EXPECT_EQ(text(0, "Valid"), "0");
    EXPECT_EQ(lastMessage(0), kExposureTooLong);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre(kExposureTooLong));
    EXPECT_THAT(changes.keys, ElementsAre("Valid"));
    EXPECT_TRUE(setNumber("CAMERA/Exposure", 5000));
    EXPECT_EQ(text(0, "Valid"), "1");
    // The latest message stays until there is another.
    EXPECT_EQ(lastMessage(0), kExposureTooLong);
}

TEST_F(Settings, ThatExceedALimitDoNotKeepTheCameraFromRecording) {
    open();
    EXPECT_TRUE(setText("CAMERA/TriggerMode", "GIGE/TriggerModeAux"));
    aux().setSyncOutAuxFrequency(50, 1);
    EXPECT_TRUE(setNumber("CAMERA/Exposure", 30000));
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(text(0, "Valid"), "0");
    plugin->onAcquisitionPrepared();
    EXPECT_TRUE(plugin->startAcquisition());
    stop();
}

TEST_F(Settings, AreComparedWithWhatTheModelCanDoAtItsHeight) {
    open();
    EXPECT_TRUE(setNumber("CAMERA/Exposure", 1000));
    EXPECT_TRUE(setText("CAMERA/TriggerMode", "GIGE/TriggerModeAux"));
    // 1 / (492 x 22.49 us + 198.4 us): 88.8 Hz.
    aux().setSyncOutAuxFrequency(88, 1);
    EXPECT_EQ(text(0, "Valid"), "1");
    aux().setSyncOutAuxFrequency(89, 1);
    EXPECT_EQ(lastMessage(0), "Sync Out AUX frequency is too fast for the camera");
    EXPECT_EQ(text(0, "Valid"), "0");
    // 1 / (92 x 1.51 us + 400 x 22.49 us + 198.4 us): 107.1 Hz.
    EXPECT_TRUE(setNumber("FrameHeight", 400));
    EXPECT_EQ(text(0, "Valid"), "1");
}

TEST_F(Settings, AreSaidToBeWrongOnceInOneOperation) {
    open();
    EXPECT_TRUE(setText("CAMERA/TriggerMode", "GIGE/TriggerModeAux"));
    aux().setSyncOutAuxFrequency(50, 1);
    EXPECT_TRUE(setNumber("CAMERA/Exposure", 30000));
    int heard = 0;
    messages(0).setMessageListener([&](const exception_manager::Exception&) { ++heard; });
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(heard, 1);
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("Camera exposure is too long for external frame trigger rate"));
    EXPECT_TRUE(setNumber("FrameHeight", 400));
    EXPECT_EQ(heard, 2);
    messages(0).setMessageListener({});
}

TEST_F(Settings, OfAChannelThatIsNotUsedAreAlwaysValid) {
    open();
    EXPECT_TRUE(setNumber("CAMERA/Exposure", 30000));
    ASSERT_EQ(text(0, "Valid"), "0");
    const Changes changes(channel(0));
    use(0, false);
    EXPECT_EQ(text(0, "Valid"), "1");
    EXPECT_THAT(changes.keys, ElementsAre("Valid"));
    use(0, true);
    EXPECT_EQ(text(0, "Valid"), "0");
}

TEST_F(Settings, AreCheckedWhenTheHostAsks) {
    VmbSimPlugCamera(kMonochromeCamera);
    open();
    EXPECT_TRUE(plugin->checkChannelSettings({}, false));
    EXPECT_TRUE(plugin->checkChannelSettings({0, 1}, true));
    EXPECT_TRUE(setNumber("CAMERA/Exposure", 30000));
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_FALSE(plugin->checkChannelSettings({0, 1}, false));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre(kExposureTooLong));
    EXPECT_TRUE(plugin->checkChannelSettings({1}, false));
    EXPECT_FALSE(plugin->checkChannelSettings({1, 7}, false));
    plugin->terminate();
    EXPECT_FALSE(plugin->checkChannelSettings({}, false));
}

TEST_F(Settings, AreCheckedOfEveryChannelAlsoBehindOneThatIsWrong) {
    VmbSimPlugCamera(kMonochromeCamera);
    open();
    EXPECT_TRUE(setNumber("CAMERA/Exposure", 30000));
    EXPECT_TRUE(channel(1)->setItem("CAMERA/Exposure", config_items::ScalarConfigItem(30000, "")));
    const LogCapture log(UniLogSeverityLevel::Error);
    EXPECT_FALSE(plugin->checkChannelSettings({7, 0, 1}, true));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre(kExposureTooLong, kExposureTooLong));
}

class ManyCameras : public PluginTest {
  protected:
    ManyCameras() : PluginTest("sixteen-cameras") {}
    void setExposure(std::uint32_t id, double value) {
        EXPECT_TRUE(channel(id)->setItem("CAMERA/Exposure", config_items::ScalarConfigItem(value, "")));
    }
};

TEST_F(ManyCameras, MustFitTheLinkTogether) {
    enumerate();
    for (std::uint32_t id = 3; id < 16; ++id) use(id, false);
    // 640 x 480 bytes at 100 Hz: three need 92,160,000 bytes per second, four 122,880,000.
    setExposure(0, 1000);
    EXPECT_EQ(text(0, "Valid"), "1");
    setExposure(3, 1000);
    EXPECT_EQ(lastMessage(3), "");
    use(3, true);
    EXPECT_EQ(lastMessage(3), "Available network bandwidth not sufficient for current camera settings");
    setExposure(0, 1000);
    EXPECT_EQ(text(0, "Valid"), "0");
    use(3, false);
    setExposure(0, 1000);
    EXPECT_EQ(text(0, "Valid"), "1");
}

class TestWallClock final : public platform::WallClock {
  public:
    double now() noexcept override { return time; }
    double time = 1000.0;
};

class Polled : public Settings {
  protected:
    Polled() {
        destroy();
        auto api = std::make_shared<zelt_gige_api::VimbaCameraApi>();
        api->startup();
        plugin = new zelt_gige_camera::CameraPlugin(0, api, wallClock);
        plugin->setSharedAcquisitionObject(clock);
    }
    /// The vendor calls of one poll.
    std::string poll() {
        VmbSimJournalStart();
        EXPECT_TRUE(plugin->processAcquisition());
        return calls();
    }
    void automatic(const char* key) { ASSERT_TRUE(setText(key, "GIGE/AutoSettingContinuous")); }

    TestWallClock wallClock;
};

TEST_F(Polled, EveryAutomaticValueIsReadMoreThanASecondAfterTheLastTime) {
    open();
    automatic("CAMERA/GainAuto");
    automatic("CAMERA/ExposureAuto");
    automatic("CAMERA/WhitebalanceAuto");
    start();
    const std::string all = asText({realGet("Gain"), realGet("ExposureTimeAbs"), select("Red"),
                                    realGet("BalanceRatioAbs"), select("Blue"), realGet("BalanceRatioAbs")});
    EXPECT_EQ(poll(), all);
    wallClock.time += 1.0;
    EXPECT_EQ(poll(), "");
    wallClock.time += 0.001;
    EXPECT_EQ(poll(), all);
    // Set back: waits anew from there.
    wallClock.time -= 3600;
    EXPECT_EQ(poll(), "");
    wallClock.time += 1.5;
    EXPECT_EQ(poll(), all);
    stop();
    wallClock.time += 10;
    EXPECT_EQ(poll(), "");
}

TEST_F(Polled, AHostThatDoesNotTakeTheNewsIsAskedToTheNextTime) {
    open();
    automatic("CAMERA/GainAuto");
    start();
    int told = 0;
    channel(0)->setChangeCallback([&](const std::string&) {
        ++told;
        throw std::runtime_error("the host failed");
    });
    for (const char* gain : {"5", "7"}) {
        VmbSimForceFeature(kColourCamera, "Gain", gain);
        wallClock.time += 2;
        poll();
    }
    EXPECT_EQ(told, 2);
    EXPECT_EQ(text(0, "CAMERA/Gain"), "7");
    channel(0)->setChangeCallback({});
}

TEST_F(Polled, NothingIsReadBeforeTheStart) {
    open();
    automatic("CAMERA/GainAuto");
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(plugin->onAcquisitionPrepared());
    EXPECT_EQ(poll(), "");
    EXPECT_TRUE(plugin->startAcquisition());
    EXPECT_EQ(poll(), asText({realGet("Gain")}));
    stop();
}

TEST_F(Polled, OnlyWhatIsAutomaticIsRead) {
    open();
    automatic("CAMERA/GainAuto");
    start();
    EXPECT_EQ(poll(), asText({realGet("Gain")}));
    stop();
}

TEST_F(Polled, WhatTheCameraChangedIsTakenOverAndTold) {
    open();
    automatic("CAMERA/GainAuto");
    automatic("CAMERA/WhitebalanceAuto");
    start();
    poll();
    Changes changes(channel(0));
    VmbSimForceFeature(kColourCamera, "Gain", "12");
    wallClock.time += 2;
    poll();
    EXPECT_EQ(text(0, "CAMERA/Gain"), "12");
    EXPECT_THAT(changes.keys, ::testing::Contains("CAMERA/Gain"));
    stop();
}

TEST_F(Polled, AnExposureThatTheCameraChangedIsCheckedAnew) {
    open();
    ASSERT_TRUE(setNumber("CAMERA/Exposure", 5000));
    ASSERT_TRUE(setText("CAMERA/ExposureAuto", "GIGE/AutoSettingOnce"));
    start();
    poll();
    Changes changes(channel(0));
    VmbSimForceFeature(kColourCamera, "ExposureTimeAbs", "30000");
    wallClock.time += 2;
    poll();
    EXPECT_EQ(text(0, "CAMERA/Exposure"), "30000");
    EXPECT_EQ(lastMessage(0), kExposureTooLong);
    EXPECT_THAT(changes.keys, ElementsAre("CAMERA/Exposure", "Valid"));
    stop();
}

TEST_F(Polled, AValueThatCannotBeReadIsLeftOut) {
    open();
    automatic("CAMERA/GainAuto");
    automatic("CAMERA/WhitebalanceAuto");
    start();
    VmbSimFailCall("VmbFeatureFloatGet", "Gain", 1, VmbErrorTimeout);
    EXPECT_EQ(poll(), asText({realGet("Gain"), select("Red"), realGet("BalanceRatioAbs"), select("Blue"),
                              realGet("BalanceRatioAbs")}));
    EXPECT_EQ(lastMessage(0), "");
    stop();
}

TEST_F(Polled, ACameraThatIsGoneIsNotAsked) {
    open();
    automatic("CAMERA/GainAuto");
    start();
    VmbSimUnplugCamera(kColourCamera);
    VmbSimWaitForEvents(kPatienceMs);
    EXPECT_EQ(poll(), "");
    EXPECT_ANY_THROW(plugin->stopAcquisition());
    plugin->onAcquisitionFinished();
}

}  // namespace
