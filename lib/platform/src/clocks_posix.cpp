#include <time.h>

#include "clocks.h"

namespace platform {
namespace {

class MonotonicCounter final : public PerformanceCounter {
  public:
    std::int64_t frequency() noexcept override { return 1'000'000'000; }
    std::int64_t now() noexcept override {
        timespec time{};
        ::clock_gettime(CLOCK_MONOTONIC, &time);
        return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
    }
};

}  // namespace

PerformanceCounter& systemPerformanceCounter() {
    static MonotonicCounter counter;
    return counter;
}

}  // namespace platform
