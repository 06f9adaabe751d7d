/// What the time of a frame has to be, by the rules of docs/TIME.md alone.
#pragma once

#include <cstdint>

#include "window_fit.h"

namespace test_support {

/// Follows the frames of one acquisition at a fixed rate. Knows no more than the plug-in: the reading of the
/// camera's clock, the host's clock, and how long the frame had waited when that was read. Which frames make
/// a point, it decides itself; the line through them is WindowFit's, which exact_arithmetic_test.cpp
/// compares with fractions.
class StampModel {
  public:
    static constexpr std::uint64_t kHistory = 20;

    explicit StampModel(std::uint64_t tickFrequency) : m_tick_frequency(tickFrequency) {}

    /// `host`: the host's clock, read `waited` nanoseconds after the frame was called back.
    std::int64_t stamp(std::uint64_t ticks, std::uint64_t host, std::uint64_t waited);

    bool hasLine() const { return m_line.points() >= kHistory; }
    const WindowFit& line() const { return m_line; }

  private:
    std::uint64_t m_tick_frequency;
    WindowFit m_line;
    std::uint64_t m_newest = 0;
};

}  // namespace test_support
