// Start and stop of the library.
#include "vendor_call.h"

using namespace simulator;

VmbError_t VmbVersionQuery(VmbVersionInfo_t* info, VmbUint32_t sizeofInfo) {
    return vendorCall("VmbVersionQuery", {sizeofInfo}, {}, [&]() -> VmbError_t {
        const VmbError_t checked = checkGiven({info != nullptr, sizeofInfo == sizeof *info});
        if (checked == VmbErrorSuccess) *info = {1, 9, 1};
        return checked;
    });
}

VmbError_t VmbStartup() {
    return vendorCall("VmbStartup", {}, {}, [] { return code(simulation().startup(systemHandle())); });
}

void VmbShutdown() {
    guarded([]() -> VmbError_t {
        const std::initializer_list<Argument> none;
        CallScope scope("VmbShutdown", none);
        VmbError_t result = VmbErrorSuccess;
        reportWaitInCallback();
        if (!scope.fails(result)) simulation().shutdown();
        scope.finishVoid();
        return VmbErrorSuccess;
    });
}
