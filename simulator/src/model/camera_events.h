/// The events that a camera can send. One table: the features of each event, its entry of EventSelector and
/// its bit of EventsEnable1 are made from it.
#pragma once

#include <cstdint>
#include <vector>

namespace simulator {

/// Events that the simulated camera raises, by their numbers.
enum class CameraEvent : std::int64_t {
    AcquisitionStart = 40000,
    AcquisitionEnd = 40001,
    FrameTrigger = 40002,  ///< start of an exposure
    ExposureEnd = 40003,
    Line1RisingEdge = 40010,
    Line1FallingEdge = 40011,
    FrameTriggerReady = 40018,  ///< a trigger will start the next exposure at once
};

struct CameraEventRow {
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
const std::vector<CameraEventRow>& cameraEvents();

/// The name must exist.
const CameraEventRow& cameraEvent(const char* name);
const CameraEventRow& cameraEvent(CameraEvent event);

}  // namespace simulator
