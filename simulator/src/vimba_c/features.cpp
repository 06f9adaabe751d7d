// What features there are, commands, and notice of changes.
#include "feature_records.h"
#include "vendor_call.h"

using namespace simulator;

namespace {

using Listing = Result (FeatureModule::*)(const char*, std::vector<FeatureFacts>&);

/// The features that depend on another one in some way.
VmbError_t listRelated(VmbHandle_t handle, const char* name, Listing listing, VmbFeatureInfo_t* array,
                       VmbUint32_t length, VmbUint32_t* found, VmbUint32_t sizeofInfo) {
    const Given given{name != nullptr && (array != nullptr || found != nullptr),
                      array == nullptr || sizeofInfo == sizeof *array};
    return withModule(handle, given, [&](FeatureModule& module) {
        std::vector<FeatureFacts> features;
        const Result listed = (module.*listing)(name, features);
        if (listed != Result::Success) return listed;
        return fillList(features, array, length, found, featureInfo);
    });
}

}  // namespace

VmbError_t VmbFeaturesList(const VmbHandle_t handle, VmbFeatureInfo_t* array, VmbUint32_t length,
                           VmbUint32_t* found, VmbUint32_t sizeofInfo) {
    return vendorCall("VmbFeaturesList", {handle, length, sizeofInfo}, {found}, [&] {
        const Given given{array != nullptr || found != nullptr,
                          array == nullptr || sizeofInfo == sizeof *array};
        return withModule(handle, given, [&](FeatureModule& module) {
            std::vector<FeatureFacts> features;
            const Result listed = module.list(features);
            if (listed != Result::Success) return listed;
            return fillList(features, array, length, found, featureInfo);
        });
    });
}

VmbError_t VmbFeatureInfoQuery(const VmbHandle_t handle, const char* name, VmbFeatureInfo_t* info,
                               VmbUint32_t sizeofInfo) {
    return vendorCall("VmbFeatureInfoQuery", {handle, name, sizeofInfo}, {}, [&] {
        const Given given{name != nullptr && info != nullptr, sizeofInfo == sizeof *info};
        return withModule(handle, given, [&](FeatureModule& module) {
            FeatureFacts facts;
            const Result described = module.describe(name, facts);
            if (described == Result::Success) *info = featureInfo(facts);
            return described;
        });
    });
}

VmbError_t VmbFeatureListAffected(const VmbHandle_t handle, const char* name, VmbFeatureInfo_t* array,
                                  VmbUint32_t length, VmbUint32_t* found, VmbUint32_t sizeofInfo) {
    return vendorCall("VmbFeatureListAffected", {handle, name, length, sizeofInfo}, {found}, [&] {
        return listRelated(handle, name, &FeatureModule::listAffected, array, length, found, sizeofInfo);
    });
}

VmbError_t VmbFeatureListSelected(const VmbHandle_t handle, const char* name, VmbFeatureInfo_t* array,
                                  VmbUint32_t length, VmbUint32_t* found, VmbUint32_t sizeofInfo) {
    return vendorCall("VmbFeatureListSelected", {handle, name, length, sizeofInfo}, {found}, [&] {
        return listRelated(handle, name, &FeatureModule::listSelected, array, length, found, sizeofInfo);
    });
}

VmbError_t VmbFeatureAccessQuery(const VmbHandle_t handle, const char* name, VmbBool_t* readable,
                                 VmbBool_t* writeable) {
    return vendorCall("VmbFeatureAccessQuery", {handle, name}, {readable, writeable}, [&] {
        const bool given = name != nullptr && (readable != nullptr || writeable != nullptr);
        return withModule(handle, {given}, [&](FeatureModule& module) {
            bool mayRead = false;
            bool mayWrite = false;
            const Result known = module.access(name, mayRead, mayWrite);
            if (known == Result::Success && readable != nullptr) *readable = mayRead;
            if (known == Result::Success && writeable != nullptr) *writeable = mayWrite;
            return known;
        });
    });
}

VmbError_t VmbFeatureCommandRun(const VmbHandle_t handle, const char* name) {
    return vendorCall("VmbFeatureCommandRun", {handle, name}, {}, [&] {
        return withModule(handle, {name != nullptr}, [&](FeatureModule& module) { return module.run(name); });
    });
}

VmbError_t VmbFeatureCommandIsDone(const VmbHandle_t handle, const char* name, VmbBool_t* done) {
    return vendorCall("VmbFeatureCommandIsDone", {handle, name}, {done}, [&] {
        return withModule(handle, {name != nullptr && done != nullptr},
                          [&](FeatureModule& module) { return module.isDone(name, *done); });
    });
}

VmbError_t VmbFeatureInvalidationRegister(const VmbHandle_t handle, const char* name,
                                          VmbInvalidationCallback callback, void* userContext) {
    return vendorCall("VmbFeatureInvalidationRegister", {handle, name}, {}, [&] {
        return withModule(handle, {name != nullptr && callback != nullptr}, [&](FeatureModule& module) {
            return module.registerInvalidation(name, callback, userContext);
        });
    });
}

VmbError_t VmbFeatureInvalidationUnregister(const VmbHandle_t handle, const char* name,
                                            VmbInvalidationCallback callback) {
    return vendorCall("VmbFeatureInvalidationUnregister", {handle, name}, {}, [&]() -> VmbError_t {
        const Given given{name != nullptr && callback != nullptr};
        // A camera that is gone may still be in this callback; then it has to be waited for.
        const auto gone = simulation().session(handle);
        if (gone != nullptr && !gone->isAlive() && given.arguments) {
            return code(gone->unregisterInvalidation(name, callback));
        }
        return withModule(handle, given, [&](FeatureModule& module) {
            return module.unregisterInvalidation(name, callback);
        });
    });
}
