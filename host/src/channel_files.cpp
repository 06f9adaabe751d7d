#include "channel_files.h"

#include <cerrno>
#include <cstring>

#include "host_failure.h"

namespace host {
namespace {

constexpr const char* kStampColumns = ",camera_frame_id,camera_ticks,true_exposure_ns";

HostFailure unwritable(const std::filesystem::path& path, const std::string& why) {
    return {ExitCode::OutputDirectory, "Cannot write " + path.string() + " (" + why +
                                           "); name a directory you may write to with --out."};
}

}  // namespace

ChannelFiles::ChannelFiles(const std::filesystem::path& directory, std::uint32_t id, bool stamped,
                           TimeBase timeBase)
    : m_stamped(stamped),
      m_raw(make(directory / ("channel-" + std::to_string(id) + ".raw"))),
      m_table(make(directory / ("channel-" + std::to_string(id) + ".csv"))) {
    const std::string header = std::string("frame,") + timeColumn(timeBase) + ",offset,bytes" +
                               (stamped ? kStampColumns : "") + '\n';
    if (!write(m_table, header.data(), header.size())) throw unwritable(m_table.path, m_failure);
}

ChannelFiles::Part ChannelFiles::make(const std::filesystem::path& path) {
    Part part{path, std::unique_ptr<std::FILE, Closer>(std::fopen(path.string().c_str(), "wb")), 0};
    if (!part.file) throw unwritable(path, std::strerror(errno));
    // Without a buffer of our own a write that fails is known at once, and a crash loses nothing.
    std::setvbuf(part.file.get(), nullptr, _IONBF, 0);
    return part;
}

bool ChannelFiles::write(Part& part, const void* data, std::size_t size) {
    if (size != 0 && std::fwrite(data, 1, size, part.file.get()) != size) {
        m_failure = std::strerror(errno);
        return false;
    }
    part.bytes += size;
    return true;
}

bool ChannelFiles::append(const RingFrame& frame, const StampReading& reading) {
    if (!m_raw.file || !m_table.file) return false;
    const std::uint64_t rawBytes = m_raw.bytes;
    const std::uint64_t tableBytes = m_table.bytes;
    const std::string line = tableLine(frame, reading);
    if (!write(m_raw, frame.bytes.data(), frame.bytes.size()) || !write(m_table, line.data(), line.size())) {
        fallBack(rawBytes, tableBytes);
        return false;
    }
    m_last = {rawBytes, frame.bytes.size()};
    if (m_frames++ == 0) m_first = m_last;
    return true;
}

std::string ChannelFiles::tableLine(const RingFrame& frame, const StampReading& reading) const {
    std::string line = std::to_string(m_frames) + ',' + std::to_string(frame.time) + ',' +
                       std::to_string(m_raw.bytes) + ',' + std::to_string(frame.bytes.size());
    if (m_stamped && reading.hasStamp()) {
        line += ',' + std::to_string(reading.stamp.frameId) + ',' +
                std::to_string(reading.stamp.cameraTicks) + ',' +
                std::to_string(reading.stamp.exposureStartNs);
    } else if (m_stamped) {
        line += ",,,";
    }
    return line + '\n';
}

void ChannelFiles::fallBack(std::uint64_t rawBytes, std::uint64_t tableBytes) {
    m_raw.file.reset();
    m_table.file.reset();
    std::error_code ignored;  // a device has no length to cut
    std::filesystem::resize_file(m_raw.path, rawBytes, ignored);
    std::filesystem::resize_file(m_table.path, tableBytes, ignored);
    m_raw.bytes = rawBytes;
    m_table.bytes = tableBytes;
}

bool ChannelFiles::closePart(Part& part) {
    if (!part.file || std::fclose(part.file.release()) == 0) return true;
    m_failure = std::strerror(errno);
    return false;
}

bool ChannelFiles::close() {
    const bool raw = closePart(m_raw);
    const bool table = closePart(m_table);
    return raw && table;
}

void ChannelFiles::remove() {
    close();
    std::error_code ignored;
    std::filesystem::remove(m_raw.path, ignored);
    std::filesystem::remove(m_table.path, ignored);
}

}  // namespace host
