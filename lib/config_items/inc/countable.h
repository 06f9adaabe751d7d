/// Counting of live objects by type, for the host's leak reports.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

#include "zelt_base_export.h"

namespace uni {

/// Reads the number of live objects of one type. [any thread]
using CountReader = std::int64_t (*)() noexcept;

/// One entry of the registry: static storage of whoever registers it, alive until the process ends. `name`
/// is a literal.
struct CountedType {
    const char* name;
    CountReader read;
    const CountedType* next = nullptr;  ///< belongs to the registry once registered
};

/// Adds a type to the process-wide registry. Allocates nothing, so it is safe while a library loads. An
/// entry is registered once; of two entries with one name the first stays. [any thread]
ZELT_BASE_API void registerCountedType(CountedType& type) noexcept;

/// All counted types, name to reader. [any thread]
ZELT_BASE_API std::map<std::string, CountReader> getCountedTypes();

/// Mixin: counts the live objects of classes derived from it. Every construction counts, also a copy or a
/// move; assignment does not. The counter of each `T` is a specialisation of `counter` with its storage in
/// one library, so that it exists once per process.
template <class T>
class Countable {
  public:
    /// Number of live objects now. [any thread]
    static std::int64_t getInstanceCount() noexcept { return counter().load(std::memory_order_relaxed); }

  protected:
    Countable() noexcept { counter().fetch_add(1, std::memory_order_relaxed); }
    Countable(const Countable&) noexcept : Countable() {}
    Countable& operator=(const Countable&) noexcept = default;
    ~Countable() { counter().fetch_sub(1, std::memory_order_relaxed); }

  private:
    static std::atomic<std::int64_t>& counter() noexcept;
};

}  // namespace uni
