/// When a sensor exposes, and how long a frame's way is.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "camera_clock.h"
#include "camera_row.h"
#include "clock.h"

namespace simulator {

enum class TriggerKind {
    FixedRate,  ///< at the set rate, or slower when the sensor cannot
    Freerun,    ///< as fast as the sensor can
    Software,
    External,  ///< a line; nothing is exposed without its signal
};

/// What of the signal at a line triggers.
enum class Activation { RisingEdge, FallingEdge, AnyEdge, LevelHigh, LevelLow };

/// Is the signal active, for the activations by level, while the line is high or low?
constexpr bool isActive(Activation activation, bool high) {
    return activation == Activation::LevelHigh ? high : activation == Activation::LevelLow && !high;
}

/// Geometry of one picture. `format` carries the bits per pixel in its bits 16 to 23.
struct PictureShape {
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    std::uint32_t offsetX = 0;
    std::uint32_t offsetY = 0;
    std::uint32_t format = 0;

    std::uint64_t bitsPerPixel() const { return format >> 16 & 0xFF; }
    std::uint64_t payload() const { return std::uint64_t{width} * height * bitsPerPixel() / 8; }
    bool operator==(const PictureShape&) const = default;
};

/// What the camera's settings make of the next exposure; spans in true time unless said otherwise.
struct SensorSettings {
    PictureShape shape;
    TriggerKind trigger = TriggerKind::External;
    bool isLine1 = false;  ///< the only line to which anything is connected
    Activation activation = Activation::RisingEdge;
    Nanoseconds triggerDelay = 0;
    bool latchesTrigger = false;  ///< a signal before its time is kept for the next exposure
    std::uint64_t trailer = 0;    ///< bytes behind the picture
    Nanoseconds exposure = 0;
    Nanoseconds readout = 0;
    Nanoseconds transfer = 0;
    Nanoseconds period = 0;          ///< of the set rate; by the camera's own clock, as the next
    Nanoseconds shortestPeriod = 0;  ///< that sensor, exposure and bandwidth permit
    std::int64_t frameLimit = 0;     ///< frames per acquisition, 0 for no limit
    bool holdsStream = false;        ///< pictures stay in the camera's memory

    bool operator==(const SensorSettings&) const = default;
};

/// Readout of a picture of `rows` rows.
Nanoseconds readoutTime(const SensorRow& sensor, std::int64_t rows);

/// Time that `payload` bytes need at `bytesPerSecond`; never zero.
Nanoseconds transferTime(std::uint64_t payload, std::int64_t bytesPerSecond);

/// What of a frame takes time.
struct FrameLoad {
    std::int64_t rows = 0;
    std::uint64_t bytes = 0;
};

/// Highest rate in Hz. `bytesPerSecond` 0: the network does not matter.
double frameRateLimit(const SensorRow& sensor, const FrameLoad& load, double exposureUs,
                      std::int64_t bytesPerSecond);

/// Nearest rate whose period is a whole number of microseconds and that is not above `limit`.
double rateOnGrid(double rate, double limit);

/// The exposures of one acquisition, one after the other. Not synchronised.
class ExposureAgenda {
  public:
    enum class State { Idle, Running, Stopping };

    /// `lineHigh`: the signal at the camera's line now.
    void start(Nanoseconds now, const SensorSettings& settings, bool lineHigh);
    /// No exposure starts at or after `now`; the acquisition ends with `finish`.
    void stop(Nanoseconds now);
    void finish() { m_state = State::Idle; }
    /// Settings changed: what was not exposed before `now` is not made up for.
    void settle(Nanoseconds now, const SensorSettings& settings, bool lineHigh);
    void hold(bool hold, Nanoseconds now);
    void softwareTrigger(Nanoseconds now);
    /// The signal at the line that triggers has changed. At most kPendingTriggers delayed triggers are under
    /// way; more are ignored.
    void lineEdge(Nanoseconds at, bool rising, const SensorSettings& settings);
    /// When the next delayed trigger takes effect; kNever for none.
    Nanoseconds nextTrigger() const;
    void takeTrigger(const SensorSettings& settings, const CameraClock& clock);

    State state() const { return m_state; }
    /// Exposures since the start.
    std::int64_t exposed() const { return m_exposed; }
    /// True start of the next exposure, if any is due without further signals.
    std::optional<Nanoseconds> next(const SensorSettings& settings, const CameraClock& clock) const;
    /// Takes the exposure that `next` announced.
    void expose(Nanoseconds start, const SensorSettings& settings, const CameraClock& clock);
    /// From when on a trigger starts the next exposure at once.
    Nanoseconds readyAt(const SensorSettings& settings, const CameraClock& clock) const;

  private:
    /// Between the command and the first exposure.
    static constexpr Nanoseconds kStartDelay = 4'200;
    static constexpr std::size_t kPendingTriggers = 16;

    void trigger(Nanoseconds at, const SensorSettings& settings, const CameraClock& clock);
    /// Between two starts, by the camera's own clock.
    static Nanoseconds leastSpan(const SensorSettings& settings);

    State m_state = State::Idle;
    bool m_held = false;
    Nanoseconds m_notBefore = 0;
    Nanoseconds m_firstAt = 0;
    Nanoseconds m_stopAt = 0;
    std::optional<Nanoseconds> m_last;
    Nanoseconds m_lastOwn = 0;  // the last start by the camera's clock, free of rounding
    std::optional<Nanoseconds> m_triggered;
    std::optional<Nanoseconds> m_activeSince;  // of a signal that triggers by its level
    std::array<Nanoseconds, kPendingTriggers> m_delayed;
    std::size_t m_firstDelayed = 0;
    std::size_t m_delayedCount = 0;
    std::int64_t m_exposed = 0;
};

}  // namespace simulator
