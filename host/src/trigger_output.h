#pragma once

#include <optional>

#include "pulse_statistics.h"
#include "setting_text.h"
#include "vendor_probe.h"

namespace host {

/// The host's trigger output while the cameras acquire. With simulated cameras it drives their input; a real
/// one is driven elsewhere, and nothing happens here.
class TriggerOutput {
  public:
    /// Without a frequency nothing is driven. The line outlives this; null for a real one.
    TriggerOutput(const IfTriggerLine* line, std::optional<Fraction> frequency)
        : m_line(frequency ? line : nullptr), m_frequency(frequency.value_or(Fraction())) {}
    ~TriggerOutput() { stop(); }
    TriggerOutput(const TriggerOutput&) = delete;
    TriggerOutput& operator=(const TriggerOutput&) = delete;

    /// The first pulse comes a period from now. Throws HostFailure when there cannot be such pulses.
    void start();
    void stop();
    /// When the first pulse came; empty when nothing was driven.
    const std::optional<PulseStart>& pulseStart() const { return m_pulse_start; }

  private:
    const IfTriggerLine* m_line;
    Fraction m_frequency;
    bool m_runs = false;
    std::optional<PulseStart> m_pulse_start;
};

}  // namespace host
