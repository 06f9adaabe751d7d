#include "zelt_gige_camera_channel_value_maps.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include <boost/bimap.hpp>

#include "zelt_gige_fourcc.h"

namespace zelt_gige_camera {
namespace {

using AutoSettings = boost::bimap<std::string, std::string>;
using TriggerModes = boost::bimap<std::string, bool>;

constexpr std::array<const char*, 3> kAutoSettingOrder{"GIGE/AutoSettingOff", "GIGE/AutoSettingOnce",
                                                       "GIGE/AutoSettingContinuous"};

const AutoSettings& autoSettings() {
    static const AutoSettings map = [] {
        AutoSettings made;
        made.insert({"GIGE/AutoSettingOff", "Off"});
        made.insert({"GIGE/AutoSettingOnce", "Once"});
        made.insert({"GIGE/AutoSettingContinuous", "Continuous"});
        return made;
    }();
    return map;
}

const TriggerModes& triggerModes() {
    static const TriggerModes map = [] {
        TriggerModes made;
        made.insert({"GIGE/TriggerModeAux", true});
        made.insert({"GIGE/TriggerModeFixed", false});
        return made;
    }();
    return map;
}

std::invalid_argument unknown(const char* from, const std::string& text) {
    return std::invalid_argument(std::string("Unknown value from ") + from + ": '" + text + "'");
}

bool lists(const std::vector<std::string>& entries, const std::string& entry) {
    return std::find(entries.begin(), entries.end(), entry) != entries.end();
}

}  // namespace

std::string autoSettingFromHost(const std::string& hostText) {
    const auto found = autoSettings().left.find(hostText);
    if (found == autoSettings().left.end()) throw unknown("GUI", hostText);
    return found->second;
}

std::string autoSettingFromCamera(const std::string& cameraText) {
    const auto found = autoSettings().right.find(cameraText);
    if (found == autoSettings().right.end()) throw unknown("API", cameraText);
    return found->second;
}

std::vector<std::string> autoSettingChoices(const std::vector<std::string>& cameraEntries) {
    std::vector<std::string> choices;
    for (const char* choice : kAutoSettingOrder) {
        if (lists(cameraEntries, autoSettings().left.at(choice))) choices.emplace_back(choice);
    }
    return choices;
}

bool triggerModeFromHost(const std::string& hostText) {
    const auto found = triggerModes().left.find(hostText);
    if (found == triggerModes().left.end()) throw unknown("GUI", hostText);
    return found->second;
}

std::string triggerModeToHost(bool isAux) {
    return triggerModes().right.at(isAux);
}

std::vector<std::string> triggerModeChoices() {
    return {triggerModeToHost(true), triggerModeToHost(false)};
}

std::string pixelFormatFromHost(const std::string& frameFormat) {
    for (const PixelFormatName& name : pixelFormatNames()) {
        if (frameFormat == name.fourCc) return name.cameraEntry;
    }
    throw unknown("GUI", frameFormat);
}

std::vector<std::string> frameFormatChoices(const std::vector<std::string>& cameraEntries) {
    std::vector<std::string> choices;
    for (const PixelFormatName& name : pixelFormatNames()) {
        if (lists(cameraEntries, name.cameraEntry)) choices.emplace_back(name.fourCc);
    }
    return choices;
}

}  // namespace zelt_gige_camera
