#include "system_module.h"

#include <algorithm>
#include <cstring>

namespace simulator {

SystemModule::SystemModule(const LibraryContext& library, std::function<std::vector<std::string>()> plugged)
    : FeatureModule(library, ThreadRole::Discovery, true),
      m_library(library),
      m_clock(library.clock),
      m_plugged(std::move(plugged)),
      m_roundOver(library.clock),
      m_features(systemFeatureRows()) {}

SystemModule::~SystemModule() {
    stop();
}

void SystemModule::start(void* handle) {
    const Lock lock(m_mutex);
    m_startedAt = m_clock.now();
    m_found.clear();
    m_automatic = false;
    m_rounding = false;
    m_anyRoundOver = false;
    ++m_generation;
    events().start(handle);
    m_alive = true;
}

void SystemModule::stop() {
    {
        const Lock lock(m_mutex);
        m_alive = false;
    }
    m_roundOver.notify();
    events().stop();
}

std::vector<std::string> SystemModule::found() {
    Lock lock(m_mutex);
    // The discovery thread itself would wait for its own round.
    const bool mayWait = !events().isOwnThread();
    while (mayWait && m_alive && m_rounding && !m_anyRoundOver) m_roundOver.wait(lock);
    return m_found;
}

void SystemModule::onCabling() {
    const Lock lock(m_mutex);
    if (m_alive && m_automatic && !m_rounding) scan(false);
}

void SystemModule::onHiccup(Nanoseconds until) {
    onCabling();
    const Lock lock(m_mutex);
    if (m_alive) events().post({{}, [this] { onCabling(); }, until});
}

void SystemModule::onInterface(const std::string& event, const std::string& id) {
    const Lock lock(m_mutex);
    if (!m_alive || !m_automatic) return;
    post(kInterfaceNews, event, id);
    if (!m_rounding) scan(false);
}

void SystemModule::onControl(const std::string& event, const std::string& id) {
    const Lock lock(m_mutex);
    const bool known = std::find(m_found.begin(), m_found.end(), id) != m_found.end();
    if (m_alive && m_automatic && known) post(kCameraNews, event, id);
}

void SystemModule::raise(const std::string& event, const std::string& ident) {
    const Lock lock(m_mutex);
    post(kCameraNews, event, ident);
}

Result SystemModule::remove(const std::string& feature) {
    const Lock lock(m_mutex);
    return m_features.remove(feature);
}

Result SystemModule::force(const std::string& feature, const std::string& text) {
    const Lock lock(m_mutex);
    return m_features.force(feature, text);
}

void SystemModule::refresh(const Feature& feature) {
    if (std::strcmp(feature.row.name, "Elapsed") != 0) return;
    m_features.compute("Elapsed", static_cast<double>(m_clock.now() - m_startedAt) / 1e9);
}

Result SystemModule::execute(Lock& lock, const char* command) {
    if (std::strcmp(command, "GeVDiscoveryAllOnce") == 0) discoverOnce(lock);
    if (std::strcmp(command, "GeVDiscoveryAllAuto") == 0) beginAutomatic();
    if (std::strcmp(command, "GeVDiscoveryAllOff") == 0) {
        m_automatic = false;
        m_rounding = false;
        ++m_generation;
        m_roundOver.notify();
    }
    return Result::Success;
}

Nanoseconds SystemModule::roundLength() const {
    return m_features.integer("GeVDiscoveryAllDuration") * kMillisecond;
}

void SystemModule::beginAutomatic() {
    if (m_automatic) return;
    m_automatic = true;
    m_rounding = true;
    const std::uint64_t generation = ++m_generation;
    const auto endRound = [this, generation] {
        const Lock lock(m_mutex);
        if (generation != m_generation) return;
        m_rounding = false;
        m_anyRoundOver = true;
        scan(true);
        m_roundOver.notify();
    };
    events().post({{}, endRound, m_clock.now() + roundLength()});
}

void SystemModule::discoverOnce(Lock& lock) {
    if (currentThreadRole() != ThreadRole::Host) m_library.misuses.add(kWaitInCallback);
    const Nanoseconds end = m_clock.now() + roundLength();
    while (m_alive && m_clock.now() < end) m_roundOver.waitUntil(lock, end);
    if (!m_alive) return;
    m_anyRoundOver = true;
    scan(false);
    m_roundOver.notify();
}

void SystemModule::scan(bool announceAll) {
    const std::vector<std::string> plugged = m_plugged();
    const auto contains = [](const std::vector<std::string>& ids, const std::string& id) {
        return std::find(ids.begin(), ids.end(), id) != ids.end();
    };
    for (const std::string& id : m_found) {
        if (!contains(plugged, id)) post(kCameraNews, "Missing", id);
    }
    std::erase_if(m_found, [&](const std::string& id) { return !contains(plugged, id); });
    for (const std::string& id : plugged) {
        const bool known = contains(m_found, id);
        if (!known) m_found.push_back(id);
        if (!known || announceAll) post(kCameraNews, "Detected", id);
    }
}

void SystemModule::post(const News& news, const std::string& event, const std::string& ident) {
    events().post({{news.ident, news.event}, [this, news, event, ident] {
                       const Lock lock(m_mutex);
                       m_features.assign(news.ident, ident);
                       FeatureValue value = event;
                       // A text that is no entry is kept as it is.
                       if (m_features.accept(m_features.at(news.event), value) != Result::Success)
                           value = event;
                       m_features.assign(news.event, value);
                   }});
}

}  // namespace simulator
