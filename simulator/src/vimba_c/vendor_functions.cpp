#include "vendor_functions.h"

#include <algorithm>
#include <iterator>

namespace simulator {
namespace {

constexpr std::string_view kFunctions[] = {
    "VmbVersionQuery",
    "VmbStartup",
    "VmbShutdown",
    "VmbCamerasList",
    "VmbCameraInfoQuery",
    "VmbCameraOpen",
    "VmbCameraClose",
    "VmbFeaturesList",
    "VmbFeatureInfoQuery",
    "VmbFeatureListAffected",
    "VmbFeatureListSelected",
    "VmbFeatureAccessQuery",
    "VmbFeatureIntGet",
    "VmbFeatureIntSet",
    "VmbFeatureIntRangeQuery",
    "VmbFeatureIntIncrementQuery",
    "VmbFeatureFloatGet",
    "VmbFeatureFloatSet",
    "VmbFeatureFloatRangeQuery",
    "VmbFeatureFloatIncrementQuery",
    "VmbFeatureEnumGet",
    "VmbFeatureEnumSet",
    "VmbFeatureEnumRangeQuery",
    "VmbFeatureEnumIsAvailable",
    "VmbFeatureEnumAsInt",
    "VmbFeatureEnumAsString",
    "VmbFeatureEnumEntryGet",
    "VmbFeatureStringGet",
    "VmbFeatureStringSet",
    "VmbFeatureStringMaxlengthQuery",
    "VmbFeatureBoolGet",
    "VmbFeatureBoolSet",
    "VmbFeatureCommandRun",
    "VmbFeatureCommandIsDone",
    "VmbFeatureRawGet",
    "VmbFeatureRawSet",
    "VmbFeatureRawLengthQuery",
    "VmbFeatureInvalidationRegister",
    "VmbFeatureInvalidationUnregister",
    "VmbFrameAnnounce",
    "VmbFrameRevoke",
    "VmbFrameRevokeAll",
    "VmbCaptureStart",
    "VmbCaptureEnd",
    "VmbCaptureFrameQueue",
    "VmbCaptureFrameWait",
    "VmbCaptureQueueFlush",
    "VmbInterfacesList",
    "VmbInterfaceOpen",
    "VmbInterfaceClose",
    "VmbAncillaryDataOpen",
    "VmbAncillaryDataClose",
    "VmbMemoryRead",
    "VmbMemoryWrite",
    "VmbRegistersRead",
    "VmbRegistersWrite",
    "VmbCameraSettingsSave",
    "VmbCameraSettingsLoad",
};
static_assert(std::size(kFunctions) == 58);

}  // namespace

bool isVendorFunction(std::string_view name) {
    return std::find(std::begin(kFunctions), std::end(kFunctions), name) != std::end(kFunctions);
}

}  // namespace simulator
