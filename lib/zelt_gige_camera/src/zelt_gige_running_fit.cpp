// Compiled without contraction of products and sums (see CMakeLists.txt): its last digits must not depend on
// the processor.
#include "zelt_gige_running_fit.h"

#include <algorithm>
#include <cmath>

namespace zelt_gige_camera {
namespace {

/// Exact difference, rounded once.
double difference(std::uint64_t a, std::uint64_t b) {
    return a >= b ? static_cast<double>(a - b) : -static_cast<double>(b - a);
}

double difference(std::int64_t a, std::int64_t b) {
    const auto distance = static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b);
    return a >= b ? static_cast<double>(distance) : -static_cast<double>(0 - distance);
}

/// `base` + `offset` with the whole units added exactly, so that only the result is rounded.
double sum(std::uint64_t base, double offset) {
    const double whole = std::floor(offset);
    constexpr double kLimit = 9.0e18;
    if (!(std::fabs(whole) < kLimit)) return static_cast<double>(base) + offset;
    const auto units = static_cast<std::int64_t>(whole);
    const double fraction = offset - whole;
    const auto magnitude =
        units >= 0 ? static_cast<std::uint64_t>(units) : 0 - static_cast<std::uint64_t>(units);
    if (units < 0) {
        return base >= magnitude ? static_cast<double>(base - magnitude) + fraction
                                 : -static_cast<double>(magnitude - base) + fraction;
    }
    const bool overflows = base + magnitude < base;
    return overflows ? static_cast<double>(base) + offset : static_cast<double>(base + magnitude) + fraction;
}

}  // namespace

void RunningFit::moveOrigin(std::int64_t camera, std::uint64_t host) {
    const double dc = difference(camera, m_camera_origin);
    const double dh = difference(host, m_host_origin);
    m_shc += dc * dh * m_s - dh * m_sc - dc * m_sh;
    m_scc += dc * dc * m_s - 2.0 * dc * m_sc;
    m_sc -= dc * m_s;
    m_sh -= dh * m_s;
    m_camera_origin = camera;
    m_host_origin = host;
}

void RunningFit::add(std::int64_t camera, std::uint64_t host, double quality) {
    moveOrigin(camera, host);
    const double decay = (m_history_length - 1.0) / m_history_length;
    const double weight = std::max(0.01, 1.0 - std::fabs(quality));
    // The new point lies in the origin: it adds to no sum but the weights'.
    m_s = decay * m_s + weight;
    m_sh *= decay;
    m_sc *= decay;
    m_shc *= decay;
    m_scc *= decay;
    const double slope = (m_shc - m_sh * m_sc / m_s) / (m_scc - m_sc * m_sc / m_s);
    const double intercept = (m_sh - slope * m_sc) / m_s;
    const SpinLockGuard lock(m_lock);
    if (++m_sample_count < m_history_length) return;
    m_published = {m_camera_origin, m_host_origin, slope, intercept};
}

RunningFit::Line RunningFit::line() const {
    const SpinLockGuard lock(m_lock);
    return m_published;
}

double RunningFit::estimate(std::int64_t camera) const {
    const Line published = line();
    return sum(published.hostOrigin,
               published.slope * difference(camera, published.cameraOrigin) + published.intercept);
}

}  // namespace zelt_gige_camera
