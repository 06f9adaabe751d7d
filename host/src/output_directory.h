#pragma once

#include <filesystem>
#include <string>

namespace host {

/// Makes the directory if needed. Throws HostFailure when that fails or it holds a recording already.
void prepareOutputDirectory(const std::filesystem::path& directory);

/// Writes a whole text file; empty on success, else the system's reason. A file that was there keeps its
/// content until the new one is whole.
std::string writeTextFile(const std::filesystem::path& file, const std::string& text);

}  // namespace host
