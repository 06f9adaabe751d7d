/// How the cameras shall be before something is done with them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <vector>

#include "setting_changes.h"
#include "setting_text.h"

namespace host {

struct CameraSetup {
    std::set<std::uint32_t> channels;  ///< empty for all
    std::filesystem::path from;        ///< settings file; empty for none
    std::vector<SettingOrder> orders;  ///< carried out behind the file's
    std::optional<Fraction> aux;       ///< the cameras follow a trigger output of so many Hz
};

/// All orders, those of the file read first. Throws HostFailure.
std::vector<SettingOrder> allOrders(const CameraSetup& setup);

/// Refuses an order that contradicts `--aux`. Throws HostFailure.
void refuseContradictions(const CameraSetup& setup);

/// Switches the chosen channels on and all others off, puts them into the mode asked for and carries the
/// orders out; what a settings file says of trigger mode and frame rate is left out with a trigger output,
/// which decides both. Returns the chosen channels. Throws HostFailure, also when a camera does not follow
/// the trigger output in the end.
std::set<std::uint32_t> setUpCameras(Session& session, const CameraSetup& setup,
                                     const std::vector<SettingOrder>& orders,
                                     const std::function<void(const SettingChange&)>& changed);

}  // namespace host
