// Error codes, and which one wins when several apply.
#include "simulator_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::kSystem;
using test_support::setEnum;
using test_support::Simulator;
using test_support::SimulatorTest;

const VmbHandle_t kNoHandle = nullptr;

void nothing(const VmbHandle_t, const char*, void*) {}

/// One vendor call with arguments that are all wrong but the handle.
struct Call {
    const char* name;
    std::function<VmbError_t(VmbHandle_t)> make;
};

std::vector<Call> callsWithNullArguments() {
    return {
        {"FeaturesList", [](VmbHandle_t h) { return VmbFeaturesList(h, nullptr, 0, nullptr, 1); }},
        {"FeatureInfoQuery", [](VmbHandle_t h) { return VmbFeatureInfoQuery(h, nullptr, nullptr, 1); }},
        {"FeatureAccessQuery",
         [](VmbHandle_t h) { return VmbFeatureAccessQuery(h, "Width", nullptr, nullptr); }},
        {"FeatureIntGet", [](VmbHandle_t h) { return VmbFeatureIntGet(h, "?", nullptr); }},
        {"FeatureIntSet", [](VmbHandle_t h) { return VmbFeatureIntSet(h, nullptr, 1); }},
        {"FeatureIntRangeQuery",
         [](VmbHandle_t h) { return VmbFeatureIntRangeQuery(h, "?", nullptr, nullptr); }},
        {"FeatureIntIncrementQuery",
         [](VmbHandle_t h) { return VmbFeatureIntIncrementQuery(h, "?", nullptr); }},
        {"FeatureFloatGet", [](VmbHandle_t h) { return VmbFeatureFloatGet(h, "?", nullptr); }},
        {"FeatureFloatSet", [](VmbHandle_t h) { return VmbFeatureFloatSet(h, nullptr, 1); }},
        {"FeatureFloatRangeQuery",
         [](VmbHandle_t h) { return VmbFeatureFloatRangeQuery(h, "?", nullptr, nullptr); }},
        {"FeatureEnumGet", [](VmbHandle_t h) { return VmbFeatureEnumGet(h, "?", nullptr); }},
        {"FeatureEnumSet", [](VmbHandle_t h) { return VmbFeatureEnumSet(h, "?", nullptr); }},
        {"FeatureEnumRangeQuery",
         [](VmbHandle_t h) { return VmbFeatureEnumRangeQuery(h, "?", nullptr, 0, nullptr); }},
        {"FeatureStringGet", [](VmbHandle_t h) { return VmbFeatureStringGet(h, "?", nullptr, 0, nullptr); }},
        {"FeatureBoolGet", [](VmbHandle_t h) { return VmbFeatureBoolGet(h, "?", nullptr); }},
        {"FeatureBoolSet", [](VmbHandle_t h) { return VmbFeatureBoolSet(h, nullptr, true); }},
        {"FeatureCommandRun", [](VmbHandle_t h) { return VmbFeatureCommandRun(h, nullptr); }},
        {"FeatureCommandIsDone", [](VmbHandle_t h) { return VmbFeatureCommandIsDone(h, "?", nullptr); }},
        {"FeatureInvalidationRegister",
         [](VmbHandle_t h) { return VmbFeatureInvalidationRegister(h, "?", nullptr, nullptr); }},
        {"FeatureInvalidationUnregister",
         [](VmbHandle_t h) { return VmbFeatureInvalidationUnregister(h, nullptr, &nothing); }},
        {"FrameAnnounce", [](VmbHandle_t h) { return VmbFrameAnnounce(h, nullptr, 1); }},
        {"FrameRevoke", [](VmbHandle_t h) { return VmbFrameRevoke(h, nullptr); }},
        {"FeatureListAffected",
         [](VmbHandle_t h) { return VmbFeatureListAffected(h, "?", nullptr, 0, nullptr, 1); }},
        {"FeatureListSelected",
         [](VmbHandle_t h) { return VmbFeatureListSelected(h, "?", nullptr, 0, nullptr, 1); }},
        {"FeatureFloatIncrementQuery",
         [](VmbHandle_t h) { return VmbFeatureFloatIncrementQuery(h, "?", nullptr, nullptr); }},
        {"FeatureEnumIsAvailable",
         [](VmbHandle_t h) { return VmbFeatureEnumIsAvailable(h, "?", "?", nullptr); }},
        {"FeatureEnumAsInt", [](VmbHandle_t h) { return VmbFeatureEnumAsInt(h, "?", "?", nullptr); }},
        {"FeatureEnumAsString", [](VmbHandle_t h) { return VmbFeatureEnumAsString(h, "?", 0, nullptr); }},
        {"FeatureEnumEntryGet",
         [](VmbHandle_t h) { return VmbFeatureEnumEntryGet(h, "?", "?", nullptr, 1); }},
        {"FeatureStringSet", [](VmbHandle_t h) { return VmbFeatureStringSet(h, "?", nullptr); }},
        {"FeatureStringMaxlengthQuery",
         [](VmbHandle_t h) { return VmbFeatureStringMaxlengthQuery(h, "?", nullptr); }},
        {"FeatureRawGet", [](VmbHandle_t h) { return VmbFeatureRawGet(h, "?", nullptr, 0, nullptr); }},
        {"FeatureRawSet", [](VmbHandle_t h) { return VmbFeatureRawSet(h, "?", nullptr, 0); }},
        {"FeatureRawLengthQuery", [](VmbHandle_t h) { return VmbFeatureRawLengthQuery(h, "?", nullptr); }},
        {"MemoryRead", [](VmbHandle_t h) { return VmbMemoryRead(h, 0, 4, nullptr, nullptr); }},
        {"MemoryWrite", [](VmbHandle_t h) { return VmbMemoryWrite(h, 0, 4, nullptr, nullptr); }},
        {"RegistersRead", [](VmbHandle_t h) { return VmbRegistersRead(h, 1, nullptr, nullptr, nullptr); }},
        {"RegistersWrite", [](VmbHandle_t h) { return VmbRegistersWrite(h, 1, nullptr, nullptr, nullptr); }},
        {"CameraSettingsSave", [](VmbHandle_t h) { return VmbCameraSettingsSave(h, nullptr, nullptr, 1); }},
        {"CameraSettingsLoad", [](VmbHandle_t h) { return VmbCameraSettingsLoad(h, nullptr, nullptr, 1); }},
    };
}

