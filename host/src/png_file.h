#pragma once

#include <filesystem>

#include "picture.h"

namespace host {

/// Writes a PNG file; false, and no file left behind, when that fails.
bool writePng(const std::filesystem::path& file, const RgbPicture& picture);

}  // namespace host
