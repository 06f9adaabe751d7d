// Frames and settings of one camera: who waits for whom, and when a frame looks at the clock.
#include <functional>
#include <thread>

#include "config_item_variant.h"
#include "config_items.h"
#include "config_keys.h"
#include "feature_fixture.h"
#include "latch.h"
#include "zelt_gige_camera_channel.h"

namespace {

using ::testing::ElementsAre;
using zelt_gige_camera::AuxFrequency;

class LonelyChannel final : public zelt_gige_camera::IfChannelOwner {
  public:
    std::uint64_t getTotalRequiredBandwidth() const override { return 0; }
    void deliverAuxFrequency(const std::function<void(const AuxFrequency&)>& store) const override {
        store(std::nullopt);
    }
};

/// A camera that can be started, and tells when its gain is written.
class GainCamera final : public test_support::FakeCameraApi {
  public:
    std::function<void()> onGain = [] {};

    void setFloatFeature(Handle handle, const char* name, double value) override {
        if (std::string_view(name) == "Gain") onGain();
        FakeCameraApi::setFloatFeature(handle, name, value);
    }
    Handle openCamera(const std::string&) override { return 7; }
    void closeCamera(Handle) override {}
    void registerCameraCallback(Handle, zelt_gige_api::IfCameraCallback*) override {}
    void unregisterCameraCallback(Handle) override {}
    void startCapture(Handle, unsigned) override {}
    void endCapture(Handle) override {}
    void runCommand(Handle, const char*) override {}
    void setBoolFeature(Handle, const char*, bool) override {}
};

class TickingCounter final : public platform::PerformanceCounter {
  public:
    std::function<void()> onReading = [] {};

    std::int64_t frequency() noexcept override { return 1'000'000; }
    std::int64_t now() noexcept override {
        onReading();
        return ++m_reading;
    }

  private:
    std::int64_t m_reading = 0;
};

class TellingClock final : public zelt::IfMasterClock {
  public:
    std::function<void()> onReading = [] {};

    double getRate() override { return 1e9; }
    std::uint64_t getTime() override {
        onReading();
        return m_time += 1'000'000;
    }

  private:
    std::uint64_t m_time = 1'000'000'000;
};

class ChannelTurns : public ::testing::Test {
  protected:
    ChannelTurns() {
        test_support::addEveryFeature(*camera);
        for (const char* name : {"AcquisitionMode", "BandwidthControlMode", "TriggerSelector"}) {
            camera->text(name, zelt_gige_api::FeatureType::Enum, "");
        }
        channel = std::make_unique<zelt_gige_camera::CameraChannel>(
            channel_config::ChannelID{0, 0}, zelt_gige_api::CameraInfo{}, std::make_shared<LonelyChannel>(),
            camera, 0, counter);
        channel->setMasterClock(clock);
        EXPECT_TRUE(channel->prepareAndStartCapture());
        channel->startAcquisition();
    }
    void receive() {
        zelt_gige_api::CameraFrame frame;
        frame.frameid = ++m_frames;
        frame.timestamp = m_frames * 1'000'000;
        channel->onFrameReceived(7, frame);
    }
    void setGain(double gain) {
        EXPECT_TRUE(channel->setItem(config_keys::kCameraGain, config_items::ScalarConfigItem(gain, "")));
    }

    const std::shared_ptr<GainCamera> camera = std::make_shared<GainCamera>();
    const std::shared_ptr<TellingClock> clock = std::make_shared<TellingClock>();
    TickingCounter counter;
    std::unique_ptr<zelt_gige_camera::CameraChannel> channel;

  private:
    std::uint64_t m_frames = 0;
};

TEST_F(ChannelTurns, AFrameThatWaitsComesBeforeTheNextSetting) {
    std::vector<std::string> events;  // all with the channel's mutex held
    test_support::Latch waiting(1);
    counter.onReading = [&] { waiting.count_down(); };
    clock->onReading = [&] { events.emplace_back("frame"); };
    std::jthread frameThread;
    camera->onGain = [&] {
        events.emplace_back("setting");
        if (frameThread.joinable()) return;
        frameThread = std::jthread([&] { receive(); });
        waiting.wait();
    };
    setGain(1);
    setGain(2);
    frameThread.join();
    EXPECT_THAT(events, ElementsAre("setting", "frame", "setting"));
}

TEST_F(ChannelTurns, AFrameThatNeitherWaitsNorSynchronizesReadsNoClock) {
    for (int frame = 0; frame < 20; ++frame) receive();
    int readings = 0;
    counter.onReading = [&] { ++readings; };
    clock->onReading = [&] { ++readings; };
    receive();
    EXPECT_EQ(readings, 0);
}

}  // namespace
