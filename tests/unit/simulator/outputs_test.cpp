// A call that fails writes nothing, but for the number that MoreData needs.
#include <cstring>

#include "simulator_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::kSystem;
using test_support::run;
using test_support::SimulatorTest;
using test_support::Stream;
using test_support::StreamTest;

/// Places for every kind of result, filled with a pattern.
struct Outputs {
    Outputs() {
        std::memset(&places, kPattern, sizeof places);
        flag = flagPlaces;
    }
    bool areUntouched() const {
        const auto* bytes = reinterpret_cast<const unsigned char*>(&places);
        const bool pattern =
            std::all_of(bytes, bytes + sizeof places, [](unsigned char byte) { return byte == kPattern; });
        return pattern && flagPlaces[0] && !flagPlaces[1];
    }

    static constexpr unsigned char kPattern = 0x5A;
    struct Places {
        VmbInt64_t integers[2];
        double fractions[2];
        VmbUint32_t counts[2];
        const char* texts[2];
        char buffer[16];
        VmbHandle_t handle;
        VmbUint64_t registers[2];
        VmbFeatureInfo_t feature;
        VmbFeatureEnumEntry_t entry;
        VmbCameraInfo_t camera;
        VmbInterfaceInfo_t network;
    } places;
    // Apart, since not every pattern is a truth value.
    VmbBool_t flagPlaces[2] = {true, false};
    VmbBool_t* flag;
};

struct Call {
    const char* name;
    std::function<VmbError_t(VmbHandle_t, const char*, Outputs&, Outputs::Places&)> make;
};

std::vector<Call> featureCalls() {
    using H = VmbHandle_t;
    using N = const char*;
    using P = Outputs::Places;
    return {
        {"List",
         [](H h, N n, Outputs&, P& p) {
             return VmbFeatureListAffected(h, n, &p.feature, 1, p.counts, sizeof p.feature);
         }},
        {"Selected",
         [](H h, N n, Outputs&, P& p) {
             return VmbFeatureListSelected(h, n, &p.feature, 1, p.counts, sizeof p.feature);
         }},
        {"Info",
         [](H h, N n, Outputs&, P& p) { return VmbFeatureInfoQuery(h, n, &p.feature, sizeof p.feature); }},
        {"Access", [](H h, N n, Outputs& o, P&) { return VmbFeatureAccessQuery(h, n, o.flag, o.flag + 1); }},
        {"IntGet", [](H h, N n, Outputs&, P& p) { return VmbFeatureIntGet(h, n, p.integers); }},
        {"IntRange",
         [](H h, N n, Outputs&, P& p) { return VmbFeatureIntRangeQuery(h, n, p.integers, p.integers + 1); }},
        {"IntIncrement",
         [](H h, N n, Outputs&, P& p) { return VmbFeatureIntIncrementQuery(h, n, p.integers); }},
        {"FloatGet", [](H h, N n, Outputs&, P& p) { return VmbFeatureFloatGet(h, n, p.fractions); }},
        {"FloatRange", [](H h, N n, Outputs&,
                          P& p) { return VmbFeatureFloatRangeQuery(h, n, p.fractions, p.fractions + 1); }},
        {"FloatIncrement",
         [](H h, N n, Outputs& o, P& p) { return VmbFeatureFloatIncrementQuery(h, n, o.flag, p.fractions); }},
        {"EnumGet", [](H h, N n, Outputs&, P& p) { return VmbFeatureEnumGet(h, n, p.texts); }},
        {"EnumRange",
         [](H h, N n, Outputs&, P& p) { return VmbFeatureEnumRangeQuery(h, n, p.texts, 2, p.counts); }},
        {"EnumIsAvailable",
         [](H h, N n, Outputs& o, P&) { return VmbFeatureEnumIsAvailable(h, n, "?", o.flag + 1); }},
        {"EnumAsInt", [](H h, N n, Outputs&, P& p) { return VmbFeatureEnumAsInt(h, n, "?", p.integers); }},
        {"EnumAsString", [](H h, N n, Outputs&, P& p) { return VmbFeatureEnumAsString(h, n, 99, p.texts); }},
        {"EnumEntry", [](H h, N n, Outputs&,
                         P& p) { return VmbFeatureEnumEntryGet(h, n, "?", &p.entry, sizeof p.entry); }},
        {"StringGet", [](H h, N n, Outputs&,
                         P& p) { return VmbFeatureStringGet(h, n, p.buffer, sizeof p.buffer, p.counts); }},
        {"StringMax",
         [](H h, N n, Outputs&, P& p) { return VmbFeatureStringMaxlengthQuery(h, n, p.counts); }},
        {"BoolGet", [](H h, N n, Outputs& o, P&) { return VmbFeatureBoolGet(h, n, o.flag + 1); }},
        {"IsDone", [](H h, N n, Outputs& o, P&) { return VmbFeatureCommandIsDone(h, n, o.flag + 1); }},
        {"RawGet", [](H h, N n, Outputs&,
                      P& p) { return VmbFeatureRawGet(h, n, p.buffer, sizeof p.buffer, p.counts); }},
        {"RawLength", [](H h, N n, Outputs&, P& p) { return VmbFeatureRawLengthQuery(h, n, p.counts); }},
    };
}

void expectUntouched(VmbHandle_t handle, const char* feature, VmbError_t expected) {
    for (const Call& call : featureCalls()) {
        Outputs outputs;
        EXPECT_EQ(call.make(handle, feature, outputs, outputs.places), expected) << call.name;
        EXPECT_TRUE(outputs.areUntouched()) << call.name;
    }
}

