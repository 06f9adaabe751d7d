#include "zelt_gige_camera_channel_frame_receiver.h"

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt_gige_api::CameraFrame;
using zelt_gige_camera::ClockSyncBase;
using zelt_gige_camera::FrameReceiver;
using zelt_gige_camera::Rational;

class FakeCounter final : public platform::PerformanceCounter {
  public:
    std::int64_t frequency() noexcept override { return 10'000'000; }
    std::int64_t now() noexcept override { return std::exchange(reading, reading + step); }
    std::int64_t reading = 0;
    std::int64_t step = 0;
};

class FakeClock final : public zelt::IfMasterClock {
  public:
    double getRate() override { return 1e9; }
    std::uint64_t getTime() override { return time; }
    std::uint64_t time = 5'000;
};

struct SyncPoint {
    std::int64_t cameraTime, hostTime;
    double quality;
};

/// Answers what the test wants and records what it was asked.
struct Script {
    bool needsSyncPoint = false;
    std::int64_t nextTime = 0;
    std::vector<SyncPoint> points;
    std::vector<SyncPoint> computed;  ///< quality unused
    int fromSync = 0;
};

class ScriptedSync final : public ClockSyncBase {
  public:
    explicit ScriptedSync(Script& script, Rational ticks) : ClockSyncBase(ticks, 1.0), m_script(script) {}
    double getRate() const override { return 1.0; }
    std::int64_t computeTimestamp(const CameraFrame&, std::int64_t camera, std::int64_t host) override {
        m_script.computed.push_back({camera, host, 0.0});
        return m_script.nextTime;
    }
    std::int64_t timestampFromSync(const CameraFrame&) override {
        ++m_script.fromSync;
        return m_script.nextTime;
    }
    bool needsSyncPoint(const CameraFrame&) const override { return m_script.needsSyncPoint; }
    void addSyncPoint(std::int64_t camera, std::int64_t host, double quality) override {
        m_script.points.push_back({camera, host, quality});
    }

  private:
    Script& m_script;
};

class Sink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t time, const void*, std::uint64_t size) override {
        times.push_back(time);
        sizes.push_back(size);
    }
    std::vector<std::int64_t> times;
    std::vector<std::uint64_t> sizes;
};

