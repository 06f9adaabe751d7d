#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "frame_ring.h"
#include "recording_statistics.h"

namespace host {

/// Where one frame lies in a raw file.
struct FramePlace {
    std::uint64_t offset = 0;
    std::uint64_t bytes = 0;
};

/// The two files of a recorded channel: pictures back to back, and a table with one line each. Both hold
/// the same whole frames at every moment between two calls, also after a failed write.
class ChannelFiles {
  public:
    /// Makes DIR/channel-<id>.raw and .csv; `stamped` adds the columns of the stamps. Throws HostFailure.
    ChannelFiles(const std::filesystem::path& directory, std::uint32_t id, bool stamped,
                 TimeBase timeBase = TimeBase::Nanoseconds);

    /// Writes one frame. False when that failed: the frame is taken out of both files, they are closed, and
    /// nothing more is written.
    bool append(const RingFrame& frame, const StampReading& reading);
    /// Closes both; false when the system reports a write that failed only now.
    bool close();
    /// Closes and removes both.
    void remove();

    std::uint64_t frames() const { return m_frames; }
    FramePlace first() const { return m_first; }
    FramePlace last() const { return m_last; }
    const std::filesystem::path& rawFile() const { return m_raw.path; }
    /// Reason of the failure in the system's words.
    const std::string& failure() const { return m_failure; }

  private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    struct Part {
        std::filesystem::path path;
        std::unique_ptr<std::FILE, Closer> file;
        std::uint64_t bytes = 0;
    };

    static Part make(const std::filesystem::path& path);
    bool write(Part& part, const void* data, std::size_t size);
    bool closePart(Part& part);
    void fallBack(std::uint64_t rawBytes, std::uint64_t tableBytes);
    std::string tableLine(const RingFrame& frame, const StampReading& reading) const;

    bool m_stamped;
    Part m_raw;
    Part m_table;
    std::uint64_t m_frames = 0;
    FramePlace m_first;
    FramePlace m_last;
    std::string m_failure;
};

}  // namespace host
