#include "zelt_gige_camera_channel_frame_receiver.h"

#include "assertion.h"
#include "zelt_gige_log.h"

namespace zelt_gige_camera {
namespace {

/// A synchronization point loses this much quality per microsecond that its frame waited.
constexpr double kQualityPerMicrosecond = 0.01;

/// Truncated. Whole seconds by themselves: at the fastest clock the product of a few seconds would not fit 64
/// bits with their millionths in it.
std::uint64_t elapsedTicks(std::int64_t microseconds, const Rational& tickFrequency) {
    const auto whole = [](const Rational& ticks) {
        return static_cast<std::uint64_t>(boost::rational_cast<std::int64_t>(ticks));
    };
    return whole(microseconds / kMicrosecondsPerSecond * tickFrequency) +
           whole(Rational(microseconds % kMicrosecondsPerSecond, kMicrosecondsPerSecond) * tickFrequency);
}

}  // namespace

void FrameReceiver::begin(std::unique_ptr<ClockSyncBase> generator) {
    m_timestamp_generator = std::move(generator);
    m_previous_timestamp = kNoTimestamp;
    m_running = true;
    if (m_counters != nullptr) m_counters->restart();
}

void FrameReceiver::reset() {
    m_timestamp_generator.reset();
    m_previous_timestamp = kNoTimestamp;
    m_running = false;
}

void FrameReceiver::setReference(std::uint64_t timestamp, std::uint64_t frameid) {
    if (m_timestamp_generator == nullptr) return;
    m_timestamp_generator->setReference(timestamp, frameid);
    // A late end event of the acquisition before must not silence this one.
    m_running = true;
}

void FrameReceiver::receive(const zelt_gige_api::CameraFrame& frame, std::optional<std::int64_t> arrived) {
    if (m_timestamp_generator == nullptr) return;
    ZELT_ASSERT(frame.frameid >= m_timestamp_generator->getStartFrameId());
    if (!m_running) return;
    const std::int64_t time = m_timestamp_generator->needsSyncPoint(frame)
                                  ? timestampWithSyncPoint(frame, arrived)
                                  : m_timestamp_generator->timestampFromSync(frame);
    if (time < m_previous_timestamp) {
        GIGE_LOG(Detail) << "Frame " << frame.frameid << " with timestamp " << time
                         << " was dropped (prev. timestamp: " << m_previous_timestamp << ")";
        return;
    }
    if (m_sink != nullptr) m_sink->addSample(time, frame.buffer, frame.imageSize);
    if (m_counters != nullptr) {
        m_counters->count(time, frame.frameid - m_timestamp_generator->getStartFrameId());
    }
    m_previous_timestamp = time;
}

std::int64_t FrameReceiver::timestampWithSyncPoint(const zelt_gige_api::CameraFrame& frame,
                                                   std::optional<std::int64_t> arrived) {
    const std::int64_t begin = arrived ? *arrived : m_counter.now();
    const std::uint64_t now = m_master_clock != nullptr ? m_master_clock->getTime() : 0;
    const std::int64_t microseconds =
        (m_counter.now() - begin) * kMicrosecondsPerSecond / m_counter.frequency();
    const auto cameraTime = static_cast<std::int64_t>(
        frame.timestamp + elapsedTicks(microseconds, m_timestamp_generator->getTickFrequency()));
    const auto hostTime = static_cast<std::int64_t>(now);
    m_timestamp_generator->addSyncPoint(cameraTime, hostTime,
                                        static_cast<double>(microseconds) * kQualityPerMicrosecond);
    return m_timestamp_generator->computeTimestamp(frame, cameraTime, hostTime);
}

}  // namespace zelt_gige_camera
