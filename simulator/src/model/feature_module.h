/// Whatever has features and a handle: an open camera, an interface, ancillary data, or the library itself.
/// Checks what a client may do in one order: is it there, name, type, context, access, value. [any thread]
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "event_dispatcher.h"
#include "feature_table.h"
#include "result.h"
#include "surroundings.h"

namespace simulator {

/// What a client learns about a feature.
struct FeatureFacts {
    const FeatureRow* row = nullptr;
    bool selects = false;     ///< other features depend on its value
    bool streamable = false;  ///< saved with a camera's settings
    const char* absent = "";  ///< what stands for a text that the feature has not; may be null
};

/// What a client learns about an entry.
struct EntryFacts {
    EnumEntry entry{};
    bool available = false;
};

/// A feature's values in text form, by the entries of its selector; with a null entry when it has none.
struct StoredFeature {
    const FeatureRow* row = nullptr;
    std::vector<std::pair<const char*, std::string>> values;
};

class FeatureModule {
  public:
    virtual ~FeatureModule() = default;
    FeatureModule(const FeatureModule&) = delete;
    FeatureModule& operator=(const FeatureModule&) = delete;

    /// Camera or interface id, "ancillary data", or "system".
    virtual const char* name() const = 0;
    /// False once the device is gone or the handle closed.
    virtual bool isAlive() const = 0;

    /// False for a camera that was opened for reading.
    bool isWritable() const { return m_writable; }

    Result list(std::vector<FeatureFacts>& features);
    Result describe(const char* name, FeatureFacts& facts);
    Result listAffected(const char* name, std::vector<FeatureFacts>& features);
    Result listSelected(const char* name, std::vector<FeatureFacts>& features);
    Result access(const char* name, bool& readable, bool& writable);

    Result read(const char* name, FeatureType type, FeatureValue& value);
    /// The entry's name; a text of the library that stays valid.
    Result readEntry(const char* name, const char*& entry);
    Result write(const char* name, FeatureType type, FeatureValue value);
    Result intRange(const char* name, IntRange& range);
    Result floatRange(const char* name, FloatRange& range);
    /// Zero when the feature tells no increment.
    Result floatIncrement(const char* name, double& increment);
    Result entries(const char* name, std::vector<EnumEntry>& entries);
    /// InvalidValue for an unknown entry.
    Result entry(const char* name, const char* entry, EntryFacts& facts);
    Result entryOf(const char* name, std::int64_t number, const char*& entry);
    Result maxLength(const char* name, std::uint32_t& bytes);
    Result run(const char* name);
    Result isDone(const char* name, bool& done);

    /// Every streamable feature.
    Result store(std::vector<StoredFeature>& features);
    /// Sets a value from its text form.
    Result writeText(const char* name, std::string_view text);

    /// NotFound for an unknown feature.
    Result registerInvalidation(const char* name, InvalidationCallback callback, void* context);
    Result unregisterInvalidation(const char* name, InvalidationCallback callback);
    EventDispatcher& events() { return m_events; }
    const EventDispatcher& events() const { return m_events; }

  protected:
    using Lock = std::unique_lock<std::mutex>;

    FeatureModule(const LibraryContext& library, ThreadRole eventThread, bool writable)
        : m_library(library),
          m_writable(writable),
          m_events(library.clock, eventThread, [this] { onDelivered(); }) {}

    virtual std::mutex& mutex() = 0;
    virtual FeatureTable& features() = 0;
    /// Hooks, called with the mutex held.
    virtual bool isLocked(const Feature&) const { return false; }
    virtual void refresh(const Feature&) {}
    virtual void round(const Feature&, FeatureValue&) const {}
    virtual void onChanging() {}
    virtual void onChanged(const Feature&) {}
    /// Only a camera's settings are saved.
    virtual bool isStored(const FeatureRow&) const { return false; }
    virtual const char* absentText() const { return ""; }
    /// Runs a command; may give up the lock for a while.
    virtual Result execute(Lock& lock, const char* command) = 0;
    /// An event was delivered. Without any lock, on the event thread.
    virtual void onDelivered() {}

    /// Values that an event brings.
    void assign(const std::vector<std::pair<const char*, FeatureValue>>& values);

  private:
    Result find(const char* name, Feature*& feature);
    Result find(const char* name, FeatureType type, Feature*& feature);
    bool isWritable(const Feature& feature) const;
    void invalidate(const Feature& feature);
    FeatureFacts facts(const Feature& feature);

    const LibraryContext m_library;
    const bool m_writable;
    EventDispatcher m_events;
};

}  // namespace simulator
