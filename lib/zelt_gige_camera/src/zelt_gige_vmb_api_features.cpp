// Opening and closing of cameras, their callbacks, and typed feature access.
#include <algorithm>
#include <limits>

#include "zelt_gige_vmb_api.h"
#include "zelt_gige_vmb_call.h"

namespace zelt_gige_api {
namespace {

/// Beyond any of a camera's; longer ones are not worth the memory that they claim.
constexpr VmbUint32_t kLongestText = 1'048'576;

}  // namespace

CameraHandle VimbaCameraApi::openCamera(const std::string& cameraId) {
    VmbHandle_t handle = nullptr;
    check(VmbCameraOpen(cameraId.c_str(), VmbAccessModeFull, &handle), "Could not open camera: ");
    const CameraHandle camera = fromVmb(handle);
    const platform::MutexLock lock(m_maps_mutex);
    // Not closed: it would be somebody else's.
    if (camera <= kSystemHandle || !m_open_cameras.insert(camera).second) {
        throw CameraApiError("Could not open camera: the library gave the handle " + std::to_string(camera) +
                             ", which is not this camera's");
    }
    return camera;
}

void VimbaCameraApi::closeCamera(CameraHandle handle) {
    releaseFrames(handle);
    {
        const platform::MutexLock lock(m_maps_mutex);
        m_open_cameras.erase(handle);
    }
    check(VmbCameraClose(toVmb(handle)), "Could not close camera: ");
    forgetClosed(handle);
}

void VimbaCameraApi::registerCameraCallback(CameraHandle handle, IfCameraCallback* callback) {
    const platform::MutexLock lock(m_maps_mutex);
    if (!m_camera_callbacks.try_emplace(handle, CameraCallback{callback, 0}).second) {
        throw CameraApiError("Camera callback already registered for this camera.");
    }
}

void VimbaCameraApi::unregisterCameraCallback(CameraHandle handle) {
    const platform::MutexLock lock(m_maps_mutex);
    const auto entry = m_camera_callbacks.find(handle);
    if (entry == m_camera_callbacks.end()) return;
    // No new call starts from here on; the entry goes when the last running one has ended.
    entry->second.callback = nullptr;
    while (entry->second.runningCalls != 0) m_call_ended.wait(m_maps_mutex);
    m_camera_callbacks.erase(entry);
}

IfCameraCallback* VimbaCameraApi::findCameraCallback(CameraHandle handle) {
    const platform::MutexLock lock(m_maps_mutex);
    const auto entry = m_camera_callbacks.find(handle);
    return entry != m_camera_callbacks.end() ? entry->second.callback : nullptr;
}

void VimbaCameraApi::runCommand(CameraHandle handle, const char* name) {
    checkFeature(VmbFeatureCommandRun(toVmb(handle), name), name);
}

std::vector<FeatureInfo> VimbaCameraApi::listFeatures(CameraHandle handle) {
    constexpr const char* kFailed = "Could not enumerate features: ";
    VmbUint32_t count = 0;
    check(VmbFeaturesList(toVmb(handle), nullptr, 0, &count, sizeof(VmbFeatureInfo_t)), kFailed);
    auto records = makeRoom<VmbFeatureInfo_t>(count, kFailed);
    check(VmbFeaturesList(toVmb(handle), records.data(), count, &count, sizeof(VmbFeatureInfo_t)), kFailed);
    records.resize(std::min<std::size_t>(count, records.size()));
    std::vector<FeatureInfo> features;
    features.reserve(records.size());
    for (const VmbFeatureInfo_t& record : records) {
        FeatureInfo info;
        if (record.name != nullptr) info.name = record.name;
        if (record.description != nullptr) info.description = record.description;
        info.type = toFeatureType(record.featureDataType);
        features.push_back(std::move(info));
    }
    return features;
}

FeatureType VimbaCameraApi::getFeatureType(CameraHandle handle, const char* name) {
    VmbFeatureInfo_t record{};
    if (VmbFeatureInfoQuery(toVmb(handle), name, &record, sizeof record) != VmbErrorSuccess) {
        return FeatureType::None;
    }
    return toFeatureType(record.featureDataType);
}

std::string VimbaCameraApi::getEnumFeature(CameraHandle handle, const char* name) {
    const char* entry = nullptr;
    checkFeature(VmbFeatureEnumGet(toVmb(handle), name, &entry), name);
    return entry != nullptr ? entry : "";
}

void VimbaCameraApi::setEnumFeature(CameraHandle handle, const char* name, const std::string& entry) {
    checkFeature(VmbFeatureEnumSet(toVmb(handle), name, entry.c_str()), name);
}

std::vector<std::string> VimbaCameraApi::getEnumFeatureRange(CameraHandle handle, const char* name) {
    VmbUint32_t count = 0;
    if (VmbFeatureEnumRangeQuery(toVmb(handle), name, nullptr, 0, &count) != VmbErrorSuccess || count == 0 ||
        count > kMostEntries) {
        return {};
    }
    std::vector<const char*> entries(count, nullptr);
    if (VmbFeatureEnumRangeQuery(toVmb(handle), name, entries.data(), count, &count) != VmbErrorSuccess) {
        return {};
    }
    entries.resize(std::min<std::size_t>(count, entries.size()));
    std::vector<std::string> texts;
    for (const char* entry : entries) {
        if (entry != nullptr) texts.emplace_back(entry);
    }
    return texts;
}

double VimbaCameraApi::getFloatFeature(CameraHandle handle, const char* name) {
    double value = 0.0;
    checkFeature(VmbFeatureFloatGet(toVmb(handle), name, &value), name);
    return value;
}

void VimbaCameraApi::setFloatFeature(CameraHandle handle, const char* name, double value) {
    checkFeature(VmbFeatureFloatSet(toVmb(handle), name, value), name);
}

FloatRange VimbaCameraApi::getFloatFeatureRange(CameraHandle handle, const char* name) {
    FloatRange range;
    range.increment = std::numeric_limits<double>::quiet_NaN();
    range.valid = VmbFeatureFloatRangeQuery(toVmb(handle), name, &range.min, &range.max) == VmbErrorSuccess;
    return range;
}

std::int64_t VimbaCameraApi::getIntFeature(CameraHandle handle, const char* name) {
    VmbInt64_t value = 0;
    checkFeature(VmbFeatureIntGet(toVmb(handle), name, &value), name);
    return value;
}

void VimbaCameraApi::setIntFeature(CameraHandle handle, const char* name, std::int64_t value) {
    checkFeature(VmbFeatureIntSet(toVmb(handle), name, value), name);
}

IntRange VimbaCameraApi::getIntFeatureRange(CameraHandle handle, const char* name) {
    IntRange range;
    if (VmbFeatureIntIncrementQuery(toVmb(handle), name, &range.increment) != VmbErrorSuccess) return range;
    range.valid = VmbFeatureIntRangeQuery(toVmb(handle), name, &range.min, &range.max) == VmbErrorSuccess;
    return range;
}

bool VimbaCameraApi::getBoolFeature(CameraHandle handle, const char* name) {
    VmbBool_t value = false;
    checkFeature(VmbFeatureBoolGet(toVmb(handle), name, &value), name);
    return value;
}

void VimbaCameraApi::setBoolFeature(CameraHandle handle, const char* name, bool value) {
    checkFeature(VmbFeatureBoolSet(toVmb(handle), name, value), name);
}

std::string VimbaCameraApi::getStringFeature(CameraHandle handle, const char* name) {
    VmbUint32_t length = 0;  // counts the terminating zero
    checkFeature(VmbFeatureStringGet(toVmb(handle), name, nullptr, 0, &length), name);
    if (length <= 1) return {};
    if (length > kLongestText) {
        throw CameraApiError("The text of the feature '" + std::string(name) + "' has " +
                             std::to_string(length) + " bytes");
    }
    std::string text(length, '\0');
    VmbUint32_t filled = length;
    const VmbError_t result = VmbFeatureStringGet(toVmb(handle), name, text.data(), length, &filled);
    // Not UnsupportedFeature: the first call has found the feature.
    if (result != VmbErrorSuccess) throw CameraApiError("Cannot read existing string feature", result);
    const std::size_t end = text.find('\0');
    // Who knows what it was cut off from.
    if (end == std::string::npos) {
        throw CameraApiError("The text of the feature '" + std::string(name) + "' has no end within its " +
                             std::to_string(length) + " bytes");
    }
    text.resize(end);
    return text;
}

}  // namespace zelt_gige_api
