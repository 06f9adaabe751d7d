#include "camera_feature_rows.h"

namespace simulator {

std::vector<FeatureRow> cameraFeatureRows(const CameraRow& camera) {
    FeatureRows rows;
    addImageRows(rows, camera);
    addAcquisitionRows(rows, camera);
    addTriggerRows(rows);
    addExposureRows(rows, camera);
    addGainRows(rows, camera);
    if (camera.colour) addColourRows(rows);
    addTimestampRows(rows);
    addEventRows(rows);
    addStreamRows(rows);
    addStatisticsRows(rows);
    return rows;
}

void addTimestampRows(FeatureRows& rows) {
    const char* path = "/GigE/Timestamp";
    rows.push_back(intRow("GevTimestampTickFrequency", {0, kUnlimited, 1}, 1'000'000'000)
                       .in(path)
                       .of("Hz")
                       .readOnly()
                       .text("Ticks per second of the camera clock"));
    rows.push_back(commandRow("GevTimestampControlReset").in(path).text("Sets the camera clock to zero"));
    rows.push_back(commandRow("GevTimestampControlLatch")
                       .in(path)
                       .affecting({"GevTimestampValue"})
                       .text("Copies the camera clock into GevTimestampValue"));
    rows.push_back(intRow("GevTimestampValue", {0, kUnlimited, 1}, 0)
                       .in(path)
                       .readOnly()
                       .changing()
                       .text("Camera clock at the last latch"));
}

void addEventRows(FeatureRows& rows) {
    const char* data = "/EventControl/EventData";
    const IntRange any{0, kUnlimited, 1};
    rows.push_back(enumRow("EventSelector", {{"AcquisitionStart", 40000}, {"AcquisitionEnd", 40001}}, 40000)
                       .in("/EventControl")
                       .affecting({"EventNotification"})
                       .text("Event that EventNotification is about"));
    rows.push_back(enumRow("EventNotification", {{"Off", 0}, {"On", 1}}, 0)
                       .in("/EventControl")
                       .per("EventSelector")
                       .text("Whether the camera sends the selected event"));
    rows.push_back(intRow("EventAcquisitionStart", any, 40000)
                       .in("/EventControl/EventID")
                       .readOnly()
                       .text("Number of the event"));
    rows.push_back(intRow("EventAcquisitionStartFrameID", any, 0)
                       .in(data)
                       .readOnly()
                       .changing()
                       .text("First frame of the acquisition"));
    rows.push_back(intRow("EventAcquisitionStartTimestamp", any, 0)
                       .in(data)
                       .readOnly()
                       .changing()
                       .text("Camera clock at the start of the acquisition"));
    rows.push_back(intRow("EventAcquisitionEnd", any, 40001)
                       .in("/EventControl/EventID")
                       .readOnly()
                       .text("Number of the event"));
    rows.push_back(intRow("EventAcquisitionEndFrameID", any, 0)
                       .in(data)
                       .readOnly()
                       .changing()
                       .text("Last frame of the acquisition"));
    rows.push_back(intRow("EventAcquisitionEndTimestamp", any, 0)
                       .in(data)
                       .readOnly()
                       .changing()
                       .text("Camera clock at the end of the acquisition"));
}

void addStreamRows(FeatureRows& rows) {
    const char* path = "/Stream/Settings";
    rows.push_back(enumRow("BandwidthControlMode", {{"StreamBytesPerSecond", 0}, {"SCPD", 1}, {"Both", 2}}, 0)
                       .in(path)
                       .text("What limits the data rate"));
    rows.push_back(intRow("StreamBytesPerSecond", {1'000'000, 124'000'000, 1}, 115'000'000)
                       .in(path)
                       .of("B/s")
                       .affecting({"AcquisitionFrameRateLimit", "AcquisitionFrameRateAbs"})
                       .text("Upper limit of the data rate"));
    rows.push_back(boolRow("StreamFrameRateConstrain", true)
                       .in(path)
                       .affecting({"AcquisitionFrameRateLimit", "AcquisitionFrameRateAbs"})
                       .text("Limits the frame rate to what StreamBytesPerSecond allows"));
    rows.push_back(commandRow("GVSPAdjustPacketSize")
                       .in("/GigE/Configuration")
                       .whileIdle()
                       .affecting({"GevSCPSPacketSize"})
                       .text("Finds the largest packet that passes and takes it"));
    rows.push_back(intRow("GevSCPSPacketSize", {500, 16'384, 1}, 8228)
                       .in("/GigE/Configuration")
                       .of("B")
                       .whileIdle()
                       .text("Size of a stream packet"));
}

void addStatisticsRows(FeatureRows& rows) {
    const char* path = "/Stream/Statistics";
    const IntRange any{0, kUnlimited, 1};
    rows.push_back(intRow("StatFrameDelivered", any, 0)
                       .in(path)
                       .readOnly()
                       .changing()
                       .text("Complete frames since AcquisitionStart"));
    rows.push_back(intRow("StatFrameDropped", any, 0)
                       .in(path)
                       .readOnly()
                       .changing()
                       .text("Incomplete frames since AcquisitionStart"));
    rows.push_back(intRow("StatFrameUnderrun", any, 0)
                       .in(path)
                       .readOnly()
                       .changing()
                       .text("Frames lost since no buffer was queued"));
    rows.push_back(floatRow("StatFrameRate", {0, 1e9}, 0)
                       .in(path)
                       .of("Hz")
                       .readOnly()
                       .changing()
                       .text("Rate of the last two frames by their time stamps"));
}

}  // namespace simulator
