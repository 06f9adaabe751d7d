/// The events that a camera can send. One table: the features of each event, its entry of EventSelector and
/// its bit of EventsEnable1 are made from it.
#pragma once

#include <cstdint>
#include <vector>

namespace simulator {

struct CameraEvent {
    const char* name;
    std::int64_t number;
    bool selectable = true;         ///< sent only when EventNotification is On; the others always
    const char* feature = "";       ///< "Event" and the name; tells the number
    const char* frameFeature = "";  ///< with "FrameID" behind it
    const char* timeFeature = "";   ///< with "Timestamp" behind it

    /// Place in EventsEnable1; only for selectable events.
    std::int64_t bit() const { return std::int64_t{1} << (number - kNumberOfBitZero); }

    static constexpr std::int64_t kNumberOfBitZero = 39999;
};

/// Ascending by number.
const std::vector<CameraEvent>& cameraEvents();

/// The name must exist.
const CameraEvent& cameraEvent(const char* name);

}  // namespace simulator
