/// The line of host time over camera time, worked out afresh from the latest points for each of them.
#pragma once

#include <cstdint>
#include <vector>

namespace test_support {

/// Points lose 5 % of their weight with each one that follows: of what lies further back than the window,
/// 0.95^500 = 7e-12 is left, of times that are off the line by microseconds. About the newest point the sums
/// need no more digits than a long double has: their differences are exact, and their products are rounded
/// by 5e-20 of values up to 2.5e23.
class WindowFit {
  public:
    static constexpr std::size_t kWindow = 500;

    void add(std::uint64_t camera, std::uint64_t host, double quality);
    std::uint64_t points() const { return m_points; }
    /// Host time, rounded down.
    std::int64_t at(std::uint64_t camera) const;

    /// How the host time at a camera time depends on the points: it is the sum of their host times, each
    /// times a factor.
    struct Dependence {
        double onErrors = 0.0;  ///< sum of the factors' magnitudes
        double onBend = 0.0;    ///< the same, times the squared seconds to the point
    };
    Dependence dependence(std::uint64_t camera) const;

  private:
    struct Point {
        std::uint64_t camera = 0;
        std::uint64_t host = 0;
        double weight = 0.0;
    };
    struct Sums {
        long double s = 0, sh = 0, sc = 0, shc = 0, scc = 0;
    };

    std::vector<Point> m_window;  ///< oldest first
    std::uint64_t m_points = 0;
    Sums m_sums;
    long double m_slope = 0;
    long double m_intercept = 0;
};

}  // namespace test_support
