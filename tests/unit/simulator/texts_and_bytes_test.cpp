// Text and raw features.
#include "simulator_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::SimulatorTest;
using test_support::stringOf;

class TextsAndBytes : public SimulatorTest {
  protected:
    VmbHandle_t camera = open();
};

TEST_F(TextsAndBytes, ATextIsSetUpToItsMaximum) {
    VmbUint32_t longest = 0;
    EXPECT_EQ(VmbFeatureStringMaxlengthQuery(camera, "DeviceUserID", &longest), VmbErrorSuccess);
    EXPECT_EQ(longest, 16u);
    EXPECT_EQ(VmbFeatureStringSet(camera, "DeviceUserID", "fifteen letters"), VmbErrorSuccess);
    EXPECT_EQ(stringOf(camera, "DeviceUserID"), "fifteen letters");
}

TEST_F(TextsAndBytes, ATextLongerThanItsMaximumIsRefused) {
    EXPECT_EQ(VmbFeatureStringSet(camera, "DeviceUserID", "sixteen letters."), VmbErrorInvalidValue);
    EXPECT_EQ(stringOf(camera, "DeviceUserID"), "");
    EXPECT_EQ(VmbFeatureStringSet(camera, "DeviceID", "x"), VmbErrorInvalidAccess);
}

TEST_F(TextsAndBytes, ANamedCameraIsListedByItsName) {
    VmbCameraInfo_t info{};
    EXPECT_EQ(VmbCameraInfoQuery(kColourCamera, &info, sizeof info), VmbErrorSuccess);
    EXPECT_STREQ(info.cameraName, "Manta_G-033C");
    VmbFeatureStringSet(camera, "DeviceUserID", "north");
    EXPECT_EQ(VmbCameraInfoQuery(kColourCamera, &info, sizeof info), VmbErrorSuccess);
    EXPECT_STREQ(info.cameraName, "north");
    EXPECT_STREQ(info.modelName, "Manta_G-033C");
    VmbFeatureStringSet(camera, "DeviceUserID", "");
    VmbCameraInfoQuery(kColourCamera, &info, sizeof info);
    EXPECT_STREQ(info.cameraName, "Manta_G-033C");
}

TEST_F(TextsAndBytes, BytesAreReadInTwoSteps) {
    VmbUint32_t size = 0;
    EXPECT_EQ(VmbFeatureRawLengthQuery(camera, "SimulatorRawData", &size), VmbErrorSuccess);
    EXPECT_EQ(size, 64u);
    size = 0;
    EXPECT_EQ(VmbFeatureRawGet(camera, "SimulatorRawData", nullptr, 0, &size), VmbErrorSuccess);
    EXPECT_EQ(size, 64u);
    std::vector<char> bytes(65, 'x');
    EXPECT_EQ(VmbFeatureRawGet(camera, "SimulatorRawData", bytes.data(), 64, nullptr), VmbErrorSuccess);
    EXPECT_THAT(std::vector<char>(bytes.begin(), bytes.end() - 1), ::testing::Each('\0'));
    EXPECT_EQ(bytes.back(), 'x');
}

TEST_F(TextsAndBytes, AShortBufferGetsNoBytesButTheirNumber) {
    VmbUint32_t size = 0;
    char bytes[63] = "untouched";
    EXPECT_EQ(VmbFeatureRawGet(camera, "SimulatorRawData", bytes, sizeof bytes, &size), VmbErrorMoreData);
    EXPECT_EQ(size, 64u);
    EXPECT_STREQ(bytes, "untouched");
}

TEST_F(TextsAndBytes, BytesMayBeAnyUpToTheirMaximum) {
    const char some[] = {'\0', '\xFF', 'a', '\0'};
    EXPECT_EQ(VmbFeatureRawSet(camera, "SimulatorRawData", some, 4), VmbErrorSuccess);
    char read[8] = {};
    VmbUint32_t size = 0;
    EXPECT_EQ(VmbFeatureRawGet(camera, "SimulatorRawData", read, sizeof read, &size), VmbErrorSuccess);
    EXPECT_EQ(std::string(read, size), std::string(some, 4));
    const std::string many(1025, 'm');
    EXPECT_EQ(VmbFeatureRawSet(camera, "SimulatorRawData", many.data(), 1025), VmbErrorBadParameter);
    EXPECT_EQ(VmbFeatureRawLengthQuery(camera, "SimulatorRawData", &size), VmbErrorSuccess);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(VmbFeatureRawSet(camera, "SimulatorRawData", many.data(), 1024), VmbErrorSuccess);
    VmbFeatureRawLengthQuery(camera, "SimulatorRawData", &size);
    EXPECT_EQ(size, 1024u);
}

TEST_F(TextsAndBytes, ASizeThatIsTooLargeIsNotReadToItsEnd) {
    const std::vector<char> bytes(1025, 'm');
    EXPECT_EQ(VmbFeatureRawSet(camera, "SimulatorRawData", bytes.data(), UINT32_MAX), VmbErrorBadParameter);
    EXPECT_EQ(VmbFeatureRawSet(camera, "?", bytes.data(), UINT32_MAX), VmbErrorNotFound);
}

TEST_F(TextsAndBytes, AreReadOnlyOnACameraThatIsOpenForReading) {
    VmbCameraClose(camera);
    ASSERT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeRead, &camera), VmbErrorSuccess);
    EXPECT_EQ(VmbFeatureStringSet(camera, "DeviceUserID", "x"), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbFeatureRawSet(camera, "SimulatorRawData", "x", 1), VmbErrorInvalidAccess);
    EXPECT_EQ(stringOf(camera, "DeviceUserID"), "");
}

TEST_F(TextsAndBytes, AreJournalled) {
    VmbSimJournalStart();
    VmbFeatureStringSet(camera, "DeviceUserID", "north");
    VmbFeatureRawSet(camera, "SimulatorRawData", "\1\2", 2);
    VmbUint32_t size = 0;
    VmbFeatureRawLengthQuery(camera, "SimulatorRawData", &size);
    EXPECT_THAT(
        test_support::Simulator::journal(),
        ::testing::ElementsAre("VmbFeatureStringSet(DEV_000F31A10001, \"DeviceUserID\", \"north\") = 0",
                               "VmbFeatureRawSet(DEV_000F31A10001, \"SimulatorRawData\", 2) = 0",
                               "VmbFeatureRawLengthQuery(DEV_000F31A10001, \"SimulatorRawData\") = 0, 2"));
}

TEST_F(TextsAndBytes, CanBeMadeToFail) {
    VmbSimFailCall("VmbFeatureStringSet", "DeviceUserID", 1, VmbErrorTimeout);
    EXPECT_EQ(VmbFeatureStringSet(camera, "DeviceUserID", "x"), VmbErrorTimeout);
    EXPECT_EQ(stringOf(camera, "DeviceUserID"), "");
    EXPECT_EQ(VmbFeatureStringSet(camera, "DeviceUserID", "x"), VmbErrorSuccess);
}

}  // namespace