TEST_F(SimulatorTest, FailingFeatureCallsWriteNothing) {
    const VmbHandle_t camera = open();
    expectUntouched(camera, "?", VmbErrorNotFound);
    expectUntouched(camera, nullptr, VmbErrorBadParameter);
    expectUntouched(nullptr, "Width", VmbErrorBadHandle);
    VmbCameraClose(camera);
    expectUntouched(camera, "Width", VmbErrorBadHandle);
    VmbShutdown();
    expectUntouched(kSystem, "Elapsed", VmbErrorApiNotStarted);
}

TEST_F(SimulatorTest, FailingListsAndOpeningsWriteNothing) {
    Outputs outputs;
    Outputs::Places& p = outputs.places;
    EXPECT_EQ(VmbCamerasList(&p.camera, 1, p.counts, 1), VmbErrorStructSize);
    EXPECT_EQ(VmbCameraInfoQuery("?", &p.camera, sizeof p.camera), VmbErrorNotFound);
    EXPECT_EQ(VmbCameraOpen("?", VmbAccessModeFull, &p.handle), VmbErrorNotFound);
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeConfig, &p.handle), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbInterfacesList(&p.network, 1, p.counts, 1), VmbErrorStructSize);
    EXPECT_EQ(VmbInterfaceOpen("?", &p.handle), VmbErrorNotFound);
    EXPECT_EQ(VmbFeaturesList(kSystem, &p.feature, 1, p.counts, 1), VmbErrorStructSize);
    EXPECT_EQ(VmbMemoryRead(kSystem, 0, 4, p.buffer, p.counts), VmbErrorBadHandle);
    EXPECT_TRUE(outputs.areUntouched());
}

TEST_F(SimulatorTest, OrderedFailuresWriteNothing) {
    const VmbHandle_t camera = open();
    Outputs outputs;
    for (const char* function : {"VmbFeatureIntGet", "VmbMemoryRead", "VmbInterfaceOpen",
                                 "VmbFeatureEnumEntryGet", "VmbFeatureRawGet", "VmbInterfacesList"}) {
        VmbSimFailCall(function, nullptr, 1, VmbErrorMoreData);
    }
    Outputs::Places& p = outputs.places;
    EXPECT_EQ(VmbFeatureIntGet(camera, "Width", p.integers), VmbErrorMoreData);
    EXPECT_EQ(VmbMemoryRead(camera, 0, 4, p.buffer, p.counts), VmbErrorMoreData);
    EXPECT_EQ(VmbInterfaceOpen("SimulatedNetwork0", &p.handle), VmbErrorMoreData);
    EXPECT_EQ(VmbFeatureEnumEntryGet(camera, "GainAuto", "Off", &p.entry, sizeof p.entry), VmbErrorMoreData);
    EXPECT_EQ(VmbFeatureRawGet(camera, "SimulatorRawData", p.buffer, 16, p.counts), VmbErrorMoreData);
    EXPECT_EQ(VmbInterfacesList(&p.network, 1, p.counts, sizeof p.network), VmbErrorMoreData);
    EXPECT_TRUE(outputs.areUntouched());
}

TEST_F(StreamTest, TextsBytesAndSettingsCannotBeSetInAFrameCallback) {
    const VmbHandle_t camera = openFast();
    Stream stream(camera, 1);
    stream.requeue = false;
    std::vector<VmbError_t> results;
    stream.hook = [&](VmbFrame_t&) {
        results = {VmbFeatureStringSet(camera, "DeviceUserID", "x"),
                   VmbFeatureRawSet(camera, "SimulatorRawData", "x", 1),
                   VmbCameraSettingsLoad(camera, "none", nullptr, 0),
                   VmbFeatureStringSet(camera, "DeviceID", "x")};
    };
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(1);
    stream.endCapture();
    EXPECT_THAT(results, ::testing::Each(VmbErrorInvalidCall));
    EXPECT_EQ(results.size(), 4u);
}

TEST_F(StreamTest, InterfacesAndAncillaryDataAreJournalled) {
    const VmbHandle_t camera = openFast();
    EXPECT_EQ(VmbFeatureBoolSet(camera, "ChunkModeActive", true), VmbErrorSuccess);
    Stream stream(camera, 2);
    stream.requeue = false;
    stream.startCapture();
    run(camera, "AcquisitionStart");
    waitForFrames(2);
    VmbSimJournalStart();
    VmbHandle_t chunk = nullptr;
    VmbInt64_t value = 0;
    VmbAncillaryDataOpen(&stream.frames[1], &chunk);
    VmbFeatureIntGet(chunk, "ChunkGain", &value);
    VmbAncillaryDataClose(chunk);
    VmbHandle_t network = nullptr;
    VmbInterfaceOpen("SimulatedNetwork0", &network);
    VmbFeatureIntGet(network, "DeviceCount", &value);
    const VmbUint64_t address = 0x8000;
    VmbUint32_t done = 0;
    VmbMemoryWrite(camera, address, 2, "xy", &done);
    VmbUint64_t content = 0;
    VmbRegistersRead(camera, 1, &address, &content, &done);
    VmbSimJournalStop();
    EXPECT_THAT(test_support::Simulator::journal(),
                ::testing::ElementsAre("VmbAncillaryDataOpen(frame 2) = 0, ancillary data",
                                       "VmbFeatureIntGet(ancillary data, \"ChunkGain\") = 0, 0",
                                       "VmbAncillaryDataClose(ancillary data) = 0",
                                       "VmbInterfaceOpen(\"SimulatedNetwork0\") = 0, SimulatedNetwork0",
                                       "VmbFeatureIntGet(SimulatedNetwork0, \"DeviceCount\") = 0, 2",
                                       "VmbMemoryWrite(DEV_000F31A10001, 32768, 2) = 0, 2",
                                       "VmbRegistersRead(DEV_000F31A10001, 1) = 0, 1"));
    stream.endCapture();
}

}  // namespace
