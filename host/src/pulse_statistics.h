#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// Trigger pulses in a row, both ends included.
struct PulseSpan {
    std::int64_t first = 0;
    std::int64_t last = 0;
    bool operator==(const PulseSpan&) const = default;
};

/// Pulses without a picture of their own, by number, rising.
struct PulseReport {
    std::vector<PulseSpan> skipped;  ///< the camera made no frame of them
    std::vector<PulseSpan> lost;     ///< frames are missing there, though not always one for every pulse
    std::vector<PulseSpan> unclear;  ///< skipped or lost: no frame number tells which
    std::vector<PulseSpan> doubled;  ///< have more than one frame
    std::uint64_t extra = 0;         ///< frames beyond the first of their pulse
    /// Frames of a simulated camera whose true exposure belongs to another pulse.
    std::uint64_t misplaced = 0;
};

/// Host time at which the pulse 0 came, as far as that is known.
struct PulseStart {
    std::int64_t earliestNs = 0;
    std::int64_t latestNs = 0;
};

/// Pulses that come within `seconds` when the first one comes at once.
std::int64_t pulsesIn(double seconds, double frequency);

/// What of `spans` is not in `others`; both rise.
std::vector<PulseSpan> without(const std::vector<PulseSpan>& spans, const std::vector<PulseSpan>& others);

std::uint64_t pulseCount(const std::vector<PulseSpan>& spans);

/// "12, 15-17", at most `most` spans and how many pulses more there are; "none" for none.
std::string pulseText(const std::vector<PulseSpan>& spans, std::size_t most = 20);

/// Follows the frames of a triggered camera by their pulses. [one thread]
class PulseStatistics {
  public:
    /// `frequency` of the pulses in Hz; NaN when it is not known, and then nothing is misplaced.
    explicit PulseStatistics(double frequency) : m_frequency(frequency) {}

    /// A frame's pulse, and how many frames are missing before it, where that is known. Pulses between it
    /// and the frame before, or before the first frame, were skipped if none is missing, else lost.
    void add(std::int64_t pulse, std::optional<std::uint64_t> missing);
    /// The recording ends before this pulse, and so much is known to be missing before its end.
    void addEnd(std::int64_t pulse, std::optional<std::uint64_t> missing);

    /// The true start of exposure of the frame added last.
    void addTruth(std::uint64_t exposureNs);

    /// Without `start` pulses are counted from the first frame's exposure.
    PulseReport report(const std::optional<PulseStart>& start = {}) const;

  private:
    void noteGap(std::int64_t pulse, std::optional<std::uint64_t> missing);
    std::uint64_t misplaced(const std::optional<PulseStart>& start) const;

    double m_frequency;
    std::int64_t m_last = -1;
    /// Host time of pulse 0 as each frame's exposure and number have it.
    std::vector<double> m_starts;
    PulseReport m_report;
};

}  // namespace host
