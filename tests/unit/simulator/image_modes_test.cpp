// What changes the picture's size, the area of the automatic functions, and saved settings.
#include "simulator_fixture.h"

namespace {

using test_support::enumOf;
using test_support::floatOf;
using test_support::intOf;
using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::SimulatorTest;
using test_support::stringOf;

VmbInt64_t maxOf(VmbHandle_t camera, const char* name) {
    VmbInt64_t max = -1;
    EXPECT_EQ(VmbFeatureIntRangeQuery(camera, name, nullptr, &max), VmbErrorSuccess) << name;
    return max;
}

VmbInt64_t minOf(VmbHandle_t camera, const char* name) {
    VmbInt64_t min = -1;
    EXPECT_EQ(VmbFeatureIntRangeQuery(camera, name, &min, nullptr), VmbErrorSuccess) << name;
    return min;
}

TEST_F(SimulatorTest, BinningDividesThePicture) {
    const VmbHandle_t camera = open();
    setEnum(camera, "PixelFormat", "Mono8");
    setInt(camera, "BinningHorizontal", 2);
    setInt(camera, "BinningVertical", 4);
    EXPECT_EQ(intOf(camera, "WidthMax"), 328);
    EXPECT_EQ(intOf(camera, "HeightMax"), 123);
    EXPECT_EQ(intOf(camera, "Width"), 328);
    // 123 rows on steps of two.
    EXPECT_EQ(intOf(camera, "Height"), 122);
    EXPECT_EQ(intOf(camera, "PayloadSize"), 328 * 122);
    EXPECT_EQ(intOf(camera, "SensorWidth"), 656);
    EXPECT_EQ(maxOf(camera, "Width"), 328);
    setInt(camera, "BinningHorizontal", 1);
    setInt(camera, "BinningVertical", 1);
    EXPECT_EQ(intOf(camera, "WidthMax"), 656);
    EXPECT_EQ(intOf(camera, "Width"), 328);
    EXPECT_EQ(maxOf(camera, "Width"), 656);
    EXPECT_EQ(maxOf(camera, "Height"), 492);
}

TEST_F(SimulatorTest, DecimationKeepsTheOffsetInside) {
    const VmbHandle_t camera = open(kMonochromeCamera);
    setInt(camera, "Width", 300);
    setInt(camera, "OffsetX", 356);
    setInt(camera, "DecimationHorizontal", 2);
    EXPECT_EQ(intOf(camera, "WidthMax"), 328);
    EXPECT_EQ(intOf(camera, "Width"), 300);
    EXPECT_EQ(intOf(camera, "OffsetX"), 28);
    EXPECT_EQ(maxOf(camera, "OffsetX"), 28);
    EXPECT_EQ(maxOf(camera, "Width"), 300);
}

TEST_F(SimulatorTest, BinningAndDecimationExcludeEachOther) {
    const VmbHandle_t camera = open();
    setInt(camera, "BinningHorizontal", 2);
    EXPECT_EQ(VmbFeatureIntSet(camera, "DecimationHorizontal", 2), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureIntSet(camera, "DecimationVertical", 2), VmbErrorInvalidValue);
    EXPECT_EQ(maxOf(camera, "DecimationVertical"), 1);
    setInt(camera, "BinningHorizontal", 1);
    setInt(camera, "DecimationVertical", 8);
    EXPECT_EQ(VmbFeatureIntSet(camera, "BinningVertical", 2), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureIntSet(camera, "DecimationVertical", 9), VmbErrorInvalidValue);
}

TEST_F(SimulatorTest, BinningIsLockedWhileAcquiring) {
    const VmbHandle_t camera = open();
    run(camera, "AcquisitionStart");
    for (const char* name : {"BinningHorizontal", "BinningVertical", "DecimationHorizontal",
                             "DecimationVertical", "GVSPPacketSize"}) {
        EXPECT_EQ(VmbFeatureIntSet(camera, name, intOf(camera, name)), VmbErrorInvalidAccess) << name;
    }
    EXPECT_EQ(VmbFeatureBoolSet(camera, "ChunkModeActive", true), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbFeatureCommandRun(camera, "UserSetLoad"), VmbErrorInvalidAccess);
    run(camera, "AcquisitionStop");
}

TEST_F(SimulatorTest, TheSubregionStaysWithinThePictureAndInOrder) {
    const VmbHandle_t camera = open();
    setInt(camera, "DSPSubregionLeft", 600);
    EXPECT_EQ(minOf(camera, "DSPSubregionRight"), 601);
    EXPECT_EQ(VmbFeatureIntSet(camera, "DSPSubregionRight", 600), VmbErrorInvalidValue);
    setInt(camera, "DSPSubregionRight", 610);
    EXPECT_EQ(maxOf(camera, "DSPSubregionLeft"), 609);
    EXPECT_EQ(VmbFeatureIntSet(camera, "DSPSubregionLeft", 610), VmbErrorInvalidValue);
    setInt(camera, "BinningHorizontal", 2);
    EXPECT_EQ(intOf(camera, "DSPSubregionRight"), 328);
    EXPECT_EQ(intOf(camera, "DSPSubregionLeft"), 327);
    EXPECT_EQ(maxOf(camera, "DSPSubregionRight"), 328);
    EXPECT_EQ(intOf(camera, "DSPSubregionBottom"), 492);
}

class UserSets : public SimulatorTest {
  protected:
    /// Another exposure, white balance under its second entry and packet size than at power-up.
    static void change(VmbHandle_t camera) {
        setFloat(camera, "ExposureTimeAbs", 2000);
        setEnum(camera, "BalanceRatioSelector", "Blue");
        setFloat(camera, "BalanceRatioAbs", 2.5);
        setInt(camera, "Width", 320);
    }
    static void expectChanged(VmbHandle_t camera) {
        EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 2000);
        EXPECT_EQ(enumOf(camera, "BalanceRatioSelector"), "Blue");
        EXPECT_EQ(floatOf(camera, "BalanceRatioAbs"), 2.5);
        EXPECT_EQ(intOf(camera, "Width"), 320);
    }
    static void expectPowerUp(VmbHandle_t camera) {
        EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 15000);
        EXPECT_EQ(enumOf(camera, "BalanceRatioSelector"), "Red");
        EXPECT_EQ(floatOf(camera, "BalanceRatioAbs"), 1);
        EXPECT_EQ(intOf(camera, "Width"), 656);
        EXPECT_EQ(intOf(camera, "PayloadSize"), 656 * 492);
    }
};

