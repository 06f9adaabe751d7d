/// What the sources over the vendor's library share: handle conversion, result checks, and the wrapper that
/// keeps exceptions away from the vendor's C frames.
#pragma once

#include <exception>
#include <string>
#include <vector>

#include "vimba_c.h"
#include "zelt_gige_camera_api.h"
#include "zelt_gige_log.h"

namespace zelt_gige_api {

inline VmbHandle_t toVmb(CameraHandle handle) {
    // The vendor's handles are numbers dressed as pointers: the system object is 1.
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<VmbHandle_t>(handle);
}
inline CameraHandle fromVmb(VmbHandle_t handle) {
    return reinterpret_cast<CameraHandle>(handle);
}

/// This layer's name for a data type of the library; what it has no name for is Other.
inline FeatureType toFeatureType(VmbFeatureData_t type) {
    switch (type) {
        case VmbFeatureDataBool:
            return FeatureType::Bool;
        case VmbFeatureDataInt:
            return FeatureType::Int;
        case VmbFeatureDataFloat:
            return FeatureType::Float;
        case VmbFeatureDataString:
            return FeatureType::String;
        case VmbFeatureDataEnum:
            return FeatureType::Enum;
        case VmbFeatureDataCommand:
            return FeatureType::Command;
        default:
            return FeatureType::Other;
    }
}

/// Throws CameraApiError with the prefix and the code's text unless the call succeeded.
inline void check(VmbError_t result, const char* prefix) {
    if (result != VmbErrorSuccess) throw CameraApiError(prefix + errorText(result), result);
}

/// Throws UnsupportedFeature unless the call succeeded.
inline void checkFeature(VmbError_t result, const char* feature) {
    if (result != VmbErrorSuccess) throw UnsupportedFeature(feature, result);
}

/// Of a list; no library has as many.
inline constexpr VmbUint32_t kMostEntries = 65'536;

/// Makes room for as many entries as the library counts in a list. Throws CameraApiError for a number that no
/// library has: it is not worth all memory.
template <class Entry>
std::vector<Entry> makeRoom(VmbUint32_t count, const char* prefix) {
    if (count > kMostEntries) {
        throw CameraApiError(prefix + ("the library counts " + std::to_string(count)) + " entries");
    }
    return std::vector<Entry>(count);
}

/// Runs a callback's steps at the C border: logs what they throw and returns.
template <typename Steps>
void atVendorBorder(const char* where, Steps&& steps) noexcept {
    try {
        try {
            steps();
        } catch (const std::exception& error) {
            GIGE_LOG(Error) << "Exception in the " << where << " handler: " << error.what();
        } catch (...) {
            GIGE_LOG(Error) << "Unknown exception in the " << where << " handler";
        }
    } catch (...) {
        // A log sink that throws must not take the host down either.
    }
}

}  // namespace zelt_gige_api
