/// A channel's messages for the host's user.
#pragma once

#include <mutex>
#include <optional>

#include "exception_manager.h"
#include "if_channel_messages.h"
#include "mutex.h"

namespace zelt_gige_camera {

/// Keeps the latest message and tells the listener of each. [any thread] No lock of the channel's may be held
/// around post and setListener.
class ChannelMessages {
  public:
    using Listener = zelt::IfChannelMessages::MessageListener;

    /// Stores the message in place of the earlier one and tells the listener, whose exceptions end here.
    void post(const exception_manager::Exception& message);
    bool getLast(exception_manager::Exception& out) const;
    /// Once it returns, the old listener is never called again.
    void setListener(Listener listener);

  private:
    mutable platform::Mutex m_last_mutex;
    std::optional<exception_manager::Exception> m_last ZELT_GUARDED_BY(m_last_mutex);
    // Recursive, since a listener may replace itself from within its own call.
    std::recursive_mutex m_listener_mutex;
    Listener m_listener;
};

}  // namespace zelt_gige_camera
