// Numbers that no camera has, features that change or vanish, and handles that are somebody else's.
#include <limits>

#include "hostile_fixture.h"

namespace {

using test_support::HostileTest;
using test_support::HostileVendor;
using test_support::isFeature;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::LogCapture;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// Of a second, one every 50 ms.
constexpr std::size_t kFramesDue = 20;
constexpr VmbInt64_t kMostTicks = 1'000'000'000'000;

class HostileNumbers : public HostileTest {
  protected:
    /// The camera's message after it was found; preparing fails with the same.
    void expectRefused(const std::string& message) {
        enumerate();
        ASSERT_TRUE(isListed(0));
        EXPECT_EQ(lastMessage(0), message);
        EXPECT_ANY_THROW(plugin->prepareAcquisition());
        EXPECT_EQ(lastMessage(0), message);
        std::uint32_t announced = 0;
        std::uint32_t queued = 0;
        EXPECT_EQ(VmbSimFrameCounts(kMonochromeCamera, &announced, &queued), VmbErrorDeviceNotOpen);
    }
    /// The camera works as soon as it tells the truth.
    void expectGoodWhenHonest() {
        vendor = HostileVendor();
        EXPECT_EQ(framesOfAnHonestSecond(0), kFramesDue);
    }
};

class HostileTickFrequency : public HostileNumbers, public ::testing::WithParamInterface<VmbInt64_t> {};

TEST_P(HostileTickFrequency, IsRefusedWithItsValue) {
    lieAbout("GevTimestampTickFrequency", GetParam());
    expectRefused(
        "Cannot configure camera 'Manta_G-032B (50-0503200002)': The feature "
        "'GevTimestampTickFrequency' reads " +
        std::to_string(GetParam()) + ", which is no possible value");
    expectGoodWhenHonest();
}

INSTANTIATE_TEST_SUITE_P(OutOfReason, HostileTickFrequency,
                         ::testing::Values(0, -1, std::numeric_limits<VmbInt64_t>::min(), kMostTicks + 1,
                                           std::numeric_limits<VmbInt64_t>::max()));

TEST_F(HostileNumbers, ATickOfAPicosecondIsTaken) {
    lieAbout("GevTimestampTickFrequency", kMostTicks);
    enumerate();
    EXPECT_EQ(lastMessage(0), "");
    // The twentieth frame is the first that is dated by the line, which is off by a millisecond for each
    // microsecond that a frame of such a camera waited: it may seem to be earlier than the one before.
    EXPECT_THAT(framesOfAnHonestSecond(0), ::testing::AnyOf(kFramesDue - 1, kFramesDue));
}

class HostileFloat : public HostileNumbers, public ::testing::WithParamInterface<double> {};

TEST_P(HostileFloat, AsTheExposureRefusesTheCamera) {
    lieAboutFloat("ExposureTimeAbs", GetParam());
    expectRefused(
        "Cannot configure camera 'Manta_G-032B (50-0503200002)': The feature 'ExposureTimeAbs' reads " +
        config_items::ScalarConfigItem(GetParam(), {}).toString() + ", which is no possible value");
    expectGoodWhenHonest();
}

TEST_P(HostileFloat, AsASettingThatNotEveryCameraHasTakesThatSettingAway) {
    lieAboutFloat("Gamma", GetParam());
    enumerate();
    EXPECT_EQ(lastMessage(0), "");
    EXPECT_FALSE(channel(0)->hasKey(config_keys::kCameraGamma));
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesDue);
    expectGoodWhenHonest();
    EXPECT_TRUE(channel(0)->hasKey(config_keys::kCameraGamma));
}

TEST_P(HostileFloat, ReadBackAfterASettingWasWrittenIsToldAndNotShown) {
    enumerate();
    lieAboutFloat("Gain", GetParam());
    EXPECT_FALSE(setValue(*channel(0), config_keys::kCameraGain, 3));
    EXPECT_THAT(lastMessage(0), HasSubstr("The feature 'Gain' reads"));
    EXPECT_EQ(text(0, config_keys::kCameraGain), "3");
}

