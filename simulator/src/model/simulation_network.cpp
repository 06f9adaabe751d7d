// Cables, interfaces, and who controls a camera.
#include <algorithm>

#include "simulation.h"

namespace simulator {

Simulation::Link* Simulation::findLink(const std::string& id) {
    for (Link& link : m_links) {
        if (id == link.row->id) return &link;
    }
    return nullptr;
}

bool Simulation::isReachable(const Slot& slot) const {
    return slot.camera != nullptr && slot.goneUntil <= clock().now();
}

std::vector<std::string> Simulation::pluggedIds(const std::string& interfaceId) {
    const Lock lock(m_mutex);
    std::vector<std::string> ids;
    for (const Slot& slot : m_slots) {
        const bool asked = interfaceId.empty() || interfaceId == slot.row->interfaceId;
        if (asked && isReachable(slot)) ids.emplace_back(slot.row->id);
    }
    return ids;
}

std::shared_ptr<CameraSession> Simulation::settleCable(Slot& slot) {
    const Link* link = findLink(slot.row->interfaceId);
    const bool plugged = slot.cabled && link != nullptr && link->plugged;
    if (plugged == (slot.camera != nullptr)) return nullptr;
    slot.camera = plugged ? powerUp(slot) : nullptr;
    return std::exchange(slot.session, nullptr);
}

Result Simulation::plug(const std::string& id, bool plugged) {
    std::shared_ptr<CameraSession> cut;
    {
        const Lock lock(m_mutex);
        Slot* slot = find(id);
        if (slot == nullptr) return Result::NotFound;
        if (plugged == slot->cabled) return Result::Success;
        slot->cabled = plugged;
        cut = settleCable(*slot);
    }
    if (cut != nullptr) cut->disconnect();
    system()->onCabling();
    return Result::Success;
}

Result Simulation::plugInterface(const std::string& id, bool plugged) {
    std::vector<std::shared_ptr<CameraSession>> cut;
    {
        const Lock lock(m_mutex);
        Link* link = findLink(id);
        if (link == nullptr) return Result::NotFound;
        if (plugged == link->plugged) return Result::Success;
        link->plugged = plugged;
        for (Slot& slot : m_slots) {
            if (auto session = settleCable(slot)) cut.push_back(std::move(session));
        }
        for (const auto& [handle, module] : m_interfaces) {
            if (&module->row() == link->row) module->disconnect();
        }
    }
    for (const auto& session : cut) session->disconnect();
    system()->onInterface(plugged ? "Detected" : "Missing", id);
    return Result::Success;
}

Result Simulation::hiccup(const std::string& id, Nanoseconds span) {
    const Nanoseconds until = clock().now() + span;
    {
        const Lock lock(m_mutex);
        Slot* slot = find(id);
        if (slot == nullptr) return Result::NotFound;
        if (!m_eventful) return Result::ApiNotStarted;
        if (slot->camera == nullptr) return Result::Success;
        slot->goneUntil = std::max(slot->goneUntil, until);
        if (slot->session != nullptr) slot->session->cut(until);
    }
    system()->onHiccup(until);
    return Result::Success;
}

std::vector<Nanoseconds> Simulation::endsOfHiccups() {
    const Lock lock(m_mutex);
    std::vector<Nanoseconds> ends;
    for (const Slot& slot : m_slots) {
        if (!isReachable(slot) && slot.camera != nullptr) ends.push_back(slot.goneUntil);
    }
    return ends;
}

void Simulation::endEvents() {
    const Lock lock(m_mutex);
    m_eventful = false;
    for (Slot& slot : m_slots) slot.goneUntil = 0;
}

Result Simulation::setLink(const std::string& interfaceId, const LinkRow& link) {
    const Lock lock(m_mutex);
    const Link* known = findLink(interfaceId);
    if (known == nullptr) return Result::NotFound;
    for (const Slot& slot : m_slots) {
        const bool concerned = slot.session != nullptr && interfaceId == slot.row->interfaceId;
        if (concerned) slot.session->onNetworkChanging();
    }
    known->network->set(link);
    return Result::Success;
}

Result Simulation::takeControl(const std::string& id, bool taken) {
    {
        const Lock lock(m_mutex);
        Slot* slot = find(id);
        if (slot == nullptr) return Result::NotFound;
        if (slot->session != nullptr && slot->controlled) return Result::InvalidAccess;
        if (taken == slot->taken) return Result::Success;
        slot->taken = taken;
    }
    system()->onControl(taken ? "Unreachable" : "Reachable", id);
    return Result::Success;
}

std::vector<const InterfaceRow*> Simulation::interfaces() {
    const Lock lock(m_mutex);
    std::vector<const InterfaceRow*> rows;
    for (const Link& link : m_links) {
        if (link.plugged) rows.push_back(link.row);
    }
    return rows;
}

std::vector<std::shared_ptr<InterfaceModule>> Simulation::openInterfaces() {
    const Lock lock(m_mutex);
    std::vector<std::shared_ptr<InterfaceModule>> all;
    for (const auto& [handle, module] : m_interfaces) all.push_back(module);
    return all;
}

Result Simulation::openInterface(const std::string& id, void*& handle) {
    const std::vector<std::string> devices = pluggedIds(id);
    const Lock lock(m_mutex);
    const Link* link = findLink(id);
    if (link == nullptr || !link->plugged) return Result::NotFound;
    auto module = std::make_shared<InterfaceModule>(library(), *link->row, devices,
                                                    [this, id] { return pluggedIds(id); });
    void* const fresh = freshHandle();
    module->start(fresh);
    m_interfaces.emplace(fresh, std::move(module));
    handle = fresh;
    return Result::Success;
}

Result Simulation::closeInterface(void* handle) {
    if (this->module(handle) == nullptr) return unknownHandle(handle);
    std::shared_ptr<InterfaceModule> module;
    {
        const Lock lock(m_mutex);
        const auto found = m_interfaces.find(handle);
        if (found == m_interfaces.end()) return Result::BadHandle;
        if (found->second->events().isOwnThread()) return Result::InvalidCall;
        module = std::move(found->second);
        m_interfaces.erase(found);
    }
    const bool wasAlive = module->isAlive();
    module->close();
    return wasAlive ? Result::Success : Result::BadHandle;
}

void Simulation::openAncillary(const ChunkData& data, void*& handle) {
    const Lock lock(m_mutex);
    void* const fresh = freshHandle();
    m_ancillaries.emplace(fresh, std::make_shared<AncillaryModule>(library(), data));
    handle = fresh;
}

Result Simulation::closeAncillary(void* handle) {
    if (this->module(handle) == nullptr) return unknownHandle(handle);
    // Dies behind the lock.
    std::shared_ptr<AncillaryModule> module;
    const Lock lock(m_mutex);
    const auto found = m_ancillaries.find(handle);
    if (found == m_ancillaries.end()) return Result::BadHandle;
    module = std::move(found->second);
    m_ancillaries.erase(found);
    return Result::Success;
}

}  // namespace simulator
