/// Everything there is: the cameras of the scenario, what of them is open, faults and journal. One per
/// process. [any thread]
#pragma once

#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "camera.h"
#include "camera_session.h"
#include "faults.h"
#include "journal.h"
#include "scenario.h"
#include "system_module.h"
#include "virtual_clock.h"

namespace simulator {

enum class OpenMode { Full, Read };

class Simulation {
  public:
    /// Starts with the scenario of that name, in real time.
    Simulation(FrameOutlet& outlet, const std::string& scenario);

    /// Other, after a sentence on the standard error stream, when the scenario is unknown. A second start
    /// changes nothing; one shutdown ends it.
    Result startup(void* systemHandle);
    /// Waits for running callbacks, closes everything. Does nothing on one of the library's own threads.
    void shutdown();
    bool isStarted() const { return m_started.load(); }

    const char* scenarioName() const;
    Result loadScenario(const std::string& name);
    /// Changes the kind of time and loads the scenario afresh.
    Result useVirtualTime(bool on);
    /// InvalidCall in real time and on the library's own threads.
    Result advance(Nanoseconds span);
    /// As advance; Timeout when something was left to do after `span`.
    Result runUntilIdle(Nanoseconds span);

    CallFaults& callFaults() { return m_callFaults; }
    Journal& journal() { return m_journal; }
    SimulatorClock& clock() const { return *m_clock; }

    /// Cameras found by discovery; waits for its first round when that is under way.
    std::vector<const CameraRow*> foundCameras();
    Result open(const std::string& id, OpenMode mode, void*& handle);
    Result close(void* handle);

    /// Null for a handle that is unknown.
    std::shared_ptr<FeatureModule> module(void* handle);
    std::shared_ptr<CameraSession> session(void* handle);
    /// The open session of a camera, NotFound for an unknown id, DeviceNotOpen when there is none.
    Result session(const std::string& id, std::shared_ptr<CameraSession>& session);

    Result plug(const std::string& id, bool plugged);
    Result raiseDiscovery(const std::string& event, const std::string& ident);
    /// A null id means the library's own features.
    Result removeFeature(const char* id, const std::string& feature);
    Result forceFeature(const char* id, const std::string& feature, const std::string& text);
    Result holdSensor(const std::string& id, bool hold);
    /// Null for an unknown id.
    std::shared_ptr<FrameFaults> frameFaults(const std::string& id);
    void clearFaults();
    Result waitForEvents(Nanoseconds deadline);

  private:
    /// A place for a camera; without cable it has none.
    struct Slot {
        const CameraRow* row = nullptr;
        std::set<std::string> removed;
        bool held = false;
        std::shared_ptr<FrameFaults> faults;
        std::shared_ptr<Camera> camera;
        std::shared_ptr<CameraSession> session;
    };
    using Lock = std::unique_lock<std::mutex>;

    void fill(const Scenario& scenario);
    std::shared_ptr<Camera> powerUp(const Slot& slot) const;
    Slot* find(const std::string& id);
    Slot* findToOpen(const std::string& id);
    std::shared_ptr<SystemModule> system() const;
    std::vector<std::string> pluggedIds();
    std::vector<std::shared_ptr<CameraSession>> sessions();

    Result reload(const Scenario* scenario, SimulatorClock& clock);
    VirtualClock* drivenClock();

    RealClock m_realClock;
    VirtualClock m_virtualClock;
    std::atomic<SimulatorClock*> m_clock{&m_realClock};
    FrameOutlet& m_outlet;
    std::atomic<bool> m_started{false};
    std::mutex m_lifecycle;  // start and shutdown, one at a time; held while they wait
    mutable std::mutex m_mutex;
    std::string m_unknownScenario;
    const Scenario* m_scenario = nullptr;
    std::vector<Slot> m_slots;
    std::map<void*, std::shared_ptr<CameraSession>> m_sessions;  // by handle
    std::deque<char> m_handles;  // their addresses are the handles, none of them given out twice
    void* m_systemHandle = nullptr;
    std::shared_ptr<SystemModule> m_system;
    CallFaults m_callFaults;
    Journal m_journal;
};

/// Name of the environment variable that names the scenario to start with.
inline constexpr const char* kScenarioVariable = "VIMBAC_SIMULATOR_SCENARIO";

}  // namespace simulator
