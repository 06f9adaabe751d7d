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

inline std::vector<std::string> cacheReads() {
    return {call("VmbFeatureIntGet", quoted("OffsetX")),
            call("VmbFeatureIntGet", quoted("OffsetY")),
            call("VmbFeatureIntGet", quoted("Width")),
            call("VmbFeatureIntGet", quoted("Height")),
            call("VmbFeatureFloatGet", quoted("AcquisitionFrameRateAbs")),
            call("VmbFeatureIntGet", quoted("StreamBytesPerSecond")),
            call("VmbFeatureEnumGet", quoted("TriggerSource"))};
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
