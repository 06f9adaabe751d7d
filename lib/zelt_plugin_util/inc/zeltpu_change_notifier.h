/// Tells the host of changed settings.
#pragma once

#include <memory>
#include <string>

#include "if_channel_config.h"
#include "mutex.h"

namespace zelt::plugin_util {

/// A change callback shared between a configuration and its options; null for none.
using SharedChangeCallback = std::shared_ptr<const channel_config::IfChannelConfig::ChangeCallback>;

/// Holds the callback that is connected. [any thread]
class ChangeNotifier {
  public:
    void connect(SharedChangeCallback callback);
    SharedChangeCallback connected() const;
    /// Calls the callback connected, if any, on the calling thread; what it throws passes on. To be called
    /// with no lock held.
    void notify(const std::string& key) const;

  private:
    mutable platform::Mutex m_mutex;
    SharedChangeCallback m_callback ZELT_GUARDED_BY(m_mutex);
};

}  // namespace zelt::plugin_util
