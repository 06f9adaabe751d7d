// Entries of enumerations: names, numbers, and those that cannot be chosen.
#include "simulator_fixture.h"

namespace {

using test_support::enumOf;
using test_support::kSystem;
using test_support::setEnum;
using test_support::SimulatorTest;

class Entries : public SimulatorTest {
  protected:
    bool isAvailable(const char* name, const char* entry) {
        bool available = false;
        EXPECT_EQ(VmbFeatureEnumIsAvailable(camera, name, entry, &available), VmbErrorSuccess) << entry;
        return available;
    }
    const VmbHandle_t camera = open();
};

TEST_F(Entries, ThatAreNotSimulatedAreListedButRefused) {
    const std::pair<const char*, const char*> entries[] = {{"AcquisitionMode", "Recorder"},
                                                           {"BandwidthControlMode", "SCPD"},
                                                           {"BandwidthControlMode", "Both"},
                                                           {"PtpMode", "Slave"},
                                                           {"PtpMode", "Auto"}};
    for (const auto& [name, entry] : entries) {
        EXPECT_FALSE(isAvailable(name, entry)) << name;
        const std::string before = enumOf(camera, name);
        EXPECT_EQ(VmbFeatureEnumSet(camera, name, entry), VmbErrorInvalidValue) << name;
        EXPECT_EQ(enumOf(camera, name), before);
        VmbInt64_t number = -1;
        EXPECT_EQ(VmbFeatureEnumAsInt(camera, name, entry, &number), VmbErrorSuccess);
        EXPECT_GT(number, 0);
    }
    EXPECT_TRUE(isAvailable("AcquisitionMode", "MultiFrame"));
    EXPECT_TRUE(isAvailable("PtpMode", "Master"));
}

TEST_F(Entries, MayBeAvailableUnderSomeSelectorsOnly) {
    EXPECT_TRUE(isAvailable("TriggerMode", "On"));
    for (const char* selector : {"AcquisitionStart", "AcquisitionEnd", "AcquisitionRecord"}) {
        setEnum(camera, "TriggerSelector", selector);
        EXPECT_FALSE(isAvailable("TriggerMode", "On")) << selector;
        EXPECT_TRUE(isAvailable("TriggerMode", "Off")) << selector;
        EXPECT_EQ(VmbFeatureEnumSet(camera, "TriggerMode", "On"), VmbErrorInvalidValue) << selector;
        setEnum(camera, "TriggerMode", "Off");
    }
    setEnum(camera, "TriggerSelector", "FrameStart");
    setEnum(camera, "TriggerMode", "On");
}

TEST_F(Entries, HaveNumbersThatLeadBackToTheirNames) {
    const char* entry = nullptr;
    EXPECT_EQ(VmbFeatureEnumAsString(camera, "TriggerSource", 6, &entry), VmbErrorSuccess);
    EXPECT_STREQ(entry, "Software");
    VmbInt64_t number = 0;
    EXPECT_EQ(VmbFeatureEnumAsInt(camera, "PixelFormat", "YUV422Packed", &number), VmbErrorSuccess);
    EXPECT_EQ(number, 0x0210001F);
    EXPECT_EQ(VmbFeatureEnumAsInt(kSystem, "DiscoveryCameraEvent", "Unreachable", &number), VmbErrorSuccess);
    EXPECT_EQ(number, 3);
}

TEST_F(Entries, AreDescribed) {
    VmbFeatureEnumEntry_t entry{};
    EXPECT_EQ(VmbFeatureEnumEntryGet(camera, "EventSelector", "FrameTriggerReady", &entry, sizeof entry),
              VmbErrorSuccess);
    EXPECT_STREQ(entry.name, "FrameTriggerReady");
    EXPECT_STREQ(entry.displayName, "Frame Trigger Ready");
    EXPECT_EQ(entry.intValue, 40018);
    EXPECT_EQ(entry.visibility, VmbFeatureVisibilityBeginner);
    EXPECT_STREQ(entry.sfncNamespace, "Custom");
}

TEST_F(Entries, ThatAreUnknownAreRefusedWithoutATrace) {
    bool available = true;
    VmbInt64_t number = 77;
    const char* text = "untouched";
    VmbFeatureEnumEntry_t entry{};
    entry.intValue = 77;
    EXPECT_EQ(VmbFeatureEnumIsAvailable(camera, "GainAuto", "on", &available), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureEnumAsInt(camera, "GainAuto", "", &number), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureEnumAsString(camera, "GainAuto", 0, &text), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureEnumEntryGet(camera, "GainAuto", "On", &entry, sizeof entry), VmbErrorInvalidValue);
    EXPECT_TRUE(available);
    EXPECT_EQ(number, 77);
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(entry.intValue, 77);
}

}  // namespace