std::vector<Call> callsWithoutArguments() {
    return {{"FrameRevokeAll", [](VmbHandle_t h) { return VmbFrameRevokeAll(h); }},
            {"CaptureStart", [](VmbHandle_t h) { return VmbCaptureStart(h); }},
            {"CaptureEnd", [](VmbHandle_t h) { return VmbCaptureEnd(h); }},
            {"CaptureFrameQueue", [](VmbHandle_t h) { return VmbCaptureFrameQueue(h, nullptr, nullptr); }},
            {"CaptureQueueFlush", [](VmbHandle_t h) { return VmbCaptureQueueFlush(h); }},
            {"CameraClose", [](VmbHandle_t h) { return VmbCameraClose(h); }}};
}

TEST(NotStarted, ComesBeforeEverythingElse) {
    const Simulator simulator;
    for (const auto& calls : {callsWithNullArguments(), callsWithoutArguments()}) {
        for (const Call& call : calls) {
            EXPECT_EQ(call.make(kNoHandle), VmbErrorApiNotStarted) << call.name;
            EXPECT_EQ(call.make(kSystem), VmbErrorApiNotStarted) << call.name;
        }
    }
    EXPECT_EQ(VmbCamerasList(nullptr, 0, nullptr, 1), VmbErrorApiNotStarted);
    EXPECT_EQ(VmbCameraOpen(nullptr, 0, nullptr), VmbErrorApiNotStarted);
    EXPECT_EQ(VmbCameraInfoQuery(nullptr, nullptr, 1), VmbErrorApiNotStarted);
    EXPECT_EQ(VmbInterfacesList(nullptr, 0, nullptr, 1), VmbErrorApiNotStarted);
    EXPECT_EQ(VmbInterfaceOpen(nullptr, nullptr), VmbErrorApiNotStarted);
    EXPECT_EQ(VmbInterfaceClose(kNoHandle), VmbErrorApiNotStarted);
    EXPECT_EQ(VmbAncillaryDataOpen(nullptr, nullptr), VmbErrorApiNotStarted);
    EXPECT_EQ(VmbAncillaryDataClose(kNoHandle), VmbErrorApiNotStarted);
}

