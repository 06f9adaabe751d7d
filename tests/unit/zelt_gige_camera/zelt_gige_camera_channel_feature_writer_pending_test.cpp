// What is written when a camera is configured.
#include <cmath>

#include "read_camera_fixture.h"
#include "zelt_gige_camera_channel_feature_writer.h"

namespace {

using namespace zelt_gige_camera;
using namespace test_support;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt_gige_api::UnsupportedFeature;

class PendingValues : public OnReadCamera {
  protected:
    /// The host set a number while no camera was open.
    void pend(Setting setting, double value) {
        (state.*numberRow(setting).value).value = value;
        insert(state.pending, setting);
    }
    Calls geometry() {
        return callsOf([&] { writePendingGeometry(work); });
    }
    double taken(const char* feature) { return camera.features[feature].number; }
};

TEST_F(PendingValues, OfTheFormatAreWrittenWhenTheCameraHasAnother) {
    state.pixelFormat = "RGB8Packed";
    insert(state.pending, Setting::FrameFormat);
    EXPECT_EQ(callsOf([&] { EXPECT_TRUE(writePendingFormat(work)); }),
              (Calls{"getEnum PixelFormat", "setEnum PixelFormat RGB8Packed"}));
    EXPECT_FALSE(isPending(Setting::FrameFormat));
}

TEST_F(PendingValues, OfTheFormatThatTheCameraHasAreNotWritten) {
    state.pixelFormat = "Mono8";
    insert(state.pending, Setting::FrameFormat);
    EXPECT_EQ(callsOf([&] { EXPECT_FALSE(writePendingFormat(work)); }), Calls{"getEnum PixelFormat"});
    EXPECT_FALSE(isPending(Setting::FrameFormat));
}

TEST_F(PendingValues, OfTheFormatStayWhenTheCameraRefuses) {
    insert(state.pending, Setting::FrameFormat);
    for (const char* call : {"getEnum PixelFormat", "setEnum PixelFormat"}) {
        camera.forgive();
        camera.refuse(call);
        EXPECT_THROW(writePendingFormat(work), UnsupportedFeature) << call;
        EXPECT_TRUE(isPending(Setting::FrameFormat)) << call;
    }
}

TEST_F(PendingValues, AreNoneWhenNothingIsPending) {
    EXPECT_THAT(callsOf([&] {
                    EXPECT_FALSE(writePendingFormat(work));
                    writePendingGeometry(work);
                    writePendingValues(work);
                }),
                IsEmpty());
}

TEST_F(PendingValues, OfAGrowingPictureMoveItToTheCornerFirst) {
    pend(Setting::FrameWidth, 650);
    pend(Setting::FrameHeight, 490);
    pend(Setting::FrameOffsetX, 6);
    pend(Setting::FrameOffsetY, 2);
    EXPECT_EQ(geometry(),
              (Calls{"getInt Width", "setInt OffsetX 0", "getInt Height", "setInt OffsetY 0",
                     "setInt Width 650", "getInt Width", "setInt Height 490", "getInt Height",
                     "setInt OffsetX 6", "getInt OffsetX", "setInt OffsetY 2", "getInt OffsetY"}));
    EXPECT_TRUE(state.pending.none());
    EXPECT_THAT(news.keys(), IsEmpty());
}

TEST_F(PendingValues, OfAGrowingPictureBringItsOldOffsetBack) {
    pend(Setting::FrameHeight, 488);
    EXPECT_EQ(geometry(), (Calls{"getInt Height", "setInt OffsetY 0", "setInt Height 488", "getInt Height",
                                 "setInt OffsetY 4", "getInt OffsetY"}));
    EXPECT_EQ(state.frameOffsetY.value, 4.0);
    EXPECT_TRUE(state.pending.none());
}

TEST_F(PendingValues, OfAPictureThatDoesNotGrowAreItsSizesThenItsOffsets) {
    pend(Setting::FrameOffsetX, 100);
    pend(Setting::FrameWidth, 320);
    pend(Setting::FrameHeight, 480);
    EXPECT_EQ(geometry(),
              (Calls{"getInt Width", "getInt Height", "setInt Width 320", "getInt Width", "setInt Height 480",
                     "getInt Height", "setInt OffsetX 100", "getInt OffsetX"}));
}

TEST_F(PendingValues, OfAnOffsetAloneAreWrittenAtOnce) {
    pend(Setting::FrameOffsetY, 10);
    EXPECT_EQ(geometry(), (Calls{"setInt OffsetY 10", "getInt OffsetY"}));
}

TEST_F(PendingValues, OfGeometryThatTheCameraRoundsAreTold) {
    camera.features["OffsetX"].rounding = [](double value) { return std::floor(value / 8.0) * 8.0; };
    pend(Setting::FrameOffsetX, 23);
    writePendingGeometry(work);
    EXPECT_EQ(state.frameOffsetX.value, 16.0);
    EXPECT_THAT(news.keys(), ElementsAre("FrameOffsetX"));
}

struct MiddleOfGeometry {
    const char* call;
    unsigned nth;
    std::vector<Setting> pending;
};

TEST_F(PendingValues, OfGeometryStayFromTheStepThatFails) {
    using S = Setting;
    const std::vector<MiddleOfGeometry> failures{
        {"getInt Width", 1, {S::FrameWidth, S::FrameHeight}},
        {"setInt OffsetX 0", 1, {S::FrameOffsetX, S::FrameWidth, S::FrameHeight}},
        {"getInt Height", 1, {S::FrameOffsetX, S::FrameWidth, S::FrameHeight}},
        {"setInt OffsetY 0", 1, {S::FrameOffsetX, S::FrameOffsetY, S::FrameWidth, S::FrameHeight}},
        {"setInt Width 650", 1, {S::FrameOffsetX, S::FrameOffsetY, S::FrameWidth, S::FrameHeight}},
        {"getInt Width", 2, {S::FrameOffsetX, S::FrameOffsetY, S::FrameWidth, S::FrameHeight}},
        {"setInt Height 490", 1, {S::FrameOffsetX, S::FrameOffsetY, S::FrameHeight}},
        {"setInt OffsetX 6", 1, {S::FrameOffsetX, S::FrameOffsetY}},
        {"getInt OffsetX", 1, {S::FrameOffsetX, S::FrameOffsetY}},
        {"setInt OffsetY 2", 1, {S::FrameOffsetY}},
        {"getInt OffsetY", 1, {S::FrameOffsetY}},
    };
    const auto features = camera.features;
    for (const MiddleOfGeometry& failure : failures) {
        SCOPED_TRACE(failure.call);
        camera.features = features;
        camera.forgive();
        camera.lose(failure.call, failure.nth);
        state.pending.reset();
        state.frameOffsetX.value = 6.0;
        state.frameOffsetY.value = 2.0;
        pend(S::FrameWidth, 650);
        pend(S::FrameHeight, 490);
        EXPECT_EQ(failureOf([&] { writePendingGeometry(work); }), "The camera is gone");
        SettingSet expected;
        for (const S setting : failure.pending) insert(expected, setting);
        EXPECT_EQ(state.pending, expected);
        EXPECT_EQ(state.frameOffsetX.value, 6.0);
        EXPECT_EQ(state.frameOffsetY.value, 2.0);

        camera.forgive();
        writePendingGeometry(work);
        EXPECT_TRUE(state.pending.none());
        EXPECT_THAT(
            (std::vector<double>{taken("OffsetX"), taken("OffsetY"), taken("Width"), taken("Height")}),
            ElementsAre(6.0, 2.0, 650.0, 490.0));
    }
}

TEST_F(PendingValues, AreWrittenInTheirOrderWithTheHueLast) {
    state.pending.set();
    EXPECT_EQ(callsOf([&] { writePendingValues(work); }),
              chained({kExposureWrites, kGainWrites, kColourWrites, {"setFloat Hue 10", "getFloat Hue"}}));
    SettingSet left;
    for (const Setting setting :
         {Setting::FrameOffsetX, Setting::FrameOffsetY, Setting::FrameWidth, Setting::FrameHeight,
          Setting::TriggerMode, Setting::FrameFormat, Setting::FrameRate, Setting::ExposureAutoMax}) {
        insert(left, setting);
    }
    EXPECT_EQ(state.pending, left);
}

TEST_F(PendingValues, ThatTheCameraDoesNotHaveStay) {
    state.gamma.presence = Presence::Absent;
    state.hue.presence = Presence::Unreadable;
    state.gainAuto.presence = Presence::Absent;
    for (const Setting setting : {Setting::Gamma, Setting::Hue, Setting::GainAuto, Setting::Gain}) {
        insert(state.pending, setting);
    }
    EXPECT_EQ(callsOf([&] { writePendingValues(work); }), (Calls{"setFloat Gain 2.5", "getFloat Gain"}));
    EXPECT_TRUE(isPending(Setting::Gamma));
    EXPECT_TRUE(isPending(Setting::Hue));
    EXPECT_TRUE(isPending(Setting::GainAuto));
    EXPECT_FALSE(isPending(Setting::Gain));
}

TEST_F(PendingValues, StayFromTheStepThatFails) {
    for (const Setting setting : {Setting::Exposure, Setting::GainAuto, Setting::Hue}) {
        insert(state.pending, setting);
    }
    camera.refuse("setEnum GainAuto");
    EXPECT_THROW(writePendingValues(work), UnsupportedFeature);
    EXPECT_FALSE(isPending(Setting::Exposure));
    EXPECT_TRUE(isPending(Setting::GainAuto));
    EXPECT_TRUE(isPending(Setting::Hue));
}

}  // namespace
