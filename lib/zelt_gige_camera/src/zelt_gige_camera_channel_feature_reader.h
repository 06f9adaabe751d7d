/// Reads a camera's features into a channel's state.
///
/// What the camera does not have is marked in the state and no failure, if a camera may lack it. A value
/// that is pending is read, but stays as it is. Keys of settings whose value changed become news.
#pragma once

#include <string>

#include "zelt_gige_camera_channel_work.h"

namespace zelt_gige_camera {

/// Reads the values that may change while the camera is open. All or nothing: a failure throws
/// CameraApiError and leaves the state as it was.
void readCache(ChannelWork& work);

/// Reads ranges, the entries of the automatic functions and the sensor's size; otherwise as readCache.
void readDomainCache(ChannelWork& work);

/// Reads, of a camera just opened, every setting and what holds for as long as it is open, and chooses the
/// frame format unless the host has; otherwise as readCache.
void readConfiguration(ChannelWork& work, const std::string& cameraName);

/// Chooses the frame format when the camera did not tell its formats when it was opened; it stays empty when
/// the camera does not tell them now, or has none that is known. Never throws.
void chooseMissingFormat(ChannelWork& work);

/// Reads the values that the camera changes by itself. A value that cannot be read is left out. Returns
/// whether the exposure changed.
bool trackAutomaticValues(ChannelWork& work);

/// Writes one log line per feature of the camera; a failure is logged.
void dumpFeatures(zelt_gige_api::CameraApi& api, zelt_gige_api::CameraHandle camera);

}  // namespace zelt_gige_camera
