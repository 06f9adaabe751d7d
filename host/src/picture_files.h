#pragma once

#include <string>
#include <vector>

#include "channel_files.h"

namespace host {

/// Names of the files.
struct PictureFiles {
    std::vector<std::string> written;
    std::vector<std::string> failed;  ///< could not be read or written; nothing is left of them
};

/// Writes DIR/channel-<id>-first.png and -last.png from a closed raw file. A picture of a format that cannot
/// be shown has none.
PictureFiles writePictures(const ChannelInfo& channel, const ChannelFiles& files);

}  // namespace host
