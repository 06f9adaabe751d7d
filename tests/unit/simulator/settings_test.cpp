// A camera's settings in files.
#include <filesystem>
#include <fstream>

#include "simulator_fixture.h"
#include "temporary_directory.h"

namespace {

using test_support::enumOf;
using test_support::floatOf;
using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::SimulatorTest;
using test_support::stringOf;

class SettingsFile : public SimulatorTest {
  protected:
    VmbError_t save() { return VmbCameraSettingsSave(camera, file.c_str(), nullptr, 0); }
    VmbError_t load() { return VmbCameraSettingsLoad(camera, file.c_str(), nullptr, 0); }
    void write(const std::string& text) { std::ofstream(file) << text; }
    std::string content() const { return test_support::readFile(file); }

    test_support::TemporaryDirectory directory;
    const std::string file = (directory.path() / "settings.xml").string();
    VmbHandle_t camera = open();
};

TEST_F(SettingsFile, BringsEverySettingBack) {
    setEnum(camera, "PixelFormat", "Mono8");
    setInt(camera, "Width", 320);
    setInt(camera, "OffsetX", 336);
    setFloat(camera, "ExposureTimeAbs", 2000);
    setFloat(camera, "AcquisitionFrameRateAbs", 80);
    setFloat(camera, "Gain", 1.3);
    setEnum(camera, "TriggerMode", "Off");
    setEnum(camera, "BalanceRatioSelector", "Blue");
    setFloat(camera, "BalanceRatioAbs", 2.5);
    setInt(camera, "EventsEnable1", 6);
    EXPECT_EQ(VmbFeatureBoolSet(camera, "ReverseX", true), VmbErrorSuccess);
    EXPECT_EQ(VmbFeatureStringSet(camera, "DeviceUserID", "<north> & \"x\""), VmbErrorSuccess);
    EXPECT_EQ(VmbFeatureRawSet(camera, "SimulatorRawData", "\0\xFF", 2), VmbErrorSuccess);
    ASSERT_EQ(save(), VmbErrorSuccess);
    VmbSimUnplugCamera(kColourCamera);
    VmbSimPlugCamera(kColourCamera);
    VmbCameraClose(camera);
    camera = open();
    ASSERT_EQ(load(), VmbErrorSuccess);
    EXPECT_EQ(enumOf(camera, "PixelFormat"), "Mono8");
    EXPECT_EQ(intOf(camera, "Width"), 320);
    EXPECT_EQ(intOf(camera, "OffsetX"), 336);
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 2000);
    EXPECT_EQ(floatOf(camera, "AcquisitionFrameRateAbs"), 80);
    EXPECT_EQ(floatOf(camera, "Gain"), 1.3);
    EXPECT_EQ(enumOf(camera, "TriggerMode"), "Off");
    EXPECT_EQ(enumOf(camera, "BalanceRatioSelector"), "Blue");
    EXPECT_EQ(floatOf(camera, "BalanceRatioAbs"), 2.5);
    setEnum(camera, "BalanceRatioSelector", "Red");
    EXPECT_EQ(floatOf(camera, "BalanceRatioAbs"), 1);
    EXPECT_EQ(intOf(camera, "EventsEnable1"), 6);
    bool reversed = false;
    VmbFeatureBoolGet(camera, "ReverseX", &reversed);
    EXPECT_TRUE(reversed);
    EXPECT_EQ(stringOf(camera, "DeviceUserID"), "<north> & \"x\"");
    char bytes[4] = {};
    VmbUint32_t size = 0;
    VmbFeatureRawGet(camera, "SimulatorRawData", bytes, sizeof bytes, &size);
    EXPECT_EQ(std::string(bytes, size), std::string("\0\xFF", 2));
}

TEST_F(SettingsFile, OfAnUnchangedCameraLoadsWhole) {
    ASSERT_EQ(save(), VmbErrorSuccess);
    const std::string before = content();
    setInt(camera, "BinningHorizontal", 2);
    setEnum(camera, "UserSetSelector", "UserSet3");
    EXPECT_EQ(load(), VmbErrorSuccess);
    std::filesystem::remove(file);
    ASSERT_EQ(save(), VmbErrorSuccess);
    EXPECT_EQ(content(), before);
}

TEST_F(SettingsFile, OverridesModesThatExcludeTheSavedOne) {
    setInt(camera, "DecimationVertical", 2);
    ASSERT_EQ(save(), VmbErrorSuccess);
    setInt(camera, "DecimationVertical", 1);
    setInt(camera, "BinningVertical", 4);
    // Binning comes first in the file and makes decimation possible.
    EXPECT_EQ(load(), VmbErrorSuccess);
    EXPECT_EQ(intOf(camera, "DecimationVertical"), 2);
    EXPECT_EQ(intOf(camera, "BinningVertical"), 1);
    EXPECT_EQ(intOf(camera, "Height"), 246);
}

TEST_F(SettingsFile, KeepsTextsToTheByte) {
    for (const char* text :
         {"", " ", " a ", "a\r\nb", "\r", "\t\n", "\x01\x1f", "]]>", "&#13;", "\xC3\xA4"}) {
        ASSERT_EQ(VmbFeatureStringSet(camera, "DeviceUserID", text), VmbErrorSuccess);
        ASSERT_EQ(save(), VmbErrorSuccess);
        ASSERT_EQ(VmbFeatureStringSet(camera, "DeviceUserID", "other"), VmbErrorSuccess);
        EXPECT_EQ(load(), VmbErrorSuccess) << text;
        EXPECT_EQ(stringOf(camera, "DeviceUserID"), text);
    }
}

