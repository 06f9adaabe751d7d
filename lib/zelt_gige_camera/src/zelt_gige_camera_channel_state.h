/// What a channel knows of its camera: the values last read from it or written to it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zelt_gige_camera_model.h"

namespace zelt_gige_camera {

/// Plain values, guarded by the channel's mutex.
struct ChannelState {
    std::uint32_t frameWidth = 0;  ///< pixels, as the three that follow
    std::uint32_t frameHeight = 0;
    std::uint32_t frameOffsetX = 0;
    std::uint32_t frameOffsetY = 0;
    std::string pixelFormat;                      ///< entry of "PixelFormat" that the channel uses, or empty
    std::string frameFormat;                      ///< name of its FourCC, or empty
    std::vector<std::string> pixelFormatEntries;  ///< as listed by the camera
    double frameRate = 0.0;                       ///< selected for fixed-rate mode, frames per second
    double bandwidthLimitedFrameRate = 0.0;       ///< what streamBytesPerSecond allows, frames per second
    std::int64_t streamBytesPerSecond = 0;
    bool triggerModeIsAux = false;
    std::int64_t tickFrequency = 0;  ///< of the camera's clock, ticks per second
    zelt_gige_api::CameraModelKind modelKind = zelt_gige_api::CameraModelKind::Other;
    bool configurationPending = true;  ///< the trigger mode was not programmed since the last change
    bool formatPending = false;        ///< pixelFormat was chosen here and not yet written
    bool captureFailed = false;        ///< the last start of capture failed

    /// Bytes of one frame as it is configured; 0 while the format is not known.
    std::uint64_t payload() const;
};

}  // namespace zelt_gige_camera
