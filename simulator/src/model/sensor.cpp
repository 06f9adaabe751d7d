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

void ExposureAgenda::start(Nanoseconds now) {
    m_state = State::Running;
    m_notBefore = now + kStartDelay;
    m_last.reset();
    m_triggered.reset();
    m_exposed = 0;
}

void ExposureAgenda::stop(Nanoseconds now) {
    if (m_state != State::Running) return;
    m_state = State::Stopping;
    m_stopAt = now;
}

void ExposureAgenda::settle(Nanoseconds now) {
    m_notBefore = std::max(m_notBefore, now);
}

void ExposureAgenda::hold(bool hold, Nanoseconds now) {
    if (m_held && !hold) settle(now);
    m_held = hold;
}

void ExposureAgenda::softwareTrigger(Nanoseconds now) {
    if (m_state == State::Running) m_triggered = now;
}

std::optional<Nanoseconds> ExposureAgenda::next(const SensorSettings& settings) const {
    if (m_state == State::Idle || m_held || settings.trigger == TriggerKind::External) return std::nullopt;
    Nanoseconds start = m_notBefore;
    if (m_last) {
        const bool paced = settings.trigger == TriggerKind::FixedRate;
        const Nanoseconds period = paced ? settings.period : 0;
        start = std::max(start, *m_last + std::max(period, settings.shortestPeriod));
    }
    if (settings.trigger == TriggerKind::Software) {
        if (!m_triggered) return std::nullopt;
        start = std::max(start, *m_triggered);
    }
    if (m_state == State::Stopping && start >= m_stopAt) return std::nullopt;
    return start;
}

void ExposureAgenda::expose(Nanoseconds start, const SensorSettings& settings) {
    m_last = start;
    m_triggered.reset();
    ++m_exposed;
    if (settings.frameLimit > 0 && m_exposed >= settings.frameLimit) stop(start + 1);
}

}  // namespace simulator
