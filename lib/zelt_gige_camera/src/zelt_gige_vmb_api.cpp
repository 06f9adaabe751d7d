// Start and stop of the vendor library, and discovery.
#include "zelt_gige_vmb_api.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <utility>

#include <boost/algorithm/string/predicate.hpp>

#include "assertion.h"
#include "zelt_gige_vmb_call.h"

namespace zelt_gige_api {
namespace {

constexpr const char* kDiscoveryEvent = "DiscoveryCameraEvent";
// The library reports no vendor.
constexpr const char* kVendor = "Allied Vision Technologies";

std::string textOrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

CameraInfo toCameraInfo(const VmbCameraInfo_t& record) {
    CameraInfo info;
    info.cameraId = textOrEmpty(record.cameraIdString);
    info.modelName = textOrEmpty(record.modelName);
    info.vendor = kVendor;
    info.serialNumber = textOrEmpty(record.serialString);
    info.deviceId = deviceIdOf(info.cameraId);
    return info;
}

std::vector<VmbCameraInfo_t> askForCameras() {
    constexpr const char* kFailed = "Could not retrieve the camera list: ";
    VmbUint32_t count = 0;
    check(VmbCamerasList(nullptr, 0, &count, sizeof(VmbCameraInfo_t)), kFailed);
    if (count == 0) return {};
    auto records = makeRoom<VmbCameraInfo_t>(count, kFailed);
    const VmbError_t result = VmbCamerasList(records.data(), count, &count, sizeof(VmbCameraInfo_t));
    // A camera that came between the two calls is found the next time.
    if (result != VmbErrorMoreData) check(result, kFailed);
    records.resize(std::min<std::size_t>(count, records.size()));
    return records;
}

/// Whether cameras are described by the very texts as before. The library keeps a text that it handed out.
bool haveSameTexts(const std::vector<VmbCameraInfo_t>& records, const std::vector<VmbCameraInfo_t>& others) {
    if (records.size() != others.size()) return false;
    if (records.empty()) return true;
    // Records without any difference are the rule, and compared at once. What lies between their fields, and
    // who has opened the camera, may differ.
    const std::size_t bytes = records.size() * sizeof(VmbCameraInfo_t);
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
    if (std::memcmp(records.data(), others.data(), bytes) == 0) return true;
    return std::equal(records.begin(), records.end(), others.begin(),
                      [](const VmbCameraInfo_t& a, const VmbCameraInfo_t& b) {
                          return a.cameraIdString == b.cameraIdString && a.modelName == b.modelName &&
                                 a.serialString == b.serialString;
                      });
}

}  // namespace

struct VimbaCameraApi::ListedCameras {
    std::vector<VmbCameraInfo_t> records;
    std::uint64_t discoveryEvents = 0;  ///< that had come before the library was asked
    std::vector<CameraInfo> cameras;
};

VimbaCameraApi::VimbaCameraApi(platform::PageAllocator& pages) : m_pages(pages) {}

VimbaCameraApi::~VimbaCameraApi() {
    VimbaCameraApi::shutdown();
}

bool VimbaCameraApi::startup() {
    const platform::MutexLock lock(m_session_mutex);
    if (m_started) return true;
    VmbVersionInfo_t version{};
    VmbError_t result = VmbVersionQuery(&version, sizeof version);
    if (result != VmbErrorSuccess) {
        GIGE_LOG(Error) << "Not able to query Vimba version: " << errorText(result);
        return false;
    }
    result = VmbStartup();
    if (result != VmbErrorSuccess) {
        GIGE_LOG(Error) << "Not able to initialize Vimba GIGE Camera API: " << errorText(result);
        return false;
    }
    m_started = true;
    return true;
}

void VimbaCameraApi::shutdown() {
    const platform::MutexLock lock(m_session_mutex);
    if (!m_started) return;
    VmbShutdown();
    m_started = false;
    {
        const platform::MutexLock mapsLock(m_maps_mutex);
        m_open_cameras.clear();
    }
    // The library's texts have gone.
    const platform::MutexLock listLock(m_list_mutex);
    m_listed.reset();
}

std::string VimbaCameraApi::getVersion() {
    VmbVersionInfo_t version{};
    if (VmbVersionQuery(&version, sizeof version) != VmbErrorSuccess) return "Vimba API unknown version";
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "Vimba API %u.%u.%u", version.major, version.minor,
                  version.patch);
    return text.data();
}

