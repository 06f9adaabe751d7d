/// A host that uses its cameras in all kinds of ways, in an order that a seed decides, in virtual time.
#pragma once

#include <array>
#include <cstdio>
#include <random>

#include "held_memory.h"
#include "if_system_topology_service.h"
#include "soak_camera.h"

namespace test_support {

/// What was done and what came of it.
struct SoakSums {
    std::uint64_t recordings = 0;
    std::uint64_t produced = 0;
    std::uint64_t delivered = 0;
    std::uint64_t lost = 0;  ///< and named so
    std::uint64_t cables = 0;
    std::uint64_t settings = 0;
    std::uint64_t restarts = 0;
};

class Soak : public PluginTest {
  protected:
    Soak() : PluginTest("sixteen-cameras", /*virtualTime=*/true) {
        for (unsigned number = kSoakCameras + 1; number <= 16; ++number) {
            VmbSimUnplugCamera(idOf(number).c_str());
        }
        for (unsigned number = 1; number <= kSoakCameras; ++number) m_cameras[number - 1].id = idOf(number);
        bringUp();
    }

    /// Anything, until the time has come.
    void useUntil(std::uint64_t time) {
        while (VmbSimTime() < time && !HasFailure()) {
            switch (oneOf(8)) {
                case 0:
                    turnCables();
                    break;
                case 1:
                    chooseUsed();
                    break;
                case 2:
                    restart();
                    break;
                case 3:
                    lookAtEverything();
                    break;
                default:
                    record();
                    break;
            }
            pass((1 + oneOf(120)) * kSecond);
        }
    }
    /// Everything plugged in, and the plug-in gone; what is held then is held for ever.
    std::size_t bytesAtRest() {
        for (SoakCamera& camera : m_cameras) plug(camera, true);
        plugin->enumerateDevices();
        pass(kSecond);
        expectIdle(kSoakCameras);
        destroy();
        expectIdle(0);
        const std::size_t bytes = heldBytes();
        zelt::IfDAQPlugin* made = nullptr;
        EXPECT_TRUE(creator.createPlugin("GIGECAMERA", pluginTypeId(), &made));
        plugin = made;
        bringUp();
        return bytes;
    }

    SoakSums sums;

  private:
    static constexpr unsigned kSoakCameras = 3;
    static constexpr std::uint64_t kLeastGap = 5 * kSecond;
    static constexpr const char* kFixed = "GIGE/TriggerModeFixed";

    static std::string idOf(unsigned number) {
        return "DEV_000F31B000" + std::string(number < 10 ? "0" : "") + std::to_string(number);
    }
    std::uint64_t oneOf(std::uint64_t count) { return m_random() % count; }
    static void pass(std::uint64_t ns) { ASSERT_EQ(VmbSimAdvance(ns), VmbErrorSuccess); }

    void bringUp() {
        wantFrameCounters(true);
        enumerate();
        for (SoakCamera& camera : m_cameras) camera.used = true;
    }
    /// What the library holds of the cameras between recordings.
    void expectIdle(unsigned open) {
        unsigned found = 0;
        for (const SoakCamera& camera : m_cameras) {
            std::uint32_t announced = 0;
            std::uint32_t queued = 0;
            if (VmbSimFrameCounts(camera.id.c_str(), &announced, &queued) != VmbErrorSuccess) continue;
            ++found;
            EXPECT_EQ(announced, 0u);
        }
        EXPECT_EQ(found, open);
    }
    void plug(SoakCamera& camera, bool plugged) {
        if (camera.plugged == plugged) return;
        camera.plugged = plugged;
        const auto turn = plugged ? &VmbSimPlugCamera : &VmbSimUnplugCamera;
        EXPECT_EQ(turn(camera.id.c_str()), VmbErrorSuccess);
        pass(2 * kSecond);
        ++sums.cables;
    }
    void turnCables() {
        for (SoakCamera& camera : m_cameras) {
            if (oneOf(2) == 0) plug(camera, oneOf(2) == 0);
            // A camera that comes back before anybody looks keeps its channel, another gets a new one.
            if (oneOf(2) == 0) lookForCameras();
        }
        lookForCameras();
    }
    void lookForCameras() {
        plugin->enumerateDevices();
        for (SoakCamera& camera : m_cameras) {
            const bool isThere = plugin->findChannelId(camera.id) != zelt::IfDAQPlugin::kNoChannel;
            EXPECT_EQ(isThere, camera.plugged);
            // The next one of that camera is a new channel.
            if (!isThere) camera.used = true;
        }
    }
    void chooseUsed() {
        for (SoakCamera& camera : m_cameras) {
            if (!camera.plugged) continue;
            camera.used = oneOf(4) != 0;
            use(plugin->findChannelId(camera.id), camera.used);
        }
    }
    void restart() {
        plugin->terminate();
        expectIdle(0);
        for (SoakCamera& camera : m_cameras) plug(camera, true);
        enumerate();
        for (SoakCamera& camera : m_cameras) camera.used = true;
        ++sums.restarts;
    }
    void lookAtEverything() {
        for (const std::uint32_t id : plugin->getChannelIds()) {
            for (const std::string& key : channel(id)->getKeys()) {
                channel(id)->getItem(key);
                channel(id)->getConstraints(key);
            }
        }
        aux();
        plugin_api::IfService* service = nullptr;
        EXPECT_TRUE(services->getService(
            boost::uuids::string_generator()("{A5C594EA-1C7F-41BF-A588-9AC316FB5973}"), &service));
        dynamic_cast<zelt::IfSystemTopologyService&>(*service).getTopology(
            0, [](void*, const char*, std::size_t) {}, nullptr);
    }

