#include "zelt_gige_sync_aux_service.h"

#include "assertion.h"
#include "trace_scope.h"

namespace zelt_gige_camera {

GigeSyncAuxService::GigeSyncAuxService(IfAuxFrequencyListener* cameraPlugin) : m_camera_plugin(cameraPlugin) {
    ZELT_ASSERT(m_camera_plugin);
}

void GigeSyncAuxService::setSyncOutAuxFrequency(std::int64_t num, std::int64_t den) {
    const diagnostics::TraceScope trace(diagnostics::unilogger_zelt_plugin_gige_camera(),
                                        "GigeSyncAuxService::setSyncOutAuxFrequency()");
    const platform::MutexLock lock(m_mutex);
    if (num == 0 && den == 0) {
        m_frequency.reset();
    } else {
        ZELT_ASSERT(den != 0);
        m_frequency = normalisedFraction(num, den);
    }
    if (m_camera_plugin != nullptr) m_camera_plugin->onSyncOutAuxFrequencyChanged(m_frequency);
}

AuxFrequency GigeSyncAuxService::getSyncOutAuxFrequency() const {
    const platform::MutexLock lock(m_mutex);
    return m_frequency;
}

void GigeSyncAuxService::deliver(const std::function<void(const AuxFrequency&)>& store) const {
    const platform::MutexLock lock(m_mutex);
    store(m_frequency);
}

}  // namespace zelt_gige_camera
