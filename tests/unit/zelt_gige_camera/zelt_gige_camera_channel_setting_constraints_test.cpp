#include "zelt_gige_camera_channel_setting_constraints.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "constraints_in_words.h"

namespace {

using namespace zelt_gige_camera;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kNotDuringAcquisition = "during acquisition false";

/// No set of values may raise an assertion in the constraints.
class SettingConstraints : public ::testing::Test {
  protected:
    SettingConstraints() {
        state.sensorWidth = 656.0;
        state.sensorHeight = 492.0;
        state.frameOffsetX = {8.0};
        state.frameOffsetY = {4.0};
        state.frameWidth = {600.0, 16.0, 648.0, true};
        state.frameHeight = {400.0, 12.0, 488.0, true};
    }
    ~SettingConstraints() override { EXPECT_THAT(assertions.expressions(), IsEmpty()); }

    std::vector<std::string> of(Setting setting) const {
        return inWords(numberConstraints(state, numberRow(setting)));
    }
    void setRange(Setting setting, double min, double max) {
        NumberValue& value = state.*numberRow(setting).value;
        value.min = min;
        value.max = max;
        value.hasRange = true;
    }

    test_support::AssertionCapture assertions;
    ChannelState state;
};

TEST_F(SettingConstraints, OffsetsLeaveRoomForThePicture) {
    EXPECT_THAT(of(Setting::FrameOffsetX), ElementsAre("from 0 to 56", kNotDuringAcquisition));
    EXPECT_THAT(of(Setting::FrameOffsetY), ElementsAre("from 0 to 92", kNotDuringAcquisition));
}

TEST_F(SettingConstraints, SizesEndAtTheSensorsEdge) {
    EXPECT_THAT(of(Setting::FrameWidth), ElementsAre("from 16 to 648", kNotDuringAcquisition));
    EXPECT_THAT(of(Setting::FrameHeight), ElementsAre("from 12 to 488", kNotDuringAcquisition));
    state.frameOffsetX.value = 100.0;
    state.frameOffsetY.value = 200.0;
    EXPECT_THAT(of(Setting::FrameWidth), ElementsAre("from 16 to 556", kNotDuringAcquisition));
    EXPECT_THAT(of(Setting::FrameHeight), ElementsAre("from 12 to 292", kNotDuringAcquisition));
}

TEST_F(SettingConstraints, SizesOfACameraThatTellsNoLeastOneBeginAtOnePixel) {
    state.frameWidth.hasRange = false;
    state.frameHeight.hasRange = false;
    EXPECT_THAT(of(Setting::FrameWidth), ElementsAre("from 1 to 648", kNotDuringAcquisition));
    EXPECT_THAT(of(Setting::FrameHeight), ElementsAre("from 1 to 488", kNotDuringAcquisition));
}

TEST_F(SettingConstraints, GeometryOfAnUnknownSensorHasNoRange) {
    state.sensorWidth = 0.0;
    EXPECT_THAT(of(Setting::FrameOffsetX), ElementsAre(kNotDuringAcquisition));
    EXPECT_THAT(of(Setting::FrameWidth), ElementsAre(kNotDuringAcquisition));
    EXPECT_THAT(of(Setting::FrameHeight), ElementsAre("from 12 to 488", kNotDuringAcquisition));
    state.sensorHeight = 0.0;
    EXPECT_THAT(of(Setting::FrameOffsetY), ElementsAre(kNotDuringAcquisition));
    EXPECT_THAT(of(Setting::FrameHeight), ElementsAre(kNotDuringAcquisition));
}

TEST_F(SettingConstraints, GeometryBeyondTheSensorHasOneValueLeft) {
    state.frameWidth.value = 657.0;
    state.frameOffsetY.value = 481.0;
    EXPECT_THAT(of(Setting::FrameOffsetX), ElementsAre("from 0 to 0", kNotDuringAcquisition));
    EXPECT_THAT(of(Setting::FrameHeight), ElementsAre("from 12 to 12", kNotDuringAcquisition));
}

constexpr Setting kDomainSettings[] = {Setting::Exposure,
                                       Setting::Gain,
                                       Setting::GainAutoAdjustTol,
                                       Setting::GainAutoRate,
                                       Setting::Gamma,
                                       Setting::Hue,
                                       Setting::Saturation,
                                       Setting::WhitebalanceRed,
                                       Setting::WhitebalanceBlue,
                                       Setting::FrameRate};

TEST_F(SettingConstraints, OtherNumbersHaveTheCamerasRangeAlone) {
    for (const Setting setting : kDomainSettings) {
        setRange(setting, -2.5, 7.25);
        EXPECT_THAT(of(setting), ElementsAre("from -2.5 to 7.25")) << settingKey(setting);
    }
}

TEST_F(SettingConstraints, OtherNumbersWithoutARangeHaveNoConstraint) {
    for (const Setting setting : kDomainSettings) EXPECT_THAT(of(setting), IsEmpty()) << settingKey(setting);
}

TEST_F(SettingConstraints, AnUpperEndBelowTheLowerOneIsRaisedToIt) {
    for (const Setting setting : kDomainSettings) {
        setRange(setting, 7.25, -2.5);
        EXPECT_THAT(of(setting), ElementsAre("from 7.25 to 7.25")) << settingKey(setting);
    }
}

TEST_F(SettingConstraints, EndsAtInfinityStay) {
    setRange(Setting::Gain, -HUGE_VAL, HUGE_VAL);
    EXPECT_THAT(of(Setting::Gain), ElementsAre("from -inf to inf"));
}

TEST_F(SettingConstraints, TheExposureEndsWithTheFramePeriod) {
    setRange(Setting::Exposure, 30.0, 6e7);
    state.frameRate.value = 25.0;
    EXPECT_THAT(of(Setting::Exposure), ElementsAre("from 30 to 39970"));
    state.triggerModeIsAux = true;
    state.auxFrequency = Rational(100);
    EXPECT_THAT(of(Setting::Exposure), ElementsAre("from 30 to 9970"));
    state.auxFrequency = Rational(1'000'000);
    EXPECT_THAT(of(Setting::Exposure), ElementsAre("from 30 to 30"));
}

TEST_F(SettingConstraints, TheExposureOfATriggeredCameraWithoutFrequencyEndsWithTheSelectedRate) {
    setRange(Setting::Exposure, 30.0, 6e7);
    state.frameRate.value = 25.0;
    state.triggerModeIsAux = true;
    EXPECT_THAT(of(Setting::Exposure), ElementsAre("from 30 to 39970"));
}

TEST_F(SettingConstraints, TheExposureWithoutARateHasTheCamerasRange) {
    setRange(Setting::Exposure, 30.0, 60'000.0);
    EXPECT_THAT(of(Setting::Exposure), ElementsAre("from 30 to 60000"));
}

TEST_F(SettingConstraints, TheRateOfATriggeredCameraIsReadOnly) {
    setRange(Setting::FrameRate, 0.5, 90.0);
    state.auxFrequency = Rational(25);
    EXPECT_THAT(of(Setting::FrameRate), ElementsAre("from 0.5 to 90"));
    state.triggerModeIsAux = true;
    EXPECT_THAT(of(Setting::FrameRate), ElementsAre("read-only true"));
    state.auxFrequency.reset();
    EXPECT_THAT(of(Setting::FrameRate), ElementsAre("read-only true"));
}

TEST_F(SettingConstraints, ChoicesAreOneConstraintEachInTheirOrder) {
    EXPECT_THAT(inWords(choiceConstraints({"b", "", "a"})),
                ElementsAre("choice 'b'", "choice ''", "choice 'a'"));
    EXPECT_THAT(choiceConstraints({}), IsEmpty());
}

TEST_F(SettingConstraints, ReadOnlyIsOneConstraint) {
    EXPECT_THAT(inWords(readOnlyConstraints()), ElementsAre("read-only true"));
}

}  // namespace
