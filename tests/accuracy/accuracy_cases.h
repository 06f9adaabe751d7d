/// Under which conditions how good a time stamp is.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "vimba_simulator.h"
#include "waiting_host_clock.h"

namespace test_support {

/// In microseconds of host time. A stamp's error is how far it lies behind the true start of exposure; the
/// constant part is the median of the errors, the spread what the others are off it.
struct AccuracyBounds {
    double constant = 0;  ///< of the constant part against the way, either way
    double p50 = 0;       ///< spread that half of the frames do not exceed
    double p99 = 0;
    double max = 0;
};

enum class Incident {
    None,
    Hiccup,         ///< the camera is away for a minute
    LostFrames,     ///< one to five frames in a row, again and again
    ClockReset,     ///< somebody sets the camera's clock to zero
    NewAcquisition  ///< stop, and start again
};

struct AccuracyCase {
    const char* name;
    std::uint64_t seconds = 0;
    VmbSimOscillator clock{};
    Waits waits{};
    VmbSimLink link{};
    Incident incident = Incident::None;
    std::uint64_t hostOrigin = 1;
    AccuracyBounds bounds{};
};

/// For messages of a test that fails.
inline void PrintTo(const AccuracyCase& conditions, std::ostream* os) {
    *os << conditions.name;
}

/// At a fixed rate of 20 frames per second.
const std::vector<AccuracyCase>& accuracyCases();

/// With external trigger at 100 Hz; pulses jitter by 0.1 ms.
inline constexpr const char* kTriggeredCase = "external trigger, pulses and frames disturbed";
const AccuracyBounds& triggeredBounds();

/// The lowest number of two digits that is not below; in microseconds of nanoseconds.
double statedMicroseconds(double nanoseconds);
/// As docs/TIME.md has it.
std::string inWords(double microseconds);

}  // namespace test_support
