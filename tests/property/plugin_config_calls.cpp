#include "plugin_config_calls.h"

#include <array>
#include <memory>

#include "assertion_capture.h"
#include "config_item_variant.h"
#include "constraints_in_words.h"

namespace property_tests {
namespace {

using config_items::ConfigItemVariant;
using test_support::AssertionCapture;

constexpr const char* kUnknown = "key not found. config item does not exist.";
const std::array<std::string, 4> kPluginKeys = {"FrameCounterChannels", "Plugin/GodMode", "plugin/GodMode",
                                                ""};

ConfigItemVariant itemOf(std::uint8_t value) {
    if (value % 2 == 0) return config_items::SingleValueConfigItem<bool>(value % 4 == 0);
    return config_items::RationalScalarConfigItem(value, 1001, "Hz");
}

}  // namespace

void PluginConfigCalls::run(std::span<const std::uint8_t> bytes) {
    for (; bytes.size() >= 3 && m_difference.empty(); bytes = bytes.subspan(3)) {
        call(bytes[0], kPluginKeys[bytes[1] % kPluginKeys.size()], bytes[2]);
        compareKeys();
    }
}

void PluginConfigCalls::call(std::uint8_t what, const std::string& key, std::uint8_t value) {
    switch (what % 4) {
        case 0:
            return add(key, value);
        case 1:
            return set(key, value);
        case 2:
            return get(key);
        default:
            expect(inWords(m_config.getConstraints(key)) == m_constraints[key], "constraints of " + key);
    }
}

void PluginConfigCalls::add(const std::string& key, std::uint8_t value) {
    zelt::plugin_util::SimplePluginConfig::Constraints constraints;
    if (value > 127) constraints.push_back(std::make_shared<channel_config::ReadOnlyConstraint>(true));
    if (!m_texts.contains(key)) m_keys.push_back(key);
    m_texts[key] = asItem(itemOf(value)).toString();
    m_constraints[key] = inWords(constraints);
    m_config.addItem(key, itemOf(value), constraints);
}

void PluginConfigCalls::set(const std::string& key, std::uint8_t value) {
    const bool known = m_texts.contains(key);
    if (known) m_texts[key] = asItem(itemOf(value)).toString();
    const AssertionCapture assertions;
    expect(m_config.setItem(key, itemOf(value)) == known, "answer of setting " + key);
    expect(assertions.failures().size() == (known ? 0u : 1u), "assertions of setting " + key);
}

void PluginConfigCalls::get(const std::string& key) {
    const bool known = m_texts.contains(key);
    const AssertionCapture assertions;
    const std::string text = asItem(m_config.getItem(key)).toString();
    expect(text == (known ? m_texts[key] : "Invalid ConfigItem"), "item of " + key);
    const auto failures = assertions.failures();
    expect(known ? failures.empty() : failures.size() == 1 && failures[0].message == kUnknown,
           "assertions of reading " + key);
}

void PluginConfigCalls::compareKeys() {
    expect(m_config.getKeys() == m_keys, "keys");
    for (const std::string& key : kPluginKeys) {
        expect(m_config.hasItem(key) == m_texts.contains(key), "hasItem of " + key);
    }
}

void PluginConfigCalls::expect(bool holds, const std::string& what) {
    if (!holds && m_difference.empty()) m_difference = what;
}

}  // namespace property_tests