TEST_F(SettingsFile, TakesAsManyPassesAsItMay) {
    // The offset only fits when the width is set, which comes behind it.
    write(
        "<CameraSettings><Feature Name=\"OffsetX\">336</Feature><Feature Name=\"Width\">320</Feature>"
        "</CameraSettings>");
    VmbFeaturePersistSettings_t settings{VmbFeaturePersistNoLUT, 1, 0};
    EXPECT_EQ(VmbCameraSettingsLoad(camera, file.c_str(), &settings, sizeof settings), VmbErrorIncomplete);
    EXPECT_EQ(intOf(camera, "OffsetX"), 0);
    setInt(camera, "Width", 656);
    settings.maxIterations = 2;
    EXPECT_EQ(VmbCameraSettingsLoad(camera, file.c_str(), &settings, sizeof settings), VmbErrorSuccess);
    EXPECT_EQ(intOf(camera, "OffsetX"), 336);
}

TEST_F(SettingsFile, OfAnotherCameraIsLoadedAsFarAsItFits) {
    VmbFeatureStringSet(camera, "DeviceUserID", "north");
    setFloat(camera, "Gain", 32);
    setFloat(camera, "ExposureTimeAbs", 2000);
    ASSERT_EQ(save(), VmbErrorSuccess);
    VmbCameraClose(camera);
    camera = open(kMonochromeCamera);
    EXPECT_EQ(load(), VmbErrorIncomplete);
    EXPECT_EQ(stringOf(camera, "DeviceUserID"), "north");
    EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 2000);
    EXPECT_EQ(floatOf(camera, "Gain"), 0);
    EXPECT_EQ(enumOf(camera, "PixelFormat"), "Mono8");
}

TEST_F(SettingsFile, WithUnknownFeaturesAndOddValuesIsIncomplete) {
    const char* features[] = {"<Feature Name=\"Unheard\">1</Feature>",
                              "<Feature Name=\"SensorWidth\">656</Feature>",
                              "<Feature Name=\"Height\">tall</Feature>",
                              "<Feature Name=\"AcquisitionStart\"/>",
                              "<Feature Name=\"AcquisitionMode\">Recorder</Feature>",
                              "<Feature Name=\"SimulatorRawData\">0g</Feature>",
                              "<Feature/>"};
    for (const char* feature : features) {
        setFloat(camera, "Gain", 0);
        write(std::string("<CameraSettings>") + feature +
              "<Feature Name=\"Gain\">2</Feature></CameraSettings>");
        EXPECT_EQ(load(), VmbErrorIncomplete) << feature;
        EXPECT_EQ(floatOf(camera, "Gain"), 2) << feature;
    }
}

TEST_F(SettingsFile, ThatIsNoneIsRefused) {
    EXPECT_EQ(load(), VmbErrorOther);
    for (const char* text : {"", "Width=3", "<CameraSettings><Feature", "<Other/>"}) {
        write(text);
        EXPECT_EQ(load(), VmbErrorOther) << text;
    }
    const std::string nowhere = (directory.path() / "none" / "settings.xml").string();
    EXPECT_EQ(VmbCameraSettingsSave(camera, nowhere.c_str(), nullptr, 0), VmbErrorOther);
}

TEST_F(SettingsFile, IsNotLoadedIntoACameraThatIsOpenForReading) {
    VmbCameraClose(camera);
    ASSERT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeRead, &camera), VmbErrorSuccess);
    EXPECT_EQ(save(), VmbErrorSuccess);
    EXPECT_EQ(load(), VmbErrorInvalidAccess);
}

TEST_F(SettingsFile, LeavesAloneWhatIsLockedWhileAcquiring) {
    setInt(camera, "Width", 320);
    setFloat(camera, "Gain", 2);
    ASSERT_EQ(save(), VmbErrorSuccess);
    setInt(camera, "Width", 640);
    setFloat(camera, "Gain", 0);
    run(camera, "AcquisitionStart");
    EXPECT_EQ(load(), VmbErrorIncomplete);
    EXPECT_EQ(intOf(camera, "Width"), 640);
    EXPECT_EQ(floatOf(camera, "Gain"), 2);
    run(camera, "AcquisitionStop");
}

TEST_F(SettingsFile, HasAPersistTypeOfThisVersion) {
    VmbFeaturePersistSettings_t settings{3, 5, 0};
    EXPECT_EQ(VmbCameraSettingsSave(camera, file.c_str(), &settings, sizeof settings), VmbErrorBadParameter);
    EXPECT_EQ(VmbCameraSettingsLoad(camera, file.c_str(), &settings, sizeof settings), VmbErrorBadParameter);
    for (const VmbFeaturePersist_t type :
         {VmbFeaturePersistAll, VmbFeaturePersistStreamable, VmbFeaturePersistNoLUT}) {
        settings.persistType = type;
        EXPECT_EQ(VmbCameraSettingsSave(camera, file.c_str(), &settings, sizeof settings), VmbErrorSuccess);
        EXPECT_EQ(VmbCameraSettingsLoad(camera, file.c_str(), &settings, sizeof settings), VmbErrorSuccess);
    }
}

}  // namespace
