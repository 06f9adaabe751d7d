#include "trigger_output.h"

#include <cmath>

#include "host_failure.h"
#include "steady_master_clock.h"

namespace host {

void TriggerOutput::start() {
    if (m_line == nullptr) return;
    const auto periodNs = static_cast<std::uint64_t>(std::llround(1e9 / m_frequency.value()));
    VmbSimRhythm rhythm{};
    rhythm.numerator = static_cast<VmbUint64_t>(m_frequency.numerator);
    rhythm.denominator = static_cast<VmbUint64_t>(m_frequency.denominator);
    rhythm.phaseNs = periodNs;
    rhythm.widthNs = periodNs / 5;
    const std::int64_t before = steadyNanoseconds();
    if (const VmbError_t error = m_line->drive(rhythm); error != VmbErrorSuccess) {
        throw HostFailure(ExitCode::CameraFailed,
                          "The simulated trigger line cannot pulse at this frequency (error " +
                              std::to_string(error) + "); choose another one with --aux.");
    }
    const auto phase = static_cast<std::int64_t>(periodNs);
    m_pulse_start = PulseStart{before + phase, steadyNanoseconds() + phase};
    m_runs = true;
}

void TriggerOutput::stop() {
    if (m_runs) m_line->silence();
    m_runs = false;
}

}  // namespace host
