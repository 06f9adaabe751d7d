// Lists that are asked for twice.
#include <cstring>

#include "simulator_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kSystem;
using test_support::run;
using test_support::setInt;
using test_support::SimulatorTest;

class CameraList : public SimulatorTest {
  protected:
    CameraList() {
        setInt(kSystem, "GeVDiscoveryAllDuration", 1);
        run(kSystem, "GeVDiscoveryAllOnce");
    }
    VmbUint32_t found = 99;
    VmbCameraInfo_t cameras[3] = {};
};

TEST_F(CameraList, CountsWithoutAnArrayWhateverTheSizes) {
    EXPECT_EQ(VmbCamerasList(nullptr, 17, &found, 3), VmbErrorSuccess);
    EXPECT_EQ(found, 2u);
}

TEST_F(CameraList, FillsAnArrayThatIsLongEnough) {
    EXPECT_EQ(VmbCamerasList(cameras, 3, &found, sizeof cameras[0]), VmbErrorSuccess);
    EXPECT_EQ(found, 2u);
    EXPECT_STREQ(cameras[0].cameraIdString, kColourCamera);
    EXPECT_STREQ(cameras[0].cameraName, "Manta_G-033C");
    EXPECT_STREQ(cameras[0].modelName, "Manta_G-033C");
    EXPECT_STREQ(cameras[0].serialString, "50-0503300001");
    EXPECT_EQ(cameras[0].permittedAccess, VmbAccessModeFull | VmbAccessModeRead);
    EXPECT_STREQ(cameras[0].interfaceIdString, "SimulatedNetwork0");
    EXPECT_STREQ(cameras[1].cameraIdString, kMonochromeCamera);
    EXPECT_STREQ(cameras[1].modelName, "Manta_G-032B");
    EXPECT_STREQ(cameras[1].serialString, "50-0503200002");
    EXPECT_EQ(cameras[2].cameraIdString, nullptr);
}

TEST_F(CameraList, FillsAShortArrayAsFarAsItGoes) {
    EXPECT_EQ(VmbCamerasList(cameras, 1, &found, sizeof cameras[0]), VmbErrorMoreData);
    EXPECT_EQ(found, 2u);
    EXPECT_STREQ(cameras[0].cameraIdString, kColourCamera);
    EXPECT_EQ(cameras[1].cameraIdString, nullptr);
}

TEST_F(CameraList, RefusesAnArrayOfNoLength) {
    EXPECT_EQ(VmbCamerasList(cameras, 0, &found, sizeof cameras[0]), VmbErrorMoreData);
    EXPECT_EQ(found, 2u);
    EXPECT_EQ(cameras[0].cameraIdString, nullptr);
}

TEST_F(SimulatorTest, FeaturesAreListedAlphabeticallyAndOnce) {
    const VmbHandle_t camera = open();
    VmbUint32_t count = 0;
    ASSERT_EQ(VmbFeaturesList(camera, nullptr, 0, &count, 0), VmbErrorSuccess);
    std::vector<VmbFeatureInfo_t> features(count);
    // The count may be left out when an array is given.
    ASSERT_EQ(VmbFeaturesList(camera, features.data(), count, nullptr, sizeof features[0]), VmbErrorSuccess);
    for (VmbUint32_t i = 1; i < count; ++i) {
        EXPECT_LT(std::strcmp(features[i - 1].name, features[i].name), 0) << features[i].name;
    }
}

TEST_F(SimulatorTest, AShortArrayOfFeaturesIsFilledAsFarAsItGoes) {
    std::vector<VmbFeatureInfo_t> features(3);
    VmbUint32_t found = 0;
    EXPECT_EQ(VmbFeaturesList(kSystem, features.data(), 2, &found, sizeof features[0]), VmbErrorMoreData);
    EXPECT_EQ(found, 22u);
    EXPECT_STREQ(features[0].name, "ActionCommand");
    EXPECT_STREQ(features[1].name, "ActionDeviceKey");
    EXPECT_EQ(features[2].name, nullptr);
}

TEST_F(SimulatorTest, AFeatureIsDescribedAlikeInTheListAndAlone) {
    const VmbHandle_t camera = open();
    VmbFeatureInfo_t info{};
    ASSERT_EQ(VmbFeatureInfoQuery(camera, "TriggerSelector", &info, sizeof info), VmbErrorSuccess);
    EXPECT_STREQ(info.name, "TriggerSelector");
    EXPECT_EQ(info.featureDataType, VmbFeatureDataEnum);
    EXPECT_EQ(info.featureFlags, VmbFeatureFlagsRead | VmbFeatureFlagsWrite);
    EXPECT_STREQ(info.category, "/Acquisition/Trigger");
    EXPECT_STREQ(info.displayName, "Trigger Selector");
    EXPECT_TRUE(info.hasAffectedFeatures);
    EXPECT_TRUE(info.hasSelectedFeatures);
    ASSERT_EQ(VmbFeatureInfoQuery(camera, "ExposureTimeAbs", &info, sizeof info), VmbErrorSuccess);
    EXPECT_EQ(info.featureDataType, VmbFeatureDataFloat);
    EXPECT_STREQ(info.unit, "\xC2\xB5s");
    EXPECT_FALSE(info.hasSelectedFeatures);
    ASSERT_EQ(VmbFeatureInfoQuery(camera, "AcquisitionStart", &info, sizeof info), VmbErrorSuccess);
    EXPECT_EQ(info.featureDataType, VmbFeatureDataCommand);
    EXPECT_EQ(info.featureFlags, VmbFeatureFlagsWrite);
    ASSERT_EQ(VmbFeatureInfoQuery(camera, "StatFrameDelivered", &info, sizeof info), VmbErrorSuccess);
    EXPECT_EQ(info.featureFlags, VmbFeatureFlagsRead | VmbFeatureFlagsVolatile);
}

TEST_F(SimulatorTest, EntriesAreCountedFilledOrCutShort) {
    const VmbHandle_t camera = open();
    VmbUint32_t filled = 0;
    const char* entries[4] = {};
    EXPECT_EQ(VmbFeatureEnumRangeQuery(camera, "GainAuto", nullptr, 0, &filled), VmbErrorSuccess);
    EXPECT_EQ(filled, 3u);
    EXPECT_EQ(VmbFeatureEnumRangeQuery(camera, "GainAuto", entries, 2, &filled), VmbErrorMoreData);
    EXPECT_EQ(filled, 3u);
    EXPECT_STREQ(entries[1], "Continuous");
    EXPECT_EQ(entries[2], nullptr);
    EXPECT_EQ(VmbFeatureEnumRangeQuery(camera, "GainAuto", entries, 3, nullptr), VmbErrorSuccess);
    EXPECT_STREQ(entries[2], "Once");
}

TEST_F(SimulatorTest, TextsCountTheirTerminatingZero) {
    const VmbHandle_t camera = open();
    VmbUint32_t filled = 0;
    EXPECT_EQ(VmbFeatureStringGet(camera, "DeviceModelName", nullptr, 0, &filled), VmbErrorSuccess);
    EXPECT_EQ(filled, 13u);
    char text[13] = "untouched";
    filled = 0;
    EXPECT_EQ(VmbFeatureStringGet(camera, "DeviceModelName", text, 12, &filled), VmbErrorMoreData);
    EXPECT_EQ(filled, 13u);
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(VmbFeatureStringGet(camera, "DeviceModelName", text, 13, nullptr), VmbErrorSuccess);
    EXPECT_STREQ(text, "Manta_G-033C");
}

}  // namespace
