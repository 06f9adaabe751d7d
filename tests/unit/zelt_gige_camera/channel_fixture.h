/// One camera's channel through the plug-in, and its vendor calls as the journal writes them.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "plugin_fixture.h"
#include "zelt_gige_camera_api.h"
#include "zelt_gige_camera_channel.h"

namespace test_support {

inline const std::string kName = "Manta_G-033C (50-0503300001)";

/// "VmbFeatureIntGet" and "Width" give the call as the journal writes it.
inline std::string call(const std::string& function, const std::string& rest = {},
                        const std::string& camera = kColourCamera) {
    return function + "(" + camera + (rest.empty() ? "" : ", " + rest) + ")";
}

inline std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

inline std::string select(const std::string& colour) {
    return call("VmbFeatureEnumSet", "\"BalanceRatioSelector\", " + quoted(colour));
}

/// Reading of the values that may change while the camera is open, then of their ranges.
inline std::vector<std::string> cacheReads() {
    const auto integer = [](const char* name) { return call("VmbFeatureIntGet", quoted(name)); };
    const auto real = [](const char* name) { return call("VmbFeatureFloatGet", quoted(name)); };
    const auto text = [](const char* name) { return call("VmbFeatureEnumGet", quoted(name)); };
    const auto range = [](const char* name) { return call("VmbFeatureFloatRangeQuery", quoted(name)); };
    const auto step = [](const char* name) { return call("VmbFeatureIntIncrementQuery", quoted(name)); };
    const auto steps = [](const char* name) { return call("VmbFeatureIntRangeQuery", quoted(name)); };
    return {integer("OffsetX"),
            integer("OffsetY"),
            integer("Width"),
            integer("Height"),
            real("AcquisitionFrameRateAbs"),
            integer("StreamBytesPerSecond"),
            text("TriggerSource"),
            real("ExposureTimeAbs"),
            text("ExposureAuto"),
            integer("ExposureAutoMax"),
            real("Gain"),
            text("GainAuto"),
            integer("GainAutoAdjustTol"),
            integer("GainAutoRate"),
            real("Gamma"),
            real("Saturation"),
            text("BalanceWhiteAuto"),
            select("Red"),
            real("BalanceRatioAbs"),
            select("Blue"),
            real("BalanceRatioAbs"),
            range("Gain"),
            range("ExposureTimeAbs"),
            select("Red"),
            range("BalanceRatioAbs"),
            select("Blue"),
            range("BalanceRatioAbs"),
            step("GainAutoAdjustTol"),
            steps("GainAutoAdjustTol"),
            step("GainAutoRate"),
            steps("GainAutoRate"),
            range("Gamma"),
            range("Hue"),
            range("Saturation"),
            range("AcquisitionFrameRateAbs"),
            step("Width"),
            steps("Width"),
            step("Height"),
            steps("Height"),
            integer("WidthMax"),
            integer("HeightMax")};
}

/// Reading of a camera just opened.
inline std::vector<std::string> configurationReads() {
    const auto integer = [](const char* name) { return call("VmbFeatureIntGet", quoted(name)); };
    const auto real = [](const char* name) { return call("VmbFeatureFloatGet", quoted(name)); };
    const auto text = [](const char* name) { return call("VmbFeatureEnumGet", quoted(name)); };
    return {integer("GevTimestampTickFrequency"),
            real("AcquisitionFrameRateAbs"),
            real("ExposureTimeAbs"),
            text("ExposureAuto"),
            real("Gain"),
            text("GainAuto"),
            integer("GainAutoAdjustTol"),
            integer("GainAutoRate"),
            real("Gamma"),
            real("Hue"),
            real("Saturation"),
            text("BalanceWhiteAuto"),
            select("Red"),
            real("BalanceRatioAbs"),
            select("Blue"),
            real("BalanceRatioAbs"),
            text("TriggerMode"),
            text("TriggerSource")};
}

/// One to a line, so that a comparison shows the lines that differ.
inline std::string asText(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

/// Drops the queries whose arguments are counts; what is asked for is in the other calls.
inline std::vector<std::string> withoutQueries(std::vector<std::string> calls) {
    std::erase_if(calls, [](const std::string& line) {
        return line.rfind("VmbFeaturesList", 0) == 0 || line.rfind("VmbFeatureEnumRangeQuery", 0) == 0 ||
               line.rfind("VmbFeatureStringGet", 0) == 0 || line.rfind("VmbCamerasList", 0) == 0;
    });
    return calls;
}

inline std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> parts) {
    std::vector<std::string> all;
    for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

/// The colour camera alone, so that its journal is not mixed with another's.
class OneCamera : public PluginTest {
  protected:
    OneCamera() {
        VmbSimUnplugCamera(kMonochromeCamera);
        plugin->setSharedAcquisitionObject(clock);
    }
    void open() { enumerate(); }

    static std::vector<std::string> fixedRateProgram() {
        return {call("VmbFeatureEnumSet", "\"TriggerSelector\", \"FrameStart\""),
                call("VmbFeatureEnumSet", "\"TriggerMode\", \"Off\""),
                call("VmbFeatureEnumSet", "\"TriggerSource\", \"FixedRate\""),
                call("VmbFeatureFloatSet", "\"AcquisitionFrameRateAbs\", 50"),
                call("VmbFeatureFloatGet", quoted("AcquisitionFrameRateAbs"))};
    }
    static std::vector<std::string> auxProgram() {
        return {call("VmbFeatureEnumSet", "\"TriggerSelector\", \"FrameStart\""),
                call("VmbFeatureEnumSet", "\"TriggerSource\", \"Line1\""),
                call("VmbFeatureEnumSet", "\"TriggerActivation\", \"RisingEdge\""),
                call("VmbFeatureFloatSet", "\"TriggerDelayAbs\", 0"),
                call("VmbFeatureEnumSet", "\"TriggerOverlap\", \"Off\""),
                call("VmbFeatureEnumSet", "\"TriggerMode\", \"On\"")};
    }
    /// Exposure 15 ms and 20 ms between two frames, less the shortest exposure.
    static std::vector<std::string> exposureLimit() {
        return {call("VmbFeatureIntSet", "\"ExposureAutoMax\", 19970")};
    }
    /// Writing of exposure and gain, each number read back.
    static std::vector<std::string> exposureAndGain() {
        return {call("VmbFeatureInfoQuery", "\"ExposureMode\", 96"),
                call("VmbFeatureEnumSet", "\"ExposureMode\", \"Timed\""),
                call("VmbFeatureFloatSet", "\"ExposureTimeAbs\", 15000"),
                call("VmbFeatureFloatGet", quoted("ExposureTimeAbs")),
                exposureLimit().front(),
                call("VmbFeatureEnumSet", "\"ExposureAuto\", \"Off\""),
                call("VmbFeatureFloatSet", "\"Gain\", 0"),
                call("VmbFeatureFloatGet", quoted("Gain")),
                call("VmbFeatureIntSet", "\"GainAutoAdjustTol\", 5"),
                call("VmbFeatureIntGet", quoted("GainAutoAdjustTol")),
                call("VmbFeatureIntSet", "\"GainAutoRate\", 100"),
                call("VmbFeatureIntGet", quoted("GainAutoRate")),
                call("VmbFeatureEnumSet", "\"GainAuto\", \"Off\""),
                call("VmbFeatureFloatSet", "\"Gamma\", 1"),
                call("VmbFeatureFloatGet", quoted("Gamma"))};
    }
    /// Writing of colours, each number read back.
    static std::vector<std::string> colours() {
        return {call("VmbFeatureFloatSet", "\"Saturation\", 1"),
                call("VmbFeatureFloatGet", quoted("Saturation")),
                call("VmbFeatureEnumSet", "\"BalanceWhiteAuto\", \"Off\""),
                select("Red"),
                call("VmbFeatureFloatSet", "\"BalanceRatioAbs\", 1"),
                call("VmbFeatureFloatGet", quoted("BalanceRatioAbs")),
                select("Blue"),
                call("VmbFeatureFloatSet", "\"BalanceRatioAbs\", 1"),
                call("VmbFeatureFloatGet", quoted("BalanceRatioAbs"))};
    }
    /// A single camera has the whole link.
    static std::vector<std::string> share() {
        return {call("VmbFeatureEnumSet", "\"BandwidthControlMode\", \"StreamBytesPerSecond\""),
                call("VmbFeatureIntSet", "\"StreamBytesPerSecond\", 115000000"),
                call("VmbFeatureBoolSet", "\"StreamFrameRateConstrain\", 1")};
    }
    static std::vector<std::string> captureStart() {
        std::vector<std::string> calls{
            call("VmbFeatureCommandRun", quoted("GevTimestampControlReset")),
            call("VmbFeatureCommandRun", quoted("GVSPAdjustPacketSize")),
            call("VmbFeatureEnumSet", "\"EventSelector\", \"AcquisitionStart\""),
            call("VmbFeatureEnumSet", "\"EventNotification\", \"On\""),
            call("VmbFeatureEnumSet", "\"EventSelector\", \"AcquisitionEnd\""),
            call("VmbFeatureEnumSet", "\"EventNotification\", \"On\""),
            call("VmbFeatureInvalidationRegister", quoted("EventAcquisitionStart")),
            call("VmbFeatureInvalidationRegister", quoted("EventAcquisitionEnd")),
            call("VmbFeatureIntGet", quoted("PayloadSize"))};
        for (int frame = 1; frame <= 5; ++frame) {
            calls.push_back(call("VmbFrameAnnounce", "frame " + std::to_string(frame) + ", 104"));
        }
        calls.push_back(call("VmbCaptureStart"));
        for (int frame = 1; frame <= 5; ++frame) {
            calls.push_back(call("VmbCaptureFrameQueue", "frame " + std::to_string(frame)));
        }
        return calls;
    }
};

}  // namespace test_support
