/// The plug-in on the stand-in for the vendor's library, as a host drives it, and frames for it.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "if_channel_sink.h"
#include "if_master_clock.h"
#include "pages.h"
#include "vendor_stand_in.h"
#include "zelt_gige_camera_plugin.h"

namespace bench {

inline constexpr std::uint64_t kTicksPerSecond = 1'000'000'000;
inline constexpr std::int64_t kFramesPerSecond = 100;
inline constexpr std::uint64_t kTicksPerFrame = kTicksPerSecond / kFramesPerSecond;

enum class Mode { FixedRate, Aux };

/// The host's clock goes with the camera's: it reads what the delivering thread has set last.
class FrameClock final : public zelt::IfMasterClock {
  public:
    static void set(std::uint64_t now) { t_now = now; }
    double getRate() override { return static_cast<double>(kTicksPerSecond); }
    std::uint64_t getTime() override { return t_now; }

  private:
    static thread_local std::uint64_t t_now;
};

/// Counts samples and keeps the last time; looks at no byte of them.
class alignas(vendor::kApart) CountingSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t time, const void*, std::uint64_t) override {
        ++count;
        lastTime = time;
    }
    std::uint64_t count = 0;
    std::int64_t lastTime = 0;
};

/// The frames of one camera, `kFramesPerSecond` of them, numbered and dated without a gap.
class alignas(vendor::kApart) FrameSource {
  public:
    explicit FrameSource(unsigned camera) : m_camera(camera) {}

    /// The next frame, delivered on this thread. False when it found no buffer.
    bool deliver() { return vendor::deliver(m_camera, next()); }
    /// What the next frame is; also sets the host's clock to a while after it.
    vendor::Delivery next() {
        m_frame.frameId += 1;
        m_frame.ticks += kTicksPerFrame;
        FrameClock::set(m_frame.ticks + kWayTicks);
        return m_frame;
    }
    unsigned camera() const { return m_camera; }

  private:
    static constexpr std::uint64_t kWayTicks = 20'000'000;

    unsigned m_camera;
    vendor::Delivery m_frame;
};

/// A plug-in that acquires from the first cameras of the stand-in until this object goes.
class PluginOnStandIn {
  public:
    struct Options {
        unsigned cameras = 1;
        Mode mode = Mode::FixedRate;
        bool acquiring = true;
        platform::PageAllocator* pages = &platform::systemPages();
    };
    explicit PluginOnStandIn(const Options& options);
    ~PluginOnStandIn();
    PluginOnStandIn(const PluginOnStandIn&) = delete;
    PluginOnStandIn& operator=(const PluginOnStandIn&) = delete;

    zelt_gige_camera::CameraPlugin& plugin() { return *m_plugin; }
    CountingSink& sink(unsigned camera) { return m_sinks.at(camera); }
    FrameSource& frames(unsigned camera) { return m_frames.at(camera); }
    /// Delivers that many frames of a camera; false when one found no buffer or did not reach its sink.
    bool deliver(unsigned camera, std::uint64_t frames);

  private:
    void useAux();
    void start();

    const Options m_options;
    std::unique_ptr<zelt_gige_camera::CameraPlugin> m_plugin;
    std::vector<CountingSink> m_sinks;
    std::vector<FrameSource> m_frames;
};

/// A camera whose callback only queues its frame again: what the vendor's library costs by itself.
class BareCamera {
  public:
    /// `camera`: one that no plug-in uses.
    explicit BareCamera(unsigned camera);
    ~BareCamera();
    BareCamera(const BareCamera&) = delete;
    BareCamera& operator=(const BareCamera&) = delete;

    FrameSource& frames() { return m_frames; }

  private:
    VmbHandle_t m_handle = nullptr;
    std::vector<VmbFrame_t> m_buffers;
    FrameSource m_frames;
};

}  // namespace bench
