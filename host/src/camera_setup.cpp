#include "camera_setup.h"

#include <algorithm>

#include "config_keys.h"
#include "host_failure.h"
#include "session.h"
#include "settings_file.h"

namespace host {
namespace {

void switchChannels(Session& session, const std::set<std::uint32_t>& chosen) {
    for (const auto& [id, channel] : session.readChannels()) {
        const bool used = chosen.contains(id);
        bool switched = setUsed(*session.config(id), used);
        if (const auto counters = session.frameCounters(id)) {
            for (const std::uint32_t counter : {counters->sent, counters->received}) {
                switched = setUsed(*session.plugin().getChannelConfig(counter), used) && switched;
            }
        }
        if (switched) continue;
        throw HostFailure(ExitCode::CameraFailed,
                          "Channel " + std::to_string(id) + " cannot be switched " + (used ? "on" : "off") +
                              "; check the camera and its settings, --log-level info tells more.");
    }
}

void tellFrequency(Session& session, const Fraction& frequency) {
    try {
        session.plugin().setSyncOutAuxFrequency(frequency.numerator, frequency.denominator);
    } catch (const PluginError& failure) {
        throw HostFailure(ExitCode::NoService, std::string("The cameras cannot be triggered: ") +
                                                   failure.what() + "; leave --aux out.");
    }
}

bool isTriggerMode(const SettingOrder& order) {
    return order.kind == SettingOrder::Kind::Set && order.key == config_keys::kCameraTriggerMode;
}

/// The frame rate of a file is that of cameras that run freely.
bool isDecidedByAux(const SettingOrder& order) {
    if (!order.ofFile) return false;
    return (isTriggerMode(order) && order.value != kTriggeredMode) ||
           order.key == config_keys::kCameraFrameSetting;
}

void verifyTriggered(Session& session, const std::set<std::uint32_t>& chosen) {
    for (const auto& [id, channel] : session.readChannels()) {
        if (!chosen.contains(id) || channel.timeBase == TimeBase::Pulses) continue;
        throw HostFailure(ExitCode::CameraFailed,
                          "Channel " + std::to_string(id) + " does not follow the trigger output of --aux (" +
                              config_keys::kCameraTriggerMode + " is " +
                              valueText(session.config(id)->getItem(config_keys::kCameraTriggerMode)) +
                              "); check the camera, or leave out the setting or action that changed it.");
    }
}

void setUpTriggered(Session& session, const Fraction& frequency, std::vector<SettingOrder> orders,
                    const std::set<std::uint32_t>& chosen,
                    const std::function<void(const SettingChange&)>& changed) {
    tellFrequency(session, frequency);
    carryOut(session,
             {{"--aux", {}, config_keys::kCameraTriggerMode, kTriggeredMode, SettingOrder::Kind::Set}},
             chosen, changed);
    const auto decided = std::stable_partition(
        orders.begin(), orders.end(), [](const SettingOrder& order) { return !isDecidedByAux(order); });
    leaveOut(session, {decided, orders.end()}, chosen, "--aux decides it", changed);
    orders.erase(decided, orders.end());
    carryOut(session, orders, chosen, changed);
    verifyTriggered(session, chosen);
}

}  // namespace

void refuseContradictions(const CameraSetup& setup) {
    if (!setup.aux) return;
    for (const SettingOrder& order : setup.orders) {
        if (!isTriggerMode(order) || order.value == kTriggeredMode) continue;
        throw HostFailure(ExitCode::CommandLine, order.origin + ' ' + order.key + '=' + order.value +
                                                     " contradicts --aux, which needs " + kTriggeredMode +
                                                     "; leave one of them out.");
    }
}

std::vector<SettingOrder> allOrders(const CameraSetup& setup) {
    std::vector<SettingOrder> orders;
    if (!setup.from.empty()) orders = readSettingsFile(setup.from);
    orders.insert(orders.end(), setup.orders.begin(), setup.orders.end());
    return orders;
}

std::set<std::uint32_t> setUpCameras(Session& session, const CameraSetup& setup,
                                     const std::vector<SettingOrder>& orders,
                                     const std::function<void(const SettingChange&)>& changed) {
    std::set<std::uint32_t> chosen = session.chooseChannels(setup.channels);
    switchChannels(session, chosen);
    if (setup.aux) {
        setUpTriggered(session, *setup.aux, orders, chosen, changed);
    } else {
        carryOut(session, orders, chosen, changed);
    }
    return chosen;
}

}  // namespace host
