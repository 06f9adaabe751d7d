// What the host changes: one value at a time.
#include "zelt_gige_camera_channel_feature_writer.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include "read_camera_fixture.h"
#include "special_numbers.h"

namespace {

using namespace zelt_gige_camera;
using namespace test_support;
using test_support::kNan;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt_gige_api::UnsupportedFeature;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

class FeatureWriter : public OnReadCamera {
  protected:
    void change(Setting setting, double wanted) { changeNumber(work, setting, wanted); }
    void close() { work.camera = 0; }
    double valueOf(Setting setting) const { return (state.*numberRow(setting).value).value; }
    /// What is known of settings and news, to see that nothing of it changed.
    Calls everything() const {
        Calls words = inWords(state);
        words.insert(words.end(), news.keys().begin(), news.keys().end());
        return words;
    }
};

struct Write {
    Setting setting;
    double wanted;
    Calls calls;
};

const std::vector<Write> kWrites{
    {Setting::FrameOffsetX, 16, {"setInt OffsetX 16", "getInt OffsetX"}},
    {Setting::FrameOffsetY, 17, {"setInt OffsetY 17", "getInt OffsetY"}},
    {Setting::FrameWidth, 320, {"setInt Width 320", "getInt Width"}},
    {Setting::FrameHeight, 240, {"setInt Height 240", "getInt Height"}},
    {Setting::Exposure, 99.5, {"setFloat ExposureTimeAbs 99.5", "getFloat ExposureTimeAbs"}},
    {Setting::Gain, 3.25, {"setFloat Gain 3.25", "getFloat Gain"}},
    {Setting::GainAutoAdjustTol, 6, {"setInt GainAutoAdjustTol 6", "getInt GainAutoAdjustTol"}},
    {Setting::GainAutoRate, 7, {"setInt GainAutoRate 7", "getInt GainAutoRate"}},
    {Setting::Gamma, 0.5, {"setFloat Gamma 0.5", "getFloat Gamma"}},
    {Setting::Hue, -12.5, {"setFloat Hue -12.5", "getFloat Hue"}},
    {Setting::Saturation, 0.25, {"setFloat Saturation 0.25", "getFloat Saturation"}},
    {Setting::WhitebalanceRed,
     1.125,
     {"setEnum BalanceRatioSelector Red", "setFloat BalanceRatioAbs[Red] 1.125",
      "getFloat BalanceRatioAbs[Red]"}},
    {Setting::WhitebalanceBlue,
     1.625,
     {"setEnum BalanceRatioSelector Blue", "setFloat BalanceRatioAbs[Blue] 1.625",
      "getFloat BalanceRatioAbs[Blue]"}},
    {Setting::FrameRate,
     29.97,
     {"setFloat AcquisitionFrameRateAbs 29.97", "getFloat AcquisitionFrameRateAbs"}},
};

TEST_F(FeatureWriter, WritesANumberAtOnceAndReadsItBack) {
    for (const Write& write : kWrites) {
        insert(state.pending, write.setting);
        EXPECT_EQ(callsOf([&] { change(write.setting, write.wanted); }), write.calls);
        EXPECT_EQ(valueOf(write.setting), write.wanted) << write.calls[0];
        EXPECT_FALSE(isPending(write.setting)) << write.calls[0];
    }
    EXPECT_THAT(news.keys(), IsEmpty());
    EXPECT_FALSE(state.configurationPending);
}

TEST_F(FeatureWriter, KeepsANumberForLaterWhileNoCameraIsOpen) {
    close();
    for (const Write& write : kWrites) {
        EXPECT_THAT(callsOf([&] { change(write.setting, write.wanted); }), IsEmpty());
        EXPECT_EQ(valueOf(write.setting), write.wanted) << write.calls[0];
        EXPECT_TRUE(isPending(write.setting)) << write.calls[0];
    }
    EXPECT_THAT(news.keys(), IsEmpty());
}

TEST_F(FeatureWriter, TakesOverWhatTheCameraMadeOfANumberAndTellsIt) {
    camera.features["Width"].rounding = [](double value) { return std::floor(value / 16.0) * 16.0; };
    camera.features["BalanceRatioAbs[Blue]"].rounding = [](double) { return 1.0; };
    change(Setting::FrameWidth, 639);
    EXPECT_EQ(state.frameWidth.value, 624.0);
    change(Setting::WhitebalanceBlue, 1.6);
    EXPECT_EQ(state.whitebalanceBlue.value, 1.0);
    EXPECT_THAT(news.keys(), ElementsAre("FrameWidth", "CAMERA/WhitebalanceBlue"));
}

TEST_F(FeatureWriter, ChangesNothingWhenTheCameraRefusesANumber) {
    for (const Write& write : kWrites) {
        for (const std::string& call : write.calls) {
            if (call == write.calls.back()) continue;  // the number is written by then
            const Calls before = everything();
            camera.forgive();
            camera.refuse(call);
            EXPECT_THROW(change(write.setting, write.wanted), UnsupportedFeature) << call;
            EXPECT_EQ(everything(), before) << call;
        }
    }
}

TEST_F(FeatureWriter, KeepsARefusedNumberPendingWithItsOldValueIfItWas) {
    close();
    change(Setting::Gain, 5.0);
    work.camera = 7;
    camera.refuse("setFloat Gain 6");
    EXPECT_THROW(change(Setting::Gain, 6.0), UnsupportedFeature);
    EXPECT_EQ(state.gain.value, 5.0);
    EXPECT_TRUE(isPending(Setting::Gain));
}

TEST_F(FeatureWriter, WritesANumberAgainLaterWhenItCouldNotBeReadBack) {
    for (const Write& write : kWrites) {
        news = {};
        state.configurationPending = false;
        camera.forgive();
        camera.lose(write.calls.back());
        EXPECT_EQ(failureOf([&] { change(write.setting, write.wanted); }), "The camera is gone");
        EXPECT_EQ(valueOf(write.setting), write.wanted) << write.calls[0];
        EXPECT_TRUE(isPending(write.setting)) << write.calls[0];
        EXPECT_TRUE(state.configurationPending) << write.calls[0];
        EXPECT_THAT(news.keys(), ElementsAre(settingKey(write.setting)));
    }
}

struct Rounding {
    Setting setting;
    double wanted;
    double whole;
};

TEST_F(FeatureWriter, RoundsForWholeFeaturesWithHalvesAwayFromZero) {
    const std::vector<Rounding> roundings{
        {Setting::GainAutoRate, 2.4999, 2.0},   {Setting::GainAutoRate, 2.5, 3.0},
        {Setting::GainAutoRate, 3.5, 4.0},      {Setting::GainAutoRate, -2.5, -3.0},
        {Setting::GainAutoRate, -2.4999, -2.0}, {Setting::GainAutoAdjustTol, 0.5, 1.0},
        {Setting::FrameWidth, 319.5, 320.0},    {Setting::FrameHeight, 240.49, 240.0},
        {Setting::FrameOffsetX, -0.4, 0.0},
    };
    for (const Rounding& each : roundings) {
        change(each.setting, each.wanted);
        EXPECT_EQ(valueOf(each.setting), each.whole) << each.wanted;
        EXPECT_EQ(camera.features[numberRow(each.setting).feature].number, each.whole) << each.wanted;
    }
    close();
    change(Setting::FrameOffsetY, 2.5);
    EXPECT_EQ(state.frameOffsetY.value, 3.0);
    // None of them is what the host wanted.
    EXPECT_THAT(news.keys(), ElementsAre("CAMERA/GainAutoRate", "CAMERA/GainAutoAdjustTol", "FrameWidth",
                                         "FrameHeight", "FrameOffsetX", "FrameOffsetY"));
}

struct Impossible {
    Setting setting;
    double wanted;
    const char* text;
};

TEST_F(FeatureWriter, RefusesWhatAFeatureCannotHoldAtAll) {
    const std::vector<Impossible> impossibles{
        {Setting::Gain, kNan, "The feature 'Gain' cannot hold nan, choose a value within its range"},
        {Setting::Gain, kInfinity, "The feature 'Gain' cannot hold inf, choose a value within its range"},
        {Setting::Exposure, -kInfinity,
         "The feature 'ExposureTimeAbs' cannot hold -inf, choose a value within its range"},
        {Setting::FrameRate, kNan,
         "The feature 'AcquisitionFrameRateAbs' cannot hold nan, choose a value within its range"},
        {Setting::WhitebalanceRed, kInfinity,
         "The feature 'BalanceRatioAbs' cannot hold inf, choose a value within its range"},
        {Setting::FrameWidth, -1, "The feature 'Width' cannot hold -1, choose a value within its range"},
        {Setting::FrameOffsetX, -0.5,
         "The feature 'OffsetX' cannot hold -0.5, choose a value within its range"},
        {Setting::FrameHeight, kNan, "The feature 'Height' cannot hold nan, choose a value within its range"},
        {Setting::FrameOffsetY, 4294967295.5,
         "The feature 'OffsetY' cannot hold 4294967295.5, choose a value within its range"},
        {Setting::GainAutoRate, kInfinity,
         "The feature 'GainAutoRate' cannot hold inf, choose a value within its range"},
        {Setting::GainAutoRate, 1e300,
         "The feature 'GainAutoRate' cannot hold 1.0000000000000001e+300, choose a value within its range"},
        {Setting::GainAutoAdjustTol, 9223372036854775808.0,
         "The feature 'GainAutoAdjustTol' cannot hold 9.2233720368547758e+18, choose a value within its "
         "range"},
        {Setting::GainAutoAdjustTol, -9223372036854777856.0,
         "The feature 'GainAutoAdjustTol' cannot hold -9.2233720368547779e+18, choose a value within its "
         "range"},
    };
    const Calls before = everything();
    for (const bool isOpen : {true, false}) {
        work.camera = isOpen ? 7 : 0;
        for (const Impossible& each : impossibles) {
            EXPECT_THAT(
                callsOf([&] { EXPECT_EQ(failureOf([&] { change(each.setting, each.wanted); }), each.text); }),
                IsEmpty());
            EXPECT_THROW(change(each.setting, each.wanted), std::invalid_argument);
            EXPECT_EQ(everything(), before) << each.text;
        }
    }
}

TEST_F(FeatureWriter, LeavesItToTheCameraToRefuseWhatItsRangeExcludes) {
    EXPECT_EQ(callsOf([&] { change(Setting::Gain, 1e300); }),
              (Calls{"setFloat Gain 1e+300", "getFloat Gain"}));
    EXPECT_EQ(callsOf([&] { change(Setting::FrameWidth, 4294967295.0); }),
              (Calls{"setInt Width 4294967295", "getInt Width"}));
    EXPECT_EQ(callsOf([&] { change(Setting::GainAutoRate, -9223372036854775808.0); }),
              (Calls{"setInt GainAutoRate -9223372036854775808", "getInt GainAutoRate"}));
}

TEST_F(FeatureWriter, WritesAnAutomaticFunctionAtOnce) {
    for (const AutoRow& row : autoRows()) {
        insert(state.pending, row.setting);
        EXPECT_EQ(callsOf([&] { changeAutomatic(work, row.setting, "Continuous"); }),
                  Calls{std::string("setEnum ") + row.feature + " Continuous"});
        EXPECT_EQ((state.*row.value).value, "Continuous");
        EXPECT_FALSE(isPending(row.setting));
    }
    EXPECT_THAT(news.keys(), IsEmpty());
}

TEST_F(FeatureWriter, KeepsAnAutomaticFunctionForLaterWhileNoCameraIsOpen) {
    close();
    for (const AutoRow& row : autoRows()) {
        EXPECT_THAT(callsOf([&] { changeAutomatic(work, row.setting, "Once"); }), IsEmpty());
        EXPECT_EQ((state.*row.value).value, "Once");
        EXPECT_TRUE(isPending(row.setting));
    }
}

TEST_F(FeatureWriter, ChangesNothingWhenTheCameraRefusesAnEntry) {
    insert(state.pending, Setting::GainAuto);
    const Calls before = everything();
    for (const AutoRow& row : autoRows()) {
        camera.refuse(std::string("setEnum ") + row.feature);
        EXPECT_THROW(changeAutomatic(work, row.setting, "Once"), UnsupportedFeature);
    }
    camera.refuse("setEnum PixelFormat");
    EXPECT_THROW(changePixelFormat(work, "RGB8Packed"), UnsupportedFeature);
    EXPECT_EQ(everything(), before);
}

TEST_F(FeatureWriter, WritesAPixelFormatAtOnce) {
    insert(state.pending, Setting::FrameFormat);
    EXPECT_EQ(callsOf([&] { changePixelFormat(work, "RGB8Packed"); }),
              Calls{"setEnum PixelFormat RGB8Packed"});
    EXPECT_EQ(state.pixelFormat, "RGB8Packed");
    EXPECT_FALSE(isPending(Setting::FrameFormat));
}

TEST_F(FeatureWriter, KeepsAPixelFormatForLaterWhileNoCameraIsOpen) {
    close();
    EXPECT_THAT(callsOf([&] { changePixelFormat(work, "RGB8Packed"); }), IsEmpty());
    EXPECT_EQ(state.pixelFormat, "RGB8Packed");
    EXPECT_TRUE(isPending(Setting::FrameFormat));
}

}  // namespace
