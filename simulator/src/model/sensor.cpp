#include "sensor.h"

#include <algorithm>
#include <cmath>

namespace simulator {

namespace {

double readoutSeconds(const SensorRow& sensor, std::int64_t rows) {
    return static_cast<double>(rows) * sensor.rowSeconds +
           static_cast<double>(sensor.height - rows) * sensor.skippedRowSeconds + sensor.readoutSeconds;
}

}  // namespace

Nanoseconds readoutTime(const SensorRow& sensor, std::int64_t rows) {
    return std::llround(readoutSeconds(sensor, rows) * 1e9);
}

Nanoseconds transferTime(std::uint64_t payload, std::int64_t bytesPerSecond) {
    const double seconds = static_cast<double>(payload) / static_cast<double>(bytesPerSecond);
    return std::max<Nanoseconds>(1, std::llround(seconds * 1e9));
}

double frameRateLimit(const SensorRow& sensor, const FrameLoad& load, double exposureUs,
                      std::int64_t bytesPerSecond) {
    double slowest =
        std::max(readoutSeconds(sensor, load.rows), (exposureUs + sensor.shortestExposureUs) * 1e-6);
    if (bytesPerSecond > 0) {
        slowest = std::max(slowest, static_cast<double>(load.bytes) / static_cast<double>(bytesPerSecond));
    }
    return 1 / slowest;
}

double rateOnGrid(double rate, double limit) {
    double period = std::max(1.0, std::round(1e6 / rate));
    if (1e6 / period > limit) period += 1;
    return 1e6 / period;
}

void ExposureAgenda::start(Nanoseconds now, const SensorSettings& settings, bool lineHigh) {
    m_state = State::Running;
    m_notBefore = m_firstAt = now + kStartDelay;
    m_last.reset();
    m_triggered.reset();
    m_activeSince.reset();
    if (settings.trigger == TriggerKind::External && isActive(settings.activation, lineHigh)) {
        m_activeSince = now;
    }
    m_delayedCount = 0;
    m_exposed = 0;
}

void ExposureAgenda::stop(Nanoseconds now) {
    if (m_state != State::Running) return;
    m_state = State::Stopping;
    m_stopAt = now;
}

void ExposureAgenda::settle(Nanoseconds now, const SensorSettings& settings, bool lineHigh) {
    m_notBefore = std::max(m_notBefore, now);
    const bool active = settings.trigger == TriggerKind::External && isActive(settings.activation, lineHigh);
    if (!active) m_activeSince.reset();
    if (active && !m_activeSince) m_activeSince = now;
}

void ExposureAgenda::hold(bool hold, Nanoseconds now) {
    if (m_held && !hold) m_notBefore = std::max(m_notBefore, now);
    m_held = hold;
}

void ExposureAgenda::softwareTrigger(Nanoseconds now) {
    if (m_state == State::Running) m_triggered = now;
}

void ExposureAgenda::lineEdge(Nanoseconds at, bool rising, const SensorSettings& settings) {
    switch (settings.activation) {
        case Activation::LevelHigh:
        case Activation::LevelLow:
            m_activeSince.reset();
            if (isActive(settings.activation, rising)) m_activeSince = at + settings.triggerDelay;
            return;
        case Activation::RisingEdge:
            if (!rising) return;
            break;
        case Activation::FallingEdge:
            if (rising) return;
            break;
        case Activation::AnyEdge:
            break;
    }
    if (m_delayedCount == kPendingTriggers) return;
    m_delayed[(m_firstDelayed + m_delayedCount++) % kPendingTriggers] = at + settings.triggerDelay;
}

Nanoseconds ExposureAgenda::nextTrigger() const {
    return m_delayedCount > 0 ? m_delayed[m_firstDelayed] : kNever;
}

void ExposureAgenda::takeTrigger(const SensorSettings& settings, const CameraClock& clock) {
    const Nanoseconds at = m_delayed[m_firstDelayed];
    m_firstDelayed = (m_firstDelayed + 1) % kPendingTriggers;
    --m_delayedCount;
    trigger(at, settings, clock);
}

void ExposureAgenda::trigger(Nanoseconds at, const SensorSettings& settings, const CameraClock& clock) {
    if (m_state != State::Running || m_held || m_triggered) return;
    const Nanoseconds ready = readyAt(settings, clock);
    if (at >= ready) {
        m_triggered = at;
    } else if (settings.latchesTrigger) {
        m_triggered = ready;
    }
}

Nanoseconds ExposureAgenda::leastSpan(const SensorSettings& settings) {
    const bool paced = settings.trigger == TriggerKind::FixedRate;
    return std::max(paced ? settings.period : 0, settings.shortestPeriod);
}

Nanoseconds ExposureAgenda::readyAt(const SensorSettings& settings, const CameraClock& clock) const {
    return m_last ? std::max(m_firstAt, clock.trueTime(m_lastOwn + leastSpan(settings))) : m_firstAt;
}

std::optional<Nanoseconds> ExposureAgenda::next(const SensorSettings& settings,
                                                const CameraClock& clock) const {
    if (m_state == State::Idle || m_held) return std::nullopt;
    Nanoseconds start = std::max(m_notBefore, readyAt(settings, clock));
    if (settings.trigger == TriggerKind::Software || settings.trigger == TriggerKind::External) {
        const auto& signal = m_triggered ? m_triggered : m_activeSince;
        if (!signal) return std::nullopt;
        start = std::max(start, *signal);
    }
    if (m_state == State::Stopping && start >= m_stopAt) return std::nullopt;
    return start;
}

void ExposureAgenda::expose(Nanoseconds start, const SensorSettings& settings, const CameraClock& clock) {
    // By the camera's own clock and free of rounding, so that its ticks from frame to frame are exact.
    const bool onTime = m_last && start == clock.trueTime(m_lastOwn + leastSpan(settings));
    m_lastOwn = onTime ? m_lastOwn + leastSpan(settings) : clock.ownTime(start);
    m_last = start;
    m_triggered.reset();
    ++m_exposed;
    if (settings.frameLimit > 0 && m_exposed >= settings.frameLimit) stop(start + 1);
}

}  // namespace simulator
