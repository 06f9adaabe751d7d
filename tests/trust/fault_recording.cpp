#include "fault_recording.h"

#include <chrono>
#include <sstream>
#include <thread>

#include <boost/variant.hpp>

#include "long_run_fixture.h"

namespace faults {
namespace {

using test_support::kMillisecond;
using test_support::kSecond;

constexpr std::uint64_t kRecordedNs = 200 * kMillisecond;
/// At 50 and 40 frames per second from the start on, the first of them within microseconds.
constexpr std::array<std::size_t, 2> kFrames{10, 8};
/// A stamp is the moment of the frame's callback. The camera's clock is 12 millionths off, which is 2.4 us of
/// a recording.
constexpr std::int64_t kStampErrorNs = 10'000;

/// Held by two open cameras of a plug-in that looks for more, idle and with five buffers announced each.
constexpr VmbSimHoldings kIdle{2, 0, 1, 0};
constexpr VmbSimHoldings kCapturing{2, 0, 5, 10};

class FrameList final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t time, const void* data, std::uint64_t size) override {
        test_support::StampedFrame frame{time};
        isWhole = isWhole && VmbSimReadStamp(data, size, &frame.truth) == VmbErrorSuccess;
        frames.push_back(frame);
    }
    std::vector<test_support::StampedFrame> frames;
    bool isWhole = true;
};

class Count final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t, const void* data, std::uint64_t) override {
        std::memcpy(&value, data, sizeof value);
        ++samples;
    }
    std::uint64_t value = 0;
    std::size_t samples = 0;
};

std::string wordsOf(const VmbSimHoldings& held) {
    std::ostringstream text;
    text << held.cameras << " cameras, " << held.interfaces << " interfaces, " << held.registrations
         << " registrations, " << held.announced << " frames";
    return text.str();
}

class Recorder {
  public:
    Recorder(World& world, unsigned unrevoked) : m_world(world), m_unrevoked(unrevoked) {}

    Complaints record(Recovery recovery) {
        VmbSimClearFaults();
        if (bringBack(recovery) && prepare(recovery)) {
            holds(kCapturing, "while capture runs", m_unrevoked);
            stream();
            holds(kIdle, "when it has ended");
        }
        if (m_world.exists()) m_world.plugin().clearChannelSinks();
        return std::move(m_complaints);
    }

  private:
    bool expect(bool right, const std::string& sentence) {
        if (!right) m_complaints.push_back(sentence);
        return right;
    }
    bool goesWell(const char* what, const Outcome& outcome) {
        return expect(outcome.answer == Answer::Yes,
                      std::string("the next recording fails: ") + what + ": " + outcome.thrown + " [" +
                          m_world.messageOf(kCameras[0]) + "] [" + m_world.messageOf(kCameras[1]) + "]");
    }
    void holds(const VmbSimHoldings& wanted, const char* when, unsigned unrevoked = 0) {
        VmbSimHoldings held{};
        VmbSimCountHoldings(&held);
        held.announced -= std::min(held.announced, unrevoked);
        expect(wordsOf(held) == wordsOf(wanted),
               std::string("held ") + when + ": " + wordsOf(held) + ", not " + wordsOf(wanted));
        expect(m_world.pages.held == m_world.pagesFor(wanted.announced),
               "blocks of frame memory " + std::string(when) + ": " + std::to_string(m_world.pages.held));
    }

