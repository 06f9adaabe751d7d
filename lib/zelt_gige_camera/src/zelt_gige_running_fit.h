/// The running linear fit from camera time to host time.
#pragma once

#include <atomic>
#include <cstdint>

#include "zelt_gige_spin_lock.h"

namespace zelt_gige_camera {

/// Exponentially forgetting weighted least-squares line of host time h over camera time c. Each point first
/// decays all sums by f = (N - 1) / N, then enters with weight w = max(0.01, 1 - |quality|):
///
///     slope     = (Shc - Sh * Sc / S) / (Scc - Sc * Sc / S)
///     intercept = (Sh - slope * Sc) / S
///
/// The sums are kept about a moving origin, the newest point. Shifting the origin is exact algebra on the
/// sums, so the line is the same; but sums of absolute times in doubles would lose it within days.
/// Equal camera times make the denominator exactly 0 and the slope not finite; nothing guards against it.
class RunningFit {
  public:
    /// A line through its origin: host = hostOrigin + intercept + slope * (camera - cameraOrigin).
    struct Line {
        std::int64_t cameraOrigin = 0;
        std::uint64_t hostOrigin = 0;
        double slope = 0.0;
        double intercept = 0.0;
    };

    /// `historyLength` N is about the number of points that the fit remembers, and the number of points from
    /// which on it publishes a line.
    explicit RunningFit(std::uint32_t historyLength) : m_history_length(historyLength) {}

    /// Adds a point. [one thread at a time]
    void add(std::int64_t camera, std::uint64_t host, double quality);
    /// True once N points were added. [any thread]
    bool isSynchronized() const { return m_sample_count.load() >= m_history_length; }
    /// Host time at a camera time, by the published line; 0 before synchronization. [any thread]
    double estimate(std::int64_t camera) const;
    /// The published line. [any thread]
    Line line() const;

  private:
    void moveOrigin(std::int64_t camera, std::uint64_t host);

    const std::uint32_t m_history_length;
    std::atomic<std::uint64_t> m_sample_count{0};
    // Weights, host times, camera times, products, squared camera times, about the origin.
    double m_s = 0.0;
    double m_sh = 0.0;
    double m_sc = 0.0;
    double m_shc = 0.0;
    double m_scc = 0.0;
    std::int64_t m_camera_origin = 0;
    std::uint64_t m_host_origin = 0;

    mutable SpinLock m_lock;
    Line m_published ZELT_GUARDED_BY(m_lock);
};

}  // namespace zelt_gige_camera