TEST_F(SimulatorTest, EachCloseTakesOnlyHandlesOfItsKind) {
    const VmbHandle_t camera = open();
    VmbHandle_t network = nullptr;
    ASSERT_EQ(VmbInterfaceOpen("SimulatedNetwork0", &network), VmbErrorSuccess);
    for (const VmbHandle_t handle : {kNoHandle, kSystem}) {
        EXPECT_EQ(VmbInterfaceClose(handle), VmbErrorBadHandle);
        EXPECT_EQ(VmbAncillaryDataClose(handle), VmbErrorBadHandle);
    }
    EXPECT_EQ(VmbInterfaceClose(camera), VmbErrorBadHandle);
    EXPECT_EQ(VmbAncillaryDataClose(camera), VmbErrorBadHandle);
    EXPECT_EQ(VmbCameraClose(network), VmbErrorBadHandle);
    EXPECT_EQ(VmbAncillaryDataClose(network), VmbErrorBadHandle);
    EXPECT_EQ(VmbInterfaceClose(network), VmbErrorSuccess);
    EXPECT_EQ(VmbInterfaceClose(network), VmbErrorBadHandle);
}

TEST_F(SimulatorTest, ABadHandleComesBeforeBadArguments) {
    for (const auto& calls : {callsWithNullArguments(), callsWithoutArguments()}) {
        for (const Call& call : calls) {
            EXPECT_EQ(call.make(kNoHandle), VmbErrorBadHandle) << call.name;
            EXPECT_EQ(call.make(&simulator), VmbErrorBadHandle) << call.name;
        }
    }
}

TEST_F(SimulatorTest, TheHandleOfAClosedCameraIsBadForGood) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorSuccess);
    for (const auto& calls : {callsWithNullArguments(), callsWithoutArguments()}) {
        for (const Call& call : calls) EXPECT_EQ(call.make(camera), VmbErrorBadHandle) << call.name;
    }
    EXPECT_NE(open(), camera);
    EXPECT_EQ(VmbCaptureEnd(camera), VmbErrorBadHandle);
}

TEST_F(SimulatorTest, NullArgumentsComeBeforeSizeAndName) {
    const VmbHandle_t camera = open();
    for (const Call& call : callsWithNullArguments()) {
        EXPECT_EQ(call.make(camera), VmbErrorBadParameter) << call.name;
    }
    EXPECT_EQ(VmbCamerasList(nullptr, 0, nullptr, 1), VmbErrorBadParameter);
    VmbHandle_t other = nullptr;
    EXPECT_EQ(VmbCameraOpen(nullptr, VmbAccessModeFull, &other), VmbErrorBadParameter);
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeFull, nullptr), VmbErrorBadParameter);
    EXPECT_EQ(VmbVersionQuery(nullptr, 1), VmbErrorBadParameter);
    VmbCameraInfo_t info;
    EXPECT_EQ(VmbCameraInfoQuery(nullptr, &info, 1), VmbErrorBadParameter);
    EXPECT_EQ(VmbCameraInfoQuery("?", nullptr, 1), VmbErrorBadParameter);
    EXPECT_EQ(VmbInterfacesList(nullptr, 0, nullptr, 1), VmbErrorBadParameter);
    EXPECT_EQ(VmbInterfaceOpen(nullptr, &other), VmbErrorBadParameter);
    EXPECT_EQ(VmbInterfaceOpen("SimulatedNetwork0", nullptr), VmbErrorBadParameter);
    EXPECT_EQ(VmbAncillaryDataOpen(nullptr, &other), VmbErrorBadParameter);
}

