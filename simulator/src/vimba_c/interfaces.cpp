// Interfaces, and the ancillary data of frames.
#include "vendor_call.h"

using namespace simulator;

namespace {

VmbInterfaceInfo_t interfaceInfo(const InterfaceRow* row) {
    VmbInterfaceInfo_t info{};
    info.interfaceIdString = row->id;
    info.interfaceType = VmbInterfaceEthernet;
    info.interfaceName = row->name;
    info.serialString = row->serial;
    info.permittedAccess = VmbAccessModeFull | VmbAccessModeRead;
    return info;
}

/// What the frame says of itself is only believed when the trailer is there.
bool readChunk(const VmbFrame_t& frame, ChunkData& data) {
    const bool filled = frame.receiveStatus == VmbFrameStatusComplete && frame.buffer != nullptr &&
                        frame.ancillarySize == kChunkTrailerSize && frame.imageSize <= frame.bufferSize &&
                        frame.bufferSize - frame.imageSize >= kChunkTrailerSize;
    return filled && readChunkTrailer(static_cast<const std::uint8_t*>(frame.buffer) + frame.imageSize,
                                      data) == Result::Success;
}

}  // namespace

VmbError_t VmbInterfacesList(VmbInterfaceInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                             VmbUint32_t sizeofInfo) {
    return vendorCall("VmbInterfacesList", {length, sizeofInfo}, {found}, [&] {
        const Given given{found != nullptr, array == nullptr || sizeofInfo == sizeof *array};
        return withLibrary(given, [&](Simulation& all) {
            return fillList(all.interfaces(), array, length, found, interfaceInfo);
        });
    });
}

VmbError_t VmbInterfaceOpen(const char* id, VmbHandle_t* handle) {
    return vendorCall("VmbInterfaceOpen", {id}, {handle}, [&] {
        return withLibrary({id != nullptr && handle != nullptr},
                           [&](Simulation& all) { return all.openInterface(id, *handle); });
    });
}

VmbError_t VmbInterfaceClose(const VmbHandle_t handle) {
    return vendorCall("VmbInterfaceClose", {handle}, {}, [&] {
        return withLibrary({}, [&](Simulation& all) { return all.closeInterface(handle); });
    });
}

VmbError_t VmbAncillaryDataOpen(VmbFrame_t* frame, VmbHandle_t* ancillaryHandle) {
    return vendorCall("VmbAncillaryDataOpen", {Argument(nullptr, frame)}, {ancillaryHandle}, [&] {
        return withLibrary({frame != nullptr && ancillaryHandle != nullptr}, [&](Simulation& all) {
            ChunkData data;
            if (!readChunk(*frame, data)) return Result::BadHandle;
            all.openAncillary(data, *ancillaryHandle);
            return Result::Success;
        });
    });
}

VmbError_t VmbAncillaryDataClose(const VmbHandle_t ancillaryHandle) {
    return vendorCall("VmbAncillaryDataClose", {ancillaryHandle}, {}, [&] {
        return withLibrary({}, [&](Simulation& all) { return all.closeAncillary(ancillaryHandle); });
    });
}
