#pragma once

#include <cstdint>

namespace zelt {

/// The host's receiver of one channel's samples. Owned by the host, which keeps it alive until it has
/// replaced or cleared it; no call is made after that returned.
class IfChannelSink {
  public:
    /// One sample. `time`: units of the master clock for a camera at fixed rate, number of the trigger pulse
    /// since the start for a triggered one. `data`: `size` bytes, an image, or for a counter an unsigned
    /// 64-bit little-endian count; valid during the call only. [frame] Called on the vendor library's
    /// thread with the channel's mutex held: copy and return, never call back into the plug-in.
    virtual void addSample(std::int64_t time, const void* data, std::uint64_t size) = 0;

  protected:
    ~IfChannelSink() = default;
};

}  // namespace zelt