    bool bringBack(Recovery recovery) {
        if (recovery == Recovery::NewPlugin) {
            m_world.destroy();
            m_world.create();
        }
        if (!m_world.exists()) m_world.create();
        // A camera that is said not to have stopped is stopped by the next preparation.
        attempt([&] { return m_world.plugin().stopAcquisition(); });
        m_world.plugin().onAcquisitionFinished();
        if (recovery == Recovery::Initialise) m_world.plugin().terminate();
        // A camera that could not be found for a while is back by then.
        World::advance(2 * kSecond);
        return goesWell("initialisation", attempt([&] { return m_world.initialise(); })) &&
               goesWell("enumeration", attempt([&] {
                            m_world.plugin().enumerateDevices();
                            return m_world.plugin().getChannelIds().size() == 6;
                        }));
    }
    bool prepare(Recovery recovery) {
        const auto preparation = [&] { return m_world.plugin().prepareAcquisition(); };
        // What cannot be set while a camera acquires can be from then on.
        if (recovery == Recovery::PrepareTwice) {
            expect(attempt(preparation).answer == Answer::No, "a capture that was not ended is no obstacle");
        }
        const auto settings = [&] { return m_world.applySettings(); };
        // A second time for what could not be read when the camera was opened, and therefore not be set.
        return goesWell("settings", attempt(settings)) && goesWell("preparation", attempt(preparation)) &&
               goesWell("settings", attempt(settings));
    }
    void stream() {
        std::array<FrameList, 2> frames;
        std::array<Count, 2> sent;
        std::array<Count, 2> received;
        for (std::size_t i = 0; i < kCameras.size(); ++i) {
            const std::uint32_t id = m_world.channelOf(kCameras[i]);
            m_world.plugin().setChannelSink(id, &frames[i]);
            m_world.plugin().setChannelSink(id | test_support::kSentFrames, &sent[i]);
            m_world.plugin().setChannelSink(id | test_support::kReceivedFrames, &received[i]);
        }
        m_world.plugin().onAcquisitionPrepared();
        if (!goesWell("start", attempt([&] { return m_world.plugin().startAcquisition(); }))) return;
        const auto begin = std::chrono::steady_clock::now();
        World::advance(kRecordedNs);
        for (const char* camera : kCameras) VmbSimHoldSensor(camera, true);
        // The last one is on its way.
        World::advance(kRecordedNs);
        // What passes between a frame's callback and the reading of the host's clock is taken off; this clock
        // stands still meanwhile.
        const std::chrono::nanoseconds passed = std::chrono::steady_clock::now() - begin;
        goesWell("polling", attempt([&] { return m_world.plugin().processAcquisition(); }));
        goesWell("stop", attempt([&] { return m_world.plugin().stopAcquisition(); }));
        m_world.plugin().onAcquisitionFinished();
        for (const char* camera : kCameras) VmbSimHoldSensor(camera, false);
        m_world.plugin().clearChannelSinks();
        for (std::size_t i = 0; i < kCameras.size(); ++i) {
            examine(kCameras[i], frames[i], kFrames[i], kStampErrorNs + passed.count());
            expect(sent[i].value + 1 == kFrames[i] && received[i].value == kFrames[i] &&
                       received[i].samples == kFrames[i],
                   std::string(kCameras[i]) + ": counted " + std::to_string(received[i].value) + " of " +
                       std::to_string(sent[i].value + 1));
        }
    }
    void examine(const std::string& camera, const FrameList& list, std::size_t wanted, std::int64_t error) {
        expect(list.frames.size() == wanted, camera + ": " + std::to_string(list.frames.size()) +
                                                 " frames instead of " + std::to_string(wanted));
        expect(list.isWhole, camera + ": a picture is not the one that was sent");
        std::uint64_t number = 0;
        for (const test_support::StampedFrame& frame : list.frames) {
            ++number;
            expect(frame.truth.frameId == number, camera + ": frame " + std::to_string(frame.truth.frameId) +
                                                      " in place of " + std::to_string(number));
            const auto came = static_cast<std::int64_t>(frame.truth.exposureStartNs + frame.truth.wayNs);
            expect(std::abs(frame.time - came) <= error,
                   camera + ": frame " + std::to_string(number) + " is stamped " +
                       std::to_string(frame.time - came) + " ns beside its time");
        }
    }

    World& m_world;
    const unsigned m_unrevoked;
    Complaints m_complaints;
};

void callEverything(World& world) {
    zelt::IfDAQPlugin& plugin = world.plugin();
    plugin.createServices();
    if (plugin_api::IfServiceFactory* const services = plugin.getServiceFactory()) services->release();
    plugin.isAcquiring();
    plugin.isReadyForAcquisition();
    plugin.processAcquisition();
    const std::set<std::uint32_t> ids = plugin.getChannelIds();
    plugin.checkChannelSettings({ids.begin(), ids.end()}, false);
    for (const std::uint32_t id : ids) {
        const auto config = plugin.getChannelConfig(id);
        for (const std::string& key : config->getKeys()) {
            config->getItem(key);
            config->getConstraints(key);
        }
        config->setChangeCallback({});
        config->setItem(config_keys::kUsed, config_items::SingleValueConfigItem<bool>(true));
        auto* const messages = dynamic_cast<zelt::IfChannelMessages*>(config.get());
        if (messages != nullptr) messages->setMessageListener({});
    }
}

}  // namespace

Complaints recordAgain(World& world, Recovery recovery, unsigned unrevoked) {
    return Recorder(world, unrevoked).record(recovery);
}

void makeEveryCall(World& world) {
    if (!world.exists()) return;
    std::thread(callEverything, std::ref(world)).join();
}

Complaints examineEnd(World& world, const std::set<std::string>& deliberate) {
    world.destroy();
    Complaints complaints;
    std::istringstream misuses(test_support::Simulator::misuses());
    const std::string separator = ": misuse: ";
    for (std::string line; std::getline(misuses, line);) {
        if (deliberate.count(line.substr(line.rfind(separator) + separator.size())) == 0)
            complaints.push_back(line);
    }
    VmbSimHoldings held{};
    VmbSimCountHoldings(&held);
    const std::string left = wordsOf(held);
    if (left != wordsOf({})) complaints.push_back("held when the plug-in is gone: " + left);
    if (world.pages.held != 0) {
        complaints.push_back("blocks of frame memory left: " + std::to_string(world.pages.held));
    }
    if (VmbSimLoadScenario("two-cameras") != VmbErrorSuccess)
        complaints.emplace_back("the library is still started");
    return complaints;
}

}  // namespace faults
