#include "window_fit.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace test_support {
namespace {

static_assert(std::numeric_limits<long double>::digits >= 64, "a double is not enough to judge a double");

std::int64_t difference(std::uint64_t a, std::uint64_t b) {
    return static_cast<std::int64_t>(a - b);
}

}  // namespace

void WindowFit::add(std::uint64_t camera, std::uint64_t host, double quality) {
    ++m_points;
    if (m_window.size() == kWindow) m_window.erase(m_window.begin());
    m_window.push_back({camera, host, std::max(0.01, 1.0 - std::fabs(quality))});
    m_sums = {};
    for (const Point& point : m_window) {
        constexpr long double kDecay = 19.0L / 20.0L;
        const long double w = point.weight;
        const long double c = difference(point.camera, camera);
        const long double h = difference(point.host, host);
        m_sums.s = kDecay * m_sums.s + w;
        m_sums.sh = kDecay * m_sums.sh + w * h;
        m_sums.sc = kDecay * m_sums.sc + w * c;
        m_sums.shc = kDecay * m_sums.shc + w * h * c;
        m_sums.scc = kDecay * m_sums.scc + w * c * c;
    }
    const auto& [s, sh, sc, shc, scc] = m_sums;
    m_slope = (shc - sh * sc / s) / (scc - sc * sc / s);
    m_intercept = (sh - m_slope * sc) / s;
}

std::int64_t WindowFit::at(std::uint64_t camera) const {
    const Point& newest = m_window.back();
    const long double ahead = difference(camera, newest.camera);
    return static_cast<std::int64_t>(newest.host) +
           static_cast<std::int64_t>(std::floor(m_slope * ahead + m_intercept));
}

WindowFit::Dependence WindowFit::dependence(std::uint64_t camera) const {
    constexpr double kNanosecond = 1e-9;
    const Point& newest = m_window.back();
    const auto mean = static_cast<double>(m_sums.sc / m_sums.s);
    const auto variance = static_cast<double>(m_sums.scc / m_sums.s) - mean * mean;
    const auto ahead = static_cast<double>(difference(camera, newest.camera));
    const double tilt = (ahead - mean) / variance;
    double decayed = 1.0 / static_cast<double>(m_sums.s);
    Dependence found;
    for (auto point = m_window.rbegin(); point != m_window.rend(); ++point) {
        const auto c = static_cast<double>(difference(point->camera, newest.camera));
        const double factor = std::fabs(point->weight * decayed * (1.0 + tilt * (c - mean)));
        const double seconds = (c - ahead) * kNanosecond;
        found.onErrors += factor;
        found.onBend += factor * seconds * seconds;
        decayed *= 0.95;
    }
    return found;
}

}  // namespace test_support
