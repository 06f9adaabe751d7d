/// The signal at a camera's trigger input "Line1": what drives it, and its edges one after the other.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

#include "clock.h"
#include "result.h"

namespace simulator {

/// Pulses at an exact rational frequency: pulse n (from 0) rises n * denominator / numerator seconds after
/// the first, rounded down to nanoseconds.
struct LineRhythm {
    std::uint64_t numerator = 1;  ///< Hz, with the denominator; both 1 to 10^9, at most 10^6 Hz together
    std::uint64_t denominator = 1;
    Nanoseconds width = 0;   ///< of a pulse; at most a quarter of the period
    Nanoseconds jitter = 0;  ///< rising edges are off by up to this much; at most a 16th of the period
};

enum class PulseFault {
    Missing,   ///< does not come
    Doubled,   ///< comes again, one width after its end
    Bouncing,  ///< rises three times within an eighth of its width, or 20 microseconds
};

/// Spoils pulses `first` to `first` + `count` - 1, and again after each `every` pulses, at least `count`; 0
/// for never again.
struct PulseFaultRow {
    PulseFault fault = PulseFault::Missing;
    std::uint64_t first = 1;
    std::uint64_t count = 1;
    std::uint64_t every = 0;

    bool hits(std::uint64_t pulse) const;
};

struct LineEdge {
    Nanoseconds at = 0;
    bool rising = false;
};

/// [any thread] The line is low unless a pulse makes it high. Whatever drives it counts its pulses from 1.
class LineInput {
  public:
    /// Replaces what drove the line until `now`. The first pulse rises at `first`, not before `now`.
    Result drive(const LineRhythm& rhythm, Nanoseconds first, Nanoseconds now);
    /// Adds single pulses, the first not before `now`, each at least four widths after the one before it;
    /// they replace a rhythm.
    Result add(const std::vector<Nanoseconds>& rises, Nanoseconds width, Nanoseconds now);
    /// No more pulses; a high line falls now.
    void silence(Nanoseconds now);
    /// Spoils pulses of what drives the line now.
    void disturb(const PulseFaultRow& fault);
    /// Spoils pulses of whatever drives the line, now and later.
    void disturbAlways(std::vector<PulseFaultRow> faults);
    /// Picks the jitter.
    void setSeed(std::uint64_t seed);

    /// The next edge that was not taken yet.
    std::optional<LineEdge> next();
    /// Takes the next edge, if it is there and not after `now`.
    std::optional<LineEdge> take(Nanoseconds now);
    /// Takes all edges before `now`.
    void skipTo(Nanoseconds now);
    bool isHigh() const;

  private:
    struct Pulse {
        Nanoseconds at;
        Nanoseconds width;
    };

    void clear(Nanoseconds now);
    bool fill();
    bool nextPulse(Pulse& pulse);
    void expand(const Pulse& pulse);
    void push(Nanoseconds at, bool rising) { m_edges[m_edgeCount++] = {at, rising}; }
    bool suffers(PulseFault fault) const;
    Nanoseconds riseOf(std::uint64_t pulse) const;
    void skipRhythmTo(Nanoseconds now);

    mutable std::mutex m_mutex;
    std::uint64_t m_seed = 0;
    std::optional<LineRhythm> m_rhythm;
    Nanoseconds m_first = 0;
    std::deque<Pulse> m_pulses;
    Nanoseconds m_earliest = 0;           // rise of the next single pulse
    std::uint64_t m_pulseCount = 0;       // generated so far
    std::vector<PulseFaultRow> m_faults;  // of what drives the line now
    std::vector<PulseFaultRow> m_lastingFaults;
    std::array<LineEdge, 8> m_edges;  // of the pulse under way
    std::size_t m_edgeCount = 0;
    std::size_t m_edgesTaken = 0;
    bool m_high = false;
};

}  // namespace simulator
