/// Everything there is: the cameras of the scenario, what of them is open, faults and journal. One per
/// process. [any thread]
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "ancillary_module.h"
#include "camera.h"
#include "camera_session.h"
#include "event_player.h"
#include "faults.h"
#include "interface_module.h"
#include "journal.h"
#include "scenario.h"
#include "system_module.h"
#include "virtual_clock.h"

namespace simulator {

enum class OpenMode { Full, Read };

/// What a client has to give back.
struct Holdings {
    std::uint32_t cameras = 0;
    std::uint32_t interfaces = 0;
    std::uint32_t registrations = 0;
    std::uint32_t announced = 0;
};

/// What a list says about a camera.
struct CameraListing {
    const CameraRow* row = nullptr;
    const char* name = "";  ///< the one that a user gave it, or its model; stays valid
    bool mayControl = true;
};

class Simulation {
  public:
    /// Starts with the scenario of that name, in real time.
    Simulation(FrameOutlet& outlet, const std::string& scenario);

    /// Other when there is no scenario; the first time a sentence on the standard error stream says why. A
    /// second start changes nothing; one shutdown ends it.
    Result startup(void* systemHandle);
    /// Waits for running callbacks, closes everything. Does nothing on one of the library's own threads.
    void shutdown();
    bool isStarted() const { return m_started.load(); }

    const char* scenarioName() const;
    Result loadScenario(const std::string& name);
    /// Why the last one was not found or could not be read; empty when it could.
    std::string scenarioError() const;
    /// Changes the kind of time and loads the scenario afresh.
    Result useVirtualTime(bool on);
    /// InvalidCall in real time and on the library's own threads.
    Result advance(Nanoseconds span);
    /// As advance; Timeout when something was left to do after `span`.
    Result runUntilIdle(Nanoseconds span);

    CallFaults& callFaults() { return m_callFaults; }
    CableFaults& cableFaults() { return m_cableFaults; }
    Choices& choices() { return m_choices; }
    MisuseLog& misuses() { return m_misuses; }
    Journal& journal() { return m_journal; }
    SimulatorClock& clock() const { return *m_clock; }

    /// Cameras found by discovery; waits for its first round when that is under way.
    std::vector<CameraListing> foundCameras();
    /// For a camera that is plugged in, by any name that `open` takes.
    Result describe(const std::string& id, CameraListing& listing);
    /// By identifier, hardware address, network address or serial text.
    Result open(const std::string& id, OpenMode mode, void*& handle);
    Result close(void* handle);

    /// Interfaces with a cable.
    std::vector<const InterfaceRow*> interfaces();
    Result openInterface(const std::string& id, void*& handle);
    Result closeInterface(void* handle);
    void openAncillary(const ChunkData& data, void*& handle);
    Result closeAncillary(void* handle);

    /// Null for a handle that is unknown.
    std::shared_ptr<FeatureModule> module(void* handle);
    std::shared_ptr<CameraSession> session(void* handle);
    /// The open session of a camera, NotFound for an unknown id, DeviceNotOpen when there is none.
    Result session(const std::string& id, std::shared_ptr<CameraSession>& session);

    /// Position in the order in which the camera's frames were announced, 0 for none. A null handle means
    /// any camera.
    std::uint32_t frameNumber(void* handle, const void* record);

    Result plug(const std::string& id, bool plugged);
    /// The interface's cameras go and come with it.
    Result plugInterface(const std::string& id, bool plugged);
    /// Another program takes the camera, or gives it back. InvalidAccess while this one controls it.
    Result takeControl(const std::string& id, bool taken);
    Result raiseDiscovery(const std::string& event, const std::string& ident);
    /// A null id means the library's own features.
    Result removeFeature(const char* id, const std::string& feature);
    Result forceFeature(const char* id, const std::string& feature, const std::string& text);
    Result holdSensor(const std::string& id, bool hold);
    /// The random numbers of all cameras and lines.
    void seed(std::uint64_t seed);
    /// InvalidAccess while the camera acquires.
    Result replaceClock(const std::string& id, const OscillatorRow& oscillator);
    Result setScene(const std::string& id, const Scene& scene);
    /// The camera cannot be reached for so long.
    Result hiccup(const std::string& id, Nanoseconds span);
    /// What the cameras of an interface share.
    Result setLink(const std::string& interfaceId, const LinkRow& link);
    /// Does something with the line of one camera, or with every camera's for a null id.
    Result useLine(const char* id, const std::function<Result(LineInput&, Nanoseconds now)>& use);
    /// BadHandle; a handle that was closed is a misuse.
    Result unknownHandle(void* handle);
    /// Null for an unknown id.
    std::shared_ptr<FrameFaults> frameFaults(const std::string& id);
    void clearFaults();
    Result waitForEvents(Nanoseconds deadline);
    Holdings holdings();

