#include "setting_changes.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <numeric>
#include <optional>
#include <utility>

#include "host_failure.h"
#include "session.h"
#include "setting_info.h"
#include "setting_text.h"

namespace host {
namespace {

using channel_config::IfChannelConfig;
using Kind = SettingOrder::Kind;

constexpr std::size_t kSuggestions = 3;

/// How the plug-in says that a camera did not take a value.
constexpr const char* kNotTaken = "is not supported";

/// May yet become right when other settings are set.
class WrongForNow : public HostFailure {
  public:
    using HostFailure::HostFailure;
};

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// Letters to insert, remove or replace.
std::size_t distance(const std::string& from, const std::string& to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

/// The order's words at one channel.
class Wish {
  public:
    Wish(const SettingOrder& order, std::uint32_t channel) : m_order(order), m_channel(channel) {}

    template <class Failure = HostFailure>
    Failure wrong(const std::string& what) const {
        return {ExitCode::SettingWrong, m_order.origin + ": " + what};
    }
    std::string channel() const { return "channel " + std::to_string(m_channel); }
    std::string setting() const { return m_order.key + " of " + channel(); }

  private:
    const SettingOrder& m_order;
    std::uint32_t m_channel;
};

WrongForNow unknownKey(const Wish& wish, const SettingOrder& order, IfChannelConfig& config) {
    std::string near;
    for (const std::string& key : nearestKeys(order.key, config.getKeys())) {
        near += (near.empty() ? "" : ", ") + key;
    }
    return wish.wrong<WrongForNow>(wish.channel() + " has no setting \"" + order.key + "\" now; near to it " +
                                   (near.empty() ? "is none" : "are " + near) +
                                   ", zelt_host settings lists all.");
}

void checkChangeable(const Wish& wish, const SettingOrder& order, Changeable changeable) {
    const bool isAction = changeable == Changeable::AsAction;
    if (order.kind == Kind::RunAction) {
        if (!isAction) throw wish.wrong(wish.setting() + " is no action; set it with --set.");
        return;
    }
    if (isAction) throw wish.wrong(wish.setting() + " is an action; run it with --action.");
    if (changeable == Changeable::ByChannelOption) {
        throw wish.wrong(wish.setting() + " is set by the host; name the channels to use with --channel.");
    }
    if (changeable == Changeable::Never) {
        throw wish.wrong<WrongForNow>(wish.setting() + " is read-only; leave it out.");
    }
}

void checkRange(const Wish& wish, const SettingInfo& setting, const config_items::ConfigItemVariant& item) {
    const std::optional<double> number = itemNumber(item);
    if (!number || !setting.range) return;
    if (*number >= setting.range->least && *number <= setting.range->greatest) return;
    throw wish.wrong<WrongForNow>(wish.setting() + " cannot be " + valueText(item) + "; it goes from " +
                                  numberText(setting.range->least) + " to " +
                                  numberText(setting.range->greatest) +
                                  (setting.unit.empty() ? "" : ' ' + setting.unit) + '.');
}

void checkChoice(const Wish& wish, const SettingInfo& setting, const config_items::ConfigItemVariant& item) {
    const auto& choices = setting.choices;
    const std::string value = valueText(item);
    if (choices.empty() || std::find(choices.begin(), choices.end(), value) != choices.end()) return;
    throw wish.wrong<WrongForNow>(wish.setting() + " cannot be \"" + value + "\"; the choices are " +
                                  setting.allowed() + '.');
}

std::string reasonText(const std::vector<std::string>& reasons) {
    std::string text;
    for (const std::string& reason : reasons) text += (text.empty() ? "" : "; ") + reason;
    while (text.ends_with('.')) text.pop_back();
    return text.empty() ? "it gave no reason" : text;
}

config_items::ConfigItemVariant wantedItem(const Wish& wish, const SettingOrder& order,
                                           IfChannelConfig& config) {
    if (order.kind == Kind::RunAction) return config_items::SingleValueConfigItem<bool>(true);
    try {
        return itemFromText(config.getItem(order.key), order.value);
    } catch (const BadValue& bad) {
        throw wish.wrong(wish.setting() + ": " + bad.what() + '.');
    }
}

WrongForNow refused(const Wish& wish, const SettingOrder& order, const SettingInfo& setting,
                    const std::string& reason) {
    if (order.kind == Kind::Set && setting.range && reason.ends_with(kNotTaken)) {
        // Which steps a camera takes it does not say.
        return wish.wrong<WrongForNow>(wish.setting() + " cannot be " + order.value +
                                       ": the camera refused it (" + reason + "). Allowed is " +
                                       setting.allowed() + (setting.unit.empty() ? "" : ' ' + setting.unit) +
                                       ", and the camera may take steps only: try values near to it.");
    }
    return wish.wrong<WrongForNow>(wish.setting() + (order.kind == Kind::Set ? " = " + order.value : "") +
                                   " was refused: " + reason +
                                   "; check the camera, --log-level info tells more.");
}

SettingChange carryOutAt(Session& session, const SettingOrder& order, std::uint32_t id) {
    const Wish wish(order, id);
    IfChannelConfig& config = *session.config(id);
    if (!config.hasKey(order.key)) throw unknownKey(wish, order, config);
    const SettingInfo before = readSetting(config, order.key);
    checkChangeable(wish, order, before.changeable);
    const config_items::ConfigItemVariant item = wantedItem(wish, order, config);
    checkRange(wish, before, item);
    checkChoice(wish, before, item);
    const std::uint64_t earlier = session.messages().count();
    if (!config.setItem(order.key, item)) {
        throw refused(wish, order, before, reasonText(session.messages().takeFrom(id, earlier)));
    }
    if (order.kind == Kind::RunAction) return {id, order.key, {}, {}, {}};
    // What is not available any more has no value to show.
    const bool isThere = config.hasKey(order.key);
    return {id,
            order.key,
            order.value,
            isThere ? readSetting(config, order.key).valueWithUnit() : std::string(),
            {}};
}

/// The chosen channels that an order is for.
std::vector<std::uint32_t> channelsOf(Session& session, const SettingOrder& order,
                                      const std::set<std::uint32_t>& chosen) {
    if (order.channel.empty()) return {chosen.begin(), chosen.end()};
    for (const auto& [id, channel] : session.readChannels()) {
        if (order.channel != std::to_string(id) && order.channel != channel.shortId) continue;
        if (chosen.contains(id)) return {id};
        if (order.ofFile) return {};
        throw HostFailure(ExitCode::UnknownChannel, order.origin + ": channel " + std::to_string(id) +
                                                        " is not among those chosen with --channel.");
    }
    throw HostFailure(ExitCode::UnknownChannel, order.origin + ": there is no channel or camera \"" +
                                                    order.channel + "\"; zelt_host devices lists them.");
}

struct Step {
    const SettingOrder* order;
    std::uint32_t channel;
};

/// A file may call one camera by two names.
void refuseRepetitions(const std::vector<Step>& steps) {
    std::map<std::pair<std::uint32_t, std::string>, std::string> origins;
    for (const Step& step : steps) {
        const SettingOrder& order = *step.order;
        if (!order.ofFile) continue;
        const auto [known, isNew] = origins.insert({{step.channel, order.key}, order.origin});
        if (isNew) continue;
        throw HostFailure(ExitCode::SettingsFile, order.origin + ": " + order.key + " of channel " +
                                                      std::to_string(step.channel) + " stands at " +
                                                      known->second + " too; take one out.");
    }
}

/// One try of every step; returns those that are wrong for now.
std::vector<Step> tryAll(Session& session, const std::vector<Step>& steps, std::optional<WrongForNow>& first,
                         const std::function<void(const SettingChange&)>& changed) {
    std::vector<Step> left;
    first.reset();
    for (const Step& step : steps) {
        try {
            changed(carryOutAt(session, *step.order, step.channel));
        } catch (const WrongForNow& failure) {
            if (!first) first = failure;
            left.push_back(step);
        }
    }
    return left;
}

}  // namespace

void carryOut(Session& session, const std::vector<SettingOrder>& orders,
              const std::set<std::uint32_t>& chosen,
              const std::function<void(const SettingChange&)>& changed) {
    std::vector<Step> steps;
    for (const SettingOrder& order : orders) {
        for (const std::uint32_t id : channelsOf(session, order, chosen)) steps.push_back({&order, id});
    }
    refuseRepetitions(steps);
    std::optional<WrongForNow> failure;
    while (!steps.empty()) {
        std::vector<Step> left = tryAll(session, steps, failure, changed);
        if (left.size() == steps.size()) throw HostFailure(*failure);
        steps = std::move(left);
    }
}

void leaveOut(Session& session, const std::vector<SettingOrder>& orders,
              const std::set<std::uint32_t>& chosen, const std::string& why,
              const std::function<void(const SettingChange&)>& changed) {
    for (const SettingOrder& order : orders) {
        for (const std::uint32_t id : channelsOf(session, order, chosen)) {
            changed({id, order.key, order.value, {}, order.origin + ": " + why});
        }
    }
}

std::string changeText(const SettingChange& change) {
    const std::string where = "channel " + std::to_string(change.channel) + ": " + change.key;
    if (!change.leftOut.empty())
        return where + " = " + change.asked + " was left out (" + change.leftOut + ')';
    if (change.asked.empty() && change.became.empty()) return where + " was started";
    const bool asAsked = change.became == change.asked || change.became.starts_with(change.asked + ' ');
    return where + " is " + (change.became.empty() ? "set" : change.became + " now") +
           (asAsked ? "" : " (asked for " + change.asked + ')');
}

std::vector<std::string> nearestKeys(const std::string& key, const std::vector<std::string>& known) {
    std::vector<std::pair<std::size_t, std::string>> rated;
    for (const std::string& other : known) {
        // Somebody who left out the group or misspelt capitals is nearer than any misspelling.
        const bool contained = !key.empty() && lowered(other).find(lowered(key)) != std::string::npos;
        rated.emplace_back(contained ? 0 : distance(lowered(key), lowered(other)), other);
    }
    std::stable_sort(rated.begin(), rated.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    rated.resize(std::min(rated.size(), kSuggestions));
    std::vector<std::string> nearest;
    nearest.reserve(rated.size());
    for (auto& [rating, other] : rated) nearest.push_back(std::move(other));
    return nearest;
}

}  // namespace host
