#include "picture_files.h"

#include <fstream>

#include "png_file.h"

namespace host {
namespace {

std::vector<char> readPlace(const std::filesystem::path& file, const FramePlace& place) {
    std::vector<char> chars(place.bytes);
    std::ifstream stream(file, std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(place.offset));
    stream.read(chars.data(), static_cast<std::streamsize>(chars.size()));
    return stream ? chars : std::vector<char>{};
}

}  // namespace

PictureFiles writePictures(const ChannelInfo& channel, const ChannelFiles& files) {
    PictureFiles names;
    if (files.frames() == 0) return names;
    const auto write = [&](const FramePlace& place, const std::string& which) {
        const std::vector<char> bytes = readPlace(files.rawFile(), place);
        const auto picture =
            toRgb(channel.format, channel.width, channel.height, std::as_bytes(std::span(bytes)));
        const bool isRead = bytes.size() == place.bytes;
        if (isRead && !picture) return;
        const std::string name = "channel-" + std::to_string(channel.id) + '-' + which + ".png";
        const bool isWritten = picture && writePng(files.rawFile().parent_path() / name, *picture);
        (isWritten ? names.written : names.failed).push_back(name);
    };
    write(files.first(), "first");
    write(files.last(), "last");
    return names;
}

}  // namespace host
