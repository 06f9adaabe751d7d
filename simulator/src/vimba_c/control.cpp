// The control interface.
#include <algorithm>
#include <cstring>

#include "frame_stamp.h"
#include "vendor_call.h"
#include "vendor_functions.h"
#include "vimba_simulator.h"
#include "watchdog.h"

using namespace simulator;

namespace {

Nanoseconds deadline(VmbUint32_t timeoutMs) {
    return simulation().clock().now() + timeoutMs * kMillisecond;
}

Nanoseconds span(VmbUint64_t ns) {
    return static_cast<Nanoseconds>(std::min<VmbUint64_t>(ns, kNever));
}

size_t copyText(const std::string& text, char* buffer, size_t size) {
    if (buffer != nullptr && size > 0) {
        const size_t copied = std::min(size - 1, text.size());
        std::memcpy(buffer, text.data(), copied);
        buffer[copied] = '\0';
    }
    return text.size() + 1;
}

/// For what concerns the open session of a camera.
template <typename Body>
VmbError_t withOpenCamera(const char* cameraId, bool given, Body&& body) {
    return guarded([&]() -> VmbError_t {
        if (cameraId == nullptr || !given) return VmbErrorBadParameter;
        std::shared_ptr<CameraSession> session;
        const Result known = simulation().session(cameraId, session);
        return code(known == Result::Success ? body(*session) : known);
    });
}

template <typename Body>
VmbError_t withFrameFaults(const char* cameraId, Body&& body) {
    return guarded([&]() -> VmbError_t {
        if (cameraId == nullptr) return VmbErrorBadParameter;
        const auto faults = simulation().frameFaults(cameraId);
        if (faults == nullptr) return VmbErrorNotFound;
        body(*faults);
        return VmbErrorSuccess;
    });
}

template <typename Body>
VmbError_t withTexts(bool given, Body&& body) {
    return guarded([&]() -> VmbError_t { return given ? code(body(simulation())) : VmbErrorBadParameter; });
}

}  // namespace

const char* VmbSimScenarioName() {
    return simulation().scenarioName();
}

VmbError_t VmbSimLoadScenario(const char* name) {
    return withTexts(name != nullptr, [=](Simulation& all) { return all.loadScenario(name); });
}

size_t VmbSimScenarioError(char* buffer, size_t size) {
    return copyText(simulation().scenarioError(), buffer, size);
}

VmbError_t VmbSimUnplugCamera(const char* cameraId) {
    return withTexts(cameraId != nullptr, [=](Simulation& all) { return all.plug(cameraId, false); });
}

VmbError_t VmbSimPlugCamera(const char* cameraId) {
    return withTexts(cameraId != nullptr, [=](Simulation& all) { return all.plug(cameraId, true); });
}

VmbError_t VmbSimUnplugInterface(const char* interfaceId) {
    return withTexts(interfaceId != nullptr,
                     [=](Simulation& all) { return all.plugInterface(interfaceId, false); });
}

VmbError_t VmbSimPlugInterface(const char* interfaceId) {
    return withTexts(interfaceId != nullptr,
                     [=](Simulation& all) { return all.plugInterface(interfaceId, true); });
}

VmbError_t VmbSimTakeControl(const char* cameraId, VmbBool_t taken) {
    return withTexts(cameraId != nullptr, [=](Simulation& all) { return all.takeControl(cameraId, taken); });
}

VmbError_t VmbSimRaiseDiscoveryEvent(const char* event, const char* ident) {
    return withTexts(event != nullptr && ident != nullptr,
                     [=](Simulation& all) { return all.raiseDiscovery(event, ident); });
}

VmbError_t VmbSimRemoveFeature(const char* cameraId, const char* feature) {
    return withTexts(feature != nullptr,
                     [=](Simulation& all) { return all.removeFeature(cameraId, feature); });
}

VmbError_t VmbSimForceFeature(const char* cameraId, const char* feature, const char* text) {
    return withTexts(feature != nullptr && text != nullptr,
                     [=](Simulation& all) { return all.forceFeature(cameraId, feature, text); });
}

VmbError_t VmbSimFailCall(const char* function, const char* argument, VmbInt32_t nth, VmbError_t code) {
    return guarded([&]() -> VmbError_t {
        if (function == nullptr || nth == 0) return VmbErrorBadParameter;
        if (!isVendorFunction(function)) return VmbErrorNotFound;
        simulation().callFaults().add(function, argument == nullptr, argument != nullptr ? argument : "", nth,
                                      code);
        return VmbErrorSuccess;
    });
}

VmbError_t VmbSimLoseFrames(const char* cameraId, VmbUint32_t count) {
    return withFrameFaults(cameraId, [=](FrameFaults& faults) { faults.lose(count); });
}

VmbError_t VmbSimBreakFrames(const char* cameraId, VmbUint32_t count, VmbFrameStatus_t status) {
    return withFrameFaults(cameraId, [=](FrameFaults& faults) { faults.damage(count, status); });
}

