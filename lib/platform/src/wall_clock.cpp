#include <chrono>

#include "clocks.h"

namespace platform {
namespace {

class SystemWallClock final : public WallClock {
  public:
    double now() noexcept override {
        return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    }
};

}  // namespace

WallClock& systemWallClock() {
    static SystemWallClock clock;
    return clock;
}

}  // namespace platform
