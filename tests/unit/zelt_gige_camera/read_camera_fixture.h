/// A fake camera whose values the channel has read, and the calls that write them.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "feature_fixture.h"
#include "zelt_gige_camera_channel_feature_reader.h"

namespace test_support {

using Calls = std::vector<std::string>;

inline const Calls kExposureWrites{"setFloat ExposureTimeAbs 15000", "getFloat ExposureTimeAbs"};
inline const Calls kGainWrites{
    "setEnum ExposureAuto Off", "setFloat Gain 2.5",      "getFloat Gain",       "setInt GainAutoAdjustTol 5",
    "getInt GainAutoAdjustTol", "setInt GainAutoRate 99", "getInt GainAutoRate", "setEnum GainAuto Once",
    "setFloat Gamma 0.75",      "getFloat Gamma",
};
inline const Calls kColourWrites{
    "setFloat Saturation 1.25",
    "getFloat Saturation",
    "setEnum BalanceWhiteAuto Continuous",
    "setEnum BalanceRatioSelector Red",
    "setFloat BalanceRatioAbs[Red] 1.5",
    "getFloat BalanceRatioAbs[Red]",
    "setEnum BalanceRatioSelector Blue",
    "setFloat BalanceRatioAbs[Blue] 1.75",
    "getFloat BalanceRatioAbs[Blue]",
};

inline Calls chained(std::initializer_list<Calls> parts) {
    Calls all;
    for (const Calls& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

/// Everything of the camera's is known; nothing is pending and there are no news.
class OnReadCamera : public OnFakeCamera {
  protected:
    OnReadCamera() {
        readCache(work);
        readDomainCache(work);
        readConfiguration(work, "the camera");
        state.pending.reset();
        state.configurationPending = false;
        news = {};
    }
};

}  // namespace test_support
