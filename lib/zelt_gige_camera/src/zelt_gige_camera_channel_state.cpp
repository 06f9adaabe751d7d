#include "zelt_gige_camera_channel_state.h"

#include "zelt_gige_camera_channel_exposure_limit.h"
#include "zelt_gige_fourcc.h"

namespace zelt_gige_camera {
namespace {

std::uint32_t pixels(const NumberValue& size) {
    constexpr double kMost = std::numeric_limits<std::uint32_t>::max();
    return size.value >= 0.0 && size.value <= kMost ? static_cast<std::uint32_t>(size.value) : 0;
}

}  // namespace

std::string ChannelState::frameFormat() const {
    for (const PixelFormatName& name : pixelFormatNames()) {
        if (pixelFormat == name.cameraEntry) return name.fourCc;
    }
    return {};
}

std::uint64_t ChannelState::payload() const {
    return framePayload(frameFormat(), pixels(frameWidth), pixels(frameHeight));
}

double ChannelState::modelFrameRate() const {
    return zelt_gige_api::maximumFrameRate(modelKind, pixels(frameHeight));
}

double ChannelState::frameRateInUse() const {
    if (!triggerModeIsAux) return frameRate.value;
    return auxFrequency ? toDouble(*auxFrequency) : 0.0;
}

double ChannelState::exposureMaximum() const {
    const bool triggered = triggerModeIsAux && auxFrequency;
    const double period = triggered ? framePeriod(*auxFrequency) : framePeriod(frameRate.value);
    return limitedExposureMaximum(exposure.min, exposure.max, period);
}

}  // namespace zelt_gige_camera
