// The cameras that a scenario file describes.
#include "scenario_fixture.h"

namespace {

using test_support::enumOf;
using test_support::floatOf;
using test_support::intOf;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::run;
using test_support::ScenarioTest;
using test_support::setInt;
using test_support::stringOf;
using testing::ElementsAre;

class ScenarioCameras : public ScenarioTest {
  protected:
    void startWithCamera(const std::string& more) const {
        startWith(R"({"cameras": [{"model": "Manta_G-033C", )" + more + "}]}");
    }
    static std::vector<std::string> interfaces() {
        VmbUint32_t count = 0;
        VmbInterfacesList(nullptr, 0, &count, sizeof(VmbInterfaceInfo_t));
        std::vector<VmbInterfaceInfo_t> found(count);
        VmbInterfacesList(found.data(), count, &count, sizeof(VmbInterfaceInfo_t));
        std::vector<std::string> texts;
        for (const auto& info : found) {
            texts.push_back(std::string(info.interfaceIdString) + "|" + info.interfaceName + "|" +
                            info.serialString);
        }
        return texts;
    }
    static VmbCameraInfo_t infoOf(const std::string& id) {
        VmbCameraInfo_t info{};
        EXPECT_EQ(VmbCameraInfoQuery(id.c_str(), &info, sizeof info), VmbErrorSuccess) << id;
        return info;
    }
    static VmbInt64_t ticks(VmbHandle_t camera) {
        run(camera, "GevTimestampControlLatch");
        return intOf(camera, "GevTimestampValue");
    }
    static std::vector<std::uint64_t> exposures(const test_support::Stream& stream) {
        std::vector<std::uint64_t> all;
        for (const auto& frame : stream.received()) all.push_back(frame.stamp.exposureStartNs);
        return all;
    }
};

TEST_F(ScenarioCameras, HaveIdentitiesByTheirPlaceUnlessGiven) {
    startWith(
        R"({"cameras": [{"model": "Manta_G-033C"}, {"model": "Manta_G-033C"}, {"model": "Mako_G-030B"}]})");
    EXPECT_STREQ(infoOf("DEV_000F31A10001").serialString, "50-0503300001");
    EXPECT_STREQ(infoOf("DEV_000F31A10002").serialString, "50-0503300002");
    EXPECT_STREQ(infoOf("DEV_000F31A10003").modelName, "Mako_G-030B");
    EXPECT_STREQ(infoOf("169.254.10.3").cameraIdString, "DEV_000F31A10003");
    EXPECT_THAT(interfaces(), ElementsAre("SimulatedNetwork0|Simulated network 0|02-000000-0000"));
}

TEST_F(ScenarioCameras, TakeGivenIdentities) {
    startWithCamera(R"("id": "DEV_00A1B2C3D4E5", "serial": "S-1", "name": "left", "interface": "eth1",
                       "ip": "10.1.2.3")");
    const VmbCameraInfo_t info = infoOf("00A1B2C3D4E5");
    EXPECT_STREQ(info.cameraIdString, "DEV_00A1B2C3D4E5");
    EXPECT_STREQ(info.serialString, "S-1");
    EXPECT_STREQ(info.cameraName, "left");
    EXPECT_STREQ(info.modelName, "Manta_G-033C");
    EXPECT_STREQ(info.interfaceIdString, "eth1");
    EXPECT_STREQ(infoOf("10.1.2.3").serialString, "S-1");
    EXPECT_THAT(interfaces(), ElementsAre("eth1|eth1|S-1"));
    const VmbHandle_t camera = open("DEV_00A1B2C3D4E5");
    EXPECT_EQ(stringOf(camera, "DeviceUserID"), "left");
    EXPECT_EQ(intOf(camera, "GevDeviceMACAddress"), 0x00A1'B2C3'D4E5);
}

TEST_F(ScenarioCameras, ManyAlikeAreNumbered) {
    startWith(
        R"({"cameras": [{"model": "Mako_G-030B", "count": 12, "id": "DEV_00000000A{nnn}", "serial": "{n}/{nn}",
                               "name": "cam {nn}", "interface": "net{n}", "ip": "10.0.{n}.7",
                               "oscillator": {"tickFrequency": 1000000000, "errorPpb": -5000},
                               "errorPpbStep": 1000}]})");
    EXPECT_STREQ(infoOf("DEV_00000000A001").serialString, "1/01");
    EXPECT_STREQ(infoOf("DEV_00000000A012").serialString, "12/12");
    EXPECT_STREQ(infoOf("10.0.12.7").cameraName, "cam 12");
    EXPECT_EQ(interfaces().size(), 12u);
    EXPECT_EQ(interfaces()[11], "net12|net12|12/12");
    const VmbHandle_t first = open("DEV_00000000A001");
    const VmbHandle_t last = open("DEV_00000000A012");
    advance(1000 * kSecond);
    EXPECT_EQ(ticks(first), 1'000'000'000'000 - 5'000'000);
    EXPECT_EQ(ticks(last), 1'000'000'000'000 + 6'000'000);
}

