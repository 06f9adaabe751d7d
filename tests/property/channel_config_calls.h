/// Sequences of calls on a channel configuration, each answer compared with a model of the configuration.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "channel_config_fixture.h"
#include "config_item_variant.h"

namespace property_tests {

/// What the model knows of one option: its key, and what it answers now.
struct ModelOption {
    enum class Kind { Generic, String, Scalar, Used };
    Kind kind = Kind::Generic;
    std::string key;
    std::string text;                      ///< of its item
    bool locked = false;                   ///< read-only text or scalar, locked "used" switch
    bool available = true;                 ///< the real option's callable reads it as well
    std::atomic<bool> used{false};         ///< the channel's flag behind a "used" switch
    std::vector<std::string> constraints;  ///< in words; those of a "used" switch follow from its text
    std::shared_ptr<zelt::plugin_util::ChannelConfigOption> real;
};

/// A configuration and its model. Calls are chosen by bytes, so that a generator and a fuzzer can both drive
/// them. Options are made, become available or vanish, are set and read; keys may be registered twice.
class ChannelConfigCalls {
  public:
    /// One call for every three bytes: which call, on which option, with which value. Ends at the first
    /// answer that differs from the model's.
    void run(std::span<const std::uint8_t> bytes);
    /// The first difference in words; empty without any.
    const std::string& difference() const { return m_difference; }
    std::size_t callsMade() const { return m_calls; }

  private:
    struct HandedOut {
        const std::vector<std::string>* list;
        std::vector<std::string> copy;
    };

    void call(std::uint8_t what, std::uint8_t which, std::uint8_t value);
    void add(std::uint8_t which, std::uint8_t value);
    void makeReal(ModelOption& option);
    void set(std::uint8_t which, std::uint8_t value);
    bool modelSet(ModelOption& option, const config_items::ConfigItemVariant& value);
    void flip(std::size_t length);
    void get(std::uint8_t which);
    void readConstraints(std::uint8_t which);
    void replaceCallback(std::uint8_t value);
    void notify(std::uint8_t which);
    void rememberList();
    void refreshModel();
    void compareKeys();

    /// The option that answers for a key: the last one registered under it; null for an unknown key.
    ModelOption* answering(const std::string& key);
    std::string keyAt(std::uint8_t which) const;
    void expect(bool holds, const std::string& what);

    std::vector<std::unique_ptr<ModelOption>> m_options;
    std::vector<std::string> m_keys;
    std::vector<HandedOut> m_handed_out;
    int m_callback = 0;
    std::vector<std::string> m_told;
    std::string m_difference;
    std::size_t m_calls = 0;
    OpenChannelConfig m_config;
};

}  // namespace property_tests
