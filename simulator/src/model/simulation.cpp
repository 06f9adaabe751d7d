#include "simulation.h"

#include <cstdio>
#include <utility>

#include "thread_role.h"

namespace simulator {
namespace {

// Handles are numbers in order of opening: what goes through all of them does so in the same order in each
// run. No system gives out memory there.
constexpr std::uintptr_t kFirstHandle = 0x7A00'0000'0000'0000;
constexpr std::uintptr_t kHandleStep = 16;

}  // namespace

Simulation::Simulation(FrameOutlet& outlet, const std::string& scenario) : m_outlet(outlet) {
    static const Scenario kNone;
    const FoundScenario found = findScenario(scenario);
    m_scenarioError = found.error;
    fill(found.scenario != nullptr ? *found.scenario : kNone);
    m_scenario = found.scenario;
}

void Simulation::fill(const Scenario& scenario) {
    m_seed = scenario.seed;
    m_scenario = &scenario;
    m_links.clear();
    for (const InterfaceRow& row : scenario.interfaces) {
        m_links.push_back({&row, std::make_shared<NetworkLink>(row.link), true});
    }
    m_slots.clear();
    for (const ScenarioCamera& camera : scenario.cameras) m_slots.push_back(slotOf(camera));
    m_system = std::make_shared<SystemModule>(library(), [this] { return pluggedIds(); });
    m_callFaults.clear();
    m_cableFaults.clear();
    m_choices.reset();
    for (const auto& [choice, option] : scenario.choices) m_choices.choose(choice, option);
    m_misuses.clear();
    m_journal.reset();
    m_player = std::make_shared<EventPlayer>(clock(), scenario.events,
                                             [this](const ScenarioEvent& event) { perform(event); });
}

Simulation::Slot Simulation::slotOf(const ScenarioCamera& camera) const {
    Slot slot;
    slot.row = &camera.row;
    slot.cabled = camera.plugged;
    slot.taken = camera.taken;
    slot.scene = camera.scene;
    slot.faults = std::make_shared<FrameFaults>();
    slot.line = std::make_shared<LineInput>();
    // One source drives all lines: its jitter is the same for every camera.
    slot.line->setSeed(m_seed);
    slot.line->disturbAlways(camera.pulseFaults);
    slot.oscillator = camera.row.oscillator;
    slot.oscillator.seed = m_seed ^ camera.row.macAddress();
    slot.userSets = std::make_shared<UserSets>();
    if (slot.cabled) slot.camera = powerUp(slot);
    return slot;
}

std::shared_ptr<Camera> Simulation::powerUp(const Slot& slot) const {
    auto camera = std::make_shared<Camera>(*slot.row, slot.oscillator, clock().now(), slot.userSets);
    camera->setScene(slot.scene);
    for (const std::string& feature : slot.removed) camera->features().remove(feature);
    return camera;
}

Result Simulation::startAgain() {
    if (m_choices.option(Choice::RepeatedStartup) == 2) return Result::InvalidCall;
    ++m_startups;
    return Result::Success;
}

Result Simulation::startup(void* systemHandle) {
    if (isStarted()) return startAgain();
    // A callback must not wait for the shutdown that waits for it.
    if (currentThreadRole() != ThreadRole::Host) return Result::InvalidCall;
    const std::lock_guard lifecycle(m_lifecycle);
    if (isStarted()) return startAgain();
    if (m_scenario == nullptr) {
        const bool told = std::exchange(m_errorTold, true);
        if (!told) std::fprintf(stderr, "%s: %s\n", kScenarioVariable, scenarioError().c_str());
        return Result::Other;
    }
    {
        const Lock lock(m_mutex);
        m_systemHandle = systemHandle;
        m_eventful = true;
    }
    try {
        m_player->start();
        m_system->start(systemHandle);
    } catch (...) {
        m_player->stop();
        endEvents();
        throw;
    }
    // Those that began with the player were nothing to a system that was not there yet.
    for (const Nanoseconds end : endsOfHiccups()) m_system->onHiccup(end);
    m_startups = 1;
    m_started = true;
    return Result::Success;
}

void Simulation::shutdown() {
    if (currentThreadRole() != ThreadRole::Host) return;
    const std::lock_guard lifecycle(m_lifecycle);
    if (!isStarted()) return;
    if (m_choices.option(Choice::RepeatedStartup) == 1 && --m_startups > 0) return;
    m_started = false;
    m_player->stop();
    m_system->stop();
    for (const auto& session : sessions()) session->close();
    // Those that another thread is closing.
    for (const auto& session : closingSessions()) session->close();
    for (const auto& module : openInterfaces()) module->close();
    endEvents();
    const Lock lock(m_mutex);
    m_sessions.clear();
    m_interfaces.clear();
    m_ancillaries.clear();
    for (Slot& slot : m_slots) slot.session.reset();
}

const char* Simulation::scenarioName() const {
    const Lock lock(m_mutex);
    return m_scenario != nullptr ? m_scenario->name : "";
}

Result Simulation::loadScenario(const std::string& name) {
    const FoundScenario found = findScenario(name);
    {
        const Lock lock(m_mutex);
        m_scenarioError = found.error;
    }
    return found.scenario != nullptr ? reload(found.scenario, clock()) : found.result;
}

std::string Simulation::scenarioError() const {
    const Lock lock(m_mutex);
    return m_scenarioError;
}

Result Simulation::useVirtualTime(bool on) {
    SimulatorClock& clock = on ? static_cast<SimulatorClock&>(m_virtualClock) : m_realClock;
    const Scenario* scenario = nullptr;
    {
        const Lock lock(m_mutex);
        scenario = m_scenario;
    }
    return scenario != nullptr ? reload(scenario, clock) : Result::NotFound;
}

Result Simulation::reload(const Scenario* scenario, SimulatorClock& clock) {
    if (isStarted() || currentThreadRole() != ThreadRole::Host) return Result::InvalidCall;
    const std::lock_guard lifecycle(m_lifecycle);
    if (isStarted()) return Result::InvalidCall;
    // Dies behind the lock, since it takes its own, which is taken before this one elsewhere.
    const std::shared_ptr<SystemModule> former = system();
    const Lock lock(m_mutex);
    m_virtualClock.restart();
    m_clock = &clock;
    fill(*scenario);
    return Result::Success;
}

VirtualClock* Simulation::drivenClock() {
    const bool driven = m_clock == &m_virtualClock && currentThreadRole() == ThreadRole::Host;
    return driven ? &m_virtualClock : nullptr;
}

Result Simulation::advance(Nanoseconds span) {
    VirtualClock* clock = drivenClock();
    if (clock == nullptr) return Result::InvalidCall;
    clock->advance(span);
    return Result::Success;
}

Result Simulation::runUntilIdle(Nanoseconds span) {
    VirtualClock* clock = drivenClock();
    if (clock == nullptr) return Result::InvalidCall;
    return clock->runUntilIdle(span) ? Result::Success : Result::Timeout;
}

std::vector<CameraListing> Simulation::foundCameras() {
    std::vector<CameraListing> cameras;
    const std::vector<std::string> ids = system()->found();
    const Lock lock(m_mutex);
    for (const std::string& id : ids) {
        if (const Slot* slot = find(id)) cameras.push_back(listing(*slot));
    }
    return cameras;
}

Result Simulation::describe(const std::string& id, CameraListing& listing) {
    const Lock lock(m_mutex);
    const Slot* slot = findToOpen(id);
    if (slot == nullptr || !isReachable(*slot)) return Result::NotFound;
    listing = this->listing(*slot);
    return Result::Success;
}

CameraListing Simulation::listing(const Slot& slot) const {
    const bool controlled = slot.taken || (slot.session != nullptr && slot.controlled);
    std::string name;
    if (slot.camera != nullptr) {
        const Lock lock(slot.camera->mutex());
        name = slot.camera->userName();
    }
    return {slot.row, name.empty() ? slot.row->model : keptText(name), !controlled};
}

Result Simulation::open(const std::string& id, OpenMode mode, void*& handle) {
    const Lock lock(m_mutex);
    Slot* slot = findToOpen(id);
    if (slot == nullptr || !isReachable(*slot)) return Result::NotFound;
    if (slot->session != nullptr) return Result::InvalidAccess;
    if (slot->taken && mode == OpenMode::Full) return Result::InvalidAccess;
    const auto onStart = [player = m_player, row = slot->row] { player->noteStart(row->id); };
    const auto network = findLink(slot->row->interfaceId)->network;
    const Surroundings surroundings{library(), m_outlet, slot->faults, slot->line, network, onStart};
    auto session = std::make_shared<CameraSession>(surroundings, slot->camera, mode == OpenMode::Full);
    void* const fresh = freshHandle();
    session->hold(slot->held);
    session->start(fresh);
    m_sessions.emplace(fresh, session);
    slot->session = std::move(session);
    slot->controlled = mode == OpenMode::Full;
    handle = fresh;
    return Result::Success;
}

Result Simulation::close(void* handle) {
    std::shared_ptr<CameraSession> session = this->session(handle);
    if (session == nullptr) return unknownHandle(handle);
    if (currentThreadRole() == ThreadRole::Frame || session->isOwnThread()) return Result::InvalidCall;
    {
        const Lock lock(m_mutex);
        if (m_sessions.erase(handle) == 0) return Result::BadHandle;
    }
    const bool wasAlive = session->isAlive();
    session->close();
    const Lock lock(m_mutex);
    for (Slot& slot : m_slots) {
        if (slot.session == session) slot.session.reset();
    }
    return wasAlive ? Result::Success : Result::BadHandle;
}

std::shared_ptr<SystemModule> Simulation::system() const {
    const Lock lock(m_mutex);
    return m_system;
}

std::shared_ptr<FeatureModule> Simulation::module(void* handle) {
    const Lock lock(m_mutex);
    if (handle != nullptr && handle == m_systemHandle) return m_system;
    if (const auto found = m_sessions.find(handle); found != m_sessions.end()) return found->second;
    if (const auto found = m_interfaces.find(handle); found != m_interfaces.end()) return found->second;
    const auto found = m_ancillaries.find(handle);
    return found != m_ancillaries.end() ? found->second : nullptr;
}

std::shared_ptr<CameraSession> Simulation::session(void* handle) {
    const Lock lock(m_mutex);
    const auto found = m_sessions.find(handle);
    return found != m_sessions.end() ? found->second : nullptr;
}

Result Simulation::session(const std::string& id, std::shared_ptr<CameraSession>& session) {
    const Lock lock(m_mutex);
    const Slot* slot = find(id);
    if (slot == nullptr) return Result::NotFound;
    session = slot->session;
    return session != nullptr ? Result::Success : Result::DeviceNotOpen;
}

std::uint32_t Simulation::frameNumber(void* handle, const void* record) {
    for (const auto& session : sessions()) {
        const bool asked = handle == nullptr || handle == session->handle();
        const std::uint32_t number = asked ? session->frameNumber(record) : 0;
        if (number != 0) return number;
    }
    return 0;
}

Simulation::Slot* Simulation::find(const std::string& id) {
    for (Slot& slot : m_slots) {
        if (id == slot.row->id) return &slot;
    }
    return nullptr;
}

Simulation::Slot* Simulation::findToOpen(const std::string& id) {
    for (Slot& slot : m_slots) {
        const CameraRow& row = *slot.row;
        if (id == row.serial || "DEV_" + id == row.id || id == ipText(row.ipAddress)) return &slot;
    }
    return find(id);
}

std::vector<std::shared_ptr<CameraSession>> Simulation::closingSessions() {
    const Lock lock(m_mutex);
    std::vector<std::shared_ptr<CameraSession>> all;
    for (const Slot& slot : m_slots) {
        if (slot.session != nullptr) all.push_back(slot.session);
    }
    return all;
}

std::vector<std::shared_ptr<CameraSession>> Simulation::sessions() {
    const Lock lock(m_mutex);
    std::vector<std::shared_ptr<CameraSession>> all;
    for (const auto& [handle, session] : m_sessions) all.push_back(session);
    return all;
}

void* Simulation::freshHandle() {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a number that looks like an address to a client
    return reinterpret_cast<void*>(kFirstHandle + ++m_handles * kHandleStep);
}

Result Simulation::unknownHandle(void* handle) {
    const Lock lock(m_mutex);
    const auto number = reinterpret_cast<std::uintptr_t>(handle);
    const bool isOpen =
        m_sessions.count(handle) + m_interfaces.count(handle) + m_ancillaries.count(handle) > 0;
    const bool wasGiven = number > kFirstHandle && number <= kFirstHandle + m_handles * kHandleStep &&
                          (number - kFirstHandle) % kHandleStep == 0;
    if (wasGiven && !isOpen) m_misuses.add("the handle was closed before");
    return Result::BadHandle;
}

Holdings Simulation::holdings() {
    Holdings held;
    held.registrations = system()->events().registrationCount();
    for (const auto& session : sessions()) {
        std::uint32_t announced = 0;
        std::uint32_t queued = 0;
        session->counts(announced, queued);
        ++held.cameras;
        held.announced += announced;
        held.registrations += session->events().registrationCount();
    }
    for (const auto& module : openInterfaces()) {
        ++held.interfaces;
        held.registrations += module->events().registrationCount();
    }
    return held;
}

Result Simulation::waitForEvents(Nanoseconds deadline) {
    if (currentThreadRole() != ThreadRole::Host) return Result::InvalidCall;
    bool idle = system()->events().waitUntilIdle(deadline);
    for (const auto& session : sessions()) idle = session->waitForEvents(deadline) && idle;
    for (const auto& module : openInterfaces()) idle = module->events().waitUntilIdle(deadline) && idle;
    return idle ? Result::Success : Result::Timeout;
}

}  // namespace simulator
