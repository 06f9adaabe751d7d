/// The two channels that count a camera's frames.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "zelt_gige_camera_channel_settings.h"
#include "zeltpu_event_counter_channel.h"

namespace zelt_gige_camera {

/// A channel below a camera's.
struct SubChannel {
    std::uint32_t id = 0;  ///< local; the camera's stands in the low 16 bits
    std::string key;       ///< persistent identity text
    std::shared_ptr<zelt::plugin_util::EventCounterChannel> channel;
};

/// Frames sent (by the camera's numbers, 0 for the first of an acquisition) and frames received. Frames lost
/// on the way: how much sent − received has grown since the first frame.
///
/// The sub-channels never change. Sinks and counts are not locked: the operations on them are called under
/// the camera channel's mutex.
class FrameCounters {
  public:
    /// Whether the sub-channels of a camera with that local id can have ids.
    static bool isPossible(std::uint32_t cameraId) { return cameraId <= kLargestCameraId; }

    /// `camera`: of an id for which counters are possible. `used`: whether the counters are, at first.
    FrameCounters(const ChannelIdentity& camera, bool used);

    /// Sent frames, then received frames.
    const std::array<SubChannel, 2>& subChannels() const { return m_sub_channels; }

    /// The sink is not owned; null for none. Nothing happens for an id that is no counter's.
    void setSink(std::uint32_t channelId, zelt::IfChannelSink* sink);
    void clearSinks();

    /// A new acquisition: both count from 0.
    void restart();
    /// One frame arrived, `sent` frames after the first of the acquisition. Allocates nothing.
    void count(std::int64_t time, std::uint64_t sent);

  private:
    static constexpr std::uint32_t kLargestCameraId = 0xFFFF;

    std::array<SubChannel, 2> m_sub_channels;
};

}  // namespace zelt_gige_camera
