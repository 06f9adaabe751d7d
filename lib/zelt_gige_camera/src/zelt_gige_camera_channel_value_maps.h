/// The host's texts and the camera's for the same thing.
#pragma once

#include <string>
#include <vector>

namespace zelt_gige_camera {

/// Camera's entry of an automatic function. Throws std::invalid_argument "Unknown value from GUI: '...'".
std::string autoSettingFromHost(const std::string& hostText);

/// Host's text for an entry of an automatic function. Throws std::invalid_argument
/// "Unknown value from API: '...'".
std::string autoSettingFromCamera(const std::string& cameraText);

/// Host's texts for those entries that both know, in the order off, once, continuous.
std::vector<std::string> autoSettingChoices(const std::vector<std::string>& cameraEntries);

/// Whether a trigger mode is the AUX-triggered one. Throws std::invalid_argument
/// "Unknown value from GUI: '...'".
bool triggerModeFromHost(const std::string& hostText);

/// Host's text for a trigger mode.
std::string triggerModeToHost(bool isAux);

/// Both trigger modes in the host's words.
std::vector<std::string> triggerModeChoices();

/// The camera's pixel format for a frame format. Throws std::invalid_argument "Unknown value from GUI:
/// '...'".
std::string pixelFormatFromHost(const std::string& frameFormat);

/// Frame formats for those pixel formats that both know, the preferred one first.
std::vector<std::string> frameFormatChoices(const std::vector<std::string>& cameraEntries);

}  // namespace zelt_gige_camera
