#include "counter_file.h"

#include <cerrno>
#include <cstring>

#include "host_failure.h"

namespace host {
namespace {

const char* kindName(CounterKind kind) {
    return kind == CounterKind::Sent ? "sent" : "received";
}

std::string fileName(const ChannelInfo& channel, CounterKind kind) {
    return "channel-" + std::to_string(channel.id) + '-' + kindName(kind) + ".csv";
}

}  // namespace

CounterFile::CounterFile(const std::filesystem::path& directory, const ChannelInfo& channel, CounterKind kind)
    : m_path(directory / fileName(channel, kind)), m_file(std::fopen(m_path.string().c_str(), "wb")) {
    // With the first pulse the one counter says how many were sent before, the other one that this one came.
    if (channel.timeBase == TimeBase::Pulses) m_begin = kind == CounterKind::Sent ? 0 : 1;
    const std::string header = std::string(timeColumn(channel.timeBase)) + ',' + kindName(kind) + '\n';
    if (!m_file) m_failure = std::strerror(errno);
    if (m_file && write(header)) return;
    throw HostFailure(ExitCode::OutputDirectory, "Cannot write " + m_path.string() + " (" + m_failure +
                                                     "); name a directory you may write to with --out.");
}

bool CounterFile::write(const std::string& line) {
    if (!m_file) return false;
    // A failure that is found only later would leave lines that nobody reported missing.
    const bool written = std::fwrite(line.data(), 1, line.size(), m_file.get()) == line.size() &&
                         std::fflush(m_file.get()) == 0;
    if (written) {
        m_bytes += line.size();
        return true;
    }
    m_failure = std::strerror(errno);
    fallBack();
    return false;
}

void CounterFile::fallBack() {
    m_file.reset();
    std::error_code ignored;  // a device has no length to cut
    std::filesystem::resize_file(m_path, m_bytes, ignored);
}

std::optional<std::uint64_t> countOf(const RingFrame& sample) {
    if (sample.bytes.size() != sizeof(std::uint64_t)) return {};
    std::uint64_t count = 0;
    for (std::size_t i = sample.bytes.size(); i-- > 0;) {
        count = (count << 8u) | std::to_integer<std::uint64_t>(sample.bytes[i]);
    }
    return count;
}

bool CounterFile::append(const RingFrame& sample) {
    const std::optional<std::uint64_t> count = countOf(sample);
    if (!count) {
        ++m_malformed;
        return true;
    }
    if (!write(std::to_string(sample.time) + ',' + std::to_string(*count) + '\n')) return false;
    if (!m_begin) m_begin = count;
    m_end = *count + 1;
    return true;
}

bool CounterFile::appendEnd(const RingFrame& sample) {
    const std::optional<std::uint64_t> count = countOf(sample);
    if (count) m_end = *count;
    if (!count) ++m_malformed;
    return true;
}

bool CounterFile::close() {
    if (!m_file || std::fclose(m_file.release()) == 0) return true;
    m_failure = std::strerror(errno);
    return false;
}

void CounterFile::remove() {
    close();
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

std::uint64_t CounterFile::counted() const {
    return m_begin && m_end > *m_begin ? m_end - *m_begin : 0;
}

}  // namespace host
