#include "vendor_functions.h"

#include <algorithm>
#include <iterator>

#include "vimba_c.h"

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

struct ErrorRow {
    const char* name;
    std::int32_t code;
};

constexpr ErrorRow kErrors[] = {
    {"VmbErrorInternalFault", VmbErrorInternalFault},
    {"VmbErrorApiNotStarted", VmbErrorApiNotStarted},
    {"VmbErrorNotFound", VmbErrorNotFound},
    {"VmbErrorBadHandle", VmbErrorBadHandle},
    {"VmbErrorDeviceNotOpen", VmbErrorDeviceNotOpen},
    {"VmbErrorInvalidAccess", VmbErrorInvalidAccess},
    {"VmbErrorBadParameter", VmbErrorBadParameter},
    {"VmbErrorStructSize", VmbErrorStructSize},
    {"VmbErrorMoreData", VmbErrorMoreData},
    {"VmbErrorWrongType", VmbErrorWrongType},
    {"VmbErrorInvalidValue", VmbErrorInvalidValue},
    {"VmbErrorTimeout", VmbErrorTimeout},
    {"VmbErrorOther", VmbErrorOther},
    {"VmbErrorResources", VmbErrorResources},
    {"VmbErrorInvalidCall", VmbErrorInvalidCall},
    {"VmbErrorNoTL", VmbErrorNoTL},
    {"VmbErrorNotImplemented", VmbErrorNotImplemented},
    {"VmbErrorNotSupported", VmbErrorNotSupported},
    {"VmbErrorIncomplete", VmbErrorIncomplete},
    {"VmbErrorIO", VmbErrorIO},
};

}  // namespace

bool isVendorFunction(std::string_view name) {
    return std::find(std::begin(kFunctions), std::end(kFunctions), name) != std::end(kFunctions);
}

std::vector<std::string> vendorFunctions() {
    return {std::begin(kFunctions), std::end(kFunctions)};
}

std::vector<std::string> vendorErrors() {
    std::vector<std::string> names;
    for (const ErrorRow& row : kErrors) names.emplace_back(row.name);
    return names;
}

std::int32_t vendorErrorCode(std::string_view name) {
    const auto* row = std::find_if(std::begin(kErrors), std::end(kErrors),
                                   [&](const ErrorRow& known) { return name == known.name; });
    return row != std::end(kErrors) ? row->code : VmbErrorSuccess;
}

}  // namespace simulator
