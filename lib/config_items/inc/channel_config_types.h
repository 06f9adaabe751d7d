/// Value types of the host's channel configuration that configuration items carry.
///
/// The item library treats the enumerations as integers only; the host knows more values than are named
/// here, and any 32-bit value is carried unchanged.
#pragma once

#include <cstdint>

#include "zelt_base_export.h"

// A class template is no more visible to other libraries than its arguments are.
#if defined(_WIN32)
#define ZELT_VISIBLE_ENUM
#else
#define ZELT_VISIBLE_ENUM ZELT_BASE_API
#endif

namespace channel_config {

/// Host-wide id of a channel: the plug-in's instance index and the channel's id inside the plug-in.
struct ZELT_BASE_API ChannelID {
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    bool operator==(const ChannelID&) const = default;
};

enum class ZELT_VISIBLE_ENUM PhysicalQuantity : std::int32_t {};

enum class ZELT_VISIBLE_ENUM UserScalingMode : std::int32_t {};

enum class ZELT_VISIBLE_ENUM DAQSampleResolution : std::int32_t {
    Count = 3,   ///< samples of an event counter
    Video = 15,  ///< frames of a video stream
};

enum class ZELT_VISIBLE_ENUM SampleOccurrenceType : std::int32_t {
    Asynchronous = 1,  ///< every sample carries its own time
};

enum class ZELT_VISIBLE_ENUM DAQChannelType : std::int32_t {
    Counter = 3,
    Video = 13,
};

}  // namespace channel_config

#undef ZELT_VISIBLE_ENUM