TEST_F(SimulatorTest, TheSystemHandleIsNoCamera) {
    for (const Call& call : callsWithoutArguments()) {
        EXPECT_EQ(call.make(kSystem), VmbErrorBadHandle) << call.name;
    }
    VmbFrame_t frame{};
    EXPECT_EQ(VmbFrameAnnounce(kSystem, &frame, sizeof frame), VmbErrorBadHandle);
}

TEST_F(SimulatorTest, RecordSizesAreThoseOfThisVersion) {
    const VmbHandle_t camera = open();
    VmbCameraInfo_t cameras[2];
    VmbFeatureInfo_t feature;
    VmbFrame_t frame{};
    VmbVersionInfo_t version;
    VmbUint32_t found = 0;
    EXPECT_EQ(VmbCamerasList(cameras, 2, &found, sizeof cameras[0] - 1), VmbErrorStructSize);
    EXPECT_EQ(VmbFeaturesList(camera, &feature, 1, &found, sizeof feature + 1), VmbErrorStructSize);
    EXPECT_EQ(VmbFeatureInfoQuery(camera, "?", &feature, sizeof feature - 8), VmbErrorStructSize);
    EXPECT_EQ(VmbFrameAnnounce(camera, &frame, sizeof frame - 1), VmbErrorStructSize);
    VmbFeatureEnumEntry_t entry;
    EXPECT_EQ(VmbFeatureEnumEntryGet(camera, "?", "?", &entry, sizeof entry - 1), VmbErrorStructSize);
    EXPECT_EQ(VmbFeatureListAffected(camera, "?", &feature, 1, &found, 1), VmbErrorStructSize);
    EXPECT_EQ(VmbFeatureListSelected(camera, "?", &feature, 1, &found, 1), VmbErrorStructSize);
    EXPECT_EQ(VmbCameraInfoQuery("?", cameras, sizeof cameras[0] + 1), VmbErrorStructSize);
    VmbInterfaceInfo_t network;
    EXPECT_EQ(VmbInterfacesList(&network, 1, &found, sizeof network - 1), VmbErrorStructSize);
    const VmbFeaturePersistSettings_t settings{};
    EXPECT_EQ(VmbCameraSettingsSave(camera, "/", &settings, sizeof settings - 1), VmbErrorStructSize);
    EXPECT_EQ(VmbCameraSettingsLoad(camera, "/", &settings, sizeof settings + 1), VmbErrorStructSize);
    EXPECT_EQ(VmbFrameAnnounce(camera, &frame, 0), VmbErrorBadParameter);
    EXPECT_EQ(VmbVersionQuery(&version, sizeof version - 1), VmbErrorStructSize);
}

