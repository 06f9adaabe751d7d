#pragma once

#include <string>
#include <vector>

#include "channel_files.h"

namespace host {

/// Writes DIR/channel-<id>-first.png and -last.png from a closed raw file. Returns the names of the files
/// written; a picture of a format that cannot be shown has none.
std::vector<std::string> writePictures(const ChannelInfo& channel, const ChannelFiles& files);

}  // namespace host
