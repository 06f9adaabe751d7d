#include "settings_report.h"

#include "exit_codes.h"
#include "json_text.h"
#include "text_table.h"

namespace host {
namespace {

std::vector<std::string> settingRow(const SettingInfo& setting) {
    // An action has nothing to show; what has no value says why.
    const bool isAction = setting.changeable == Changeable::AsAction;
    const std::string value = setting.hasValue ? setting.value : "(" + setting.value + ")";
    return {setting.key, isAction ? "" : value, setting.unit, setting.allowed(),
            changeableText(setting.changeable)};
}

ordered_json rangeJson(const std::optional<SettingRange>& range) {
    if (!range) return nullptr;
    return {{"least", range->least}, {"greatest", range->greatest}};
}

ordered_json settingJson(const SettingInfo& setting) {
    return {{"key", setting.key},
            {"value", setting.hasValue ? ordered_json(setting.value) : ordered_json(nullptr)},
            {"unit", orNull(setting.unit)},
            {"range", rangeJson(setting.range)},
            {"choices", setting.choices},
            {"changeable", changeableText(setting.changeable)}};
}

ordered_json changesJson(const std::vector<SettingChange>& changes) {
    ordered_json list = ordered_json::array();
    for (const SettingChange& change : changes) {
        list.push_back({{"channel", change.channel},
                        {"key", change.key},
                        {"asked", orNull(change.asked)},
                        {"became", orNull(change.became)},
                        {"left_out", orNull(change.leftOut)}});
    }
    return list;
}

ordered_json messagesJson(const std::vector<ChannelMessage>& messages) {
    ordered_json list = ordered_json::array();
    for (const ChannelMessage& message : messages) {
        list.push_back({{"channel", message.channel}, {"text", message.sentence}});
    }
    return list;
}

ExitCode checkCode(const CheckResult& result) {
    return result.passed ? ExitCode::Ok : ExitCode::CheckFailed;
}

}  // namespace

std::string settingsText(const std::vector<ChannelSettings>& channels) {
    std::string text;
    for (const ChannelSettings& each : channels) {
        if (!each.channel.isOpen()) {
            text += "channel " + std::to_string(each.channel.id) + " \u00b7 " + each.channel.name +
                    " \u00b7 not open\n";
            continue;
        }
        std::vector<std::vector<std::string>> rows;
        for (const SettingInfo& setting : each.settings) rows.push_back(settingRow(setting));
        text += "channel " + std::to_string(each.channel.id) + " \u00b7 " + each.channel.name + '\n' +
                formatTable({{"key"}, {"value", true}, {"unit"}, {"allowed"}, {"changeable"}}, rows);
    }
    return text;
}

std::string settingsJson(const std::vector<SettingChange>& changes,
                         const std::vector<ChannelSettings>& channels,
                         const std::vector<ChannelMessage>& messages, const std::string& closed) {
    ordered_json list = ordered_json::array();
    for (const ChannelSettings& each : channels) {
        ordered_json settings = ordered_json::array();
        for (const SettingInfo& setting : each.settings) settings.push_back(settingJson(setting));
        list.push_back({{"id", each.channel.id},
                        {"name", each.channel.name},
                        {"short_id", each.channel.shortId},
                        {"open", each.channel.isOpen()},
                        {"settings", settings}});
    }
    const ExitCode code = closed.empty() ? ExitCode::Ok : ExitCode::CameraFailed;
    return dumpJson({{"exit_code", static_cast<int>(code)},
                     {"error", orNull(closed)},
                     {"changes", changesJson(changes)},
                     {"channels", list},
                     {"messages", messagesJson(messages)}});
}

std::string checkText(const CheckResult& result) {
    const std::string count =
        std::to_string(result.channels) + (result.channels == 1 ? " channel" : " channels");
    return count + " checked: " +
           (result.passed ? "the cameras can record as they are set\n"
                          : "the cameras cannot record as they are set\n");
}

std::string checkJson(const CheckResult& result, const std::vector<SettingChange>& changes) {
    return dumpJson({{"exit_code", static_cast<int>(checkCode(result))},
                     {"error", orNull(checkFailure(result))},
                     {"passed", result.passed},
                     {"changes", changesJson(changes)},
                     {"messages", messagesJson(result.messages)}});
}

std::string checkFailure(const CheckResult& result) {
    if (result.passed) return {};
    return "The cameras cannot record as they are set; the channels' messages say why, change the settings "
           "with --set.";
}

}  // namespace host
