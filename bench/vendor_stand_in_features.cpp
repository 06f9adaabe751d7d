// The features of the stand-in's cameras.
#include <algorithm>
#include <thread>

#include "vendor_stand_in_cameras.h"

namespace bench::vendor {
namespace {

Feature whole(const char* name, double value, double min, double max) {
    return {name, VmbFeatureDataInt, value, min, max, {}, {}};
}
Feature real(const char* name, double value, double min, double max) {
    return {name, VmbFeatureDataFloat, value, min, max, {}, {}};
}
Feature choice(const char* name, std::vector<const char*> entries) {
    return {name, VmbFeatureDataEnum, 0, 0, 0, entries.front(), std::move(entries)};
}

std::vector<Feature>& systemFeatures() {
    static std::vector<Feature> features{{"GeVTLIsPresent", VmbFeatureDataBool, 1, 0, 0, {}, {}}};
    return features;
}

/// The camera needs its time for a register; a client's thread waits for the answer meanwhile.
void writeRegister(VmbHandle_t handle) {
    Camera* const camera = cameraOf(handle);
    if (camera == nullptr || camera->registerNs == 0) return;
    const auto begin = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(std::chrono::nanoseconds(camera->registerNs));
    const std::chrono::nanoseconds taken = std::chrono::steady_clock::now() - begin;
    // Registers of one camera are written one at a time.
    camera->longestRegisterNs = std::max(camera->longestRegisterNs.load(), taken.count());
}

template <typename Action>
VmbError_t withFeature(VmbHandle_t handle, const char* name, const Action& action) {
    countCall();
    Feature* const feature = findFeature(handle, name);
    if (feature == nullptr) return VmbErrorNotFound;
    action(*feature);
    return VmbErrorSuccess;
}

VmbError_t setNumber(VmbHandle_t handle, const char* name, double value) {
    return withFeature(handle, name, [&](Feature& feature) {
        writeRegister(handle);
        feature.value = value;
    });
}

/// Both ends of the range as the client's type.
template <typename Number>
VmbError_t getRange(VmbHandle_t handle, const char* name, Number* min, Number* max) {
    return withFeature(handle, name, [&](const Feature& feature) {
        *min = static_cast<Number>(feature.min);
        *max = static_cast<Number>(feature.max);
    });
}

}  // namespace

std::vector<Feature> factorySettings() {
    std::vector<Feature> all{
        whole("OffsetX", 0, 0, 656),
        whole("OffsetY", 0, 0, 492),
        whole("Width", 656, 8, 656),
        whole("Height", 492, 8, 492),
        whole("WidthMax", 656, 0, 0),
        whole("HeightMax", 492, 0, 0),
        whole("PayloadSize", 656 * 492, 0, 0),
        whole("StreamBytesPerSecond", 115'000'000, 1'000'000, 124'000'000),
        whole("ExposureAutoMax", 500'000, 30, 60'000'000),
        whole("GainAutoAdjustTol", 5, 0, 50),
        whole("GainAutoRate", 100, 1, 100),
        whole("GevTimestampTickFrequency", 1'000'000'000, 0, 0),
        whole("EventAcquisitionStartTimestamp", 0, 0, 0),
        whole("EventAcquisitionStartFrameID", 0, 0, 0),
        real("AcquisitionFrameRateAbs", 60, 0.01, 80),
        real("ExposureTimeAbs", 5000, 30, 60'000'000),
        real("Gain", 0, 0, 32),
        real("Gamma", 1, 0.45, 1),
        real("TriggerDelayAbs", 0, 0, 60'000'000),
        choice("AcquisitionMode", {"Continuous"}),
        choice("BandwidthControlMode", {"StreamBytesPerSecond"}),
        choice("EventSelector", {"AcquisitionStart", "AcquisitionEnd"}),
        choice("EventNotification", {"Off", "On"}),
        choice("ExposureAuto", {"Off", "Once", "Continuous"}),
        choice("ExposureMode", {"Timed"}),
        choice("GainAuto", {"Off", "Once", "Continuous"}),
        choice("PixelFormat", {"Mono8"}),
        choice("TriggerActivation", {"RisingEdge"}),
        choice("TriggerMode", {"Off", "On"}),
        choice("TriggerOverlap", {"Off", "PreviousFrame"}),
        choice("TriggerSelector", {"FrameStart"}),
        choice("TriggerSource", {"FixedRate", "Freerun", "Line1"}),
    };
    all.push_back({"StreamFrameRateConstrain", VmbFeatureDataBool, 1, 0, 0, {}, {}});
    all.push_back({"DeviceModelName", VmbFeatureDataString, 0, 0, 0, "Manta_G-032B", {}});
    return all;
}

Feature* findFeature(VmbHandle_t handle, const char* name) {
    Camera* const camera = cameraOf(handle);
    for (Feature& feature : camera != nullptr ? camera->features : systemFeatures()) {
        if (std::string_view(feature.name) == name) return &feature;
    }
    return nullptr;
}

}  // namespace bench::vendor

using bench::vendor::countCall;
using bench::vendor::Feature;
using bench::vendor::getRange;
using bench::vendor::setNumber;
using bench::vendor::withFeature;

VmbError_t VmbFeaturesList(VmbHandle_t, VmbFeatureInfo_t*, VmbUint32_t, VmbUint32_t* found, VmbUint32_t) {
    countCall();
    *found = 0;
    return VmbErrorSuccess;
}

VmbError_t VmbFeatureInfoQuery(VmbHandle_t handle, const char* name, VmbFeatureInfo_t* info, VmbUint32_t) {
    return withFeature(handle, name, [&](const Feature& feature) {
        info->name = feature.name;
        info->featureDataType = feature.type;
    });
}

VmbError_t VmbFeatureIntGet(VmbHandle_t handle, const char* name, VmbInt64_t* value) {
    return withFeature(handle, name,
                       [&](const Feature& feature) { *value = static_cast<VmbInt64_t>(feature.value); });
}

VmbError_t VmbFeatureIntSet(VmbHandle_t handle, const char* name, VmbInt64_t value) {
    return setNumber(handle, name, static_cast<double>(value));
}

VmbError_t VmbFeatureIntRangeQuery(VmbHandle_t handle, const char* name, VmbInt64_t* min, VmbInt64_t* max) {
    return getRange(handle, name, min, max);
}

VmbError_t VmbFeatureIntIncrementQuery(VmbHandle_t handle, const char* name, VmbInt64_t* increment) {
    return withFeature(handle, name, [&](const Feature&) { *increment = 1; });
}

VmbError_t VmbFeatureFloatGet(VmbHandle_t handle, const char* name, double* value) {
    return withFeature(handle, name, [&](const Feature& feature) { *value = feature.value; });
}

VmbError_t VmbFeatureFloatSet(VmbHandle_t handle, const char* name, double value) {
    return setNumber(handle, name, value);
}

VmbError_t VmbFeatureFloatRangeQuery(VmbHandle_t handle, const char* name, double* min, double* max) {
    return getRange(handle, name, min, max);
}

VmbError_t VmbFeatureEnumGet(VmbHandle_t handle, const char* name, const char** value) {
    return withFeature(handle, name, [&](const Feature& feature) { *value = feature.text.c_str(); });
}

VmbError_t VmbFeatureEnumSet(VmbHandle_t handle, const char* name, const char* value) {
    return withFeature(handle, name, [&](Feature& feature) {
        bench::vendor::writeRegister(handle);
        feature.text = value;
    });
}

VmbError_t VmbFeatureEnumRangeQuery(VmbHandle_t handle, const char* name, const char** array,
                                    VmbUint32_t length, VmbUint32_t* filled) {
    return withFeature(handle, name, [&](const Feature& feature) {
        *filled = static_cast<VmbUint32_t>(feature.entries.size());
        if (array == nullptr) return;
        std::copy_n(feature.entries.begin(), std::min(length, *filled), array);
    });
}

VmbError_t VmbFeatureStringGet(VmbHandle_t handle, const char* name, char* buffer, VmbUint32_t size,
                               VmbUint32_t* filled) {
    return withFeature(handle, name, [&](const Feature& feature) {
        *filled = static_cast<VmbUint32_t>(feature.text.size() + 1);
        if (buffer != nullptr) feature.text.copy(buffer, size);
    });
}

VmbError_t VmbFeatureBoolGet(VmbHandle_t handle, const char* name, VmbBool_t* value) {
    return withFeature(handle, name, [&](const Feature& feature) { *value = feature.value != 0.0; });
}

VmbError_t VmbFeatureBoolSet(VmbHandle_t handle, const char* name, VmbBool_t value) {
    return setNumber(handle, name, value ? 1.0 : 0.0);
}

VmbError_t VmbFeatureCommandRun(VmbHandle_t, const char*) {
    countCall();
    return VmbErrorSuccess;
}

VmbError_t VmbFeatureInvalidationRegister(VmbHandle_t, const char*, VmbInvalidationCallback, void*) {
    countCall();
    return VmbErrorSuccess;
}

VmbError_t VmbFeatureInvalidationUnregister(VmbHandle_t, const char*, VmbInvalidationCallback) {
    countCall();
    return VmbErrorSuccess;
}
