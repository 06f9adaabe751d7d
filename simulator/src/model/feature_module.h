/// Whatever has features and a handle: an open camera, or the library itself. Checks what a client may do in
/// one order: is it there, name, type, context, access, value. [any thread]
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "event_dispatcher.h"
#include "feature_table.h"
#include "result.h"

namespace simulator {

/// What a client learns about a feature.
struct FeatureFacts {
    const FeatureRow* row = nullptr;
    bool selects = false;  ///< other features depend on its value
};

class FeatureModule {
  public:
    virtual ~FeatureModule() = default;
    FeatureModule(const FeatureModule&) = delete;
    FeatureModule& operator=(const FeatureModule&) = delete;

    /// Camera id, or "system".
    virtual const char* name() const = 0;
    /// False once the device is gone or the handle closed.
    virtual bool isAlive() const = 0;

    Result list(std::vector<FeatureFacts>& features);
    Result describe(const char* name, FeatureFacts& facts);
    Result access(const char* name, bool& readable, bool& writable);

    Result read(const char* name, FeatureType type, FeatureValue& value);
    /// The entry's name; a text of the library that stays valid.
    Result readEntry(const char* name, const char*& entry);
    Result write(const char* name, FeatureType type, FeatureValue value);
    Result intRange(const char* name, IntRange& range);
    Result floatRange(const char* name, FloatRange& range);
    Result entries(const char* name, std::vector<EnumEntry>& entries);
    Result run(const char* name);
    Result isDone(const char* name, bool& done);

    /// NotFound for an unknown feature.
    Result registerInvalidation(const char* name, InvalidationCallback callback, void* context);
    Result unregisterInvalidation(const char* name, InvalidationCallback callback);
    EventDispatcher& events() { return m_events; }
    const EventDispatcher& events() const { return m_events; }

  protected:
    using Lock = std::unique_lock<std::mutex>;

    FeatureModule(SimulatorClock& clock, ThreadRole eventThread, bool writable)
        : m_writable(writable), m_events(clock, eventThread, [this] { onDelivered(); }) {}

    virtual std::mutex& mutex() = 0;
    virtual FeatureTable& features() = 0;
    /// Hooks, called with the mutex held.
    virtual bool isLocked(const Feature&) const { return false; }
    virtual void refresh(const Feature&) {}
    virtual void round(const Feature&, FeatureValue&) const {}
    virtual void onChanged() {}
    /// Runs a command; may give up the lock for a while.
    virtual Result execute(Lock& lock, const char* command) = 0;
    /// An event was delivered. Without any lock, on the event thread.
    virtual void onDelivered() {}

    /// Values that an event brings.
    void assign(const std::vector<std::pair<const char*, FeatureValue>>& values);

  private:
    Result find(const char* name, FeatureType type, Feature*& feature);
    bool isWritable(const Feature& feature) const;
    void invalidate(const Feature& feature);
    FeatureFacts facts(const Feature& feature);

    const bool m_writable;
    EventDispatcher m_events;
};

}  // namespace simulator