TEST_P(HostileFloat, AsTheRateThatTheCameraMadeOfTheWantedOneFailsTheConfiguration) {
    enumerate();
    lieAboutFloat("AcquisitionFrameRateAbs", GetParam());
    EXPECT_FALSE(plugin->prepareAcquisition());
    EXPECT_THAT(lastMessage(0), HasSubstr("The feature 'AcquisitionFrameRateAbs' reads"));
    expectGoodWhenHonest();
}

INSTANTIATE_TEST_SUITE_P(ThatIsNoNumber, HostileFloat,
                         ::testing::Values(std::numeric_limits<double>::quiet_NaN(),
                                           std::numeric_limits<double>::infinity(),
                                           -std::numeric_limits<double>::infinity()));

TEST_F(HostileNumbers, RangesWithoutEndsLeaveTheSettingsUsable) {
    const double infinity = std::numeric_limits<double>::infinity();
    vendor.floatRangeQuery.instead = [=](VmbHandle_t, const char*, double* min, double* max) -> VmbError_t {
        *min = -infinity;
        *max = infinity;
        return VmbErrorSuccess;
    };
    vendor.intRangeQuery.instead = [](VmbHandle_t, const char*, VmbInt64_t* min,
                                      VmbInt64_t* max) -> VmbError_t {
        *min = std::numeric_limits<VmbInt64_t>::max();
        *max = std::numeric_limits<VmbInt64_t>::min();
        return VmbErrorSuccess;
    };
    const test_support::AssertionCapture assertions;
    enumerate();
    for (const std::string& key : channel(0)->getKeys()) channel(0)->getConstraints(key);
    EXPECT_THAT(assertions.expressions(), IsEmpty());
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesDue);
}

struct HostileSize {
    const char* feature;
    VmbInt64_t value;
};

class HostileSizes : public HostileNumbers, public ::testing::WithParamInterface<HostileSize> {};

TEST_P(HostileSizes, OfThePictureAreNamedAndNotBelieved) {
    lieAbout(GetParam().feature, GetParam().value);
    const LogCapture log(UniLogSeverityLevel::Error);
    enumerate();
    EXPECT_THAT(
        log.texts(UniLogSeverityLevel::Error),
        Contains("Cannot update cache of camera. Error:The feature '" + std::string(GetParam().feature) +
                 "' reads " +
                 config_items::ScalarConfigItem(static_cast<double>(GetParam().value), {}).toString() +
                 ", which is no possible value"));
    expectGoodWhenHonest();
}

