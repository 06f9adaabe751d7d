/// Writes a channel's state to the camera's features.
///
/// Every number is read back: what the camera made of it becomes the state's value, and news when it is
/// another. A number that was written and could not be read back stays pending. All throw CameraApiError at
/// the first step that fails.
#pragma once

#include <string>

#include "zelt_gige_camera_channel_work.h"

namespace zelt_gige_camera {

/// The host sets a number: written at once, or pending while no camera is open. When the camera refuses, the
/// state keeps its value. Throws std::invalid_argument for a number that the feature cannot hold at all.
void changeNumber(ChannelWork& work, Setting setting, double wanted);

/// The host sets an automatic function to a camera's entry; otherwise as changeNumber.
void changeAutomatic(ChannelWork& work, Setting setting, const std::string& entry);

/// The host sets the camera's pixel format; otherwise as changeNumber.
void changePixelFormat(ChannelWork& work, const std::string& entry);

/// Writes a pending pixel format, unless the camera has it already. Returns whether it was written.
bool writePendingFormat(ChannelWork& work);
/// Writes pending geometry in an order in which the picture fits the sensor at every step.
void writePendingGeometry(ChannelWork& work);
/// Writes what else is pending, except the frame rate and the trigger mode. What the camera does not have
/// stays pending.
void writePendingValues(ChannelWork& work);

/// Exposure, the limit of the automatic one, and gain. Returns what writeExposureLimit does.
bool writeExposureAndGain(ChannelWork& work);
/// Saturation and white balance.
void writeColours(ChannelWork& work);

/// Keeps exposures within the frame period: shortens the exposure of a camera that exposes continuously, and
/// tells it how long its automatic exposures may be. Returns whether the exposure changed.
bool writeExposureLimit(ChannelWork& work);

}  // namespace zelt_gige_camera
