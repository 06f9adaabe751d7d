/// A plug-in with one camera of small pictures, recorded in virtual time.
#pragma once

#include "full_run.h"
#include "plugin_fixture.h"

namespace test_support {

inline constexpr std::uint64_t kMillisecond = 1'000'000;
inline constexpr std::uint64_t kSecond = 1'000'000'000;

/// Recordings are shorter by this much in the presets that do not optimise, and under Wine, whose threads
/// take several times as long to hand work to each other.
inline constexpr std::uint64_t kShorterBy = kRunsFast ? 1 : 24;

/// What one delivered frame says of itself, and the time stamp that it was given.
struct StampedFrame {
    std::int64_t time = 0;
    VmbSimFrameStamp truth{};
};

/// Reads the stamp of a picture that is as the camera sent it; anything else fails the test.
inline StampedFrame readFrame(std::int64_t time, const void* data, std::uint64_t size) {
    StampedFrame frame{time};
    EXPECT_EQ(VmbSimReadStamp(data, size, &frame.truth), VmbErrorSuccess);
    return frame;
}

/// Keeps every frame, for short recordings.
class FrameSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t time, const void* data, std::uint64_t size) override {
        frames.push_back(readFrame(time, data, size));
    }
    std::vector<std::int64_t> times() const {
        std::vector<std::int64_t> found;
        for (const StampedFrame& frame : frames) found.push_back(frame.time);
        return found;
    }
    std::vector<std::uint64_t> ids() const {
        std::vector<std::uint64_t> found;
        for (const StampedFrame& frame : frames) found.push_back(frame.truth.frameId);
        return found;
    }
    std::vector<StampedFrame> frames;
};

/// The latest value of a counter.
class LatestCount final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t, const void* data, std::uint64_t size) override {
        ASSERT_EQ(size, sizeof value);
        std::memcpy(&value, data, sizeof value);
        ++samples;
    }
    std::uint64_t value = 0;
    std::uint64_t samples = 0;
};

/// Channels that count the frames of channel 0; those of the others follow.
inline constexpr std::uint32_t kSentFrames = 0x0001'0000;
inline constexpr std::uint32_t kReceivedFrames = 0x0002'0000;

/// The monochrome camera alone, as channel 0: pictures of 32 x 4, exposed for 200 microseconds. The way of a
/// frame is 2.3 ms, and so is its shortest period.
class LongRun : public PluginTest {
  protected:
    LongRun() : PluginTest("two-cameras", /*virtualTime=*/true) {
        VmbSimUnplugCamera(kColourCamera);
        wantFrameCounters(true);
        enumerate();
        set("FrameWidth", 32);
        set("FrameHeight", 4);
        set("CAMERA/Exposure", 200);
    }
    ~LongRun() override {
        if (plugin != nullptr) plugin->clearChannelSinks();
    }

    void set(const char* key, double value) {
        EXPECT_TRUE(channel(0)->setItem(key, config_items::ScalarConfigItem(value, ""))) << key;
    }
    void set(const char* key, const std::string& value) {
        EXPECT_TRUE(channel(0)->setItem(key, config_items::SingleValueConfigItem<std::string>(value))) << key;
    }
    void useTrigger(std::int64_t hertz) {
        aux().setSyncOutAuxFrequency(hertz, 1);
        set("CAMERA/TriggerMode", std::string("GIGE/TriggerModeAux"));
    }
    /// The camera's clock becomes this one before the first frame, but behind the reset of its counter.
    void startWith(const VmbSimOscillator& oscillator) {
        ASSERT_TRUE(plugin->prepareAcquisition());
        ASSERT_EQ(VmbSimSetOscillator(kMonochromeCamera, &oscillator), VmbErrorSuccess);
        ASSERT_TRUE(plugin->onAcquisitionPrepared());
        ASSERT_TRUE(plugin->startAcquisition());
    }
    /// Of the camera while it captures.
    static VmbHandle_t cameraHandle() {
        VmbHandle_t found = nullptr;
        VmbFrame_t* frame = nullptr;
        VmbFrameCallback callback = nullptr;
        EXPECT_EQ(VmbSimTakeQueuedFrame(kMonochromeCamera, &found, &frame, &callback), VmbErrorSuccess);
        EXPECT_EQ(VmbCaptureFrameQueue(found, frame, callback), VmbErrorSuccess);
        return found;
    }
    static void advance(std::uint64_t ns) { ASSERT_EQ(VmbSimAdvance(ns), VmbErrorSuccess); }
    static void advanceTo(std::uint64_t time) {
        ASSERT_GE(time, VmbSimTime());
        if (time > VmbSimTime()) advance(time - VmbSimTime());
    }
};

}  // namespace test_support
