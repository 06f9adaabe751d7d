// Runs that repeat to the letter, and runs that only must not break.
#include <algorithm>
#include <random>
#include <thread>

#include "full_run.h"
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

/// A busy day of two cameras: events, triggers with jitter, frames lost and broken, settings changed, a
/// cable. The script is always the same; the seed picks the jitter of line and stamps.
class BusyDay {
  public:
    explicit BusyDay(std::uint64_t seed) {
        VmbSimUseVirtualTime(true);
        VmbSimSeed(seed);
        VmbSimJournalStart();
        EXPECT_EQ(VmbStartup(), VmbErrorSuccess);
        run(kSystem, "GeVDiscoveryAllAuto");
        VmbUint32_t found = 0;
        VmbCamerasList(nullptr, 0, &found, 0);
        m_seen.hook = [](VmbHandle_t handle, const char* name) {
            VmbInt64_t value = 0;
            VmbFeatureIntGet(handle, name, &value);
        };
        for (int i = 0; i < 2; ++i) open(i);
        const VmbSimRhythm rhythm{30, 1, 5 * kMillisecond, kMillisecond, 100'000};
        VmbSimDriveLine(nullptr, &rhythm);
    }
    ~BusyDay() {
        VmbSimJournalStop();
        VmbSimUseVirtualTime(false);
    }
    BusyDay(const BusyDay&) = delete;
    BusyDay& operator=(const BusyDay&) = delete;

    /// The journal of the day, and every frame's id and stamp.
    std::string pass() {
        for (int step = 0; step < 400; ++step) {
            VmbSimAdvance(m_script() % (50 * kMillisecond));
            act(static_cast<std::size_t>(m_script() % 2));
        }
        VmbSimUnplugCamera(kMonochromeCamera);
        VmbSimAdvance(kSecond);
        for (const auto& stream : m_streams) {
            VmbFeatureCommandRun(stream->camera, "AcquisitionStop");
            VmbCaptureEnd(stream->camera);
            VmbCaptureQueueFlush(stream->camera);
            VmbFrameRevokeAll(stream->camera);
            VmbCameraClose(stream->camera);
        }
        VmbShutdown();
        return wholeJournal() + m_frames;
    }

  private:
    void open(int i) {
        VmbHandle_t camera = nullptr;
        VmbCameraOpen(kIds[i], VmbAccessModeFull, &camera);
        const VmbSimOscillator oscillator{1'000'000'000, 0, 5'000 * (i + 1), 300, 60, 2'000};
        VmbSimSetOscillator(kIds[i], &oscillator);
        setFloat(camera, "ExposureTimeAbs", 1000);
        setEnum(camera, "TriggerSource", "Line1");
        for (const char* event : {"AcquisitionStart", "AcquisitionEnd", "FrameTrigger", "ExposureEnd"}) {
            setEnum(camera, "EventSelector", event);
            setEnum(camera, "EventNotification", "On");
            m_seen.registerOn(camera, (std::string("Event") + event + "Timestamp").c_str());
        }
        m_streams.push_back(std::make_unique<Stream>(camera));
        m_streams.back()->hook = [this](VmbFrame_t& frame) {
            m_frames += std::to_string(frame.frameID) + "@" + std::to_string(frame.timestamp) + "\n";
        };
        m_streams.back()->startCapture();
        run(camera, "AcquisitionStart");
    }
    void act(std::size_t camera) {
        const VmbHandle_t handle = m_streams[camera]->camera;
        switch (m_script() % 5) {
            case 0:
                VmbFeatureFloatSet(handle, "Gain", static_cast<double>(m_script() % 20));
                break;
            case 1:
                VmbSimLoseFrames(kIds[camera], 1);
                break;
            case 2:
                VmbSimBreakFrames(kIds[camera], 1, VmbFrameStatusIncomplete);
                break;
            case 3:
                VmbSimDisturbLine(nullptr, VmbSimPulseMissing, 1 + m_script() % 300, 1);
                break;
            default:
                VmbFeatureCommandRun(handle, m_script() % 4 == 0 ? "AcquisitionStop" : "AcquisitionStart");
                break;
        }
    }

    static constexpr const char* kIds[] = {kColourCamera, kMonochromeCamera};

    Simulator m_simulator;
    std::mt19937_64 m_script{20261121};
    std::string m_frames;
    Invalidations m_seen;
    std::vector<std::unique_ptr<Stream>> m_streams;
};

TEST(Repeatable, TwoRunsWithOneSeedHaveIdenticalJournals) {
    const std::string first = BusyDay(42).pass();
    EXPECT_GT(std::count(first.begin(), first.end(), '\n'), 1'000);
    EXPECT_EQ(first, BusyDay(42).pass());
}

TEST(Repeatable, AnotherSeedGivesOtherStampsToTheSameScript) {
    EXPECT_NE(BusyDay(42).pass(), BusyDay(43).pass());
}

/// Counts its frames and queues them again.
struct Client {
    std::atomic<std::uint64_t> frames{0};

    static void onFrame(const VmbHandle_t camera, VmbFrame_t* frame) {
        ++static_cast<Client*>(frame->context[0])->frames;
        VmbCaptureFrameQueue(camera, frame, &onFrame);
    }
    /// The way through a camera, cut short or disturbed wherever the faults of now say.
    void startAndStop(const char* id, const std::function<void()>& meanwhile) {
        VmbHandle_t camera = nullptr;
        if (VmbCameraOpen(id, VmbAccessModeFull, &camera) != VmbErrorSuccess) return;
        VmbFeatureEnumSet(camera, "TriggerMode", "Off");
        VmbFeatureIntSet(camera, "Width", 64);
        VmbFeatureIntSet(camera, "Height", 16);
        VmbFeatureFloatSet(camera, "ExposureTimeAbs", 1000);
        VmbFeatureFloatSet(camera, "AcquisitionFrameRateAbs", 100);
        VmbFrame_t records[2] = {};
        for (int i = 0; i < 2; ++i) {
            records[i].buffer = memory.data() + static_cast<std::size_t>(i) * memory.size() / 2;
            records[i].bufferSize = static_cast<VmbUint32_t>(memory.size() / 2);
            records[i].context[0] = this;
            VmbFrameAnnounce(camera, &records[i], sizeof records[i]);
        }
        VmbCaptureStart(camera);
        for (VmbFrame_t& record : records) VmbCaptureFrameQueue(camera, &record, &onFrame);
        VmbFeatureCommandRun(camera, "AcquisitionStart");
        meanwhile();
        VmbFeatureCommandRun(camera, "AcquisitionStop");
        VmbCaptureEnd(camera);
        VmbCaptureQueueFlush(camera);
        VmbFrameRevokeAll(camera);
        // An ordered failure of the close is no reason to leave the camera open.
        while (VmbCameraClose(camera) == VmbErrorInternalFault) continue;
    }

    // Enough for two frames of any size, since a fault may leave the camera at its largest.
    std::vector<std::uint8_t> memory = std::vector<std::uint8_t>(2 * 656 * 492 * 3);
};

class Endurance : public test_support::VirtualTimeTest {
  protected:
    Endurance() { VmbSimSetWatchdog(60'000); }
    ~Endurance() override { VmbSimSetWatchdog(0); }

    /// Each makes two threads, which takes long under the sanitizers and by Wine.
    static unsigned cycles() { return test_support::kRunsFast || test_support::isFullRun() ? 10'000 : 2'000; }
};

/// One fault at most, at the n-th call of some function.
void orderFault(std::mt19937_64& random, const char* id) {
    const char* functions[] = {"VmbCameraOpen",        "VmbFeatureIntSet",    "VmbFeatureIntGet",
                               "VmbFrameAnnounce",     "VmbCaptureStart",     "VmbCaptureEnd",
                               "VmbFrameRevokeAll",    "VmbCameraClose",      "VmbFeatureCommandRun",
                               "VmbCaptureFrameQueue", "VmbCaptureQueueFlush"};
    const char* function = functions[random() % std::size(functions)];
    const auto nth = static_cast<VmbInt32_t>(1 + random() % 3);
    switch (random() % 6) {
        case 0:
            VmbSimFailCall(function, nullptr, nth, VmbErrorInternalFault);
            break;
        case 1:
            VmbSimCableDuring(id, false, function, nullptr, nth);
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
}

TEST_F(Endurance, ThousandsOfStartsAndStopsWithRandomFaultsLeaveNothingBehind) {
    std::mt19937_64 random(20261121);
    Client client;
    for (unsigned cycle = 0; cycle < cycles(); ++cycle) {
        const char* id = random() % 2 == 0 ? kColourCamera : kMonochromeCamera;
        orderFault(random, id);
        const std::uint64_t span = random() % (40 * kMillisecond);
        client.startAndStop(id, [=] { advance(span); });
        VmbSimClearFaults();
        VmbSimPlugCamera(id);
    }
    // 2 frames a cycle on the average, less what the faults cost.
    EXPECT_GT(client.frames, cycles());
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

  public:
    static std::string id(std::uint64_t number) {
        return std::string("DEV_000F31B000") + (number < 10 ? "0" : "") + std::to_string(number);
    }
};

void countDiscovery(const VmbHandle_t system, const char*, void* context) {
    char ident[64] = "";
    VmbFeatureStringGet(system, "DiscoveryCameraIdent", ident, sizeof ident, nullptr);
    ++*static_cast<std::atomic<int>*>(context);
}

/// Each client has four cameras of its own, and pulls anybody's cable.
std::uint64_t recordInTheCrowd(std::uint64_t number) {
    std::mt19937_64 random(number);
    Client client;
    for (int round = 0; round < 25; ++round) {
        const std::string own = Crowd::id(1 + number * 4 + random() % 4);
        const std::uint64_t frames = random() % 4;
        client.startAndStop(own.c_str(), [&] { VmbSimWaitForFrames(own.c_str(), frames, 2'000); });
        const std::string cable = Crowd::id(1 + random() % 16);
        VmbSimUnplugCamera(cable.c_str());
        VmbUint32_t found = 0;
        VmbCamerasList(nullptr, 0, &found, 0);
        VmbSimPlugCamera(cable.c_str());
    }
    return client.frames;
}

TEST_P(Crowd, IsRecordedByFourClientsWhileCablesComeAndGo) {
    std::atomic<int> events{0};
    ASSERT_EQ(VmbFeatureInvalidationRegister(kSystem, "DiscoveryCameraEvent", &countDiscovery, &events),
              VmbErrorSuccess);
    run(kSystem, "GeVDiscoveryAllAuto");
    std::atomic<std::uint64_t> frames{0};
    std::vector<std::thread> clients;
    for (std::uint64_t number = 0; number < 4; ++number) {
        clients.emplace_back([&frames, number] { frames += recordInTheCrowd(number); });
    }
    for (std::thread& client : clients) client.join();
    EXPECT_EQ(VmbSimWaitForEvents(test_support::kPatienceMs), VmbErrorSuccess);
    EXPECT_GE(events, 16);
    // A hundred rounds of one and a half frames on the average, less those that a cable ended.
    EXPECT_GE(frames, 75u);
    VmbUint32_t found = 0;
    EXPECT_EQ(VmbCamerasList(nullptr, 0, &found, 0), VmbErrorSuccess);
    EXPECT_EQ(found, 16u);
    EXPECT_EQ(VmbFeatureInvalidationUnregister(kSystem, "DiscoveryCameraEvent", &countDiscovery),
              VmbErrorSuccess);
    EXPECT_EQ(Simulator::misuses(), "");
}

INSTANTIATE_TEST_SUITE_P(In, Crowd, ::testing::Bool(), [](const auto& instance) {
    return std::string(instance.param ? "VirtualTime" : "RealTime");
});

}  // namespace
