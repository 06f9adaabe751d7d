#include "camera_feature_rows.h"

namespace simulator {
namespace {

const std::vector<EnumEntry> kOffOn = {{"Off", 0}, {"On", 1}};
const std::vector<EnumEntry> kAutoModes = {{"Off", 1}, {"Continuous", 2}, {"Once", 3}};

void addTriggerSignalRows(FeatureRows& rows, const char* path, const char* selector) {
    rows.push_back(
        enumRow("TriggerActivation",
                {{"RisingEdge", 0}, {"FallingEdge", 1}, {"AnyEdge", 2}, {"LevelHigh", 3}, {"LevelLow", 4}}, 0)
            .in(path)
            .per(selector)
            .text("What of a line's signal counts"));
    rows.push_back(floatRow("TriggerDelayAbs", {0, 60'000'000}, 0.0)
                       .in(path)
                       .of("µs")
                       .per(selector)
                       .text("Delay from the line's signal"));
    rows.push_back(enumRow("TriggerOverlap", {{"Off", 0}, {"PreviousFrame", 2}}, 0)
                       .in(path)
                       .per(selector)
                       .text("What becomes of a signal that comes too early"));
}

void addExposureAutoRows(FeatureRows& rows, const char* path, const SensorRow& sensor) {
    const IntRange autoRange{static_cast<std::int64_t>(sensor.shortestExposureUs),
                             static_cast<std::int64_t>(sensor.longestExposureUs), 1};
    rows.push_back(enumRow("ExposureAuto", kAutoModes, 1)
                       .in(path)
                       .affecting({"ExposureTimeAbs"})
                       .text("Automatic exposure"));
    rows.push_back(percentRow("ExposureAutoAdjustTol", {0, 50, 1}, 5)
                       .in(path)
                       .text("Dead band of the automatic exposure"));
    rows.push_back(enumRow("ExposureAutoAlg", {{"Mean", 0}, {"FitRange", 1}}, 0)
                       .in(path)
                       .text("Algorithm of the automatic exposure"));
    rows.push_back(
        intRow("ExposureAutoMax", autoRange, 500'000).in(path).of("µs").text("Longest automatic exposure"));
    rows.push_back(intRow("ExposureAutoMin", autoRange, autoRange.min)
                       .in(path)
                       .of("µs")
                       .text("Shortest automatic exposure"));
    rows.push_back(intRow("ExposureAutoOutliers", {0, 1000, 1}, 0)
                       .in(path)
                       .of("0.01 %")
                       .text("Share of pixels that the automatic exposure ignores"));
    rows.push_back(
        percentRow("ExposureAutoRate", {1, 100, 1}, 100).in(path).text("Speed of the automatic exposure"));
    rows.push_back(
        percentRow("ExposureAutoTarget", {0, 100, 1}, 50).in(path).text("Aim of the automatic exposure"));
}

}  // namespace

void addAcquisitionRows(FeatureRows& rows, const CameraRow& camera) {
    const char* path = "/Acquisition";
    rows.push_back(enumRow("AcquisitionMode",
                           {{"Continuous", 1}, {"SingleFrame", 2}, {"MultiFrame", 3}, {"Recorder", 4}}, 1)
                       .in(path)
                       .except({{"Recorder"}})
                       .whileIdle()
                       .text("How many frames one start gives"));
    rows.push_back(intRow("AcquisitionFrameCount", {1, 65'535, 1}, 1)
                       .in(path)
                       .text("Frames of one start in MultiFrame mode"));
    rows.push_back(intRow("RecorderPreEventCount", {0, 65'535, 1}, 0)
                       .in(path)
                       .text("Frames before the record trigger in mode Recorder"));
    rows.push_back(commandRow("AcquisitionStart").in(path).text("Starts the acquisition"));
    rows.push_back(commandRow("AcquisitionStop").in(path).text("Ends it after the running frame"));
    rows.push_back(commandRow("AcquisitionAbort").in(path).text("Ends it and drops the running frame"));
    rows.push_back(floatRow("AcquisitionFrameRateAbs", {0.01, 1000}, camera.powerUpRate)
                       .in(path)
                       .of("Hz")
                       .text("Rate of the frames, to whole microseconds of their period"));
    rows.push_back(floatRow("AcquisitionFrameRateLimit", {0, 1e9}, 0)
                       .in(path)
                       .of("Hz")
                       .readOnly()
                       .text("Highest rate with the settings of now"));
}

void addTriggerRows(FeatureRows& rows) {
    const char* path = "/Acquisition/Trigger";
    const char* selector = "TriggerSelector";
    const std::int64_t off = 0;
    const std::int64_t on = 1;
    rows.push_back(
        enumRow(selector,
                {{"FrameStart", 0}, {"AcquisitionStart", 3}, {"AcquisitionEnd", 4}, {"AcquisitionRecord", 6}},
                0)
            .in(path)
            .affecting({"TriggerMode", "TriggerSource", "TriggerActivation", "TriggerDelayAbs",
                        "TriggerOverlap", "TriggerSoftware"})
            .text("Trigger that the other trigger features are about"));
    rows.push_back(
        enumRow("TriggerMode", kOffOn, off)
            .in(path)
            .per(selector, {on, off, off, off})
            .except({{"On", "AcquisitionStart"}, {"On", "AcquisitionEnd"}, {"On", "AcquisitionRecord"}})
            .text("Whether the trigger is used"));
    rows.push_back(enumRow("TriggerSource",
                           {{"Freerun", 0},
                            {"Line1", 1},
                            {"Line2", 2},
                            {"Line3", 3},
                            {"Line4", 4},
                            {"FixedRate", 5},
                            {"Software", 6}},
                           0)
                       .in(path)
                       .per(selector)
                       .text("Where the trigger comes from"));
    addTriggerSignalRows(rows, path, selector);
    rows.push_back(commandRow("TriggerSoftware").in(path).per(selector).text("Triggers one frame"));
}

void addExposureRows(FeatureRows& rows, const CameraRow& camera) {
    const char* path = "/Controls/Exposure";
    const double shortest = camera.sensor.shortestExposureUs;
    const double longest = camera.sensor.longestExposureUs;
    rows.push_back(enumRow("ExposureMode", {{"Timed", 1}}, 1).in(path).text("How the exposure ends"));
    rows.push_back(floatRow("ExposureTimeAbs", {shortest, longest}, 15'000.0)
                       .in(path)
                       .of("µs")
                       .roundedTo(camera.sensor.exposureIncrementUs)
                       .affecting({"AcquisitionFrameRateLimit", "AcquisitionFrameRateAbs"})
                       .text("Exposure time, rounded to ExposureTimeIncrement"));
    rows.push_back(floatRow("ExposureTimeIncrement", {0, 1e9}, camera.sensor.exposureIncrementUs)
                       .in(path)
                       .of("µs")
                       .readOnly()
                       .text("Step of the exposure time"));
    addExposureAutoRows(rows, path, camera.sensor);
}

void addGainRows(FeatureRows& rows, const CameraRow& camera) {
    const char* path = "/Controls/Gain";
    const FloatRange gains{0, camera.hottestGain};
    rows.push_back(enumRow("GainSelector", {{"All", 0}}, 0)
                       .in(path)
                       .affecting({"Gain"})
                       .text("Channel that the gain is for"));
    rows.push_back(
        floatRow("Gain", gains, 0.0).in(path).of("dB").inSteps(0.1).per("GainSelector").text("Gain"));
    rows.push_back(enumRow("GainAuto", kAutoModes, 1).in(path).affecting({"Gain"}).text("Automatic gain"));
    rows.push_back(
        percentRow("GainAutoAdjustTol", {0, 50, 1}, 5).in(path).text("Dead band of the automatic gain"));
    rows.push_back(
        floatRow("GainAutoMax", gains, gains.max).in(path).of("dB").text("Highest automatic gain"));
    rows.push_back(floatRow("GainAutoMin", gains, 0.0).in(path).of("dB").text("Lowest automatic gain"));
    rows.push_back(intRow("GainAutoOutliers", {0, 1000, 1}, 0)
                       .in(path)
                       .of("0.01 %")
                       .text("Share of pixels that the automatic gain ignores"));
    rows.push_back(percentRow("GainAutoRate", {1, 100, 1}, 100).in(path).text("Speed of the automatic gain"));
    rows.push_back(percentRow("GainAutoTarget", {0, 100, 1}, 50).in(path).text("Aim of the automatic gain"));
}

}  // namespace simulator
