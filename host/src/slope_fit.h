#pragma once

#include <optional>

namespace host {

/// Slope of the line that least squares lay through points. Keeps its digits over any number of points, since
/// its sums are about their means. [one thread]
class SlopeFit {
  public:
    void add(double x, double y) {
        m_count += 1;
        const double fromMean = x - m_mean_x;
        m_mean_x += fromMean / m_count;
        m_mean_y += (y - m_mean_y) / m_count;
        m_xx += fromMean * (x - m_mean_x);
        m_xy += fromMean * (y - m_mean_y);
    }
    /// Empty without two points of different x.
    std::optional<double> slope() const {
        return m_xx > 0 ? std::optional<double>(m_xy / m_xx) : std::nullopt;
    }

  private:
    double m_count = 0;
    double m_mean_x = 0;
    double m_mean_y = 0;
    double m_xx = 0;
    double m_xy = 0;
};

}  // namespace host
