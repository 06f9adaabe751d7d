#include "recording_writer.h"

#include <cstring>

#include <gmock/gmock.h>

#include "full_files.h"
#include "temporary_directory.h"

using host::ChannelInfo;
using host::RecordingSink;
using host::RecordingWriter;
using test_support::readFile;

namespace {

/// Takes the first byte of a picture for its number and the second for a flaw.
class FakeReader : public host::IfStampReader {
  public:
    VmbError_t read(const void* image, std::uint64_t size, VmbSimFrameStamp& stamp) const override {
        if (size < 2) return VmbErrorNotFound;
        unsigned char bytes[2];
        std::memcpy(bytes, image, 2);
        stamp = {};
        stamp.frameId = bytes[0];
        return bytes[1] == 0 ? VmbErrorSuccess : VmbErrorIncomplete;
    }
};

class RecordingWriterTest : public testing::Test {
  protected:
    static ChannelInfo channel(std::uint32_t id) {
        ChannelInfo info;
        info.id = id;
        info.rate = 50;
        info.format = "Y800";
        info.width = 8;
        info.height = 9;  // 72 bytes have room for a stamp
        return info;
    }
    void addSample(RecordingSink& sink, std::int64_t time, char number, char flaw = 0) {
        const char bytes[] = {number, flaw};
        sink.addSample(time, bytes, sizeof bytes);
    }
    void begin(RecordingWriter& writer, std::size_t slots = 100) {
        m_first.makeRing(slots, 2);
        m_second.makeRing(slots, 2);
        writer.addChannel(channel(0), m_first, m_directory.path());
        writer.addChannel(channel(1), m_second, m_directory.path());
    }
    std::string file(const char* name) const { return readFile(m_directory.path() / name); }

    test_support::TemporaryDirectory m_directory;
    RecordingWriter* m_waked = nullptr;
    RecordingSink m_first{1000, [this] { wake(); }};
    RecordingSink m_second{1000, [this] { wake(); }};

  private:
    void wake() {
        if (m_waked != nullptr) m_waked->wake();
    }
};

TEST_F(RecordingWriterTest, WritesEveryChannelToItsOwnFiles) {
    RecordingWriter writer(nullptr);
    m_waked = &writer;
    begin(writer);
    writer.start();
    addSample(m_first, 0, 'a');
    addSample(m_second, 5, 'x');
    addSample(m_first, 20, 'b');
    addSample(m_first, 1000, 'c');
    writer.finish();
    EXPECT_EQ(file("channel-0.raw"), std::string("a\0b\0", 4));
    EXPECT_EQ(file("channel-1.raw"), std::string("x\0", 2));
    EXPECT_EQ(file("channel-0.csv"), "frame,host_time_ns,offset,bytes\n0,0,0,2\n1,20,2,2\n");
    EXPECT_EQ(writer.frames(), 3u);
    EXPECT_FALSE(writer.hasFailed());

    const auto reports = writer.reports();
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].channel.id, 0u);
    EXPECT_EQ(reports[0].frames, 2u);
    EXPECT_FALSE(reports[0].silent);
    EXPECT_EQ(reports[1].frames, 1u);
    EXPECT_TRUE(reports[1].silent);
    EXPECT_FALSE(reports[0].stamped);
}

TEST_F(RecordingWriterTest, ReadsTheStampOfEveryFrame) {
    const FakeReader reader;
    RecordingWriter writer(&reader);
    begin(writer);
    addSample(m_first, 0, 1);
    addSample(m_first, 20, 2, 1);
    addSample(m_first, 40, 5);
    writer.start();
    writer.finish();
    const auto report = writer.reports()[0];
    EXPECT_TRUE(report.stamped);
    EXPECT_EQ(report.matches, 2u);
    EXPECT_EQ(report.mismatches, 1u);
    EXPECT_EQ(report.lost, 2u);
    EXPECT_EQ(writer.lost(), 2u);
}