TEST_F(ScenarioCameras, NeedNotBeThere) {
    startWith(R"({"cameras": [], "interfaces": [{"id": "a", "name": "A", "serial": "1"}, {"id": "b"}]})");
    EXPECT_THAT(interfaces(), ElementsAre("a|A|1", "b|b|b"));
    VmbUint32_t count = 9;
    EXPECT_EQ(VmbCamerasList(nullptr, 0, &count, sizeof(VmbCameraInfo_t)), VmbErrorSuccess);
    EXPECT_EQ(count, 0u);
}

TEST_F(ScenarioCameras, TakeAnotherSizeOfTheirSensor) {
    startWithCamera(R"("sensor": {"width": 1280, "height": 1024})");
    const VmbHandle_t camera = open();
    for (const char* width : {"SensorWidth", "WidthMax", "Width"}) EXPECT_EQ(intOf(camera, width), 1280);
    for (const char* height : {"SensorHeight", "HeightMax", "Height"}) EXPECT_EQ(intOf(camera, height), 1024);
    EXPECT_EQ(intOf(camera, "PayloadSize"), 1280 * 1024) << "one byte each";
    test_support::setEnum(camera, "TriggerMode", "Off");
    const auto stream = acquire(camera);
    advance(kSecond);
    ASSERT_GT(stream->received().size(), 5u);
    EXPECT_EQ(stream->received()[0].verdict, VmbErrorSuccess);
    EXPECT_EQ(stream->received()[0].stamp.width, 1280u);
    stream->endCapture();
}

TEST_F(ScenarioCameras, HaveTheirFeaturesAtEveryPowerUp) {
    startWithCamera(R"("features": {"Width": 320, "OffsetX": 336, "ExposureTimeAbs": 5000, "Gain": 3.5,
        "TriggerSelector": "AcquisitionStart", "TriggerMode": "Off",
        "ReverseX": true, "PixelFormat": "Mono8", "SimulatorRawData": "00ff10", "DeviceUserID": "left"})");
    const auto expectAll = [] {
        const VmbHandle_t camera = open();
        EXPECT_EQ(intOf(camera, "Width"), 320);
        EXPECT_EQ(intOf(camera, "OffsetX"), 336);
        EXPECT_EQ(intOf(camera, "PayloadSize"), 320 * 492);
        EXPECT_EQ(floatOf(camera, "ExposureTimeAbs"), 5000);
        EXPECT_EQ(floatOf(camera, "Gain"), 3.5);
        EXPECT_EQ(enumOf(camera, "PixelFormat"), "Mono8");
        EXPECT_EQ(stringOf(camera, "DeviceUserID"), "left");
        VmbUint32_t size = 0;
        VmbFeatureRawLengthQuery(camera, "SimulatorRawData", &size);
        EXPECT_EQ(size, 3u);
        setInt(camera, "OffsetX", 0);
        setInt(camera, "Width", 640);
        test_support::setEnum(camera, "UserSetSelector", "Default");
        run(camera, "UserSetLoad");
        EXPECT_EQ(intOf(camera, "Width"), 320);
        setInt(camera, "Width", 64);
        VmbCameraClose(camera);
    };
    expectAll();
    VmbSimUnplugCamera(kColourCamera);
    VmbSimPlugCamera(kColourCamera);
    expectAll();
}

TEST_F(ScenarioCameras, SetTheirFeaturesInTheOrderOfTheFile) {
    EXPECT_EQ(load(R"({"cameras": [{"model": "Manta_G-033C", "features": {"OffsetX": 336, "Width": 320}}]})"),
              VmbErrorBadParameter)
        << "no room for the offset yet";
    startWithCamera(R"("features": {"TriggerSelector": "AcquisitionStart", "TriggerSource": "Line2"})");
    const VmbHandle_t camera = open();
    EXPECT_EQ(enumOf(camera, "TriggerSource"), "Line2");
    test_support::setEnum(camera, "TriggerSelector", "FrameStart");
    EXPECT_NE(enumOf(camera, "TriggerSource"), "Line2");
}

