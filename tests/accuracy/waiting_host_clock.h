/// A host that lets frames wait for their handling, by a rule that anybody can work out again.
#pragma once

#include <cstdint>

#include "host_clocks.h"

namespace test_support {

/// How long a frame waits until the host's clock is read.
struct Waits {
    std::uint64_t usualNs = 0;  ///< less than this
    std::uint64_t longNs = 0;   ///< once in fifty instead; 0 for never
};

/// Counts nanoseconds. The plug-in sees the waiting by its own clock, too.
class WaitingHostClock final : public zelt::IfMasterClock {
  public:
    /// `origin`: the reading at virtual time 0.
    WaitingHostClock(std::uint64_t origin, const Waits& waits) : m_origin(origin), m_waits(waits) {}

    double getRate() override { return 1e9; }
    std::uint64_t getTime() override {
        const std::uint64_t now = VmbSimTime();
        virtualCounter().delay(waitAt(now));
        return readingAt(now);
    }
    /// Of a frame that is called back at this virtual time.
    std::uint64_t waitAt(std::uint64_t time) const {
        const std::uint64_t drawn = (time ^ time >> 17) * 0x9E37'79B9'7F4A'7C15U >> 20;
        if (m_waits.longNs != 0 && drawn % 50 == 0) return m_waits.longNs;
        return m_waits.usualNs != 0 ? drawn / 50 % m_waits.usualNs : 0;
    }
    std::uint64_t readingAt(std::uint64_t time) const { return m_origin + time + waitAt(time); }
    std::uint64_t origin() const { return m_origin; }
    std::uint64_t longest() const {
        return m_waits.longNs > m_waits.usualNs ? m_waits.longNs : m_waits.usualNs;
    }

  private:
    const std::uint64_t m_origin;
    const Waits m_waits;
};

}  // namespace test_support
