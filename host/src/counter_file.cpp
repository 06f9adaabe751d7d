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

bool CounterFile::append(const RingFrame& sample) {
    if (sample.bytes.size() != sizeof(std::uint64_t)) {
        ++m_malformed;
        return true;
    }
    std::uint64_t count = 0;
    for (std::size_t i = sample.bytes.size(); i-- > 0;) {
        count = (count << 8u) | std::to_integer<std::uint64_t>(sample.bytes[i]);
    }
    if (!write(std::to_string(sample.time) + ',' + std::to_string(count) + '\n')) return false;
    if (!m_first) m_first = count;
    m_last = count;
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
    return m_first ? m_last - *m_first + 1 : 0;
}

}  // namespace host