TEST_F(SimulatorTest, AnUnknownNameComesBeforeType) {
    const VmbHandle_t camera = open();
    VmbInt64_t number = 0;
    double real = 0;
    bool flag = false;
    const char* text = nullptr;
    VmbUint32_t filled = 0;
    VmbFeatureInfo_t info;
    EXPECT_EQ(VmbFeatureIntGet(camera, "width", &number), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureIntSet(camera, "", 1), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureIntRangeQuery(camera, "?", &number, nullptr), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureIntIncrementQuery(camera, "?", &number), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureFloatGet(camera, "?", &real), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureFloatSet(camera, "?", 1), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureFloatRangeQuery(camera, "?", nullptr, &real), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureEnumGet(camera, "?", &text), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureEnumSet(camera, "?", "Off"), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureEnumRangeQuery(camera, "?", nullptr, 0, &filled), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureStringGet(camera, "?", nullptr, 0, &filled), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureBoolGet(camera, "?", &flag), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureBoolSet(camera, "?", true), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureCommandRun(camera, "?"), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureCommandIsDone(camera, "?", &flag), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureInfoQuery(camera, "?", &info, sizeof info), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureAccessQuery(camera, "?", &flag, nullptr), VmbErrorNotFound);
    VmbFeatureEnumEntry_t entry;
    EXPECT_EQ(VmbFeatureListAffected(camera, "?", nullptr, 0, &filled, 0), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureListSelected(camera, "?", nullptr, 0, &filled, 0), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureFloatIncrementQuery(camera, "?", &flag, nullptr), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureEnumIsAvailable(camera, "?", "Off", &flag), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureEnumAsInt(camera, "?", "Off", &number), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureEnumAsString(camera, "?", 0, &text), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureEnumEntryGet(camera, "?", "Off", &entry, sizeof entry), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureStringSet(camera, "?", ""), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureStringMaxlengthQuery(camera, "?", &filled), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureRawGet(camera, "?", nullptr, 0, &filled), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureRawSet(camera, "?", "", 0), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureRawLengthQuery(camera, "?", &filled), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureInvalidationRegister(camera, "?", &nothing, nullptr), VmbErrorNotFound);
    EXPECT_EQ(VmbFeatureInvalidationUnregister(camera, "Width", &nothing), VmbErrorNotFound);
}

TEST_F(SimulatorTest, AWrongTypeComesBeforeAccess) {
    const VmbHandle_t camera = open();
    VmbInt64_t number = 0;
    double real = 0;
    bool flag = false;
    const char* text = nullptr;
    VmbUint32_t filled = 0;
    EXPECT_EQ(VmbFeatureIntGet(camera, "Gain", &number), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureIntSet(camera, "DeviceID", 1), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureIntRangeQuery(camera, "Gain", &number, nullptr), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureIntIncrementQuery(camera, "Gain", &number), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureFloatGet(camera, "Width", &real), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureFloatSet(camera, "SensorWidth", 1), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureFloatRangeQuery(camera, "Width", &real, nullptr), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureEnumGet(camera, "Width", &text), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureEnumSet(camera, "SensorWidth", "Off"), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureEnumRangeQuery(camera, "Width", nullptr, 0, &filled), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureStringGet(camera, "Width", nullptr, 0, &filled), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureBoolGet(camera, "Width", &flag), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureBoolSet(camera, "SensorWidth", true), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureCommandRun(camera, "Width"), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureCommandIsDone(camera, "Width", &flag), VmbErrorWrongType);
    VmbFeatureEnumEntry_t entry;
    EXPECT_EQ(VmbFeatureFloatIncrementQuery(camera, "Width", &flag, nullptr), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureEnumIsAvailable(camera, "Width", "Off", &flag), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureEnumAsInt(camera, "Width", "Off", &number), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureEnumAsString(camera, "Width", 0, &text), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureEnumEntryGet(camera, "Width", "Off", &entry, sizeof entry), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureStringSet(camera, "SensorWidth", ""), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureStringMaxlengthQuery(camera, "Width", &filled), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureRawGet(camera, "DeviceID", nullptr, 0, &filled), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureRawSet(camera, "DeviceID", "", 0), VmbErrorWrongType);
    EXPECT_EQ(VmbFeatureRawLengthQuery(camera, "DeviceID", &filled), VmbErrorWrongType);
}

TEST_F(SimulatorTest, AccessComesBeforeTheValue) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(VmbFeatureIntSet(camera, "SensorWidth", -1), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbFeatureFloatSet(camera, "AcquisitionFrameRateLimit", -1), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbFeatureBoolSet(kSystem, "GeVTLIsPresent", false), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbFeatureEnumSet(kSystem, "DiscoveryCameraEvent", "?"), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbFeatureStringSet(camera, "DeviceID", std::string(300, 'x').c_str()), VmbErrorInvalidAccess);
}

