#include <windows.h>

#include "clocks.h"

namespace platform {
namespace {

class QueryPerformance final : public PerformanceCounter {
  public:
    std::int64_t frequency() noexcept override {
        LARGE_INTEGER value{};
        ::QueryPerformanceFrequency(&value);
        return value.QuadPart;
    }
    std::int64_t now() noexcept override {
        LARGE_INTEGER value{};
        ::QueryPerformanceCounter(&value);
        return value.QuadPart;
    }
};

}  // namespace

PerformanceCounter& systemPerformanceCounter() {
    static QueryPerformance counter;
    return counter;
}

}  // namespace platform
