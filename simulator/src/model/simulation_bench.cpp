// What a test does to the cameras from outside: features, light, clocks, lines and faults.
#include <string_view>

#include "simulation.h"

namespace simulator {

Result Simulation::raiseDiscovery(const std::string& event, const std::string& ident) {
    if (!isStarted()) return Result::ApiNotStarted;
    system()->raise(event, ident);
    return Result::Success;
}

Result Simulation::removeFeature(const char* id, const std::string& feature) {
    if (id == nullptr) return system()->remove(feature);
    const Lock lock(m_mutex);
    Slot* slot = find(id);
    if (slot == nullptr) return Result::NotFound;
    const std::shared_ptr<Camera> camera = slot->camera != nullptr ? slot->camera : powerUp(*slot);
    const Lock cameraLock(camera->mutex());
    const Result removed = camera->features().remove(feature);
    if (removed == Result::Success) slot->removed.insert(feature);
    return removed;
}

Result Simulation::forceFeature(const char* id, const std::string& feature, const std::string& text) {
    if (id == nullptr) return system()->force(feature, text);
    const Lock lock(m_mutex);
    const Slot* slot = find(id);
    if (slot == nullptr || slot->camera == nullptr) return Result::NotFound;
    {
        const Lock cameraLock(slot->camera->mutex());
        const Result forced = slot->camera->features().force(feature, text);
        if (forced != Result::Success) return forced;
        slot->camera->settle();
    }
    if (slot->session != nullptr) slot->session->settle();
    return Result::Success;
}

Result Simulation::holdSensor(const std::string& id, bool hold) {
    const Lock lock(m_mutex);
    Slot* slot = find(id);
    if (slot == nullptr) return Result::NotFound;
    slot->held = hold;
    if (slot->session != nullptr) slot->session->hold(hold);
    return Result::Success;
}

void Simulation::perform(const ScenarioEvent& event) {
    const Result result = event.act(*this);
    if (!m_journal.isOn()) return;
    m_journal.append("[scenario] " + event.sentence + " = " + std::to_string(static_cast<int>(result)));
}

void Simulation::seed(std::uint64_t seed) {
    const Lock lock(m_mutex);
    m_seed = seed;
    for (Slot& slot : m_slots) {
        // One source drives all lines: its jitter is the same for every camera.
        slot.line->setSeed(seed);
        slot.oscillator.seed = seed ^ slot.row->macAddress();
        if (slot.camera == nullptr) continue;
        const Lock cameraLock(slot.camera->mutex());
        slot.camera->seedClock(slot.oscillator.seed);
    }
}

Result Simulation::replaceClock(const std::string& id, const OscillatorRow& oscillator) {
    const Lock lock(m_mutex);
    Slot* slot = find(id);
    if (slot == nullptr) return Result::NotFound;
    OscillatorRow seeded = oscillator;
    seeded.seed = slot->oscillator.seed;
    if (slot->camera != nullptr) {
        const Lock cameraLock(slot->camera->mutex());
        if (slot->camera->isAcquiring()) return Result::InvalidAccess;
        slot->camera->replaceClock(seeded, clock().now());
    }
    slot->oscillator = seeded;
    return Result::Success;
}

Result Simulation::setScene(const std::string& id, const Scene& scene) {
    const Lock lock(m_mutex);
    Slot* slot = find(id);
    if (slot == nullptr) return Result::NotFound;
    slot->scene = scene;
    if (slot->camera == nullptr) return Result::Success;
    const Lock cameraLock(slot->camera->mutex());
    slot->camera->setScene(scene);
    return Result::Success;
}

Result Simulation::useLine(const char* id, const std::function<Result(LineInput&, Nanoseconds)>& use) {
    const Lock lock(m_mutex);
    const Nanoseconds now = clock().now();
    Result result = id == nullptr ? Result::Success : Result::NotFound;
    for (Slot& slot : m_slots) {
        if (id != nullptr && std::string_view(id) != slot.row->id) continue;
        result = use(*slot.line, now);
        if (result != Result::Success) return result;
        if (slot.session != nullptr) slot.session->onLine();
    }
    return result;
}

std::shared_ptr<FrameFaults> Simulation::frameFaults(const std::string& id) {
    const Lock lock(m_mutex);
    const Slot* slot = find(id);
    return slot != nullptr ? slot->faults : nullptr;
}

void Simulation::clearFaults() {
    m_callFaults.clear();
    m_cableFaults.clear();
    const Lock lock(m_mutex);
    for (Slot& slot : m_slots) slot.faults->clear();
}

}  // namespace simulator
