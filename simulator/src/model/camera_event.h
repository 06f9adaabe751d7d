/// Events that a camera can report to its client.
#pragma once

#include <array>
#include <cstdint>

namespace simulator {

enum class CameraEvent : std::uint32_t {
    AcquisitionStart,
    AcquisitionEnd,
    FrameTrigger,  ///< start of an exposure
    ExposureEnd,
    FrameTriggerReady,  ///< a trigger will start the next exposure at once
    Line1RisingEdge,
    Line1FallingEdge,
};

/// By the enumeration's order; a feature's name is "Event" and the event's.
inline constexpr std::array kCameraEventNames = {"AcquisitionStart", "AcquisitionEnd",    "FrameTrigger",
                                                 "ExposureEnd",      "FrameTriggerReady", "Line1RisingEdge",
                                                 "Line1FallingEdge"};

}  // namespace simulator