    void set(std::uint32_t id, const char* key, double value) {
        EXPECT_TRUE(channel(id)->setItem(key, config_items::ScalarConfigItem(value, "")))
            << key << ": " << lastMessage(id);
        ++sums.settings;
    }
    void configure(SoakCamera& camera) {
        const std::uint32_t id = plugin->findChannelId(camera.id);
        const bool triggered = oneOf(2) == 0;
        constexpr std::uint64_t kRates[] = {1, 2, 4, 5};
        camera.begin(id, {triggered, triggered ? m_pulses : kRates[oneOf(4)]});
        // The rate first: a camera refuses the fixed mode while its own rate is out of its reach.
        const auto setRate = [&] {
            if (text(id, config_keys::kCameraTriggerMode) != kFixed) return;
            set(id, config_keys::kCameraFrameSetting,
                static_cast<double>(triggered ? 1 : camera.rhythm.perSecond));
        };
        setRate();
        const std::string mode = triggered ? "GIGE/TriggerModeAux" : kFixed;
        EXPECT_TRUE(channel(id)->setItem(config_keys::kCameraTriggerMode,
                                         config_items::SingleValueConfigItem<std::string>(mode)))
            << lastMessage(id);
        set(id, "FrameWidth", oneOf(2) == 0 ? 32 : 64);
        set(id, "FrameHeight", oneOf(2) == 0 ? 4 : 8);
        set(id, "CAMERA/Exposure", static_cast<double>(100 + oneOf(10'000)));
        set(id, "CAMERA/Gain", static_cast<double>(oneOf(10)));
        setRate();
        plugin->setChannelSink(id, &camera.sink);
        plugin->setChannelSink(kSentFrames | id, &camera.sent);
        plugin->setChannelSink(kReceivedFrames | id, &camera.received);
    }

    void record() {
        m_running.clear();
        m_pulses = 1 + oneOf(2);
        aux().setSyncOutAuxFrequency(static_cast<std::int64_t>(m_pulses), 1);
        for (SoakCamera& camera : m_cameras) {
            if (!camera.plugged || !camera.used) continue;
            configure(camera);
            m_running.push_back(&camera);
        }
        start();
        m_begun = VmbSimTime();
        const VmbSimRhythm rhythm{m_pulses, 1, kSecond / 8, kMillisecond, 0};
        EXPECT_EQ(VmbSimDriveLine(nullptr, &rhythm), VmbErrorSuccess);
        runWithTrouble();
        end();
        for (SoakCamera* camera : m_running) settle(*camera);
        ++sums.recordings;
    }
    /// Frames get lost in the beginning, cables in the end, so that frames follow on whatever was lost.
    void runWithTrouble() {
        const std::uint64_t seconds = 20 + oneOf(60);
        for (std::uint64_t second = 0; second < seconds; ++second) {
            if (second < seconds / 2) spoilFrames();
            if (second == seconds - 4) pullCable();
            pass(kSecond);
            EXPECT_TRUE(plugin->processAcquisition());
        }
        // To the middle between two frames of any rhythm.
        pass(kSecond / 16);
        m_ended = VmbSimTime();
    }
    void spoilFrames() {
        // What was ordered before has happened by then.
        if (m_running.empty() || oneOf(8) != 0 || VmbSimTime() < m_calm) return;
        m_calm = VmbSimTime() + kLeastGap;
        SoakCamera& camera = *m_running[oneOf(m_running.size())];
        const auto count = static_cast<std::uint32_t>(1 + oneOf(3));
        switch (oneOf(3)) {
            case 0:
                VmbSimLoseFrames(camera.id.c_str(), count);
                camera.injected += count;
                break;
            case 1:
                VmbSimBreakFrames(camera.id.c_str(), count, -static_cast<VmbFrameStatus_t>(1 + oneOf(3)));
                camera.injected += count;
                break;
            default:
                VmbSimHiccup(camera.id.c_str(), (1 + oneOf(1'500)) * kMillisecond);
                camera.outOfReach = true;
                break;
        }
    }
    void pullCable() {
        if (m_running.empty() || oneOf(3) != 0) return;
        SoakCamera& camera = *m_running[oneOf(m_running.size())];
        pass(kSecond / 16);
        camera.unplugged = VmbSimTime();
        EXPECT_EQ(VmbSimUnplugCamera(camera.id.c_str()), VmbErrorSuccess);
        camera.plugged = false;
        ++sums.cables;
        pass(kSecond - kSecond / 16);
        EXPECT_EQ(lastMessage(camera.channel).find("is no longer connected") != std::string::npos, true);
    }
    void end() {
        EXPECT_EQ(VmbSimSilenceLine(nullptr), VmbErrorSuccess);
        for (const SoakCamera* camera : m_running) VmbSimHoldSensor(camera->id.c_str(), true);
        pass(kSecond);
        bool isOneGone = false;
        for (const SoakCamera* camera : m_running) isOneGone = isOneGone || camera->unplugged != 0;
        if (isOneGone) {
            EXPECT_ANY_THROW(plugin->stopAcquisition());
            EXPECT_TRUE(plugin->onAcquisitionFinished());
        } else {
            stop();
        }
        plugin->clearChannelSinks();
        for (const SoakCamera* camera : m_running) VmbSimHoldSensor(camera->id.c_str(), false);
    }
    /// Frames whose exposure began, from the rhythm alone.
    std::uint64_t produced(const SoakCamera& camera) const {
        const std::uint64_t first = m_begun + (camera.rhythm.triggered ? kSecond / 8 : 0);
        const std::uint64_t last = camera.unplugged != 0 ? camera.unplugged : m_ended;
        return last < first ? 0 : (last - first) / camera.rhythm.period() + 1;
    }
    void settle(SoakCamera& camera) {
        const std::uint64_t made = produced(camera);
        const std::uint64_t lost = camera.named();
        EXPECT_EQ(camera.sink.frames + lost, made) << describe(camera);
        EXPECT_EQ(camera.received.value, camera.sink.frames) << describe(camera);
        EXPECT_EQ(camera.sink.outOfOrder, 0u) << describe(camera);
        if (camera.outOfReach) {
            EXPECT_GE(lost, camera.injected) << describe(camera);
        } else {
            EXPECT_EQ(lost, camera.injected) << describe(camera);
        }
        sums.produced += made;
        sums.delivered += camera.sink.frames;
        sums.lost += lost;
        // The host looks for its cameras again when one has gone.
        if (camera.unplugged != 0) lookForCameras();
    }
    std::string describe(const SoakCamera& camera) const {
        return camera.id + (camera.rhythm.triggered ? " triggered " : " free ") +
               std::to_string(camera.rhythm.perSecond) + " Hz from " + std::to_string(m_begun) + " to " +
               std::to_string(m_ended) + ", unplugged at " + std::to_string(camera.unplugged) +
               ", injected " + std::to_string(camera.injected) +
               (camera.outOfReach ? ", out of reach once" : "");
    }

    std::mt19937_64 m_random{20261121};
    std::array<SoakCamera, kSoakCameras> m_cameras;
    std::vector<SoakCamera*> m_running;
    std::uint64_t m_pulses = 1;  ///< per second
    std::uint64_t m_calm = 0;
    std::uint64_t m_begun = 0;
    std::uint64_t m_ended = 0;
};

}  // namespace test_support
