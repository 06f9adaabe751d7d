#include "zelt_gige_camera_channel_messages.h"

#include <utility>

#include "zelt_gige_log.h"

namespace zelt_gige_camera {

void ChannelMessages::post(const exception_manager::Exception& message) {
    {
        const platform::MutexLock lock(m_last_mutex);
        m_last = message;
    }
    const std::lock_guard lock(m_listener_mutex);
    if (!m_listener) return;
    // A copy, so that a listener that replaces itself does not pull the ground from under its own call.
    const Listener listener = m_listener;
    try {
        listener(message);
    } catch (...) {
        GIGE_LOG(Error) << "A message listener failed on: " << message.getMessage();
    }
}

bool ChannelMessages::getLast(exception_manager::Exception& out) const {
    const platform::MutexLock lock(m_last_mutex);
    if (!m_last) return false;
    out = *m_last;
    return true;
}

void ChannelMessages::setListener(Listener listener) {
    const std::lock_guard lock(m_listener_mutex);
    std::swap(m_listener, listener);
}

}  // namespace zelt_gige_camera
