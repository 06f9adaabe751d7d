/// The settings of one channel, held by key, each an option.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "if_channel_config.h"
#include "mutex.h"
#include "zeltpu_simple_channel_config_options.h"

namespace zelt::plugin_util {

/// Options are registered before the configuration is shared; from then on every operation may be called
/// from several host threads. The values behind the options are guarded by whoever owns them. No lock is
/// held while a virtual operation of an option or the change callback runs.
class SimpleChannelConfig : public channel_config::IfChannelConfig {
  public:
    using Constraints = ChannelConfigOption::Constraints;

    SimpleChannelConfig() = default;
    SimpleChannelConfig(const SimpleChannelConfig&) = delete;
    SimpleChannelConfig& operator=(const SimpleChannelConfig&) = delete;

    /// Registers an option (not null) under its key and connects the change callback to it. Asserts that the
    /// key is new; otherwise the new option takes over the key, which is listed once for each of the two.
    /// Not to be called any more once another thread may use the configuration.
    void addOption(std::shared_ptr<ChannelConfigOption> option);

    const std::vector<std::string>& getKeys() override;
    void onHostEvent(const void* event) override;
    bool hasKey(const std::string& key) override;
    /// Asserts that the option is available; what it throws passes on.
    config_items::ConfigItemVariant getItem(const std::string& key) override;
    /// Asserts that the option is available; what it throws passes on.
    Constraints getConstraints(const std::string& key) override;
    /// Does not ask whether the option is available; refreshes the available keys afterwards.
    bool setItem(const std::string& key, const config_items::ConfigItemVariant& value) override;
    ChangeCallback setChangeCallback(ChangeCallback callback) override;

  protected:
    /// Brings the available keys in line with the options; to be called after every change that makes one
    /// appear or vanish. [host] Asks every option once, so nothing may be locked that their availability
    /// callables lock.
    void refreshAvailableKeys();

    /// Tells the host that the setting `key` changed, through the current change callback and on the calling
    /// thread; what the callback throws passes on. [host] To be called with no lock held.
    void notifyChanged(const std::string& key) const;

  private:
    using Keys = std::vector<std::string>;

    std::vector<std::shared_ptr<ChannelConfigOption>> m_registered;
    std::map<std::string, std::shared_ptr<ChannelConfigOption>> m_options;

    mutable platform::Mutex m_keys_mutex;
    std::shared_ptr<const Keys> m_available_keys ZELT_GUARDED_BY(m_keys_mutex) =
        std::make_shared<const Keys>();
    // Lists to which the host holds references; a list that comes again is the same object.
    std::vector<std::shared_ptr<const Keys>> m_handed_out ZELT_GUARDED_BY(m_keys_mutex);
    std::uint64_t m_last_refresh ZELT_GUARDED_BY(m_keys_mutex) = 0;
    std::uint64_t m_published_refresh ZELT_GUARDED_BY(m_keys_mutex) = 0;

    // Held while the notifiers are connected, so that all of them end with the same callback.
    platform::Mutex m_callback_mutex;
    // Never called, so that copying it cannot meet a call that changes what it holds.
    ChangeCallback m_callback_as_given ZELT_GUARDED_BY(m_callback_mutex);
    ChangeNotifier m_notifier;
};

}  // namespace zelt::plugin_util
