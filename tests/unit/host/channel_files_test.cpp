#include "channel_files.h"

#include <gmock/gmock.h>

#include "full_files.h"
#include "host_failure.h"
#include "temporary_directory.h"

using host::ChannelFiles;
using host::RingFrame;
using host::StampReading;
using test_support::readFile;
using testing::HasSubstr;

namespace {

class ChannelFilesTest : public testing::Test {
  protected:
    static bool append(ChannelFiles& files, std::int64_t time, const std::string& bytes,
                       const StampReading& reading = {}) {
        RingFrame frame;
        frame.time = time;
        frame.bytes = std::as_bytes(std::span(bytes));
        return files.append(frame, reading);
    }
    std::string raw() const { return readFile(m_directory.path() / "channel-3.raw"); }
    std::string table() const { return readFile(m_directory.path() / "channel-3.csv"); }

    test_support::TemporaryDirectory m_directory;
};

TEST_F(ChannelFilesTest, WritesFramesBackToBackWithOneLineEach) {
    ChannelFiles files(m_directory.path(), 3, false);
    EXPECT_TRUE(append(files, 1000, "abc"));
    EXPECT_TRUE(append(files, -5, "de"));
    EXPECT_TRUE(append(files, 3000, ""));
    EXPECT_TRUE(append(files, 4000, "f"));
    EXPECT_TRUE(files.close());
    EXPECT_EQ(raw(), "abcdef");
    EXPECT_EQ(table(),
              "frame,host_time_ns,offset,bytes\n"
              "0,1000,0,3\n"
              "1,-5,3,2\n"
              "2,3000,5,0\n"
              "3,4000,5,1\n");
    EXPECT_EQ(files.frames(), 4u);
    EXPECT_EQ(files.first().offset, 0u);
    EXPECT_EQ(files.first().bytes, 3u);
    EXPECT_EQ(files.last().offset, 5u);
    EXPECT_EQ(files.last().bytes, 1u);
}

TEST_F(ChannelFilesTest, NamesPulsesInsteadOfTimes) {
    ChannelFiles files(m_directory.path(), 3, false, host::TimeBase::Pulses);
    EXPECT_TRUE(append(files, 0, "abc"));
    EXPECT_TRUE(append(files, 2, "abc"));
    EXPECT_TRUE(files.close());
    EXPECT_EQ(table(), "frame,pulse,offset,bytes\n0,0,0,3\n1,2,3,3\n");
}

TEST_F(ChannelFilesTest, AddsWhatTheStampsSay) {
    ChannelFiles files(m_directory.path(), 3, true);
    StampReading reading;
    reading.result = VmbErrorSuccess;
    reading.stamp.frameId = 17;
    reading.stamp.cameraTicks = 123456789012;
    reading.stamp.exposureStartNs = 987654321098;
    EXPECT_TRUE(append(files, 1, "a", reading));
    reading.result = VmbErrorIncomplete;
    EXPECT_TRUE(append(files, 2, "b", reading));
    EXPECT_TRUE(append(files, 3, "c"));
    EXPECT_EQ(table(),
              "frame,host_time_ns,offset,bytes,camera_frame_id,camera_ticks,true_exposure_ns\n"
              "0,1,0,1,17,123456789012,987654321098\n"
              "1,2,1,1,17,123456789012,987654321098\n"
              "2,3,2,1,,,\n");
}

TEST_F(ChannelFilesTest, HasEveryFrameOnDiskAtOnce) {
    ChannelFiles files(m_directory.path(), 3, false);
    append(files, 1, "abc");
    EXPECT_EQ(raw(), "abc");
    EXPECT_THAT(table(), HasSubstr("0,1,0,3\n"));
}

TEST_F(ChannelFilesTest, CutsBothFilesBackWhenThePictureDoesNotFit) {
    ChannelFiles files(m_directory.path(), 3, false);
    const std::string frame(1000, 'x');
    {
        const test_support::FileSizeLimit limit(2500);
        EXPECT_TRUE(append(files, 1, frame));
        EXPECT_TRUE(append(files, 2, frame));
        EXPECT_FALSE(append(files, 3, frame));
    }
    EXPECT_EQ(raw().size(), 2000u);
    EXPECT_EQ(table(), "frame,host_time_ns,offset,bytes\n0,1,0,1000\n1,2,1000,1000\n");
    EXPECT_EQ(files.frames(), 2u);
    EXPECT_EQ(files.last().offset, 1000u);
    EXPECT_EQ(files.failure(), test_support::kTooLarge);
    EXPECT_FALSE(append(files, 4, "fits")) << "nothing is written after a failure";
    EXPECT_EQ(raw().size(), 2000u);
}

TEST_F(ChannelFilesTest, CutsBothFilesBackWhenTheTableLineDoesNotFit) {
    ChannelFiles files(m_directory.path(), 3, false);
    {
        // The header takes 32 bytes, a line 8: the third line is cut in the middle, the picture is whole.
        const test_support::FileSizeLimit limit(52);
        EXPECT_TRUE(append(files, 1, "a"));
        EXPECT_TRUE(append(files, 2, "b"));
        EXPECT_FALSE(append(files, 3, "c"));
    }
    EXPECT_EQ(raw(), "ab");
    EXPECT_EQ(table(), "frame,host_time_ns,offset,bytes\n0,1,0,1\n1,2,1,1\n");
}

TEST_F(ChannelFilesTest, SurvivesAFullDisk) {
    const test_support::FullFile full(m_directory.path() / "channel-3.raw");
    ChannelFiles files(m_directory.path(), 3, false);
    EXPECT_FALSE(append(files, 1, "abc"));
    EXPECT_EQ(files.failure(), test_support::kNoRoom);
    EXPECT_EQ(table(), "frame,host_time_ns,offset,bytes\n");
    EXPECT_EQ(files.frames(), 0u);
}

TEST_F(ChannelFilesTest, RefusesToBeginOnAFullDisk) {
    const test_support::FullFile full(m_directory.path() / "channel-3.csv");
    try {
        const ChannelFiles files(m_directory.path(), 3, false);
        FAIL();
    } catch (const host::HostFailure& failure) {
        EXPECT_EQ(failure.code(), host::ExitCode::OutputDirectory);
        EXPECT_THAT(failure.what(), HasSubstr("channel-3.csv"));
        EXPECT_THAT(failure.what(), HasSubstr(test_support::kNoRoom));
    }
}

TEST_F(ChannelFilesTest, RefusesADirectoryThatIsNotThere) {
    try {
        const ChannelFiles files(m_directory.path() / "none", 3, false);
        FAIL();
    } catch (const host::HostFailure& failure) {
        EXPECT_EQ(failure.code(), host::ExitCode::OutputDirectory);
        EXPECT_THAT(failure.what(), HasSubstr((m_directory.path() / "none" / "channel-3.raw").string()));
    }
}

TEST_F(ChannelFilesTest, RemovesBoth) {
    ChannelFiles files(m_directory.path(), 3, false);
    append(files, 1, "abc");
    files.remove();
    EXPECT_TRUE(std::filesystem::is_empty(m_directory.path()));
}

}  // namespace
