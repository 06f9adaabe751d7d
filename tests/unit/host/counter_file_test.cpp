#include "counter_file.h"

#include <array>

#include <gmock/gmock.h>

#include "full_files.h"
#include "host_failure.h"
#include "recording_writer.h"
#include "temporary_directory.h"

using host::ChannelInfo;
using host::CounterFile;
using host::CounterKind;
using test_support::readFile;

namespace {

class CounterFileTest : public testing::Test {
  protected:
    CounterFileTest() { m_channel.id = 3; }

    static std::array<unsigned char, 8> bytes(std::uint64_t count) {
        std::array<unsigned char, 8> sample{};
        for (std::size_t i = 0; i < sample.size(); ++i) {
            sample[i] = static_cast<unsigned char>(count >> (8 * i));
        }
        return sample;
    }
    static bool append(CounterFile& file, std::int64_t time, std::uint64_t count, std::size_t size = 8) {
        const auto sample = bytes(count);
        host::RingFrame frame;
        frame.time = time;
        frame.bytes = std::as_bytes(std::span(sample)).first(size);
        return file.append(frame);
    }
    std::string content(const char* name) const { return readFile(m_directory.path() / name); }

    test_support::TemporaryDirectory m_directory;
    ChannelInfo m_channel;
};

TEST_F(CounterFileTest, HoldsEveryCountWithItsTime) {
    CounterFile file(m_directory.path(), m_channel, CounterKind::Sent);
    EXPECT_EQ(file.counted(), 0u);
    EXPECT_TRUE(append(file, -20, 0));
    EXPECT_EQ(file.counted(), 1u);
    EXPECT_TRUE(append(file, 1000, 258));
    EXPECT_TRUE(append(file, 2000, 0x0102030405060708));
    EXPECT_TRUE(file.close());
    EXPECT_EQ(content("channel-3-sent.csv"), "host_time_ns,sent\n-20,0\n1000,258\n2000,72623859790382856\n");
    EXPECT_EQ(file.counted(), 72623859790382857u);
}

TEST_F(CounterFileTest, NamesPulsesOfATriggeredCamera) {
    m_channel.timeBase = host::TimeBase::Pulses;
    CounterFile file(m_directory.path(), m_channel, CounterKind::Received);
    EXPECT_TRUE(append(file, 4, 5));
    EXPECT_TRUE(append(file, 6, 8));
    EXPECT_TRUE(file.close());
    EXPECT_EQ(content("channel-3-received.csv"), "pulse,received\n4,5\n6,8\n");
    EXPECT_EQ(file.counted(), 8u) << "from the first one on that was received, 1 to 8";
}

TEST_F(CounterFileTest, CountsUpToTheFrameBehindTheRecording) {
    CounterFile file(m_directory.path(), m_channel, CounterKind::Sent);
    EXPECT_TRUE(append(file, 0, 5));
    EXPECT_TRUE(append(file, 1000, 6));
    host::RingFrame end;
    const auto sample = bytes(9);
    end.time = 5000;
    end.bytes = std::as_bytes(std::span(sample));
    EXPECT_TRUE(file.appendEnd(end));
    EXPECT_EQ(file.counted(), 4u);  // 5 to 8
    EXPECT_TRUE(file.close());
    EXPECT_EQ(content("channel-3-sent.csv"), "host_time_ns,sent\n0,5\n1000,6\n");
    end.bytes = end.bytes.first(3);
    EXPECT_TRUE(file.appendEnd(end));
    EXPECT_EQ(file.malformed(), 1u);
}

TEST_F(CounterFileTest, CountsSentFramesOfATriggeredCameraFromItsStart) {
    m_channel.timeBase = host::TimeBase::Pulses;
    CounterFile file(m_directory.path(), m_channel, CounterKind::Sent);
    EXPECT_EQ(file.counted(), 0u);
    EXPECT_TRUE(append(file, 3, 3));
    EXPECT_EQ(file.counted(), 4u) << "0 to 3";
}

TEST_F(CounterFileTest, TellsSkippedPulsesFromLostOnesWithoutStamps) {
    m_channel.timeBase = host::TimeBase::Pulses;
    m_channel.rate = 50;
    host::RecordingSink frames(
        10, [] {}, 0);
    host::RecordingSink sent(
        10, [] {}, 0);
    host::RecordingWriter writer(nullptr);
    frames.makeRing(4, 1);
    sent.makeRing(10, 8);
    writer.addChannel(m_channel, frames, m_directory.path());
    writer.addCounter(m_channel, CounterKind::Sent, sent, m_directory.path());
    const auto frame = [&](std::int64_t pulse, std::uint64_t number) {
        frames.addSample(pulse, "x", 1);
        sent.addSample(pulse, bytes(number).data(), 8);
    };
    frame(1, 1);  // the frame of pulse 0 is lost
    frame(4, 2);  // 2 and 3 are skipped
    frame(5, 3);
    frame(6, 4);
    frame(7, 5);   // finds no memory
    frame(12, 7);  // of 8 to 11 one sent a frame that is lost
    writer.start();
    writer.finish();
    const auto report = writer.reports()[0];
    EXPECT_EQ(report.frames, 4u);
    EXPECT_EQ(report.pulses->skipped, (std::vector<host::PulseSpan>{{2, 3}}));
    EXPECT_EQ(report.pulses->lost, (std::vector<host::PulseSpan>{{0, 0}, {7, 9}}));
    EXPECT_TRUE(report.pulses->unclear.empty());
    // The frames of the pulses 0 and 7, and the one lost between 8 and 11, taken for one in the middle: the
    // recording ends with 9.
    EXPECT_EQ(report.lost, 3u);
    EXPECT_EQ(report.lostInHost, 1u);
}

TEST_F(CounterFileTest, CountsMalformedSamples) {
    CounterFile file(m_directory.path(), m_channel, CounterKind::Sent);
    EXPECT_TRUE(append(file, 1, 1, 7));
    EXPECT_EQ(file.malformed(), 1u);
    EXPECT_EQ(file.counted(), 0u);
}

TEST_F(CounterFileTest, HoldsWholeLinesOnlyWhenTheDiskIsFull) {
    CounterFile file(m_directory.path(), m_channel, CounterKind::Sent);
    {
        // "host_time_ns,sent\n" takes 18 bytes, each line 8: the second one has room for 5.
        const test_support::FileSizeLimit limit(18 + 8 + 5);
        EXPECT_TRUE(append(file, 1000, 11));
        EXPECT_FALSE(append(file, 2000, 12));
        EXPECT_FALSE(append(file, 3000, 13));
    }
    EXPECT_EQ(file.failure(), test_support::kTooLarge);
    EXPECT_EQ(content("channel-3-sent.csv"), "host_time_ns,sent\n1000,11\n");
    EXPECT_EQ(file.counted(), 1u);
}

TEST_F(CounterFileTest, SaysWhyItCannotBeWritten) {
    try {
        const CounterFile file(m_directory.path() / "none", m_channel, CounterKind::Sent);
        ADD_FAILURE();
    } catch (const host::HostFailure& failure) {
        EXPECT_EQ(failure.code(), host::ExitCode::OutputDirectory);
        EXPECT_THAT(failure.what(), testing::HasSubstr("channel-3-sent.csv (No such file or directory)"));
    }
}

TEST_F(CounterFileTest, IsWrittenBesideTheFramesAndReported) {
    host::RecordingSink frames(1000, [] {});
    host::RecordingSink sent(1000, [] {});
    host::RecordingSink received(1000, [] {});
    host::RecordingWriter writer(nullptr);
    frames.makeRing(10, 1);
    sent.makeRing(2, 8);
    received.makeRing(10, 8);
    writer.addChannel(m_channel, frames, m_directory.path());
    writer.addCounter(m_channel, CounterKind::Sent, sent, m_directory.path());
    writer.addCounter(m_channel, CounterKind::Received, received, m_directory.path());
    const auto frame = [&](std::int64_t time, std::uint64_t number, std::uint64_t arrived) {
        frames.addSample(time, "x", 1);
        sent.addSample(time, bytes(number).data(), 8);
        received.addSample(time, bytes(arrived).data(), 8);
    };
    frame(0, 0, 1);
    frame(300, 3, 2);
    writer.start();
    writer.finish();
    const auto report = writer.reports()[0];
    ASSERT_TRUE(report.counters);
    EXPECT_EQ(report.counters->sent, 4u);
    EXPECT_EQ(report.counters->received, 2u);
    EXPECT_EQ(report.counters->unusable, 0u);
    EXPECT_EQ(content("channel-3-sent.csv"), "host_time_ns,sent\n0,0\n300,3\n");
    EXPECT_EQ(content("channel-3-received.csv"), "host_time_ns,received\n0,1\n300,2\n");
}

TEST_F(CounterFileTest, IsReportedAsUnusableWhereCountsFoundNoRoom) {
    host::RecordingSink frames(1000, [] {});
    host::RecordingSink sent(1000, [] {});
    host::RecordingWriter writer(nullptr);
    frames.makeRing(1, 1);
    sent.makeRing(1, 8);
    writer.addChannel(m_channel, frames, m_directory.path());
    writer.addCounter(m_channel, CounterKind::Sent, sent, m_directory.path());
    for (std::int64_t time = 0; time < 3; ++time) sent.addSample(time, bytes(1).data(), 8);
    writer.start();
    writer.discard();
    EXPECT_EQ(writer.reports()[0].counters->unusable, 2u);
    EXPECT_TRUE(std::filesystem::is_empty(m_directory.path()));
}

TEST_F(CounterFileTest, ThatCannotBeWrittenEndsTheRecording) {
    const test_support::FullFile full(m_directory.path() / "channel-3-sent.csv");
    EXPECT_THROW(CounterFile(m_directory.path(), m_channel, CounterKind::Sent), host::HostFailure);
}

}  // namespace
