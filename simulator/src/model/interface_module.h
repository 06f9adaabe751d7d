/// An interface of the host that a client has open: which cameras are on it. [any thread]
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "camera_row.h"
#include "feature_module.h"

namespace simulator {

class InterfaceModule : public FeatureModule {
  public:
    using Devices = std::vector<std::string>;

    /// `devices` names the cameras that are plugged in now, `current` the same for later.
    InterfaceModule(const LibraryContext& library, const InterfaceRow& row, Devices devices,
                    std::function<Devices()> current);
    ~InterfaceModule() override;

    /// Starts the event thread; callbacks get `handle`. Throws when the system refuses a thread.
    void start(void* handle) { events().start(handle); }
    /// The interface lost its cable. Does not wait.
    void disconnect() { m_alive = false; }
    /// Waits for a running callback and ends the thread. Not on that thread.
    void close();

    const InterfaceRow& row() const { return m_row; }
    const char* name() const override { return m_row.id; }
    bool isAlive() const override { return m_alive.load(); }

  protected:
    std::mutex& mutex() override { return m_mutex; }
    FeatureTable& features() override { return m_features; }
    void onChanged(const Feature&) override { settle(); }
    Result execute(Lock& lock, const char* command) override;

  private:
    void settle();

    const InterfaceRow& m_row;
    const std::function<Devices()> m_current;
    std::atomic<bool> m_alive{true};
    std::mutex m_mutex;
    FeatureTable m_features;
    Devices m_devices;
};

}  // namespace simulator