class Receiver : public ::testing::Test {
  protected:
    Receiver() {
        receiver.setSink(&sink);
        receiver.setMasterClock(clock);
    }
    void begin(Rational ticks = Rational(1'000'000'000)) {
        receiver.begin(std::make_unique<ScriptedSync>(script, ticks));
    }
    void receive(std::uint64_t id, std::int64_t time, std::optional<std::int64_t> arrived = 0) {
        script.nextTime = time;
        CameraFrame frame;
        frame.frameid = id;
        frame.timestamp = 1'000'000;
        frame.imageSize = 77;
        receiver.receive(frame, arrived);
    }

    FakeCounter counter;
    std::shared_ptr<FakeClock> clock = std::make_shared<FakeClock>();
    Script script;
    Sink sink;
    FrameReceiver receiver{counter};
};

TEST_F(Receiver, IgnoresFramesBeforeAnAcquisitionBegins) {
    receive(1, 10);
    EXPECT_THAT(sink.times, IsEmpty());
}

TEST_F(Receiver, ConvertsAFrameThatNeedsNoSyncPoint) {
    begin();
    receive(1, 10);
    EXPECT_THAT(sink.times, ElementsAre(10));
    EXPECT_THAT(sink.sizes, ElementsAre(77u));
    EXPECT_EQ(script.fromSync, 1);
    EXPECT_THAT(script.points, IsEmpty());
}

TEST_F(Receiver, TakesASyncPointAtTheCameraTickOfNow) {
    script.needsSyncPoint = true;
    // 2504 counts at 10 MHz are 250.4 µs, of which whole microseconds count.
    counter.reading = 2504;
    begin();
    receive(1, 10);
    ASSERT_EQ(script.points.size(), 1u);
    EXPECT_EQ(script.points[0].cameraTime, 1'000'000 + 250'000);
    EXPECT_EQ(script.points[0].hostTime, 5'000);
    EXPECT_DOUBLE_EQ(script.points[0].quality, 2.5);
    ASSERT_EQ(script.computed.size(), 1u);
    EXPECT_EQ(script.computed[0].cameraTime, 1'250'000);
    EXPECT_EQ(script.computed[0].hostTime, 5'000);
    EXPECT_EQ(script.fromSync, 0);
}

TEST_F(Receiver, TruncatesTheCameraTickOfNow) {
    script.needsSyncPoint = true;
    counter.reading = 19;
    begin(Rational(1'999'999));
    receive(1, 10);
    // 1 µs at 1,999,999 ticks per second.
    EXPECT_EQ(script.points.at(0).cameraTime, 1'000'001);
    EXPECT_DOUBLE_EQ(script.points.at(0).quality, 0.01);
}

TEST_F(Receiver, HasHostTimeZeroWithoutAClock) {
    receiver.setMasterClock(nullptr);
    EXPECT_FALSE(receiver.hasMasterClock());
    script.needsSyncPoint = true;
    begin();
    receive(1, 10);
    EXPECT_EQ(script.points.at(0).hostTime, 0);
}

TEST_F(Receiver, DeliversAFrameWhoseTimeEqualsThePreviousOneAndDropsASmallerOne) {
    begin();
    receive(1, 10);
    receive(2, 10);
    receive(3, 9);
    receive(4, 11);
    EXPECT_THAT(sink.times, ElementsAre(10, 10, 11));
}

TEST_F(Receiver, DropsNothingBeforeTheFirstFrame) {
    begin();
    receive(1, std::numeric_limits<std::int64_t>::min());
    EXPECT_THAT(sink.times, ElementsAre(std::numeric_limits<std::int64_t>::min()));
}

TEST_F(Receiver, ForgetsThePreviousTimeWithANewAcquisition) {
    begin();
    receive(1, 1000);
    receiver.reset();
    receive(2, 2000);
    begin();
    receive(1, 0);
    EXPECT_THAT(sink.times, ElementsAre(1000, 0));
}

TEST_F(Receiver, IgnoresFramesAfterTheAcquisitionEnded) {
    begin();
    receiver.stop();
    receive(1, 10);
    EXPECT_THAT(sink.times, IsEmpty());
    EXPECT_EQ(script.fromSync, 0);
}

TEST_F(Receiver, RunsAgainWithTheStartEventAfterALateEndEvent) {
    begin();
    receiver.stop();
    receiver.setReference(500, 3);
    receive(3, 10);
    EXPECT_THAT(sink.times, ElementsAre(10));
}

TEST_F(Receiver, DoesNotBeginWithAStartEventAlone) {
    receiver.setReference(500, 3);
    EXPECT_FALSE(receiver.isRunning());
    receive(3, 10);
    EXPECT_THAT(sink.times, IsEmpty());
}

TEST_F(Receiver, AssertsThatAFrameIsNotBeforeTheStart) {
    begin();
    receiver.setReference(500, 3);
    const test_support::AssertionCapture assertions;
    receive(3, 10);
    EXPECT_THAT(assertions.failures(), IsEmpty());
    receive(2, 11);
    EXPECT_THAT(assertions.expressions(),
                ElementsAre("frame.frameid >= m_timestamp_generator->getStartFrameId()"));
    EXPECT_THAT(sink.times, ElementsAre(10, 11));
}

TEST_F(Receiver, StoresTheTimeOfAFrameThatNoSinkTook) {
    begin();
    receiver.setSink(nullptr);
    receive(1, 1000);
    receiver.setSink(&sink);
    receive(2, 999);
    EXPECT_THAT(sink.times, IsEmpty());
}

TEST_F(Receiver, DatesASyncPointRightAfterALongWaitAtTheFastestClock) {
    begin(Rational(999'999'999'989));
    script.needsSyncPoint = true;
    counter.reading = 999'999'999;  // 99.9999999 s, of which the last tenth of a microsecond is dropped
    receive(1, 10);
    ASSERT_EQ(script.points.size(), 1u);
    // 999'999'999'989 * 99.999999 s = 99'999'998'998'900.000011
    EXPECT_EQ(script.points[0].cameraTime, 1'000'000 + 99'999'998'998'900);
}

TEST_F(Receiver, AFrameThatDidNotWaitArrivedWhenItsSyncPointBegan) {
    begin();
    script.needsSyncPoint = true;
    counter.reading = 5'000'000;
    counter.step = 20;
    receive(1, 10, std::nullopt);
    ASSERT_EQ(script.points.size(), 1u);
    // From one reading to the next: 2 us.
    EXPECT_EQ(script.points[0].cameraTime, 1'002'000);
    EXPECT_DOUBLE_EQ(script.points[0].quality, 0.02);
}

}  // namespace
