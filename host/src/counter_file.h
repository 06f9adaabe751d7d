#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "channel_info.h"
#include "frame_ring.h"

namespace host {

enum class CounterKind { Sent, Received };

/// A counter's sample: 8 bytes, the lowest first; empty for one of another size.
std::optional<std::uint64_t> countOf(const RingFrame& sample);

/// The table of one frame counter: one line for each of its values.
class CounterFile {
  public:
    /// Makes DIR/channel-<id>-sent.csv or -received.csv. Throws HostFailure.
    CounterFile(const std::filesystem::path& directory, const ChannelInfo& channel, CounterKind kind);

    /// Writes one sample, 8 bytes with the lowest first; one of another size counts as malformed. False when
    /// writing failed: the line is taken out again, and nothing more is written.
    bool append(const RingFrame& sample);
    /// The first sample behind the recording; it is counted up to, not written.
    bool appendEnd(const RingFrame& sample);
    /// Closes it; false when the system reports a write that failed only now.
    bool close();
    void remove();

    /// How far the counter went within the recording: from its first sample on, with a triggered camera from
    /// its start on, up to the one behind the recording, without that with the last one; 0 without any.
    std::uint64_t counted() const;
    std::uint64_t malformed() const { return m_malformed; }
    /// Reason of the failure in the system's words.
    const std::string& failure() const { return m_failure; }

  private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    bool write(const std::string& line);
    void fallBack();

    std::filesystem::path m_path;
    std::unique_ptr<std::FILE, Closer> m_file;
    std::uint64_t m_bytes = 0;
    std::optional<std::uint64_t> m_begin;
    std::uint64_t m_end = 0;
    std::uint64_t m_malformed = 0;
    std::string m_failure;
};

}  // namespace host
