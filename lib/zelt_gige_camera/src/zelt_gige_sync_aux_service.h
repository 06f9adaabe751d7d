/// Keeps the frequency of the host's trigger output.
#pragma once

#include <functional>

#include "if_sync_aux_service.h"
#include "mutex.h"
#include "zelt_gige_aux_frequency_listener.h"

namespace zelt_gige_camera {

/// See zelt::IfSyncAuxService for what the host is promised. [any thread]
class GigeSyncAuxService final : public zelt::IfSyncAuxService {
  public:
    /// `cameraPlugin` is told of every frequency that is set; it must outlive this. Null is an assertion, and
    /// nobody is told then.
    explicit GigeSyncAuxService(IfAuxFrequencyListener* cameraPlugin);

    std::uint32_t addRef() override { return 0; }
    std::uint32_t release() override { return 0; }
    /// An exception of the plug-in's passes through; the new frequency stays.
    void setSyncOutAuxFrequency(std::int64_t num, std::int64_t den) override ZELT_EXCLUDES(m_mutex);

    AuxFrequency getSyncOutAuxFrequency() const ZELT_EXCLUDES(m_mutex);
    /// Hands the current frequency to `store`, which must not call this service. What `store` makes visible
    /// is not outdated: a change waits until it has returned, and is told to the plug-in after that.
    void deliver(const std::function<void(const AuxFrequency&)>& store) const ZELT_EXCLUDES(m_mutex);

  private:
    IfAuxFrequencyListener* const m_camera_plugin;
    mutable platform::Mutex m_mutex;
    AuxFrequency m_frequency ZELT_GUARDED_BY(m_mutex);
};

}  // namespace zelt_gige_camera
