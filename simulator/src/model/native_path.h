/// File names as a client gives them.
#pragma once

#include <filesystem>
#include <string>

namespace simulator {

/// A name in the encoding in which this system's functions of C take one; on Windows the code page of the
/// process, which a path made of chars would not follow.
std::filesystem::path nativePath(const std::string& name);

}  // namespace simulator
