#include "output_directory.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host_failure.h"

namespace host {

void prepareOutputDirectory(const std::filesystem::path& directory) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error || !std::filesystem::is_directory(directory, error)) {
        throw HostFailure(ExitCode::OutputDirectory,
                          "Cannot make the directory " + directory.string() + " (" +
                              (error ? error.message() : std::string("there is a file of that name")) +
                              "); name another one with --out.");
    }
    std::filesystem::directory_iterator entries(directory, error);
    if (error) {
        throw HostFailure(ExitCode::OutputDirectory, "Cannot read the directory " + directory.string() +
                                                         " (" + error.message() +
                                                         "); name another one with --out.");
    }
    for (const auto& entry : entries) {
        const std::string name = entry.path().filename().string();
        if (name != "summary.json" && name.rfind("channel-", 0) != 0) continue;
        throw HostFailure(ExitCode::OutputDirectory, "The directory " + directory.string() +
                                                         " already holds a recording (" + name +
                                                         "); name another one with --out.");
    }
}

std::string writeTextFile(const std::filesystem::path& file, const std::string& text) {
    std::FILE* stream = std::fopen(file.string().c_str(), "wb");
    if (stream == nullptr) return std::strerror(errno);
    const bool written = std::fwrite(text.data(), 1, text.size(), stream) == text.size();
    std::string reason = written ? "" : std::strerror(errno);
    if (std::fclose(stream) != 0 && written) reason = std::strerror(errno);
    return reason;
}

}  // namespace host
