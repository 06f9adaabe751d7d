// Runs that repeat to the letter, and runs that only must not break.
#include <random>
#include <thread>

#include "virtual_fixture.h"

namespace {

using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kMillisecond;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::kSystem;
using test_support::run;
using test_support::setEnum;
using test_support::setFloat;
using test_support::Simulator;
using test_support::Stream;

std::string wholeJournal() {
    std::string text(VmbSimJournalText(nullptr, 0), '\0');
    VmbSimJournalText(text.data(), text.size());
    return text;
}

/// A busy day of two cameras: events, triggers with jitter, frames lost and broken, a cable, settings changed
/// from callbacks' threads and from the host's. The journal of all of it, with every frame's id and stamp.
std::string journalOfABusyRun(std::uint64_t seed) {
    VmbSimUseVirtualTime(true);
    VmbSimSeed(seed);
    VmbSimJournalStart();
    EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
    std::mt19937_64 random(seed);
    std::string frames;
    run(kSystem, "GeVDiscoveryAllAuto");
    VmbUint32_t found = 0;
    VmbCamerasList(nullptr, 0, &found, 0);
    VmbHandle_t cameras[2] = {};
    std::vector<std::unique_ptr<Stream>> streams;
    Invalidations seen;
    seen.hook = [](VmbHandle_t handle, const char* name) {
        VmbInt64_t value = 0;
        VmbFeatureIntGet(handle, name, &value);
    };
    const char* ids[] = {kColourCamera, kMonochromeCamera};
    for (int i = 0; i < 2; ++i) {
        VmbCameraOpen(ids[i], VmbAccessModeFull, &cameras[i]);
        VmbSimOscillator oscillator{1'000'000'000, 0, 5'000 * (i + 1), 300, 60, 2'000};
        VmbSimSetOscillator(ids[i], &oscillator);
        setFloat(cameras[i], "ExposureTimeAbs", 1000);
        setEnum(cameras[i], "TriggerSource", "Line1");
        for (const char* event : {"AcquisitionStart", "AcquisitionEnd", "FrameTrigger", "ExposureEnd"}) {
            setEnum(cameras[i], "EventSelector", event);
            setEnum(cameras[i], "EventNotification", "On");
            seen.registerOn(cameras[i], (std::string("Event") + event + "Timestamp").c_str());
        }
        streams.push_back(std::make_unique<Stream>(cameras[i]));
        streams.back()->hook = [&](VmbFrame_t& frame) {
            frames += std::to_string(frame.frameID) + "@" + std::to_string(frame.timestamp) + "\n";
        };
        streams.back()->startCapture();
        run(cameras[i], "AcquisitionStart");
    }
    VmbSimRhythm rhythm{30, 1, 5 * kMillisecond, kMillisecond, 100'000};
    VmbSimDriveLine(nullptr, &rhythm);
    for (int step = 0; step < 200; ++step) {
        VmbSimAdvance(random() % (50 * kMillisecond));
        const int camera = static_cast<int>(random() % 2);
        switch (random() % 5) {
            case 0:
                VmbFeatureFloatSet(cameras[camera], "Gain", static_cast<double>(random() % 20));
                break;
            case 1:
                VmbSimLoseFrames(ids[camera], 1);
                break;
            case 2:
                VmbSimBreakFrames(ids[camera], 1, VmbFrameStatusIncomplete);
                break;
            case 3:
                VmbSimDisturbLine(nullptr, VmbSimPulseMissing, 1 + random() % 300, 1);
                break;
            default:
                VmbFeatureCommandRun(cameras[camera],
                                     random() % 4 == 0 ? "AcquisitionStop" : "AcquisitionStart");
                break;
        }
    }
    VmbSimUnplugCamera(kMonochromeCamera);
    VmbSimAdvance(kSecond);
    for (const auto& stream : streams) {
        VmbFeatureCommandRun(stream->camera, "AcquisitionStop");
        VmbCaptureEnd(stream->camera);
        VmbCaptureQueueFlush(stream->camera);
        VmbFrameRevokeAll(stream->camera);
        VmbCameraClose(stream->camera);
    }
    VmbShutdown();
    std::string journal = wholeJournal() + frames;
    VmbSimJournalStop();
    VmbSimUseVirtualTime(false);
    return journal;
}

TEST(Repeatable, TwoRunsWithOneSeedHaveIdenticalJournals) {
    const std::string first = journalOfABusyRun(42);
    EXPECT_GT(std::count(first.begin(), first.end(), '\n'), 1'000);
    EXPECT_EQ(first, journalOfABusyRun(42));
}

TEST(Repeatable, AnotherSeedIsAnotherRun) {
    EXPECT_NE(journalOfABusyRun(42), journalOfABusyRun(43));
}

/// One client's way through a camera, cut short or disturbed wherever the faults of now say.
void startAndStop(const char* id, const std::function<void()>& meanwhile) {
    VmbHandle_t camera = nullptr;
    if (VmbCameraOpen(id, VmbAccessModeFull, &camera) != VmbErrorSuccess) return;
    VmbInt64_t payload = 0;
    VmbFeatureEnumSet(camera, "TriggerMode", "Off");
    VmbFeatureIntSet(camera, "Width", 64);
    VmbFeatureIntSet(camera, "Height", 16);
    VmbFeatureFloatSet(camera, "ExposureTimeAbs", 1000);
    VmbFeatureFloatSet(camera, "AcquisitionFrameRateAbs", 100);
    VmbFeatureIntGet(camera, "PayloadSize", &payload);
    // Enough for two frames of any size, since a fault may leave the camera at its largest.
    static thread_local std::vector<std::uint8_t> memory(2 * 656 * 492 * 3);
    VmbFrame_t frames[2] = {};
    const VmbFrameCallback again = [](const VmbHandle_t handle, VmbFrame_t* frame) {
        VmbCaptureFrameQueue(handle, frame, *static_cast<VmbFrameCallback*>(frame->context[0]));
    };
    VmbFrameCallback callback = again;
    for (int i = 0; i < 2; ++i) {
        frames[i].buffer = memory.data() + static_cast<std::size_t>(i) * memory.size() / 2;
        frames[i].bufferSize = static_cast<VmbUint32_t>(memory.size() / 2);
        frames[i].context[0] = &callback;
        VmbFrameAnnounce(camera, &frames[i], sizeof frames[i]);
    }
    VmbCaptureStart(camera);
    for (VmbFrame_t& frame : frames) VmbCaptureFrameQueue(camera, &frame, callback);
    VmbFeatureCommandRun(camera, "AcquisitionStart");
    meanwhile();
    VmbFeatureCommandRun(camera, "AcquisitionStop");
    VmbCaptureEnd(camera);
    VmbCaptureQueueFlush(camera);
    VmbFrameRevokeAll(camera);
    // An ordered failure of the close is no reason to leave the camera open.
    while (VmbCameraClose(camera) == VmbErrorInternalFault) continue;
}

class Endurance : public test_support::VirtualTimeTest {
  protected:
    Endurance() { VmbSimSetWatchdog(60'000); }
    ~Endurance() override { VmbSimSetWatchdog(0); }
};

TEST_F(Endurance, TenThousandStartsAndStopsWithRandomFaultsLeaveNothingBehind) {
    const char* functions[] = {"VmbCameraOpen",        "VmbFeatureIntSet",    "VmbFeatureIntGet",
                               "VmbFrameAnnounce",     "VmbCaptureStart",     "VmbCaptureEnd",
                               "VmbFrameRevokeAll",    "VmbCameraClose",      "VmbFeatureCommandRun",
                               "VmbCaptureFrameQueue", "VmbCaptureQueueFlush"};
    std::mt19937_64 random(20261121);
    for (int cycle = 0; cycle < 10'000; ++cycle) {
        const char* id = random() % 2 == 0 ? kColourCamera : kMonochromeCamera;
        const char* function = functions[random() % std::size(functions)];
        switch (random() % 6) {
            case 0:
                VmbSimFailCall(function, nullptr, static_cast<VmbInt32_t>(1 + random() % 3),
                               VmbErrorInternalFault);
                break;
            case 1:
                VmbSimCableDuring(id, false, function, nullptr, static_cast<VmbInt32_t>(1 + random() % 3));
                break;
            case 2:
                VmbSimLoseFrames(id, 1);
                break;
            case 3:
                VmbSimBreakFrames(id, 1, VmbFrameStatusIncomplete);
                break;
            default:
                break;
        }
        const std::uint64_t span = random() % (40 * kMillisecond);
        startAndStop(id, [=] { advance(span); });
        VmbSimClearFaults();
        VmbSimPlugCamera(id);
    }
    for (const char* id : {kColourCamera, kMonochromeCamera}) {
        VmbUint32_t announced = 0;
        EXPECT_EQ(VmbSimFrameCounts(id, &announced, &announced), VmbErrorDeviceNotOpen);
        const VmbHandle_t camera = openFast(id);
        Stream stream(camera);
        stream.startCapture();
        run(camera, "AcquisitionStart");
        advance(25 * kMillisecond);
        EXPECT_EQ(stream.ids().size(), 3u);
        stream.endCapture();
    }
}

/// Sixteen cameras whose cables come and go while four clients open, record and close them.
class Crowd : public ::testing::TestWithParam<bool> {
  protected:
    Crowd() {
        EXPECT_EQ(VmbSimLoadScenario("sixteen-cameras"), VmbErrorSuccess);
        EXPECT_EQ(VmbSimUseVirtualTime(GetParam()), VmbErrorSuccess);
        EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
        VmbSimSetWatchdog(120'000);
    }
    ~Crowd() override {
        VmbShutdown();
        VmbSimSetWatchdog(0);
        EXPECT_EQ(VmbSimUseVirtualTime(false), VmbErrorSuccess);
        EXPECT_EQ(VmbSimLoadScenario("two-cameras"), VmbErrorSuccess);
    }
    static std::string id(std::uint64_t number) {
        return std::string("DEV_000F31B000") + (number < 10 ? "0" : "") + std::to_string(number);
    }
};

void countDiscovery(const VmbHandle_t system, const char*, void* context) {
    char ident[64] = "";
    VmbFeatureStringGet(system, "DiscoveryCameraIdent", ident, sizeof ident, nullptr);
    ++*static_cast<std::atomic<int>*>(context);
}

TEST_P(Crowd, IsRecordedByFourClientsWhileCablesComeAndGo) {
    std::atomic<int> events{0};
    ASSERT_EQ(VmbFeatureInvalidationRegister(kSystem, "DiscoveryCameraEvent", &countDiscovery, &events),
              VmbErrorSuccess);
    run(kSystem, "GeVDiscoveryAllAuto");
    std::vector<std::thread> clients;
    for (std::uint64_t client = 0; client < 4; ++client) {
        clients.emplace_back([client] {
            std::mt19937_64 random(client);
            for (int round = 0; round < 25; ++round) {
                // Each has four cameras of its own, and a cable of anybody's.
                const std::string own = id(1 + client * 4 + random() % 4);
                const std::uint64_t frames = random() % 4;
                startAndStop(own.c_str(), [&] { VmbSimWaitForFrames(own.c_str(), frames, 2'000); });
                const std::string cable = id(1 + random() % 16);
                VmbSimUnplugCamera(cable.c_str());
                VmbUint32_t found = 0;
                VmbCamerasList(nullptr, 0, &found, 0);
                VmbSimPlugCamera(cable.c_str());
            }
        });
    }
    for (std::thread& client : clients) client.join();
    EXPECT_EQ(VmbSimWaitForEvents(test_support::kPatienceMs), VmbErrorSuccess);
    EXPECT_GE(events, 16);
    VmbUint32_t found = 0;
    EXPECT_EQ(VmbCamerasList(nullptr, 0, &found, 0), VmbErrorSuccess);
    EXPECT_EQ(found, 16u);
    EXPECT_EQ(VmbFeatureInvalidationUnregister(kSystem, "DiscoveryCameraEvent", &countDiscovery),
              VmbErrorSuccess);
}

INSTANTIATE_TEST_SUITE_P(In, Crowd, ::testing::Bool(), [](const auto& instance) {
    return std::string(instance.param ? "VirtualTime" : "RealTime");
});

}  // namespace
