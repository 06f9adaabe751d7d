// A channel's mutex, what it guards, and what must happen without it. What is guarded is seen by the thread
// sanitizer; what must not be guarded hangs, or is asked for by another thread meanwhile.
#include <future>

#include "four_cameras_fixture.h"
#include "latch.h"
#include "throwing_log.h"

namespace {

using config_keys::kCameraExposure;
using config_keys::kCameraGain;
using config_keys::kCameraGamma;
using config_keys::kFrameWidth;
using config_keys::kSampleRate;
using config_keys::kValid;
using test_support::atOnce;
using test_support::cameraId;
using test_support::FourCameras;
using test_support::kCameras;
using test_support::kPatienceMs;
using test_support::LogAction;
using test_support::RecordingSink;
using test_support::repeated;

using OneChannelAtOnce = FourCameras;

TEST_F(OneChannelAtOnce, ASettingIsReadWhileItIsSet) {
    atOnce({repeated(100, [&](int i) { setNumber(0, kCameraGain, i % 2); }),
            repeated(100, [&](int) { shown(0, kCameraGain); })});
    EXPECT_EQ(shown(0, kCameraGain), "1");
}

TEST_F(OneChannelAtOnce, TwoHostThreadsSetOneChannel) {
    atOnce({repeated(100, [&](int i) { setNumber(0, kCameraGain, i % 2); }),
            repeated(100, [&](int i) { setNumber(0, kFrameWidth, 320 + 8 * (i % 2)); })});
    EXPECT_EQ(shown(0, kCameraGain), "1");
    EXPECT_EQ(shown(0, kFrameWidth), "328 pixel");
}

TEST_F(OneChannelAtOnce, AnAutomaticFunctionIsRunOnceWhileSettingsAreRead) {
    atOnce({repeated(100,
                     [&](int) {
                         channels[0]->setItem(config_keys::kActionCameraAutoGain,
                                              config_items::SingleValueConfigItem<bool>(true));
                     }),
            repeated(100, [&](int) { shown(0, config_keys::kCameraGainAuto); })});
    EXPECT_EQ(shown(0, config_keys::kCameraGainAuto), "GIGE/AutoSettingOnce");
}

TEST_F(OneChannelAtOnce, ItIsCheckedWhileItIsSet) {
    atOnce({repeated(100, [&](int i) { setNumber(0, kFrameWidth, 320 + 8 * (i % 2)); }),
            repeated(100, [&](int) { EXPECT_TRUE(camera(0).checkSettings()); })});
}

TEST_F(OneChannelAtOnce, ItIsSwitchedOnAndOffWhileItIsSet) {
    atOnce({repeated(100, [&](int i) { setNumber(0, kFrameWidth, 320 + 8 * (i % 2)); }),
            repeated(100, [&](int i) { use(0, i % 2 != 0); })});
    EXPECT_EQ(shown(0, kValid), "1");
}

TEST_F(OneChannelAtOnce, ItIsPolledWhileItsSettingsAreMade) {
    EXPECT_TRUE(setText(0, config_keys::kCameraGainAuto, "GIGE/AutoSettingContinuous"));
    start();
    const auto polling = repeated(100, [&](int i) { camera(0).pollAutomaticValues(2.0 * (i + 1)); });
    // The camera's own lock may put a poll and a setter in order, but not two polls that are not due.
    atOnce({polling, polling, repeated(100, [&](int i) { setNumber(0, kCameraGain, i % 2); })});
    stop();
}

// A preparation that fails half-way, beside readers.
TEST_F(OneChannelAtOnce, SettingsAreReadWhileItsCaptureFails) {
    VmbSimFailCall("VmbCaptureStart", nullptr, -1, VmbErrorOther);
    atOnce({repeated(3, [&](int) { EXPECT_FALSE(plugin->prepareAcquisition()); }),
            repeated(200, [&](int) { shown(0, kValid); })});
    VmbSimClearFaults();
    EXPECT_EQ(shown(0, kValid), "0");
}

TEST_F(OneChannelAtOnce, ItsConstraintsAreReadWhileTheyChange) {
    atOnce({repeated(100, [&](int i) { setNumber(0, kFrameWidth, 320 + 8 * (i % 2)); }),
            repeated(100, [&](int) { channels[0]->getConstraints(config_keys::kFrameOffsetX); })});
}

TEST_F(OneChannelAtOnce, TheTriggerFrequencyIsReadWhileItIsTold) {
    useTrigger();
    auto& service = aux();
    atOnce({repeated(100, [&](int i) { service.setSyncOutAuxFrequency(i + 1, 2); }),
            repeated(100, [&](int) { shown(0, kSampleRate); })});
    EXPECT_EQ(shown(0, kSampleRate), "50 fps");
}

// Only stored, not validated: nothing else locks for it.
TEST_F(OneChannelAtOnce, AnUnusedChannelsTriggerFrequencyIsReadWhileItIsTold) {
    useTrigger();
    use(0, false);
    auto& service = aux();
    atOnce({repeated(100, [&](int i) { service.setSyncOutAuxFrequency(i + 1, 2); }),
            repeated(100, [&](int) { shown(0, kSampleRate); })});
    EXPECT_EQ(shown(0, kSampleRate), "50 fps");
}

TEST_F(OneChannelAtOnce, SettingsAreReadWhileItIsPrepared) {
    atOnce({repeated(3, [&](int) { EXPECT_TRUE(plugin->prepareAcquisition()); }),
            repeated(30, [&](int) { readAll(*channels[0]); })});
}

TEST_F(OneChannelAtOnce, SettingsAreMadeWhileItIsPrepared) {
    atOnce({repeated(3, [&](int) { EXPECT_TRUE(plugin->prepareAcquisition()); }), repeated(30, [&](int i) {
                setNumber(0, kCameraGain, i % 2);
                setNumber(0, kFrameWidth, 320 + 8 * (i % 2));
            })});
    EXPECT_EQ(shown(0, kCameraGain), "1");
}

TEST_F(OneChannelAtOnce, ItStartsAndStopsWhileItsSettingsAndTheTriggerFrequencyChange) {
    EXPECT_TRUE(setText(0, config_keys::kCameraTriggerMode, "GIGE/TriggerModeAux"));
    auto& service = aux();
    service.setSyncOutAuxFrequency(50, 1);
    EXPECT_TRUE(plugin->prepareAcquisition());
    atOnce({repeated(50,
                     [&](int) {
                         camera(0).startAcquisition();
                         camera(0).stopAcquisition();
                     }),
            repeated(50, [&](int i) { setNumber(0, kFrameWidth, 320 + 8 * (i % 2)); }),
            repeated(50, [&](int i) { service.setSyncOutAuxFrequency(i + 1, 2); })});
}

TEST_F(OneChannelAtOnce, ItsCaptureEndsWhileItIsSet) {
    EXPECT_TRUE(plugin->prepareAcquisition());
    atOnce({repeated(100, [&](int) { camera(0).stopCapture(); }),
            repeated(100, [&](int i) { setNumber(0, kFrameWidth, 320 + 8 * (i % 2)); })});
}

// The command that stops a camera is a write to it like any other.
TEST_F(OneChannelAtOnce, ASettingWaitsForTheCommandThatStopsTheCamera) {
    start();
    test_support::Latch isSetting(1);
    std::jthread setter;
    std::vector<std::string> order;
    api->hook = [&](const std::string& call) {
        if (call == "Gain") order.push_back(call);
        if (call != "AcquisitionStop" || setter.joinable()) return;
        setter = std::jthread([&] {
            isSetting.count_down();
            setNumber(0, kCameraGain, 1);
        });
        isSetting.wait();
        // As long as the setter would take to get to the camera.
        for (int i = 0; i < 20'000; ++i) std::this_thread::yield();
        order.push_back(call);
    };
    camera(0).stopAcquisition();
    setter.join();
    api->hook = [](const std::string&) {};
    EXPECT_EQ(order, (std::vector<std::string>{"AcquisitionStop", "Gain"}));
    stop();
}

TEST_F(OneChannelAtOnce, ASinkThatWasTakenAwayIsNotCalledAgain) {
    start();
    for (int i = 0; i < 30; ++i) {
        const auto sink = std::make_unique<RecordingSink>();
        plugin->setChannelSink(0, sink.get());
        ASSERT_TRUE(sink->waitFor(1));
        plugin->clearChannelSinks();
    }
    stop();
}

// From a change callback the host may use the channel as from anywhere.
TEST_F(OneChannelAtOnce, AHostThatIsToldOfAChangeReadsAndSets) {
    useTrigger();
    int told = 0;
    channels[0]->setChangeCallback([&](const std::string& key) {
        if (key != kValid) return;
        ++told;
        readAll(*channels[0]);
        EXPECT_TRUE(setNumber(0, kCameraGamma, 0.5 + 0.1 * (told % 2)));
    });
    EXPECT_TRUE(setNumber(0, kCameraExposure, 2000));
    EXPECT_EQ(told, 1);
    aux().setSyncOutAuxFrequency(25, 1);
    EXPECT_EQ(told, 2);
    use(0, false);
    EXPECT_EQ(told, 3);
    use(0, true);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(told, 5);
    channels[0]->setChangeCallback({});
}

TEST_F(OneChannelAtOnce, AHostThatGetsAMessageReadsAndSets) {
    int told = 0;
    messages(0).setMessageListener([&](const exception_manager::Exception&) {
        ++told;
        readAll(*channels[0]);
        EXPECT_TRUE(setNumber(0, kCameraGamma, 0.5 + 0.1 * (told % 2)));
    });
    EXPECT_FALSE(setNumber(0, kCameraGain, 1e9));
    EXPECT_EQ(told, 1);
    useTrigger();  // without a frequency
    EXPECT_EQ(told, 2);
    EXPECT_FALSE(plugin->prepareAcquisition());
    EXPECT_EQ(told, 3);
    messages(0).setMessageListener({});
}

TEST_F(OneChannelAtOnce, AHostThatHearsOfALostCameraReadsItsSettings) {
    std::atomic<int> told = 0;
    messages(0).setMessageListener([&](const exception_manager::Exception&) {
        readAll(*channels[0]);
        ++told;
    });
    VmbSimUnplugCamera(cameraId(0).c_str());
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    EXPECT_EQ(told, 1);
    messages(0).setMessageListener({});
}

// A call that may wait for a callback, which needs the channel's mutex.
TEST_F(OneChannelAtOnce, WaitingCallsOfTheCameraLayerLeaveTheChannelToOthers) {
    const std::set<std::string> waiting{"openCamera",       "closeCamera",     "registerCameraCallback",
                                        "startCapture",     "endCapture",      "unregisterCameraCallback",
                                        "AcquisitionStart", "AcquisitionAbort"};
    std::set<std::string> seen;
    std::vector<std::jthread> readers;  // one that must wait does so until the call has returned
    api->hook = [&](const std::string& call) {
        if (waiting.count(call) == 0 || !seen.insert(call).second) return;
        auto read = std::make_shared<std::promise<void>>();
        auto isRead = read->get_future();
        readers.emplace_back([this, read] {
            shown(0, kCameraGain);
            read->set_value();
        });
        EXPECT_EQ(isRead.wait_for(std::chrono::seconds(10)), std::future_status::ready) << call;
    };
    for (std::uint32_t id = 1; id < kCameras; ++id) use(id, false);
    EXPECT_TRUE(plugin->prepareAcquisition());
    start();
    VmbSimUnplugCamera(cameraId(0).c_str());
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    VmbSimPlugCamera(cameraId(0).c_str());
    EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(seen, waiting);
    // Ahead of its configuration, since it could not be stopped.
    plugin->onAcquisitionPrepared();
    EXPECT_TRUE(plugin->startAcquisition());
    VmbSimFailCall("VmbFeatureCommandRun", "AcquisitionStop", 1, VmbErrorOther);
    EXPECT_THROW(plugin->stopAcquisition(), zelt_gige_api::CameraApiError);
    plugin->onAcquisitionFinished();
    seen.erase("AcquisitionAbort");
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_EQ(seen.count("AcquisitionAbort"), 1u);
    api->hook = [](const std::string&) {};
}

// The frame is handed to the library's thread while the host is in the middle of ending capture.
TEST_F(OneChannelAtOnce, AFrameArrivesWhileCaptureEnds) {
    start();
    ASSERT_EQ(VmbSimWaitForFrames(cameraId(0).c_str(), 1, kPatienceMs), VmbErrorSuccess);
    VmbError_t arrived = VmbErrorOther;
    {
        const LogAction stopping("stopping...",
                                 [&] { arrived = VmbSimWaitForFrames(cameraId(0).c_str(), 50, 2'000); });
        camera(0).stopCapture();
    }
    EXPECT_EQ(arrived, VmbErrorSuccess);
    stop();
}

TEST_F(OneChannelAtOnce, ItIsStoppedWhileItsCameraVanishesAndComesBack) {
    for (int i = 0; i < 5; ++i) {
        plugin->prepareAcquisition();
        plugin->onAcquisitionPrepared();
        plugin->startAcquisition();
        atOnce({[&] {
                    VmbSimUnplugCamera(cameraId(0).c_str());
                    VmbSimPlugCamera(cameraId(0).c_str());
                },
                [&] {
                    try {
                        plugin->stopAcquisition();
                    } catch (const zelt_gige_api::CameraApiError&) {
                        // The camera was away.
                    }
                }});
        EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
        plugin->onAcquisitionFinished();
    }
    start();
    ASSERT_EQ(VmbSimWaitForFrames(cameraId(0).c_str(), 1, kPatienceMs), VmbErrorSuccess);
    stop();
}

}  // namespace
