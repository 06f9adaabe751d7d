/// Instruments that count what a piece of work does besides computing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "pages.h"

namespace bench {

using Work = std::function<void()>;

/// System calls of `work`, done in a copy of this process; it must not need any. Throws std::runtime_error
/// when they cannot be counted here or the work fails.
std::uint64_t systemCallsOf(const Work& work);
/// How often this thread gave up the processor of its own accord, as for a lock that another one held.
std::uint64_t threadSwitchesOf(const Work& work);
/// Calls of malloc and its relatives by this thread.
std::uint64_t allocationsOf(const Work& work);

/// Pages that nobody may read or write. One that is touched all the same is counted, and then left open. At
/// most one object at a time.
class ForbiddenPages final : public platform::PageAllocator {
  public:
    ForbiddenPages();
    ~ForbiddenPages() override;
    ForbiddenPages(const ForbiddenPages&) = delete;
    ForbiddenPages& operator=(const ForbiddenPages&) = delete;

    void* allocate(std::size_t size) noexcept override;
    void release(void* pages, std::size_t size) noexcept override;
    /// Pages that were touched, each counted once.
    static std::uint64_t touched();
};

/// For good, but for what FilteredLog does meanwhile.
void switchLogOff();

/// While it lives the log takes no record either, but asks its filter for each. The log must be switched off.
class FilteredLog {
  public:
    FilteredLog();
    ~FilteredLog();
    FilteredLog(const FilteredLog&) = delete;
    FilteredLog& operator=(const FilteredLog&) = delete;
};

}  // namespace bench
