#include "camera_events.h"
#include "camera_feature_rows.h"

namespace simulator {
namespace {

void addSwitches(FeatureRows& rows) {
    const char* path = "/EventControl";
    std::vector<EnumEntry> entries;
    std::int64_t bits = 0;
    for (const CameraEventRow& event : cameraEvents()) {
        if (!event.selectable) continue;
        entries.push_back({event.name, event.number});
        bits |= event.bit();
    }
    rows.push_back(enumRow("EventSelector", entries, entries.front().number)
                       .in(path)
                       .affecting({"EventNotification"})
                       .text("Event that EventNotification is about"));
    rows.push_back(enumRow("EventNotification", {{"Off", 0}, {"On", 1}}, 0)
                       .in(path)
                       .per("EventSelector")
                       .affecting({"EventsEnable1"})
                       .text("Whether the camera sends the selected event"));
    rows.push_back(intRow("EventsEnable1", {0, bits, 1}, 0)
                       .in(path)
                       .affecting({"EventNotification"})
                       .text("The switches of all events, one bit each"));
}

void addEvent(FeatureRows& rows, const CameraEventRow& event) {
    const char* data = "/EventControl/EventData";
    const IntRange any{0, kUnlimited, 1};
    rows.push_back(intRow(event.feature, any, event.number)
                       .in("/EventControl/EventID")
                       .readOnly()
                       .text("Number of the event"));
    rows.push_back(intRow(event.frameFeature, any, 0)
                       .in(data)
                       .readOnly()
                       .changing()
                       .text("Frame that the event belongs to"));
    rows.push_back(
        intRow(event.timeFeature, any, 0).in(data).readOnly().changing().text("Camera clock at the event"));
}

}  // namespace

void addEventRows(FeatureRows& rows) {
    addSwitches(rows);
    for (const CameraEventRow& event : cameraEvents()) addEvent(rows, event);
}

}  // namespace simulator
