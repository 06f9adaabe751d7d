// Long recordings with skipped triggers, lost frames, double triggers and odd frequencies, against the pulses
// that the frames were made from, and against the rules in exact arithmetic.
#include <random>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "log_capture.h"
#include "zelt_gige_triggered_clock_sync.h"

namespace {

using test_support::AssertionCapture;
using test_support::LogCapture;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using zelt_gige_api::CameraFrame;
using zelt_gige_camera::Rational;
using zelt_gige_camera::TriggeredClockSync;

__extension__ using Wide = __int128;

constexpr int kFrames = 20'000;
constexpr std::uint64_t kStartFrame = 3;

struct Frequencies {
    std::int64_t ticks;  // per second
    std::int64_t pulses;
    std::int64_t perSeconds;
};

void PrintTo(const Frequencies& f, std::ostream* stream) {
    *stream << f.ticks << " ticks/s, " << f.pulses << '/' << f.perSeconds << " Hz";
}

/// The rules for one frame after the other, in whole numbers: p - 1 is over / period.
class Model {
  public:
    explicit Model(const Frequencies& f) : m_frequencies(f) {}

    std::int64_t receive(Wide time, Wide id) {
        if (!m_first) judge(time, id);
        m_first = false;
        m_time = time;
        m_id = id;
        return static_cast<std::int64_t>(m_offset - Wide{kStartFrame} + id);
    }
    std::vector<std::string> lines;
    std::vector<std::string> failures;

  private:
    void judge(Wide time, Wide id) {
        const Wide period = Wide{m_frequencies.ticks} * m_frequencies.perSeconds;
        const Wide over = (time - m_time) * m_frequencies.pulses - period;
        const Wide halfUp = ((over < 0 ? -over : over) * 2 + period) / (period * 2);
        const Wide skipped = over < 0 ? -halfUp : halfUp;
        const Wide dropped = id - m_id - 1;
        const double exact =
            static_cast<double>(static_cast<long double>(over) / static_cast<long double>(period));
        std::ostringstream line;
        if (skipped > dropped) {
            line << "Detected " << exact << " skipped and " << static_cast<long>(dropped)
                 << " dropped frames at #" << static_cast<long>(id);
            m_offset += skipped - dropped;
        } else if (skipped < 0) {
            line << "Detected " << -exact << " multi-triggered frames at #" << static_cast<long>(id);
            m_offset += skipped;
            const std::string count = std::to_string(static_cast<long>(dropped));
            if (dropped != 0) failures.push_back("dropped_frameids != 0 (" + count + " != 0)");
        }
        if (!line.str().empty()) lines.push_back(line.str());
    }

    const Frequencies m_frequencies;
    bool m_first = true;
    Wide m_time = 0;
    Wide m_id = 0;
    Wide m_offset = 0;
};

/// A camera on a pulse train: where it is in pulses, ticks and ids.
class Camera {
  public:
    explicit Camera(const Frequencies& f) : m_frequencies(f) {}

    /// Numbers from 0 to `count` - 1; the same on every machine.
    std::int64_t draw(std::int64_t count) {
        return static_cast<std::int64_t>(m_random() % static_cast<std::uint64_t>(count));
    }
    void pass(std::int64_t pulses, std::int64_t ids) {
        m_pulse += pulses;
        m_id += ids;
    }
    /// The frame of the current pulse, up to `percent` of a period beside it.
    CameraFrame frame(std::int64_t percent) {
        const Wide period = Wide{m_frequencies.ticks} * m_frequencies.perSeconds / m_frequencies.pulses;
        const Wide jitter = period * (draw(2 * percent + 1) - percent) / 100;
        return frameAt(Wide{m_pulse} * m_frequencies.ticks * m_frequencies.perSeconds / m_frequencies.pulses +
                       jitter);
    }
    /// A frame too many, `percent` of a period after the one before.
    CameraFrame frameAfter(std::int64_t percent) {
        const Wide period = Wide{m_frequencies.ticks} * m_frequencies.perSeconds / m_frequencies.pulses;
        return frameAt(m_time + period * percent / 100 + 1);
    }
    std::int64_t pulse() const { return m_pulse; }

