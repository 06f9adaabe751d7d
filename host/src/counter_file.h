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

/// The table of one frame counter: one line for each of its values.
class CounterFile {
  public:
    /// Makes DIR/channel-<id>-sent.csv or -received.csv. Throws HostFailure.
    CounterFile(const std::filesystem::path& directory, const ChannelInfo& channel, CounterKind kind);

    /// Writes one sample, 8 bytes with the lowest first; one of another size counts as malformed. False when
    /// writing failed: the line is taken out again, and nothing more is written.
    bool append(const RingFrame& sample);
    /// Closes it; false when the system reports a write that failed only now.
    bool close();
    void remove();

    /// How far the counter went from its first to its last sample, both counted; 0 without any.
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
    std::optional<std::uint64_t> m_first;
    std::uint64_t m_last = 0;
    std::uint64_t m_malformed = 0;
    std::string m_failure;
};

}  // namespace host
