#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "if_channel_config.h"

namespace host {

/// Value of a camera's trigger mode in which it follows the host's trigger output.
inline constexpr const char* kTriggeredMode = "GIGE/TriggerModeAux";

/// What the times of a channel's samples are.
enum class TimeBase {
    Nanoseconds,  ///< of the host's clock
    Pulses,       ///< number of the trigger pulse since the start
};

/// Heading of a column of such times.
const char* timeColumn(TimeBase base);

/// What the host shows of a channel, read from its configuration items.
struct ChannelInfo {
    std::uint32_t id = 0;
    std::string name;
    std::string shortId;
    std::string type;
    std::string format;  ///< "Y800", "Y422" or "RGB"; empty when the channel has none
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::optional<double> rate;  ///< frames per second; empty when the channel has none now
    TimeBase timeBase = TimeBase::Nanoseconds;

    /// False for a camera that could not be opened: it has no size then.
    bool isOpen() const { return width != 0 && height != 0; }
    /// Bytes of one picture, by the format; three per pixel for a format that the host does not know.
    std::uint64_t pictureBytes() const;
};

ChannelInfo readChannelInfo(std::uint32_t id, channel_config::IfChannelConfig& config);

/// Whether a channel is switched on.
bool isUsed(channel_config::IfChannelConfig& config);

/// Switches a channel on or off; false when the channel refuses.
bool setUsed(channel_config::IfChannelConfig& config, bool used);

}  // namespace host