bool VimbaCameraApi::isGigeTransportLayerPresent() {
    if (!m_started) throw CameraApiError("API not initialized");
    return getBoolFeature(kSystemHandle, "GeVTLIsPresent");
}

void VimbaCameraApi::registerDiscoveryCallback(IfDiscoveryCallback* callback) {
    IfDiscoveryCallback* none = nullptr;
    if (!m_discovery_callback.compare_exchange_strong(none, callback)) {
        throw CameraApiError("Device monitor callback already registered");
    }
    if (!m_discovery_function.take(*this)) {
        m_discovery_callback = nullptr;
        throw CameraApiError("More than " + std::to_string(DiscoveryFunction::kStock) +
                             " plug-ins of this process look for cameras, terminate one of them");
    }
    // A failure leaves the callback stored on purpose: a second attempt is refused.
    check(VmbFeatureInvalidationRegister(toVmb(kSystemHandle), kDiscoveryEvent, m_discovery_function.get(),
                                         this),
          "Could not register callbacks: ");
    runCommand(kSystemHandle, "GeVDiscoveryAllAuto");
}

void VimbaCameraApi::unregisterDiscoveryCallback() {
    if (m_discovery_callback.load() == nullptr) return;
    check(VmbFeatureInvalidationUnregister(toVmb(kSystemHandle), kDiscoveryEvent, m_discovery_function.get()),
          "Could not unregister callbacks: ");
    m_discovery_callback = nullptr;
    // The library does not promise that a running call has ended, and the callback may die next.
    m_discovery_function.giveBack();
    runCommand(kSystemHandle, "GeVDiscoveryAllOff");
}

void VimbaCameraApi::handleDiscoveryEvent(CameraHandle handle, const char* name) {
    ++m_discovery_events;
    if (name == nullptr) name = "";
    ZELT_ASSERT(boost::equals(name, "DiscoveryCameraEvent"));
    IfDiscoveryCallback* const callback = m_discovery_callback;
    if (callback == nullptr) return;
    const std::string event = getEnumFeature(handle, kDiscoveryEvent);
    const std::string ident = getStringFeature(handle, "DiscoveryCameraIdent");
    if (event == "Missing") {
        callback->onCameraRemoved(ident);
    } else if (event == "Detected") {
        callback->onCameraAdded(ident);
    }
}

std::vector<CameraInfo> VimbaCameraApi::listCameras() {
    return *currentCameras();
}

std::shared_ptr<const std::vector<CameraInfo>> VimbaCameraApi::currentCameras() {
    const std::uint64_t events = m_discovery_events;
    const bool isToldOfChanges = m_discovery_callback != nullptr;
    std::vector<VmbCameraInfo_t> records = askForCameras();
    auto listed = [this] {
        const platform::MutexLock lock(m_list_mutex);
        return m_listed;
    }();
    const bool unchanged = isToldOfChanges && listed != nullptr && listed->discoveryEvents == events &&
                           haveSameTexts(records, listed->records);
    if (!unchanged) {
        std::vector<CameraInfo> cameras;
        cameras.reserve(records.size());
        for (const VmbCameraInfo_t& record : records) cameras.push_back(toCameraInfo(record));
        listed = std::make_shared<const ListedCameras>(
            ListedCameras{std::move(records), events, std::move(cameras)});
        const platform::MutexLock lock(m_list_mutex);
        m_listed = listed;
    }
    return {listed, &listed->cameras};
}

}  // namespace zelt_gige_api
