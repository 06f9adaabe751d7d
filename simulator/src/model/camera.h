/// A camera as long as it has power: features, clock, and what its settings make of the sensor. Whether
/// and by whom it is open is not its business.
#pragma once

#include <mutex>
#include <string>

#include "auto_functions.h"
#include "camera_clock.h"
#include "camera_event.h"
#include "camera_memory.h"
#include "camera_row.h"
#include "clock.h"
#include "feature_table.h"
#include "sensor.h"

namespace simulator {

/// Everything but `row` and `mutex` is covered by the mutex.
class Camera {
  public:
    Camera(const CameraRow& row, const OscillatorRow& oscillator, Nanoseconds powerUp);

    const CameraRow& row() const { return m_row; }
    std::mutex& mutex() { return m_mutex; }

    FeatureTable& features() { return m_features; }
    /// The name that a user gave the camera; may be empty.
    std::string userName() const;
    CameraMemory& memory() { return m_memory; }
    const CameraClock& clock() const { return m_clock; }
    const SensorSettings& sensor() const { return m_sensor; }

    /// A value that the camera rounds to its own grid.
    void round(const Feature& feature, FeatureValue& value) const;
    /// Recomputes everything that depends on settings.
    void settle();

    bool isAcquiring() const { return m_acquiring; }
    void setAcquiring(bool acquiring) { m_acquiring = acquiring; }

    bool notifies(CameraEvent event) const { return (m_notified >> static_cast<unsigned>(event) & 1) != 0; }

    void resetClock(Nanoseconds now) { m_clock.reset(now); }
    /// The camera's clock becomes another one, which starts now.
    void replaceClock(const OscillatorRow& oscillator, Nanoseconds now);
    void seedClock(std::uint64_t seed) { m_clock.setSeed(seed); }
    void latchClock(Nanoseconds now);
    void adjustPacketSize();

    void setScene(const Scene& scene) { m_scene = scene; }
    /// Lets the automatic functions work. Bits of AutomaticChange.
    unsigned noteExposure();
    /// The statistics of a new acquisition.
    void resetStatistics();
    void count(const char* statistic);
    void noteStamp(std::uint64_t ticks);

  private:
    PictureShape shape() const;
    void settleRanges();
    void settleTiming(const PictureShape& shape);
    void settleTrigger();
    void settleEvents();
    std::int64_t frameLimit() const;

    const CameraRow& m_row;
    std::mutex m_mutex;
    FeatureTable m_features;
    CameraMemory m_memory;
    CameraClock m_clock;
    SensorSettings m_sensor;
    bool m_acquiring = false;
    AutoFunctions m_autoFunctions;
    Scene m_scene;
    std::uint32_t m_notified = 0;  // a bit per CameraEvent
    std::uint64_t m_lastTicks = 0;
};

}  // namespace simulator
