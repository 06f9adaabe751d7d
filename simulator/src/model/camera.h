/// A camera as long as it has power: features, clock, and what its settings make of the sensor. Whether
/// and by whom it is open is not its business.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "auto_functions.h"
#include "camera_clock.h"
#include "camera_events.h"
#include "camera_memory.h"
#include "camera_row.h"
#include "chunk_data.h"
#include "clock.h"
#include "feature_table.h"
#include "frame_packets.h"
#include "sensor.h"
#include "user_sets.h"

namespace simulator {

/// Everything but `row` and `mutex` is covered by the mutex.
class Camera {
  public:
    /// With the settings that `sets` has for power-up.
    Camera(const CameraRow& row, const OscillatorRow& oscillator, Nanoseconds powerUp,
           std::shared_ptr<UserSets> sets);

    const CameraRow& row() const { return m_row; }
    std::mutex& mutex() { return m_mutex; }

    FeatureTable& features() { return m_features; }
    /// The name that a user gave the camera; may be empty.
    std::string userName() const;
    CameraMemory& memory() { return m_memory; }
    const CameraClock& clock() const { return m_clock; }
    const SensorSettings& sensor() const { return m_sensor; }
    const StreamSettings& stream() const { return m_stream; }

    /// Sets a feature to what it shall have at power-up. InvalidAccess for what cannot be set, or what a
    /// camera keeps without power.
    Result preset(const PowerUpValue& preset);
    /// A value that the camera rounds to its own grid.
    void round(const Feature& feature, FeatureValue& value) const;
    /// Recomputes everything that depends on settings.
    void settle();
    /// The same after a client set a feature, which may be another view of one that counts.
    void settleAfter(const Feature& written);
    /// The commands on the selected user set.
    Result saveUserSet();
    void loadUserSet();

    bool isAcquiring() const { return m_acquiring; }
    void setAcquiring(bool acquiring) { m_acquiring = acquiring; }

    /// Does the client want to know?
    bool notifies(CameraEvent event) const {
        return (m_notified >> (static_cast<std::int64_t>(event) - CameraEventRow::kNumberOfBitZero) & 1) != 0;
    }

    /// Without effect on the master of the network's time.
    void resetClock(Nanoseconds now);
    /// The camera's clock becomes another one, which starts now.
    void replaceClock(const OscillatorRow& oscillator, Nanoseconds now);
    void seedClock(std::uint64_t seed) { m_clock.setSeed(seed); }
    void latchClock(Nanoseconds now);
    /// To the largest one that passes.
    void adjustPacketSize(std::int64_t largest);

    void setScene(const Scene& scene) { m_scene = scene; }
    /// Lets the automatic functions work. Bits of AutomaticChange.
    unsigned noteExposure();
    /// Data behind the picture of an acquisition's n-th frame.
    ChunkData chunkData(std::int64_t nth) const;

    /// The statistics of an acquisition that starts now.
    void resetStatistics(Nanoseconds now);
    void count(const char* statistic, std::int64_t times = 1);
    /// A frame reached the client at true time `now`.
    void noteFrame(std::uint64_t ticks, Nanoseconds now, const PacketTally& packets, bool complete);
    void noteElapsed(Nanoseconds now);

  private:
    PictureShape shape() const;
    void settleViews();
    void settleEventBits();
    void settleSize();
    void settleSubregion();
    void clampTo(const char* name, std::int64_t max);
    void settleTiming(const PictureShape& shape);
    void settleTrigger();
    std::int64_t frameLimit() const;

    const CameraRow& m_row;
    std::mutex m_mutex;
    FeatureTable m_features;
    CameraMemory m_memory;
    CameraClock m_clock;
    SensorSettings m_sensor;
    StreamSettings m_stream;
    bool m_acquiring = false;
    AutoFunctions m_autoFunctions;
    Scene m_scene;
    std::int64_t m_notified = 0;  // as EventsEnable1
    const std::shared_ptr<UserSets> m_sets;
    std::uint64_t m_lastTicks = 0;
    Nanoseconds m_lastFrameAt = 0;
    std::optional<Nanoseconds> m_acquiringSince;
};

}  // namespace simulator
