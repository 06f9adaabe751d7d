/// The library itself as a client sees it: the system features, and the discovery of cameras on a thread of
/// its own. [any thread]
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "camera_row.h"
#include "feature_module.h"

namespace simulator {

class SystemModule : public FeatureModule {
  public:
    /// `plugged` names the cameras that answer to discovery now.
    SystemModule(const LibraryContext& library, std::function<std::vector<std::string>()> plugged);
    ~SystemModule() override;

    /// Starts the discovery thread; callbacks get `handle`. Throws when the system refuses a thread.
    void start(void* handle);
    /// Waits for a running callback and ends the thread. Not on that thread.
    void stop();

    const char* name() const override { return "system"; }
    bool isAlive() const override { return m_alive.load(); }

    /// Cameras found so far, in order of discovery. Waits for the first round when it is under way.
    std::vector<std::string> found();
    /// A camera came or went.
    void onCabling();
    /// A camera cannot be reached until then.
    void onHiccup(Nanoseconds until);
    /// An interface came or went, and its cameras with it.
    void onInterface(const std::string& event, const std::string& id);
    /// Another program took a camera or gave it back.
    void onControl(const std::string& event, const std::string& id);
    void raise(const std::string& event, const std::string& ident);
    Result force(const std::string& feature, const std::string& text);
    Result remove(const std::string& feature);

  protected:
    std::mutex& mutex() override { return m_mutex; }
    FeatureTable& features() override { return m_features; }
    void refresh(const Feature& feature) override;
    Result execute(Lock& lock, const char* command) override;
    const char* absentText() const override { return nullptr; }

  private:
    /// Compares what is found with what is plugged in and raises an event for each difference, or also for
    /// every camera that stays.
    void scan(bool announceAll);
    /// Names of the features that tell of one kind of device.
    struct News {
        const char* ident;
        const char* event;
    };
    static constexpr News kCameraNews{"DiscoveryCameraIdent", "DiscoveryCameraEvent"};
    static constexpr News kInterfaceNews{"DiscoveryInterfaceIdent", "DiscoveryInterfaceEvent"};

    void post(const News& news, const std::string& event, const std::string& ident);
    void beginAutomatic();
    void discoverOnce(Lock& lock);
    Nanoseconds roundLength() const;

    const LibraryContext m_library;
    SimulatorClock& m_clock;
    const std::function<std::vector<std::string>()> m_plugged;
    std::atomic<bool> m_alive{false};
    std::mutex m_mutex;
    Condition m_roundOver;
    FeatureTable m_features;
    Nanoseconds m_startedAt = 0;
    std::vector<std::string> m_found;
    bool m_automatic = false;
    bool m_rounding = false;  // the first round of automatic discovery is under way
    bool m_anyRoundOver = false;
    std::uint64_t m_generation = 0;  // of automatic discovery
};

}  // namespace simulator
