#include "plugin_on_stand_in.h"

#include <stdexcept>

#include <boost/uuid/string_generator.hpp>

#include "config_item_variant.h"
#include "config_keys.h"
#include "if_service_factory.h"
#include "if_sync_aux_service.h"
#include "zelt_gige_vmb_api.h"

namespace bench {
namespace {

constexpr std::size_t kBuffers = 5;  // as many as the plug-in queues

void require(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(std::string("The plug-in on the stand-in: ") + what);
}

void queueAgain(VmbHandle_t handle, VmbFrame_t* frame) {
    VmbCaptureFrameQueue(handle, frame, &queueAgain);
}

}  // namespace

thread_local std::uint64_t FrameClock::t_now = 0;

PluginOnStandIn::PluginOnStandIn(const Options& options) : m_options(options), m_sinks(options.cameras) {
    vendor::plug(options.cameras);
    for (unsigned camera = 0; camera < options.cameras; ++camera) m_frames.emplace_back(camera);
    m_plugin = std::make_unique<zelt_gige_camera::CameraPlugin>(
        0, std::make_shared<zelt_gige_api::VimbaCameraApi>(*options.pages));
    m_plugin->setSharedAcquisitionObject(std::make_shared<FrameClock>());
    require(m_plugin->createServices() && m_plugin->initialize(), "is not initialized");
    m_plugin->enumerateDevices();
    require(m_plugin->getChannelIds().size() == options.cameras, "lacks cameras");
    if (options.mode == Mode::Aux) useAux();
    if (options.acquiring) start();
}

PluginOnStandIn::~PluginOnStandIn() {
    if (m_options.acquiring) m_plugin->stopAcquisition();
    m_plugin->onAcquisitionFinished();
    m_plugin->clearChannelSinks();
    m_plugin->terminate();
}

void PluginOnStandIn::useAux() {
    plugin_api::IfServiceFactory* const factory = m_plugin->getServiceFactory();
    plugin_api::IfService* service = nullptr;
    const boost::uuids::string_generator parse;
    require(factory->getService(parse("{784229AE-48AB-4A05-8F83-9FB70F11827F}"), &service), "has no AUX");
    static_cast<zelt::IfSyncAuxService*>(service)->setSyncOutAuxFrequency(kFramesPerSecond, 1);
    factory->release();
    const config_items::SingleValueConfigItem<std::string> aux("GIGE/TriggerModeAux");
    for (unsigned camera = 0; camera < m_options.cameras; ++camera) {
        const auto channel = m_plugin->getChannelConfig(camera);
        require(channel->setItem(config_keys::kCameraTriggerMode, aux), "takes no AUX mode");
    }
}

void PluginOnStandIn::start() {
    for (unsigned camera = 0; camera < m_options.cameras; ++camera) {
        m_plugin->setChannelSink(camera, &m_sinks[camera]);
    }
    require(m_plugin->prepareAcquisition(), "is not prepared");
    require(m_plugin->onAcquisitionPrepared() && m_plugin->startAcquisition(), "does not start");
}

bool PluginOnStandIn::deliver(unsigned camera, std::uint64_t frames) {
    const std::uint64_t before = m_sinks[camera].count;
    bool delivered = true;
    for (std::uint64_t frame = 0; frame < frames; ++frame)
        delivered = m_frames[camera].deliver() && delivered;
    return delivered && m_sinks[camera].count - before == frames;
}

BareCamera::BareCamera(unsigned camera) : m_buffers(kBuffers), m_frames(camera) {
    vendor::plug(camera + 1);
    require(VmbCameraOpen(vendor::idOf(camera), VmbAccessModeFull, &m_handle) == VmbErrorSuccess,
            "a camera cannot be opened");
    for (VmbFrame_t& buffer : m_buffers) {
        VmbFrameAnnounce(m_handle, &buffer, sizeof buffer);
        VmbCaptureFrameQueue(m_handle, &buffer, &queueAgain);
    }
}

BareCamera::~BareCamera() {
    VmbCaptureQueueFlush(m_handle);
    VmbCameraClose(m_handle);
}

}  // namespace bench
