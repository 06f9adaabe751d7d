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
    std::vector<PulseSpan> lost;     ///< their frame is missing, or whether there was one is not known
    std::vector<PulseSpan> doubled;  ///< have more than one frame
    /// Frames of a simulated camera whose true exposure belongs to another pulse.
    std::uint64_t misplaced = 0;
};

std::uint64_t pulseCount(const std::vector<PulseSpan>& spans);

/// "12, 15-17", at most `most` spans and how many pulses more there are; "none" for none.
std::string pulseText(const std::vector<PulseSpan>& spans, std::size_t most = 20);

/// Follows the frames of a triggered camera by their pulses. [one thread]
class PulseStatistics {
  public:
    /// `frequency` of the pulses in Hz; NaN when it is not known, and then nothing is misplaced.
    explicit PulseStatistics(double frequency) : m_frequency(frequency) {}

    /// A frame's pulse and, where it is known, its number. Pulses between it and the frame before were
    /// skipped if the numbers are consecutive, else lost.
    void add(std::int64_t pulse, std::optional<std::uint64_t> frameId);

    /// The true start of exposure of the frame added last. Pulses are counted from the first one's.
    void addTruth(std::uint64_t exposureNs);

    const PulseReport& report() const { return m_report; }

  private:
    struct Frame {
        std::int64_t pulse = 0;
        std::optional<std::uint64_t> id;
    };

    struct Truth {
        std::int64_t pulse = 0;
        std::uint64_t exposureNs = 0;
    };

    double m_frequency;
    std::optional<Frame> m_last;
    std::optional<Truth> m_first_truth;
    PulseReport m_report;
};

}  // namespace host