TEST_F(ScenarioCameras, HaveTheirOscillator) {
    startWithCamera(R"("oscillator": {"tickFrequency": 1000000, "startTicks": 500, "errorPpb": 1000000})");
    const VmbHandle_t camera = open();
    advance(1000 * kSecond);
    EXPECT_EQ(intOf(camera, "GevTimestampTickFrequency"), 1'000'000);
    EXPECT_EQ(ticks(camera), 500 + 1'000'000'000 + 1'000'000) << "a thousandth too fast";
}

TEST_F(ScenarioCameras, HaveTheirScene) {
    startWithCamera(R"("scene": {"percentPerMillisecond": 50}, "features": {"ExposureAuto": "Continuous",
                       "TriggerMode": "Off"})");
    const VmbHandle_t camera = open();
    const auto stream = acquire(camera);
    advance(10 * kSecond);
    EXPECT_NEAR(floatOf(camera, "ExposureTimeAbs"), 1'000, 100) << "half of the highest level";
    stream->endCapture();
}

TEST_F(ScenarioCameras, HaveTheirLineDrivenFromTheStartOfTheLibraryOn) {
    const std::string text = R"({"cameras": [{"model": "Manta_G-033C",
        "line": {"numerator": 2, "phaseNs": 300000000, "widthNs": 1000000}}, {"model": "Manta_G-032B"}]})";
    ASSERT_EQ(load(text), VmbErrorSuccess) << test_support::scenarioError();
    advance(100 * kMillisecond);
    ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
    const auto colour = acquire(openTriggered(kColourCamera));
    const auto grey = acquire(openTriggered(kMonochromeCamera));
    advance(2 * kSecond);
    EXPECT_THAT(exposures(*colour), ElementsAre(400 * kMillisecond, 900 * kMillisecond, 1400 * kMillisecond,
                                                1900 * kMillisecond));
    EXPECT_THAT(exposures(*grey), ElementsAre());
    colour->endCapture();
    grey->endCapture();
}

TEST_F(ScenarioCameras, SpoilPulsesOfWhateverDrivesTheirLine) {
    startWithCamera(R"("pulseFaults": [{"fault": "missing", "first": 2, "count": 2, "every": 5},
                                       {"fault": "missing", "first": 6}])");
    const auto stream = acquire(openTriggered());
    advance(kMillisecond);
    VmbSimRhythm rhythm{};
    rhythm.numerator = 10;
    rhythm.denominator = 1;
    rhythm.widthNs = kMillisecond;
    const auto pulses = [&] {
        const std::uint64_t start = VmbSimTime();
        const std::size_t before = stream->received().size();
        EXPECT_EQ(VmbSimDriveLine(nullptr, &rhythm), VmbErrorSuccess);
        advance(1450 * kMillisecond);
        std::vector<std::uint64_t> numbers;
        for (std::size_t i = before; i < stream->received().size(); ++i) {
            numbers.push_back((exposures(*stream)[i] - start) / (100 * kMillisecond) + 1);
        }
        return numbers;
    };
    const std::vector<std::uint64_t> expected = {1, 4, 5, 9, 10, 11, 14, 15};
    EXPECT_EQ(pulses(), expected);
    EXPECT_EQ(pulses(), expected) << "counted again";
    VmbSimDisturbLine(nullptr, VmbSimPulseMissing, 1, 1);
    EXPECT_EQ(pulses(), expected) << "faults that are ordered end with the rhythm";
    stream->endCapture();
}

TEST_F(ScenarioCameras, MayBeHeldOrUnpluggedAtTheStart) {
    startWith(
        R"({"cameras": [{"model": "Manta_G-033C", "taken": true}, {"model": "Manta_G-032B", "plugged": false}]})");
    VmbHandle_t camera = nullptr;
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera), VmbErrorInvalidAccess);
    EXPECT_FALSE(isThere(kMonochromeCamera));
    EXPECT_EQ(VmbSimTakeControl(kColourCamera, false), VmbErrorSuccess);
    EXPECT_EQ(VmbSimPlugCamera(kMonochromeCamera), VmbErrorSuccess);
    open(kColourCamera);
    open(kMonochromeCamera);
}

TEST_F(ScenarioCameras, TakeChoicesAndSeed) {
    const auto stamps = [&](const std::string& more) {
        startWith(R"({"cameras": [{"model": "Manta_G-033C", "oscillator": {"jitterNs": 1000}}])" + more +
                  "}");
        const auto stream = acquire(openFast());
        advance(kSecond);
        stream->endCapture();
        EXPECT_EQ(VmbStartup(), more.empty() ? VmbErrorSuccess : VmbErrorInvalidCall);
        VmbShutdown();
        VmbSimUseVirtualTime(true);
        std::vector<std::uint64_t> ticks;
        for (const auto& frame : stream->received()) ticks.push_back(frame.record.timestamp);
        return ticks;
    };
    const std::string chosen = R"(, "choices": {"RepeatedStartup": 2}, "seed": )";
    EXPECT_EQ(stamps(chosen + "1"), stamps(chosen + "1"));
    EXPECT_NE(stamps(chosen + "1"), stamps(chosen + "2"));
    EXPECT_EQ(stamps(""), stamps(chosen + "0"));
}

}  // namespace