TEST_F(RecordingWriterTest, ReadsTheStampOfTheFrameThatMarksTheEndAndDoesNotWriteIt) {
    const FakeReader reader;
    RecordingWriter writer(&reader);
    begin(writer);
    addSample(m_first, 0, 1);
    addSample(m_first, 1001, 4);
    writer.start();
    writer.finish();
    const auto report = writer.reports()[0];
    EXPECT_EQ(report.frames, 1u);
    EXPECT_EQ(report.lost, 2u);
    EXPECT_FALSE(report.silent);
    EXPECT_EQ(writer.frames(), 1u);
    EXPECT_EQ(file("channel-0.raw"), std::string("\1\0", 2));
}

TEST_F(RecordingWriterTest, LooksForNoStampInPicturesThatHaveNoRoomForIt) {
    const FakeReader reader;
    RecordingWriter writer(&reader);
    ChannelInfo small = channel(0);
    small.height = 8;  // 64 bytes
    m_first.makeRing(100, 2);
    writer.addChannel(small, m_first, m_directory.path());
    addSample(m_first, 0, 1);
    writer.start();
    writer.finish();
    EXPECT_TRUE(writer.reports()[0].tooSmall);
    EXPECT_FALSE(writer.reports()[0].stamped);
    EXPECT_EQ(writer.reports()[0].mismatches, 0u);
    EXPECT_EQ(file("channel-0.csv"), "frame,host_time_ns,offset,bytes\n0,0,0,2\n");
}

TEST_F(RecordingWriterTest, TellsFramesThatAreTooLargeFromThoseThatFoundNoRoom) {
    RecordingWriter writer(nullptr);
    begin(writer, 1);
    addSample(m_first, 0, 1);
    addSample(m_first, 1, 2);
    m_first.addSample(2, "abc", 3);
    writer.start();
    writer.finish();
    EXPECT_EQ(writer.reports()[0].lostInHost, 2u);
    EXPECT_EQ(writer.reports()[0].tooLarge, 1u);
    EXPECT_FALSE(writer.reports()[0].tooSmall);
}

TEST_F(RecordingWriterTest, CountsFramesThatFoundNoRoom) {
    RecordingWriter writer(nullptr);
    begin(writer, 2);
    for (char number = 0; number < 5; ++number) addSample(m_first, number, number);
    writer.start();
    writer.finish();
    const auto report = writer.reports()[0];
    EXPECT_EQ(report.frames, 2u);
    EXPECT_EQ(report.lost, 3u);
    EXPECT_EQ(report.lostInHost, 3u);
}

TEST_F(RecordingWriterTest, StopsAllChannelsWhenAWriteFails) {
    const test_support::FullFile full(m_directory.path() / "channel-1.raw");
    RecordingWriter writer(nullptr);
    begin(writer);
    addSample(m_first, 0, 'a');
    addSample(m_second, 0, 'x');
    addSample(m_first, 20, 'b');
    writer.start();
    writer.finish();
    EXPECT_TRUE(writer.hasFailed());
    EXPECT_EQ(writer.failure(), test_support::kNoRoom);
    EXPECT_EQ(file("channel-0.raw"), std::string("a\0", 2));
    EXPECT_EQ(file("channel-0.csv"), "frame,host_time_ns,offset,bytes\n0,0,0,2\n");
    EXPECT_EQ(file("channel-1.csv"), "frame,host_time_ns,offset,bytes\n");
    addSample(m_first, 40, 'c');
    host::RingFrame last;
    while (m_first.ring()->front(last)) {
        EXPECT_LT(last.time, 40) << "the sinks keep nothing after a failure";
        m_first.ring()->pop();
    }
}

TEST_F(RecordingWriterTest, RemovesItsFilesWhenNothingCameOfIt) {
    RecordingWriter writer(nullptr);
    begin(writer);
    writer.start();
    writer.discard();
    EXPECT_TRUE(std::filesystem::is_empty(m_directory.path()));
}

}  // namespace
