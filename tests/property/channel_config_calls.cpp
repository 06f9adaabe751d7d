#include "channel_config_calls.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "assertion_capture.h"
#include "constraints_in_words.h"

namespace property_tests {
namespace {

using namespace zelt::plugin_util;
using config_items::asItem;
using config_items::ConfigItemVariant;
using config_items::ScalarConfigItem;
using config_items::SingleValueConfigItem;
using test_support::AssertionCapture;

using BoolItem = SingleValueConfigItem<bool>;
using StringItem = SingleValueConfigItem<std::string>;
using OptionKind = ModelOption::Kind;

constexpr std::size_t kMostOptions = 10;
constexpr const char* kUnit = "fps";
constexpr const char* kUnavailable = "it->second->isAvailable()";

/// Few keys, so that some are registered twice; the last is never registered.
const std::array<std::string, 6> kKeys = {"A", "B", "C", "CAMERA/Gain", "a", "NoSuchKey"};

ConfigItemVariant valueOf(std::uint8_t value) {
    switch (value % 8) {
        case 0:
            return BoolItem(false);
        case 1:
            return BoolItem(true);
        case 2:
            return ScalarConfigItem(value, kUnit);
        case 3:
            return ScalarConfigItem(value, "Hz");
        case 4:
            return StringItem("throw");
        case 5:
            return config_items::InvalidConfigItem();
        default:
            return StringItem(std::string(value / 16u, 'x'));
    }
}

std::string words(const std::vector<std::string>& list) {
    std::string text = "[";
    for (const std::string& word : list) text += " " + word;
    return text + " ]";
}

/// The available keys brought in line with the options by the documented walk: a cursor that keeps, erases
/// or inserts one key at a time.
void walk(std::vector<std::string>& keys, const std::vector<std::unique_ptr<ModelOption>>& options) {
    auto cursor = keys.begin();
    for (const auto& option : options) {
        const bool listed = cursor != keys.end() && *cursor == option->key;
        if (listed && option->available) {
            ++cursor;
        } else if (listed) {
            cursor = keys.erase(cursor);
        } else if (option->available) {
            cursor = keys.insert(cursor, option->key) + 1;
        }
    }
}

}  // namespace

void ChannelConfigCalls::run(std::span<const std::uint8_t> bytes) {
    for (; bytes.size() >= 3 && m_difference.empty(); bytes = bytes.subspan(3)) {
        call(bytes[0], bytes[1], bytes[2]);
        ++m_calls;
        compareKeys();
    }
}

void ChannelConfigCalls::call(std::uint8_t what, std::uint8_t which, std::uint8_t value) {
    switch (what % 9) {
        case 0:
            return add(which, value);
        case 1:
            return set(which, value);
        case 2:
            return get(which);
        case 3:
            return readConstraints(which);
        case 4:
            return flip(which);
        case 5:
            m_config.refreshAvailableKeys();
            return refreshModel();
        case 6:
            return replaceCallback(value);
        case 7:
            return notify(which);
        default:
            return rememberList();
    }
}

void ChannelConfigCalls::add(std::uint8_t which, std::uint8_t value) {
    if (m_options.size() == kMostOptions) return;
    auto option = std::make_unique<ModelOption>();
    option->key = kKeys[which % (kKeys.size() - 1)];
    option->kind = static_cast<OptionKind>(value % 4);
    option->locked = (value & 4) != 0;
    const bool canVanish = option->kind == OptionKind::Generic || option->kind == OptionKind::String;
    option->available = !canVanish || (value & 8) != 0;
    makeReal(*option);
    const bool taken = answering(option->key) != nullptr;
    const auto real = option->real;
    m_options.push_back(std::move(option));
    const AssertionCapture assertions;
    m_config.addOption(real);
    expect(assertions.failures().size() == (taken ? 1u : 0u), "assertion of a new key " + real->getKey());
    refreshModel();
}

void ChannelConfigCalls::makeReal(ModelOption& option) {
    const auto available = [&option] { return option.available; };
    const bool locked = option.locked;
    switch (option.kind) {
        case OptionKind::Generic: {
            const auto text = std::make_shared<std::string>("generic");
            const auto setter = [this, text](const std::string& value) {
                if (value == "throw") throw std::runtime_error("refused");
                flip(value.size());
                *text = value;
                return value.size() % 2 == 0;
            };
            option.text = *text;
            option.real = std::make_shared<GenericOption<std::string>>(
                option.key, GenericOption<std::string>::Callables{
                                .isAvailable = available, .get = [text] { return *text; }, .set = setter});
            break;
        }
        case OptionKind::String:
            option.text = "text";
            option.constraints = {locked ? "read-only true" : "read-only false", "during acquisition true"};
            option.real =
                std::make_shared<SimpleStringOption>(option.key, option.text, locked, true, available);
            break;
        case OptionKind::Scalar:
            option.text = "25 fps";
            option.constraints = {locked ? "read-only true" : "read-only false"};
            if (!locked) option.constraints.push_back("from 1 to 50");
            option.real =
                std::make_shared<SimpleScalarOption>(option.key, ScalarConfigItem(25, kUnit), !locked, 1, 50);
            break;
        case OptionKind::Used:
            option.text = "0";
            option.real = std::make_shared<ChannelUsedOption>(option.key, option.used, locked);
            break;
    }
}

void ChannelConfigCalls::set(std::uint8_t which, std::uint8_t value) {
    const std::string key = keyAt(which);
    const ConfigItemVariant item = valueOf(value);
    ModelOption* const option = answering(key);
    // What the setter flips is common to both: the model decides on the state before.
    const bool accepted = option != nullptr && modelSet(*option, item);
    const AssertionCapture assertions;
    expect(m_config.setItem(key, item) == accepted, "answer of setting " + key);
    const auto* const scalar = boost::get<ScalarConfigItem>(&item);
    const bool otherUnit = option != nullptr && option->kind == OptionKind::Scalar && scalar != nullptr &&
                           scalar->m_unit != kUnit;
    expect(assertions.failures().size() == (otherUnit ? 1u : 0u), "assertions of setting " + key);
    if (option != nullptr) refreshModel();
}

bool ChannelConfigCalls::modelSet(ModelOption& option, const ConfigItemVariant& value) {
    const auto* const text = boost::get<StringItem>(&value);
    const auto* const scalar = boost::get<ScalarConfigItem>(&value);
    const auto* const flag = boost::get<BoolItem>(&value);
    switch (option.kind) {
        case OptionKind::Generic:
            if (text == nullptr || text->m_value == "throw") return false;
            option.text = text->m_value;
            return text->m_value.size() % 2 == 0;
        case OptionKind::String:
            if (text == nullptr || option.locked) return false;
            option.text = text->m_value;
            return true;
        case OptionKind::Scalar:
            if (scalar == nullptr) return false;
            option.text = ScalarConfigItem(scalar->m_value, kUnit).toString();
            return true;
        case OptionKind::Used:
            if (flag == nullptr) return false;
            if (flag->toString() == option.text) return true;
            if (option.locked) return false;
            option.text = flag->toString();
            return true;
    }
    return false;
}

void ChannelConfigCalls::flip(std::size_t length) {
    if (m_options.empty()) return;
    ModelOption& option = *m_options[length % m_options.size()];
    if (option.kind == OptionKind::Generic || option.kind == OptionKind::String)
        option.available = !option.available;
}

void ChannelConfigCalls::get(std::uint8_t which) {
    const std::string key = keyAt(which);
    const ModelOption* const option = answering(key);
    const AssertionCapture assertions;
    const std::string text = asItem(m_config.getItem(key)).toString();
    expect(text == (option == nullptr ? "Invalid ConfigItem" : option->text), "item of " + key);
    const std::vector<std::string> failed = assertions.expressions();
    const bool asserts = option != nullptr && !option->available;
    expect(failed == (asserts ? std::vector<std::string>{kUnavailable} : std::vector<std::string>{}),
           "assertions of reading " + key);
}

void ChannelConfigCalls::readConstraints(std::uint8_t which) {
    const std::string key = keyAt(which);
    const ModelOption* const option = answering(key);
    const AssertionCapture assertions;
    const std::vector<std::string> found = inWords(m_config.getConstraints(key));
    std::vector<std::string> expected;
    if (option != nullptr) expected = option->constraints;
    if (option != nullptr && option->kind == OptionKind::Used) {
        const bool used = option->text == "1";
        expected = {"during acquisition false", used ? "choice true" : "choice false"};
        expected.push_back(option->locked ? "read-only true" : used ? "choice false" : "choice true");
    }
    expect(found == expected, "constraints of " + key + ": " + words(found));
    const bool asserts = option != nullptr && !option->available;
    expect(assertions.failures().size() == (asserts ? 1u : 0u), "assertions of the constraints of " + key);
}

void ChannelConfigCalls::replaceCallback(std::uint8_t value) {
    m_told.clear();
    const int callback = value % 4;
    const auto previous =
        m_config.setChangeCallback(callback == 0 ? zelt::plugin_util::SimpleChannelConfig::ChangeCallback()
                                                 : [this, callback](const std::string& key) {
                                                       m_told.push_back(std::to_string(callback) + key);
                                                   });
    expect(bool(previous) == (m_callback != 0), "whether there was a callback before");
    if (previous) {
        previous("k");
        expect(m_told == std::vector<std::string>{std::to_string(m_callback) + "k"}, "the previous callback");
    }
    m_callback = callback;
}

void ChannelConfigCalls::notify(std::uint8_t which) {
    m_told.clear();
    std::vector<std::string> expected;
    const std::string key = keyAt(which);
    m_config.notifyChanged(key);
    if (m_callback != 0) expected.push_back(std::to_string(m_callback) + key);
    for (const auto& option : m_options) {
        option->real->notifyChanged();
        if (m_callback != 0) expected.push_back(std::to_string(m_callback) + option->key);
    }
    expect(m_told == expected, "who was told: " + words(m_told));
}

void ChannelConfigCalls::rememberList() {
    const std::vector<std::string>& keys = m_config.getKeys();
    m_handed_out.push_back({&keys, keys});
}

void ChannelConfigCalls::refreshModel() {
    walk(m_keys, m_options);
    std::vector<std::string> available;
    for (const auto& option : m_options) {
        if (option->available) available.push_back(option->key);
    }
    expect(m_keys == available, "the walk ends elsewhere than at the available options " + words(available));
}

void ChannelConfigCalls::compareKeys() {
    const std::vector<std::string>& keys = m_config.getKeys();
    expect(keys == m_keys, "keys: " + words(keys) + " instead of " + words(m_keys));
    for (const std::string& key : kKeys) {
        const bool listed = std::find(m_keys.begin(), m_keys.end(), key) != m_keys.end();
        expect(m_config.hasKey(key) == listed, "hasKey of " + key);
    }
    for (const HandedOut& handedOut : m_handed_out) {
        expect(*handedOut.list == handedOut.copy, "a list handed out changed to " + words(*handedOut.list));
    }
}

ModelOption* ChannelConfigCalls::answering(const std::string& key) {
    const auto last = std::find_if(m_options.rbegin(), m_options.rend(),
                                   [&](const auto& option) { return option->key == key; });
    return last != m_options.rend() ? last->get() : nullptr;
}

std::string ChannelConfigCalls::keyAt(std::uint8_t which) const {
    return kKeys[which % kKeys.size()];
}

void ChannelConfigCalls::expect(bool holds, const std::string& what) {
    if (!holds && m_difference.empty()) {
        m_difference = "call " + std::to_string(m_calls) + ", " + what;
    }
}

}  // namespace property_tests
