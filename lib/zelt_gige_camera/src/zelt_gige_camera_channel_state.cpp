#include "zelt_gige_camera_channel_state.h"

#include "zelt_gige_fourcc.h"

namespace zelt_gige_camera {

std::uint64_t ChannelState::payload() const {
    return framePayload(frameFormat, frameWidth, frameHeight);
}

}  // namespace zelt_gige_camera
