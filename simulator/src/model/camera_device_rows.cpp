// What a camera has beside its sensor: clock, lines, temperature, memory for settings, counters.
#include "camera_feature_rows.h"

namespace simulator {
namespace {

const IntRange kAny{0, kUnlimited, 1};

}  // namespace

void addTimestampRows(FeatureRows& rows, const CameraRow& camera) {
    const char* path = "/GigE/Timestamp";
    rows.push_back(intRow("GevTimestampTickFrequency", kAny, camera.oscillator.tickFrequency)
                       .in(path)
                       .of("Hz")
                       .readOnly()
                       .text("Ticks per second of the camera clock"));
    rows.push_back(commandRow("GevTimestampControlReset").in(path).text("Sets the camera clock to zero"));
    rows.push_back(commandRow("GevTimestampControlLatch")
                       .in(path)
                       .affecting({"GevTimestampValue"})
                       .text("Copies the camera clock into GevTimestampValue"));
    rows.push_back(intRow("GevTimestampValue", kAny, 0)
                       .in(path)
                       .readOnly()
                       .changing()
                       .text("Camera clock at the last latch"));
}

void addPtpRows(FeatureRows& rows) {
    const char* path = "/GigE/PTP";
    rows.push_back(enumRow("PtpMode", {{"Off", 0}, {"Slave", 1}, {"Master", 2}, {"Auto", 3}}, 0)
                       .in(path)
                       .except({{"Slave"}, {"Auto"}})
                       .affecting({"PtpStatus"})
                       .text("Part in the network's common time"));
    rows.push_back(
        enumRow("PtpStatus", {{"Off", 0}, {"Slave", 1}, {"Master", 2}, {"Error", 3}, {"Syncing", 4}}, 0)
            .in(path)
            .readOnly()
            .changing()
            .text("What became of that"));
}

void addLineRows(FeatureRows& rows) {
    const std::vector<EnumEntry> signals = {{"AcquisitionTriggerReady", 1},
                                            {"FrameTriggerReady", 2},
                                            {"FrameTrigger", 3},
                                            {"Exposing", 4},
                                            {"FrameReadout", 5},
                                            {"Imaging", 6},
                                            {"Acquiring", 7},
                                            {"LineIn1", 8},
                                            {"LineIn2", 9}};
    std::vector<EnumEntry> outputs = signals;
    outputs.insert(outputs.begin(), {"GPO", 0});
    outputs.push_back({"Strobe1", 12});
    const char* out = "/IO/SyncOut";
    const char* strobe = "/IO/Strobe";
    const IntRange levels{0, 0xFFFF, 1};
    const IntRange spans{0, 60'000'000, 1};
    rows.push_back(intRow("SyncInLevels", levels, 0)
                       .in("/IO/SyncIn")
                       .readOnly()
                       .changing()
                       .text("Levels of the input lines, one bit each"));
    rows.push_back(
        intRow("SyncOutLevels", levels, 0).in(out).text("Levels of the output lines, one bit each"));
    rows.push_back(enumRow("SyncOutPolarity", {{"Normal", 0}, {"Invert", 1}}, 0)
                       .in(out)
                       .text("Turns the output's signal over"));
    rows.push_back(enumRow("SyncOutSource", outputs, 4).in(out).text("Signal on the output line"));
    rows.push_back(enumRow("StrobeSource", signals, 3).in(strobe).text("Signal that starts the strobe"));
    rows.push_back(enumRow("StrobeDurationMode", {{"Source", 0}, {"Controlled", 1}}, 0)
                       .in(strobe)
                       .text("What ends the strobe"));
    rows.push_back(intRow("StrobeDelay", spans, 0).in(strobe).of("µs").text("From the signal to the strobe"));
    rows.push_back(intRow("StrobeDuration", spans, 0).in(strobe).of("µs").text("Length in mode Controlled"));
}

void addStatusRows(FeatureRows& rows) {
    const char* path = "/DeviceStatus";
    const char* selector = "DeviceTemperatureSelector";
    rows.push_back(enumRow(selector, {{"Sensor", 0}, {"Main", 1}, {"Power", 2}}, 1)
                       .in(path)
                       .affecting({"DeviceTemperature"})
                       .text("Place that DeviceTemperature is about"));
    rows.push_back(floatRow("DeviceTemperature", {-40, 150}, 0.0)
                       .in(path)
                       .of("°C")
                       .readOnly()
                       .changing()
                       .per(selector, {41.5, 44.25, 46.0})
                       .text("Temperature of the place"));
}

void addUserSetRows(FeatureRows& rows) {
    const char* path = "/SavedUserSets";
    const char* selector = "UserSetSelector";
    const std::vector<EnumEntry> sets = {{"Default", 0},  {"UserSet1", 1}, {"UserSet2", 2},
                                         {"UserSet3", 3}, {"UserSet4", 4}, {"UserSet5", 5}};
    rows.push_back(
        enumRow("UserSetDefaultSelector", sets, 0).in(path).text("Settings that the camera has at power-up"));
    rows.push_back(enumRow(selector, sets, 0)
                       .in(path)
                       .affecting({"UserSetLoad", "UserSetSave"})
                       .text("Settings that the two commands are about"));
    rows.push_back(
        commandRow("UserSetLoad").in(path).whileIdle().per(selector).text("Takes the saved settings"));
    rows.push_back(commandRow("UserSetSave").in(path).per(selector).text("Saves the settings"));
}

void addStatisticsRows(FeatureRows& rows) {
    const auto add = [&](FeatureRow row, const char* text) {
        rows.push_back(std::move(row).in("/Stream/Statistics").readOnly().changing().text(text));
    };
    const auto count = [&](const char* name, const char* text) { add(intRow(name, kAny, 0), text); };
    const FloatRange rates{0, 1e9};
    count("StatFrameDelivered", "Complete frames since AcquisitionStart");
    count("StatFrameDropped", "Incomplete frames since AcquisitionStart");
    count("StatFrameUnderrun", "Frames lost since no buffer was queued");
    count("StatFrameRescued", "Frames that were complete only by packets sent again");
    count("StatFrameShoved", "Frames given up since newer ones came");
    count("StatPacketReceived", "Image packets of the frames that came");
    count("StatPacketMissed", "Image packets that did not come");
    count("StatPacketErrors", "Image packets that were not as they should be");
    count("StatPacketRequested", "Image packets asked for again");
    count("StatPacketResent", "Image packets sent again");
    add(floatRow("StatFrameRate", rates, 0.0).of("Hz"), "Rate of the last two frames by their time stamps");
    add(floatRow("StatLocalRate", rates, 0.0).of("Hz"), "Rate of the last two frames by the host's clock");
    add(floatRow("StatTimeElapsed", {0, 1e300}, 0.0).of("s"), "Time since AcquisitionStart");
}

}  // namespace simulator
