// With what the calls are made, and what happens to the cameras meanwhile.
#include <array>

#include "camera_channel_rows.h"
#include "config_items.h"
#include "config_keys.h"
#include "plugin_calls.h"
#include "vimba_simulator.h"

namespace fuzz {
namespace {

constexpr std::array<const char*, 2> kCameras{"DEV_000F31A10001", "DEV_000F31A10002"};
/// What the plug-in calls.
constexpr std::array<const char*, 30> kFunctions{"VmbCameraClose",
                                                 "VmbCameraOpen",
                                                 "VmbCamerasList",
                                                 "VmbCaptureEnd",
                                                 "VmbCaptureFrameQueue",
                                                 "VmbCaptureQueueFlush",
                                                 "VmbCaptureStart",
                                                 "VmbFeatureBoolGet",
                                                 "VmbFeatureBoolSet",
                                                 "VmbFeatureCommandRun",
                                                 "VmbFeatureEnumGet",
                                                 "VmbFeatureEnumRangeQuery",
                                                 "VmbFeatureEnumSet",
                                                 "VmbFeatureFloatGet",
                                                 "VmbFeatureFloatRangeQuery",
                                                 "VmbFeatureFloatSet",
                                                 "VmbFeatureInfoQuery",
                                                 "VmbFeatureIntGet",
                                                 "VmbFeatureIntIncrementQuery",
                                                 "VmbFeatureIntRangeQuery",
                                                 "VmbFeatureIntSet",
                                                 "VmbFeatureInvalidationRegister",
                                                 "VmbFeatureInvalidationUnregister",
                                                 "VmbFeatureStringGet",
                                                 "VmbFeaturesList",
                                                 "VmbFrameAnnounce",
                                                 "VmbFrameRevokeAll",
                                                 "VmbShutdown",
                                                 "VmbStartup",
                                                 "VmbVersionQuery"};

}  // namespace

void PluginCalls::disturb() {
    const char* const camera = anyCamera();
    switch (m_bytes.ConsumeIntegralInRange(0, 9)) {
        case 0:
            VmbSimUnplugCamera(camera);
            return;
        case 1:
            VmbSimPlugCamera(camera);
            return;
        case 2:
            VmbSimWaitForEvents(kHangMs);
            return;
        case 3:
            VmbSimLoseFrames(camera, m_bytes.ConsumeIntegralInRange<VmbUint32_t>(1, 9));
            return;
        case 4:
            VmbSimBreakFrames(camera, 1,
                              static_cast<VmbFrameStatus_t>(m_bytes.ConsumeIntegralInRange(-3, 0)));
            return;
        case 5:
            VmbSimHiccup(camera, m_bytes.ConsumeIntegralInRange<std::uint64_t>(1, 1'000'000'000));
            return;
        case 6: {
            const VmbSimRhythm rhythm{m_bytes.ConsumeIntegralInRange<std::uint64_t>(1, 200), 1, 1'000'000,
                                      100'000, 0};
            VmbSimDriveLine(nullptr, &rhythm);
            return;
        }
        case 7:
            VmbSimCableDuring(camera, VmbBool_t{}, m_bytes.PickValueInArray(kFunctions), nullptr,
                              m_bytes.ConsumeIntegralInRange(1, 20));
            return;
        default:
            VmbSimFailCall(m_bytes.PickValueInArray(kFunctions), nullptr,
                           m_bytes.ConsumeIntegralInRange(1, 20),
                           static_cast<VmbError_t>(m_bytes.ConsumeIntegralInRange(-19, -1)));
    }
}

std::uint32_t PluginCalls::anyChannel() {
    if (m_plugin == nullptr || m_bytes.ConsumeIntegralInRange(0, 15) == 0) {
        return m_bytes.ConsumeIntegral<std::uint32_t>();
    }
    const auto ids = m_plugin->getChannelIds();
    if (ids.empty()) return 0;
    const auto place = m_bytes.ConsumeIntegralInRange<std::size_t>(0, ids.size() - 1);
    return *std::next(ids.begin(), static_cast<std::ptrdiff_t>(place));
}

std::string PluginCalls::anyKey() {
    const auto& rows = property_tests::settingRows();
    const auto which = m_bytes.ConsumeIntegralInRange<std::size_t>(0, rows.size() + 2);
    if (which < rows.size()) return rows[which].key;
    if (which == rows.size()) return config_keys::kUsed;
    if (which == rows.size() + 1) return config_keys::kDefaultName;
    return m_bytes.ConsumeRandomLengthString(12);
}

config_items::ConfigItemVariant PluginCalls::anyValue(const std::string& key) {
    using config_items::SingleValueConfigItem;
    const property_tests::SettingRow* const row = property_tests::findRow(key);
    switch (m_bytes.ConsumeIntegralInRange(row != nullptr ? 0 : 4, 7)) {
        case 4:
            return SingleValueConfigItem<bool>(m_bytes.ConsumeBool());
        case 5:
            return SingleValueConfigItem<std::string>(m_bytes.ConsumeRandomLengthString(20));
        case 6:
            return SingleValueConfigItem<int>(m_bytes.ConsumeIntegral<int>());
        case 7:
            return config_items::ScalarConfigItem(m_bytes.ConsumeFloatingPoint<double>(), "");
        default:
            return row->values[m_bytes.ConsumeIntegralInRange<std::size_t>(0, row->values.size() - 1)];
    }
}

const char* PluginCalls::anyCamera() {
    return m_bytes.PickValueInArray(kCameras);
}

}  // namespace fuzz
