// Times and pulse numbers against exact arithmetic.
#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include <boost/multiprecision/cpp_bin_float.hpp>

#include "counted_figures.h"
#include "zelt_gige_fixed_rate_clock_sync.h"
#include "zelt_gige_triggered_clock_sync.h"

namespace bench {
namespace {

using zelt_gige_api::CameraFrame;
using zelt_gige_camera::Rational;

/// Enough digits for the squares of any counter, and for what is left of their differences.
using Exact = boost::multiprecision::number<
    boost::multiprecision::cpp_bin_float<400, boost::multiprecision::digit_base_2>,
    boost::multiprecision::et_off>;

/// The weighted line as it is defined, of sums of absolute times.
class ExactLine {
  public:
    void add(std::int64_t camera, std::uint64_t host, double quality) {
        const Exact c = camera;
        const Exact h = host;
        const Exact w = std::max(0.01, 1.0 - std::fabs(quality));
        m_s = m_decay * m_s + w;
        m_sh = m_decay * m_sh + w * h;
        m_sc = m_decay * m_sc + w * c;
        m_shc = m_decay * m_shc + w * h * c;
        m_scc = m_decay * m_scc + w * c * c;
    }
    Exact at(std::int64_t camera) const {
        const Exact slope = (m_shc - m_sh * m_sc / m_s) / (m_scc - m_sc * m_sc / m_s);
        return slope * Exact(camera) + (m_sh - slope * m_sc) / m_s;
    }

  private:
    const Exact m_decay = Exact(19) / 20;
    Exact m_s, m_sh, m_sc, m_shc, m_scc;
};

struct Start {
    std::int64_t camera;
    std::uint64_t host;
};

constexpr std::int64_t kTicks = 1'000'000'000;
constexpr std::int64_t kTenDays = 864'000;
// The exact line at every point would take minutes.
constexpr std::int64_t kCompared = 50;
constexpr std::array<Start, 4> kStarts{
    {{0, 1},
     {10'000'000'000'000, 1'700'000'000'000'000'000},
     {(std::int64_t{1} << 62) - kTenDays * kTicks, 1},
     {(std::int64_t{1} << 62) - kTenDays * kTicks, 1'700'000'000'000'000'000}}};

/// The largest error of ten days of times, in units of what is allowed: a tick, or what a double can tell
/// apart.
double worstErrorFrom(const Start& start) {
    zelt_gige_camera::FixedRateClockSync sync(Rational(kTicks), static_cast<double>(kTicks));
    ExactLine line;
    std::mt19937_64 random(20261121);
    double worst = 0.0;
    for (std::int64_t second = 1; second <= kTenDays; ++second) {
        // 12 millionths fast, called back up to 100 us late.
        const std::int64_t camera = start.camera + second * kTicks;
        const std::uint64_t host =
            start.host + static_cast<std::uint64_t>(second * (kTicks - 12'000)) + random() % 100'000;
        const double quality = static_cast<double>(random() % 120) * 0.01;
        sync.addSyncPoint(camera, static_cast<std::int64_t>(host), quality);
        line.add(camera, host, quality);
        if (second < 20 || second % kCompared != 0) continue;
        const std::int64_t asked = camera + kTicks / 2;
        const double found = sync.estimate(static_cast<std::uint64_t>(asked));
        const auto error = static_cast<double>(abs(line.at(asked) - Exact(found)));
        const double resolution = std::nextafter(found, HUGE_VAL) - found;
        worst = std::max(worst, error / std::max(1.0, resolution));
    }
    return worst;
}

/// Frames of a camera at a pulse rate: one per pulse, but some pulses are skipped, some doubled, and some
/// frames lost.
class PulseRun {
  public:
    PulseRun(std::int64_t numerator, std::int64_t denominator)
        : m_numerator(numerator),
          m_denominator(denominator),
          m_sync(Rational(kTicks), static_cast<double>(kTicks), Rational(numerator, denominator)) {}

    std::uint64_t differences(std::int64_t pulses) {
        for (std::int64_t pulse = 0; pulse < pulses; ++pulse) {
            if (pulse % 1009 == 1008) continue;  // skipped: no frame, no number
            if (pulse % 1511 == 1510) {
                ++m_frameId;  // lost
                continue;
            }
            receive(ticksAt(pulse), pulse);
            if (pulse % 2003 == 2002) receive(ticksAt(pulse) + ticksAt(1) / 4, pulse);
        }
        return m_differences;
    }

  private:
    __extension__ using Wide = __int128;

    std::uint64_t ticksAt(std::int64_t pulse) const {
        return static_cast<std::uint64_t>(Wide{pulse} * kTicks * m_denominator / m_numerator);
    }
    void receive(std::uint64_t ticks, std::int64_t pulse) {
        CameraFrame frame;
        frame.frameid = m_frameId++;
        frame.timestamp = ticks;
        m_differences += m_sync.timestampFromSync(frame) != pulse;
    }

    const std::int64_t m_numerator;
    const std::int64_t m_denominator;
    zelt_gige_camera::TriggeredClockSync m_sync;
    std::uint64_t m_frameId = 0;
    std::uint64_t m_differences = 0;
};

}  // namespace

Figure timeTranslation() {
    double worst = 0.0;
    for (const Start& start : kStarts) worst = std::max(worst, worstErrorFrom(start));
    return {"time translation against the exact line",
            worst,
            1.0,
            false,
            "ticks or steps of a double; ten days, counters up to 2^62",
            false};
}

Figure auxIndices() {
    constexpr std::int64_t kFrames = 10'000'000;
    std::uint64_t differences = 0;
    for (const auto& [numerator, denominator] : {std::pair<std::int64_t, std::int64_t>{7, 1},
                                                 {11, 1},
                                                 {30'000, 1001},
                                                 {1'000'000'000, 33'366'667}}) {
        differences += PulseRun(numerator, denominator).differences(kFrames);
    }
    return {"AUX indices that differ from big integers",
            static_cast<double>(differences),
            0.0,
            false,
            "10^7 pulses each at 7, 11, 30000/1001 and 10^9/33366667 Hz",
            false};
}

}  // namespace bench
