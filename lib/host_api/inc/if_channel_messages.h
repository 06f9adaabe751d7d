#pragma once

#include <functional>

#include "exception_manager.h"

namespace zelt {

/// Messages of a channel for the host's user. Offered by camera channels besides their configuration;
/// reached by dynamic_cast from the object that getChannel returns.
class IfChannelMessages {
  public:
    /// Told of one message, which is valid during the call only.
    using MessageListener = std::function<void(const exception_manager::Exception&)>;

    /// Copies the channel's latest message; false when there was none. [any thread]
    virtual bool getLastMessage(exception_manager::Exception& out) = 0;
    /// Sets the listener that is told of every message as it happens; empty switches it off. [host] The
    /// listener may be called on any thread, also the vendor library's, and from within plug-in operations,
    /// so it must not call plug-in operations itself; channel configurations it may use. After this returns
    /// the old listener is never called again.
    virtual void setMessageListener(MessageListener listener) = 0;

  protected:
    ~IfChannelMessages() = default;
};

}  // namespace zelt
