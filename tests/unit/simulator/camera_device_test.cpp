// Two views of one thing, common time, and what a camera counts.
#include "simulator_fixture.h"

namespace {

using test_support::enumOf;
using test_support::floatOf;
using test_support::intOf;
using test_support::kColourCamera;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::setInt;
using test_support::SimulatorTest;
using test_support::Stream;
using test_support::StreamTest;

TEST_F(SimulatorTest, EveryEventHasItsThreeFeatures) {
    const VmbHandle_t camera = open();
    const std::pair<const char*, VmbInt64_t> events[] = {{"AcquisitionStart", 40000},
                                                         {"AcquisitionEnd", 40001},
                                                         {"FrameTrigger", 40002},
                                                         {"ExposureEnd", 40003},
                                                         {"AcquisitionRecordTrigger", 40004},
                                                         {"PtpSyncLost", 40005},
                                                         {"PtpSyncLocked", 40006},
                                                         {"Line1RisingEdge", 40010},
                                                         {"Line1FallingEdge", 40011},
                                                         {"Line2RisingEdge", 40012},
                                                         {"Line2FallingEdge", 40013},
                                                         {"Line3RisingEdge", 40014},
                                                         {"Line3FallingEdge", 40015},
                                                         {"Line4RisingEdge", 40016},
                                                         {"Line4FallingEdge", 40017},
                                                         {"FrameTriggerReady", 40018},
                                                         {"Overflow", 65534},
                                                         {"Error", 65535}};
    std::vector<std::string> selectable;
    for (const auto& [name, number] : events) {
        const std::string feature = std::string("Event") + name;
        EXPECT_EQ(intOf(camera, feature.c_str()), number);
        EXPECT_EQ(intOf(camera, (feature + "FrameID").c_str()), 0);
        EXPECT_EQ(intOf(camera, (feature + "Timestamp").c_str()), 0);
        VmbFeatureInfo_t info{};
        VmbFeatureInfoQuery(camera, (feature + "Timestamp").c_str(), &info, sizeof info);
        EXPECT_STREQ(info.category, "/EventControl/EventData");
        if (number < 65534) selectable.emplace_back(name);
    }
    EXPECT_EQ(test_support::entriesOf(camera, "EventSelector"), selectable);
    VmbInt64_t number = 0;
    VmbFeatureEnumAsInt(camera, "EventSelector", "Line4FallingEdge", &number);
    EXPECT_EQ(number, 40017);
}

TEST_F(SimulatorTest, EventBitsAndNotificationsAreOneThing) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(intOf(camera, "EventsEnable1"), 0);
    setEnum(camera, "EventSelector", "AcquisitionEnd");
    setEnum(camera, "EventNotification", "On");
    EXPECT_EQ(intOf(camera, "EventsEnable1"), 1 << 2);
    setEnum(camera, "EventSelector", "FrameTriggerReady");
    setEnum(camera, "EventNotification", "On");
    EXPECT_EQ(intOf(camera, "EventsEnable1"), 1 << 2 | 1 << 19);
    setInt(camera, "EventsEnable1", 1 << 1 | 1 << 3);
    EXPECT_EQ(enumOf(camera, "EventNotification"), "Off");
    setEnum(camera, "EventSelector", "AcquisitionStart");
    EXPECT_EQ(enumOf(camera, "EventNotification"), "On");
    setEnum(camera, "EventSelector", "FrameTrigger");
    EXPECT_EQ(enumOf(camera, "EventNotification"), "On");
    // Bits 0 and 8 belong to no event.
    setInt(camera, "EventsEnable1", 1 << 0 | 1 << 1 | 1 << 8);
    EXPECT_EQ(intOf(camera, "EventsEnable1"), 1 << 1);
}

TEST_F(SimulatorTest, ThePacketSizeHasTwoNames) {
    const VmbHandle_t camera = open();
    setInt(camera, "GVSPPacketSize", 1500);
    EXPECT_EQ(intOf(camera, "GevSCPSPacketSize"), 1500);
    setInt(camera, "GevSCPSPacketSize", 9000);
    EXPECT_EQ(intOf(camera, "GVSPPacketSize"), 9000);
    run(camera, "GVSPAdjustPacketSize");
    EXPECT_EQ(intOf(camera, "GVSPPacketSize"), 8999);
}

TEST_F(SimulatorTest, TheMasterOfTimeKeepsItsClock) {
    const VmbHandle_t camera = open();
    const auto latched = [&] {
        run(camera, "GevTimestampControlLatch");
        return intOf(camera, "GevTimestampValue");
    };
    setEnum(camera, "PtpMode", "Master");
    EXPECT_EQ(enumOf(camera, "PtpStatus"), "Master");
    const VmbInt64_t before = latched();
    run(camera, "GevTimestampControlReset");
    EXPECT_GE(latched(), before);
    setEnum(camera, "PtpMode", "Off");
    EXPECT_EQ(enumOf(camera, "PtpStatus"), "Off");
    const VmbInt64_t last = latched();
    run(camera, "GevTimestampControlReset");
    EXPECT_LT(latched(), last);
}