  private:
    struct Link {
        const InterfaceRow* row = nullptr;
        std::shared_ptr<NetworkLink> network;
        bool plugged = true;
    };
    /// A place for a camera; without its cable, or its interface's, it has none.
    struct Slot {
        const CameraRow* row = nullptr;
        bool cabled = true;
        Nanoseconds goneUntil = 0;  // it cannot be reached before
        bool taken = false;         // another program controls it
        bool controlled = false;    // the session does
        std::set<std::string> removed;
        bool held = false;
        OscillatorRow oscillator;
        Scene scene;
        std::shared_ptr<FrameFaults> faults;
        std::shared_ptr<LineInput> line;
        std::shared_ptr<UserSets> userSets;
        std::shared_ptr<Camera> camera;
        std::shared_ptr<CameraSession> session;
    };
    using Lock = std::unique_lock<std::mutex>;

    void fill(const Scenario& scenario);
    Slot slotOf(const ScenarioCamera& camera) const;
    /// What the scenario's event does, with a line in the journal.
    void perform(const ScenarioEvent& event);
    /// With the mutex held.
    void* freshHandle();
    std::shared_ptr<Camera> powerUp(const Slot& slot) const;
    Slot* find(const std::string& id);
    Slot* findToOpen(const std::string& id);
    Link* findLink(const std::string& id);
    CameraListing listing(const Slot& slot) const;
    bool isReachable(const Slot& slot) const;
    /// Makes or takes away the slot's camera, whichever its cables ask for. The session that this cuts off.
    std::shared_ptr<CameraSession> settleCable(Slot& slot);
    std::shared_ptr<SystemModule> system() const;
    /// Cameras that are plugged in; with an interface's id only those on it.
    std::vector<std::string> pluggedIds(const std::string& interfaceId = {});
    std::vector<std::shared_ptr<InterfaceModule>> openInterfaces();
    std::vector<std::shared_ptr<CameraSession>> sessions();
    std::vector<std::shared_ptr<CameraSession>> closingSessions();

    Result startAgain();
    /// Of the hiccups under way; in no order.
    std::vector<Nanoseconds> endsOfHiccups();
    void endEvents();
    Result reload(const Scenario* scenario, SimulatorClock& clock);
    VirtualClock* drivenClock();

    LibraryContext library() { return {clock(), m_choices, m_misuses}; }

    Journal m_journal;
    MisuseLog m_misuses{m_journal};
    Choices m_choices;
    RealClock m_realClock;
    VirtualClock m_virtualClock;
    std::atomic<SimulatorClock*> m_clock{&m_realClock};
    FrameOutlet& m_outlet;
    std::atomic<bool> m_started{false};
    std::atomic<int> m_startups{0};
    std::uint64_t m_seed = 0;
    std::mutex m_lifecycle;  // start and shutdown, one at a time; held while they wait
    mutable std::mutex m_mutex;
    std::string m_scenarioError;
    bool m_errorTold = false;
    const Scenario* m_scenario = nullptr;
    std::vector<Link> m_links;
    std::vector<Slot> m_slots;
    std::map<void*, std::shared_ptr<CameraSession>> m_sessions;  // by handle
    std::map<void*, std::shared_ptr<InterfaceModule>> m_interfaces;
    std::map<void*, std::shared_ptr<AncillaryModule>> m_ancillaries;
    std::uintptr_t m_handles = 0;  // given out so far, none of them twice
    void* m_systemHandle = nullptr;
    bool m_eventful = false;  // from a start's first event to the end of the shutdown
    std::shared_ptr<SystemModule> m_system;
    std::shared_ptr<EventPlayer> m_player;
    CallFaults m_callFaults;
    CableFaults m_cableFaults;
};

/// Name of the environment variable that names the scenario to start with.
inline constexpr const char* kScenarioVariable = "VIMBAC_SIMULATOR_SCENARIO";

}  // namespace simulator
