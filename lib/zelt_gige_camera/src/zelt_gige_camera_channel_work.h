/// What the pieces of a channel work on while its mutex is held.
#pragma once

#include "zelt_gige_camera_api.h"
#include "zelt_gige_camera_channel_news.h"
#include "zelt_gige_camera_channel_state.h"

namespace zelt_gige_camera {

struct ChannelWork {
    zelt_gige_api::CameraApi& api;
    zelt_gige_api::CameraHandle camera;  ///< 0 when none is open
    ChannelState& state;
    ChannelNews& news;
};

}  // namespace zelt_gige_camera
