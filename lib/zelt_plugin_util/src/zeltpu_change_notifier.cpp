#include "zeltpu_change_notifier.h"

namespace zelt::plugin_util {

void ChangeNotifier::connect(SharedChangeCallback callback) {
    const platform::MutexLock lock(m_mutex);
    m_callback.swap(callback);  // the one before is destroyed after the lock is gone
}

SharedChangeCallback ChangeNotifier::connected() const {
    const platform::MutexLock lock(m_mutex);
    return m_callback;
}

void ChangeNotifier::notify(const std::string& key) const {
    const SharedChangeCallback callback = connected();
    if (callback != nullptr) (*callback)(key);
}

}  // namespace zelt::plugin_util