INSTANTIATE_TEST_SUITE_P(OutOfReason, HostileSizes,
                         ::testing::Values(HostileSize{"Width", -1}, HostileSize{"Width", 1'099'511'627'776},
                                           HostileSize{"Height", 4'294'967'296}, HostileSize{"OffsetX", -8},
                                           HostileSize{"OffsetY", 4'294'967'296}));

class HostilePayload : public HostileNumbers, public ::testing::WithParamInterface<VmbInt64_t> {};

TEST_P(HostilePayload, IsNoMemoryForFrames) {
    enumerate();
    lieAbout("PayloadSize", GetParam());
    EXPECT_FALSE(plugin->prepareAcquisition());
    EXPECT_EQ(lastMessage(0), "Cannot start camera Manta_G-032B (50-0503200002)");
    std::uint32_t announced = 99;
    std::uint32_t queued = 99;
    EXPECT_EQ(VmbSimFrameCounts(kMonochromeCamera, &announced, &queued), VmbErrorSuccess);
    EXPECT_EQ(announced, 0u);
    expectGoodWhenHonest();
}

INSTANTIATE_TEST_SUITE_P(OutOfReason, HostilePayload,
                         ::testing::Values(0, -1, 4'294'967'296, std::numeric_limits<VmbInt64_t>::max()));

TEST_F(HostileNumbers, APayloadSmallerThanThePicturesBringsNoneOfThem) {
    enumerate();
    vendor.intGet.instead = [this](VmbHandle_t handle, const char* name, VmbInt64_t* value) {
        const VmbError_t result = vendor.intGet.honest(handle, name, value);
        if (isFeature(name, "PayloadSize")) *value = 16;
        return result;
    };
    EXPECT_EQ(framesOfAnHonestSecond(0), 0u);
    expectGoodWhenHonest();
}

TEST_F(HostileNumbers, ASettingThatTurnsIntoAnotherTypeIsRefusedByName) {
    enumerate();
    vendor.floatSet.instead = [this](VmbHandle_t handle, const char* name, double value) -> VmbError_t {
        return isFeature(name, "Gain") ? VmbErrorWrongType : vendor.floatSet.honest(handle, name, value);
    };
    const std::string before = text(0, config_keys::kCameraGain);
    EXPECT_FALSE(setValue(*channel(0), config_keys::kCameraGain, 3));
    EXPECT_EQ(lastMessage(0),
              "Cannot configure camera 'Manta_G-032B (50-0503200002)': The feature 'Gain' is not supported");
    EXPECT_EQ(text(0, config_keys::kCameraGain), before);
    expectGoodWhenHonest();
}

TEST_F(HostileNumbers, FeaturesThatVanishAfterTheyWereListedAreMissedByName) {
    enumerate();
    const auto vanished = [](const char* name) {
        return isFeature(name, "Gain") || isFeature(name, "Gamma");
    };
    vendor.floatGet.instead = [this, vanished](VmbHandle_t handle, const char* name,
                                               double* value) -> VmbError_t {
        return vanished(name) ? VmbErrorNotFound : vendor.floatGet.honest(handle, name, value);
    };
    vendor.featureInfoQuery.instead = [this, vanished](VmbHandle_t handle, const char* name,
                                                       VmbFeatureInfo_t* info,
                                                       VmbUint32_t size) -> VmbError_t {
        return vanished(name) ? VmbErrorNotFound : vendor.featureInfoQuery.honest(handle, name, info, size);
    };
    EXPECT_FALSE(plugin->prepareAcquisition());
    EXPECT_EQ(lastMessage(0),
              "Cannot configure camera 'Manta_G-032B (50-0503200002)': The feature 'Gain' is not supported");
    expectGoodWhenHonest();
}

class HostileHandle : public HostileNumbers, public ::testing::WithParamInterface<std::uintptr_t> {};

TEST_P(HostileHandle, ThatIsNoCamerasRefusesTheCamera) {
    vendor.cameraOpen.instead = [](const char*, VmbAccessMode_t, VmbHandle_t* handle) -> VmbError_t {
        *handle = reinterpret_cast<VmbHandle_t>(GetParam());
        return VmbErrorSuccess;
    };
    enumerate();
    EXPECT_EQ(lastMessage(0),
              "Cannot open camera 'Manta_G-032B (50-0503200002)': Could not open camera: the "
              "library gave the handle " +
                  std::to_string(GetParam()) + ", which is not this camera's");
    expectGoodWhenHonest();
}

INSTANTIATE_TEST_SUITE_P(OfNobodyOrTheLibrary, HostileHandle, ::testing::Values(0u, 1u));

TEST_F(HostileNumbers, AHandleThatIsGivenAgainLeavesTheFirstCameraRecording) {
    VmbSimPlugCamera(kColourCamera);
    VmbHandle_t first = nullptr;
    vendor.cameraOpen.instead = [&](const char* id, VmbAccessMode_t mode, VmbHandle_t* handle) {
        if (first == nullptr) {
            const VmbError_t result = vendor.cameraOpen.honest(id, mode, handle);
            first = *handle;
            return result;
        }
        *handle = first;
        return VmbError_t{VmbErrorSuccess};
    };
    enumerate();
    ASSERT_TRUE(isListed(1));
    EXPECT_THAT(lastMessage(1), HasSubstr("the library gave the handle"));
    use(1, false);
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesDue);
}

}  // namespace