TEST_F(SimulatorTest, EachPlaceHasItsTemperature) {
    const VmbHandle_t camera = open();
    std::vector<double> temperatures;
    for (const char* place : {"Sensor", "Main", "Power"}) {
        setEnum(camera, "DeviceTemperatureSelector", place);
        temperatures.push_back(floatOf(camera, "DeviceTemperature"));
    }
    EXPECT_THAT(temperatures, ::testing::ElementsAre(41.5, 44.25, 46.0));
    EXPECT_EQ(VmbFeatureFloatSet(camera, "DeviceTemperature", 20), VmbErrorInvalidAccess);
}

class Statistics : public StreamTest {
  protected:
    /// Delivers three frames one after the other.
    void stream(Stream& stream) {
        stream.startCapture();
        setEnum(camera, "AcquisitionMode", "MultiFrame");
        setInt(camera, "AcquisitionFrameCount", 3);
        run(camera, "AcquisitionStart");
        waitForFrames(3);
        waitForEvents();
    }
    const VmbHandle_t camera = openFast();
};

TEST_F(Statistics, CountPacketsByTheirImageBytes) {
    setInt(camera, "GevSCPSPacketSize", 1500);
    Stream frames(camera);
    stream(frames);
    // 322752 bytes in packets of 1464 are 220.46, so 221 per frame.
    EXPECT_EQ(intOf(camera, "StatPacketReceived"), 3 * 221);
    EXPECT_EQ(intOf(camera, "StatPacketMissed"), 0);
    EXPECT_EQ(intOf(camera, "StatFrameDelivered"), 3);
    EXPECT_EQ(intOf(camera, "StreamAnnouncedBufferCount"), 5);
    frames.endCapture();
    EXPECT_EQ(intOf(camera, "StreamAnnouncedBufferCount"), 0);
}

TEST_F(Statistics, MissAPacketOfADamagedFrame) {
    VmbSimBreakFrames(kColourCamera, 1, VmbFrameStatusIncomplete);
    Stream frames(camera);
    stream(frames);
    // 322752 bytes in packets of 8192 are 39.4, so 40 per frame.
    EXPECT_EQ(intOf(camera, "StatPacketReceived"), 3 * 40 - 1);
    EXPECT_EQ(intOf(camera, "StatPacketMissed"), 1);
    EXPECT_EQ(intOf(camera, "StatFrameDropped"), 1);
    EXPECT_EQ(intOf(camera, "StatFrameDelivered"), 2);
    frames.endCapture();
}

TEST_F(Statistics, RatesComeFromTheLastTwoFrames) {
    setFloat(camera, "AcquisitionFrameRateAbs", 50);
    Stream frames(camera);
    stream(frames);
    const auto received = frames.received();
    ASSERT_EQ(received.size(), 3u);
    EXPECT_NEAR(floatOf(camera, "StatFrameRate"), 50.0, 1e-6);
    // A frame is delivered between the end of its way and its callback.
    const auto due = [&](std::size_t i) {
        return received[i].stamp.exposureStartNs + received[i].stamp.wayNs;
    };
    const double local = 1e9 / floatOf(camera, "StatLocalRate");
    EXPECT_LE(local, static_cast<double>(received[2].at) - static_cast<double>(due(1)) + 1);
    EXPECT_GE(local, static_cast<double>(due(2)) - static_cast<double>(received[1].at) - 1);
    frames.endCapture();
}

TEST_F(Statistics, CountTheTimeSinceTheStart) {
    EXPECT_EQ(floatOf(camera, "StatTimeElapsed"), 0);
    Stream frames(camera);
    const std::uint64_t before = VmbSimTime();
    stream(frames);
    const double first = floatOf(camera, "StatTimeElapsed");
    // Three frames of 50 Hz take two periods at least.
    EXPECT_GE(first, 0.04);
    EXPECT_LE(first, static_cast<double>(VmbSimTime() - before) * 1e-9);
    EXPECT_TRUE(test_support::eventually([&] { return floatOf(camera, "StatTimeElapsed") > first; }));
    frames.endCapture();
}

TEST_F(Statistics, RestartWithEachAcquisition) {
    Stream frames(camera);
    stream(frames);
    VmbSimHoldSensor(kColourCamera, true);
    run(camera, "AcquisitionStart");
    for (const char* name : {"StatFrameDelivered", "StatPacketReceived"}) {
        EXPECT_EQ(intOf(camera, name), 0) << name;
    }
    EXPECT_EQ(floatOf(camera, "StatFrameRate"), 0);
    EXPECT_EQ(floatOf(camera, "StatLocalRate"), 0);
    VmbSimHoldSensor(kColourCamera, false);
    frames.endCapture();
}

}  // namespace