TEST_F(UserSets, KeepSettingsUntilTheyAreLoaded) {
    const VmbHandle_t camera = open();
    change(camera);
    setEnum(camera, "UserSetSelector", "UserSet2");
    run(camera, "UserSetSave");
    setEnum(camera, "UserSetSelector", "Default");
    run(camera, "UserSetLoad");
    expectPowerUp(camera);
    setEnum(camera, "UserSetSelector", "UserSet2");
    run(camera, "UserSetLoad");
    expectChanged(camera);
    EXPECT_EQ(enumOf(camera, "UserSetSelector"), "UserSet2");
}

TEST_F(UserSets, ThatWereNeverSavedHoldTheDefault) {
    const VmbHandle_t camera = open();
    change(camera);
    setEnum(camera, "UserSetSelector", "UserSet5");
    run(camera, "UserSetLoad");
    expectPowerUp(camera);
}

TEST_F(UserSets, LeaveTheDefaultAndTheCamerasNameAlone) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(VmbFeatureCommandRun(camera, "UserSetSave"), VmbErrorInvalidAccess);
    VmbFeatureStringSet(camera, "DeviceUserID", "north");
    run(camera, "UserSetLoad");
    EXPECT_EQ(stringOf(camera, "DeviceUserID"), "north");
}

TEST_F(UserSets, AreTheSettingsAtPowerUpWhenTheyAreChosen) {
    VmbHandle_t camera = open();
    change(camera);
    setEnum(camera, "UserSetSelector", "UserSet1");
    run(camera, "UserSetSave");
    setEnum(camera, "UserSetDefaultSelector", "UserSet1");
    VmbSimUnplugCamera(kColourCamera);
    VmbSimPlugCamera(kColourCamera);
    camera = open();
    expectChanged(camera);
    EXPECT_EQ(enumOf(camera, "UserSetDefaultSelector"), "UserSet1");
    setEnum(camera, "UserSetDefaultSelector", "Default");
    VmbSimUnplugCamera(kColourCamera);
    VmbSimPlugCamera(kColourCamera);
    expectPowerUp(open());
}

TEST_F(UserSets, TellWhatTheyChange) {
    const VmbHandle_t camera = open();
    Invalidations news;
    news.registerOn(camera, "ExposureTimeAbs");
    news.registerOn(camera, "DeviceUserID");
    run(camera, "UserSetLoad");
    EXPECT_EQ(VmbSimWaitForEvents(test_support::kPatienceMs), VmbErrorSuccess);
    EXPECT_THAT(news.names(), ::testing::ElementsAre("ExposureTimeAbs"));
    VmbCameraClose(camera);
}

}  // namespace