VmbError_t VmbSimCableDuring(const char* cameraId, VmbBool_t plugged, const char* function,
                             const char* argument, VmbInt32_t nth) {
    return guarded([&]() -> VmbError_t {
        if (cameraId == nullptr || function == nullptr || nth == 0) return VmbErrorBadParameter;
        const std::string_view name = function;
        const bool hasNoMiddle = name == "VmbVersionQuery" || name == "VmbStartup" || name == "VmbShutdown";
        if (!isVendorFunction(name) || hasNoMiddle || simulation().frameFaults(cameraId) == nullptr) {
            return VmbErrorNotFound;
        }
        simulation().cableFaults().add(function, argument == nullptr, argument != nullptr ? argument : "",
                                       nth, cameraId, plugged);
        return VmbErrorSuccess;
    });
}

void VmbSimClearFaults() {
    simulation().clearFaults();
}

VmbError_t VmbSimWaitForFrames(const char* cameraId, VmbUint64_t count, VmbUint32_t timeoutMs) {
    return withOpenCamera(cameraId, true, [=](CameraSession& session) {
        return session.waitForFrames(count, deadline(timeoutMs));
    });
}

VmbError_t VmbSimWaitForEvents(VmbUint32_t timeoutMs) {
    return guarded([=] { return code(simulation().waitForEvents(deadline(timeoutMs))); });
}

void VmbSimSetWatchdog(VmbUint32_t limitMs) {
    Watchdog::setLimit(std::chrono::milliseconds(limitMs));
}

VmbError_t VmbSimHoldSensor(const char* cameraId, VmbBool_t hold) {
    return withTexts(cameraId != nullptr, [=](Simulation& all) { return all.holdSensor(cameraId, hold); });
}

VmbError_t VmbSimTakeQueuedFrame(const char* cameraId, VmbHandle_t* handle, VmbFrame_t** frame,
                                 VmbFrameCallback* callback) {
    const bool given = handle != nullptr && frame != nullptr && callback != nullptr;
    return withOpenCamera(cameraId, given, [=](CameraSession& session) {
        QueuedFrame taken;
        if (!session.takeQueued(taken)) return Result::NotFound;
        *handle = session.handle();
        *frame = static_cast<VmbFrame_t*>(taken.memory.record);
        *callback = reinterpret_cast<VmbFrameCallback>(taken.callback);
        return Result::Success;
    });
}

VmbError_t VmbSimFrameCounts(const char* cameraId, VmbUint32_t* announced, VmbUint32_t* queued) {
    return withOpenCamera(cameraId, announced != nullptr && queued != nullptr, [=](CameraSession& session) {
        session.counts(*announced, *queued);
        return Result::Success;
    });
}

VmbError_t VmbSimCountUnderruns(const char* cameraId, VmbUint64_t* frames) {
    return withOpenCamera(cameraId, frames != nullptr, [=](CameraSession& session) {
        FeatureValue count = std::int64_t{0};
        const Result result = session.read("StatFrameUnderrun", FeatureType::Int, count);
        if (result == Result::Success) *frames = static_cast<VmbUint64_t>(std::get<std::int64_t>(count));
        return result;
    });
}

VmbError_t VmbSimCountHoldings(VmbSimHoldings* holdings) {
    return guarded([=]() -> VmbError_t {
        if (holdings == nullptr) return VmbErrorBadParameter;
        const Holdings held = simulation().holdings();
        *holdings = {held.cameras, held.interfaces, held.registrations, held.announced};
        return VmbErrorSuccess;
    });
}

void VmbSimJournalStart() {
    simulation().journal().start();
}

void VmbSimJournalStop() {
    simulation().journal().stop();
}

size_t VmbSimJournalText(char* buffer, size_t size) {
    return copyText(simulation().journal().text(), buffer, size);
}

size_t VmbSimMisuseText(char* buffer, size_t size) {
    return copyText(simulation().misuses().text(), buffer, size);
}

void VmbSimClearMisuse() {
    simulation().misuses().clear();
}

VmbError_t VmbSimUseVirtualTime(VmbBool_t on) {
    return withTexts(true, [=](Simulation& all) { return all.useVirtualTime(on); });
}

VmbError_t VmbSimAdvance(VmbUint64_t ns) {
    return withTexts(true, [=](Simulation& all) { return all.advance(span(ns)); });
}

VmbError_t VmbSimRunUntilIdle(VmbUint64_t ns) {
    return withTexts(true, [=](Simulation& all) { return all.runUntilIdle(span(ns)); });
}

VmbUint64_t VmbSimTime() {
    return static_cast<VmbUint64_t>(simulation().clock().now());
}

VmbError_t VmbSimReadStamp(const void* image, VmbUint64_t size, VmbSimFrameStamp* stamp) {
    if (image == nullptr || stamp == nullptr) return VmbErrorBadParameter;
    FrameStamp read;
    const Result result = readStamp(static_cast<const std::uint8_t*>(image), size, read);
    if (result != Result::NotFound) {
        *stamp = {read.frameId, read.cameraTicks, read.exposureStart, read.way, read.width, read.height};
    }
    return code(result);
}