TEST_F(SimulatorTest, ValuesOutOfRangeOrOffTheIncrementAreRefused) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 0), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 664), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 324), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", INT64_MIN), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureFloatSet(camera, "Gain", -0.1), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureFloatSet(camera, "Gain", 32.5), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureFloatSet(camera, "Gain", std::stod("nan")), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureEnumSet(camera, "GainAuto", "off"), VmbErrorInvalidValue);
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 328), VmbErrorSuccess);
    EXPECT_EQ(VmbFeatureFloatSet(camera, "Gain", 32), VmbErrorSuccess);
}

TEST_F(SimulatorTest, OpensWithOneAccessModeOnly) {
    VmbHandle_t camera = nullptr;
    EXPECT_EQ(VmbCameraOpen("DEV_000F31A10009", VmbAccessModeFull, &camera), VmbErrorNotFound);
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeNone, &camera), VmbErrorBadParameter);
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeFull | VmbAccessModeRead, &camera),
              VmbErrorBadParameter);
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeConfig, &camera), VmbErrorInvalidAccess);
    EXPECT_EQ(camera, nullptr);
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera), VmbErrorSuccess);
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera), VmbErrorInvalidAccess);
}

TEST_F(SimulatorTest, OpensByAddressDigitsAndSerialToo) {
    for (const char* id : {"000F31A10002", "50-0503200002"}) {
        const VmbHandle_t camera = open(id);
        EXPECT_EQ(test_support::stringOf(camera, "DeviceModelName"), "Manta_G-032B");
        EXPECT_EQ(VmbCameraClose(camera), VmbErrorSuccess);
    }
}

TEST_F(SimulatorTest, ReadAccessReadsOnly) {
    VmbHandle_t camera = nullptr;
    ASSERT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeRead, &camera), VmbErrorSuccess);
    EXPECT_EQ(test_support::intOf(camera, "Width"), 656);
    EXPECT_EQ(VmbFeatureIntSet(camera, "Width", 328), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbFeatureCommandRun(camera, "AcquisitionStart"), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbCaptureStart(camera), VmbErrorInvalidAccess);
    bool readable = false;
    bool writable = true;
    EXPECT_EQ(VmbFeatureAccessQuery(camera, "Width", &readable, &writable), VmbErrorSuccess);
    EXPECT_TRUE(readable);
    EXPECT_FALSE(writable);
}

TEST_F(SimulatorTest, ASecondStartIsFineAndOneShutdownEndsBoth) {
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
    VmbShutdown();
    VmbUint32_t found = 0;
    EXPECT_EQ(VmbCamerasList(nullptr, 0, &found, sizeof(VmbCameraInfo_t)), VmbErrorApiNotStarted);
    VmbShutdown();
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
    EXPECT_EQ(VmbCamerasList(nullptr, 0, &found, sizeof(VmbCameraInfo_t)), VmbErrorSuccess);
}

TEST_F(SimulatorTest, ShutdownClosesCameras) {
    const VmbHandle_t camera = open();
    VmbShutdown();
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
    EXPECT_EQ(VmbCameraClose(camera), VmbErrorBadHandle);
    EXPECT_NE(open(), nullptr);
}

TEST_F(SimulatorTest, SettingsOutliveClosingAndShutdown) {
    VmbHandle_t camera = open();
    setEnum(camera, "PixelFormat", "RGB8Packed");
    VmbCameraClose(camera);
    VmbShutdown();
    VmbStartup();
    EXPECT_EQ(test_support::enumOf(open(), "PixelFormat"), "RGB8Packed");
}

TEST(Version, IsKnownBeforeStart) {
    VmbVersionInfo_t version{};
    EXPECT_EQ(VmbVersionQuery(&version, sizeof version), VmbErrorSuccess);
    EXPECT_EQ(version.major, 1u);
    EXPECT_EQ(version.minor, 9u);
    EXPECT_EQ(version.patch, 1u);
}

}  // namespace
