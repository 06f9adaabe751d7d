#include "camera_setup.h"

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

}  // namespace

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
        tellFrequency(session, *setup.aux);
        carryOut(session,
                 {{"--aux", {}, config_keys::kCameraTriggerMode, kTriggeredMode, SettingOrder::Kind::Set}},
                 chosen, changed);
    }
    carryOut(session, orders, chosen, changed);
    return chosen;
}

}  // namespace host
