#include "camera_events.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "feature_table.h"

namespace simulator {
namespace {

std::vector<CameraEventRow> withFeatures(std::vector<CameraEventRow> events) {
    for (CameraEventRow& event : events) {
        const std::string feature = std::string("Event") + event.name;
        event.feature = keptText(feature);
        event.frameFeature = keptText(feature + "FrameID");
        event.timeFeature = keptText(feature + "Timestamp");
    }
    return events;
}

}  // namespace

const std::vector<CameraEventRow>& cameraEvents() {
    // Never destroyed: a client may leave cameras open when it exits.
    static const auto& events = *new std::vector<CameraEventRow>(withFeatures({
        {"AcquisitionStart", 40000},
        {"AcquisitionEnd", 40001},
        {"FrameTrigger", 40002},
        {"ExposureEnd", 40003},
        {"AcquisitionRecordTrigger", 40004},
        {"PtpSyncLost", 40005},
        {"PtpSyncLocked", 40006},
        {"Line1RisingEdge", 40010},
        {"Line1FallingEdge", 40011},
        {"Line2RisingEdge", 40012},
        {"Line2FallingEdge", 40013},
        {"Line3RisingEdge", 40014},
        {"Line3FallingEdge", 40015},
        {"Line4RisingEdge", 40016},
        {"Line4FallingEdge", 40017},
        {"FrameTriggerReady", 40018},
        {"Overflow", 65534, false},
        {"Error", 65535, false},
    }));
    return events;
}

const CameraEventRow& cameraEvent(const char* name) {
    const auto& events = cameraEvents();
    return *std::find_if(events.begin(), events.end(),
                         [=](const CameraEventRow& event) { return std::string_view(name) == event.name; });
}

const CameraEventRow& cameraEvent(CameraEvent event) {
    const auto& events = cameraEvents();
    return *std::find_if(events.begin(), events.end(), [=](const CameraEventRow& row) {
        return row.number == static_cast<std::int64_t>(event);
    });
}

}  // namespace simulator