  private:
    CameraFrame frameAt(Wide time) {
        m_time = time;
        CameraFrame frame;
        frame.timestamp = static_cast<std::uint64_t>(time);
        frame.frameid = static_cast<std::uint64_t>(m_id);
        return frame;
    }

    const Frequencies m_frequencies;
    std::mt19937_64 m_random{20261121};
    std::int64_t m_pulse = 10;
    std::int64_t m_id = 10;
    Wide m_time = 0;
};

class TriggeredRecording : public ::testing::TestWithParam<Frequencies> {
  protected:
    TriggeredRecording() { m_sync.setReference(0, kStartFrame); }

    Camera m_camera{GetParam()};
    TriggeredClockSync m_sync{Rational(GetParam().ticks), 1.0,
                              Rational(GetParam().pulses, GetParam().perSeconds)};
    AssertionCapture m_assertions;
    LogCapture m_log;
};

// Two frames may stray by 40 % of a period together and still be told apart from their neighbours.
TEST_P(TriggeredRecording, GivesEveryFrameItsPulseThroughSkippedTriggersAndLostFrames) {
    int wrong = 0;
    for (int i = 0; i < kFrames; ++i) {
        const CameraFrame frame = m_camera.frame(20);
        const auto expected = m_camera.pulse() - std::int64_t{kStartFrame};
        if (m_sync.timestampFromSync(frame) != expected) ++wrong;
        const std::int64_t lost = m_camera.draw(10) == 0 ? m_camera.draw(50) : 0;
        const std::int64_t skipped = m_camera.draw(10) == 0 ? m_camera.draw(50) : 0;
        m_camera.pass(1 + lost + skipped, 1 + lost);
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_THAT(m_assertions.failures(), IsEmpty());
}

TEST_P(TriggeredRecording, FollowsTheRulesThroughAnything) {
    Model model(GetParam());
    int wrong = 0;
    const auto receive = [&](const CameraFrame& frame) {
        if (m_sync.timestampFromSync(frame) != model.receive(frame.timestamp, frame.frameid)) ++wrong;
    };
    for (int i = 0; i < kFrames; ++i) {
        receive(m_camera.frame(45));
        const std::int64_t event = m_camera.draw(20);
        if (event == 0) {
            m_camera.pass(0, 1 + (m_camera.draw(4) == 0 ? m_camera.draw(4) : 0));
            receive(m_camera.frameAfter(m_camera.draw(10) + 1));
            m_camera.pass(2, 1);
        } else if (event == 1) {
            m_camera.pass(2 + m_camera.draw(1000), 1);
        } else if (event == 2) {
            const std::int64_t lost = m_camera.draw(1000);
            m_camera.pass(2 + lost, 2 + lost);
        } else if (event == 3) {
            m_camera.pass(2 + m_camera.draw(100), 1 + m_camera.draw(100));
        } else {
            m_camera.pass(1, 1);
        }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(model.lines.size(), std::size_t{kFrames} / 20);
    EXPECT_THAT(m_log.texts(UniLogSeverityLevel::Detail), ElementsAreArray(model.lines));
    std::vector<std::string> failures;
    for (const auto& failure : m_assertions.failures()) failures.push_back(failure.message.value_or("none"));
    EXPECT_GT(failures.size(), 0u);
    EXPECT_THAT(failures, ElementsAreArray(model.failures));
}

INSTANTIATE_TEST_SUITE_P(
    Frequencies, TriggeredRecording,
    ::testing::Values(Frequencies{1'000'000'000, 100, 1}, Frequencies{1'000'000'000, 30'000, 1001},
                      Frequencies{1'000'000'000, 1, 3}, Frequencies{1'000'000'000, 999'983, 1009},
                      Frequencies{8'000'000, 100, 1}, Frequencies{8'000'000, 30'000, 1001},
                      Frequencies{8'000'000, 1, 3}, Frequencies{33'333'333, 100, 1},
                      Frequencies{33'333'333, 30'000, 1001}, Frequencies{33'333'333, 1, 3}));

}  // namespace
