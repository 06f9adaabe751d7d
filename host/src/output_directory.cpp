#include "output_directory.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host_failure.h"
#include "steady_master_clock.h"

namespace host {
namespace {

std::string writeInPlace(const std::filesystem::path& file, const std::string& text) {
    std::FILE* stream = std::fopen(file.string().c_str(), "wb");
    if (stream == nullptr) return std::strerror(errno);
    // Not every runtime's fclose tells that what it still had to write found no room.
    const bool written =
        std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0;
    std::string reason = written ? "" : std::strerror(errno);
    if (std::fclose(stream) != 0 && written) reason = std::strerror(errno);
    return reason;
}

}  // namespace

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
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path target = fs::weakly_canonical(file, error);
    const fs::file_status before = fs::status(target, error);
    // A device or pipe is written itself, and so is a folder, for the system's reason.
    if (fs::exists(before) && !fs::is_regular_file(before)) return writeInPlace(file, text);
    fs::path beside = target;
    beside += '.' + std::to_string(steadyNanoseconds()) + ".part";
    std::string reason = writeInPlace(beside, text);
    if (reason.empty() && fs::exists(before)) fs::permissions(beside, before.permissions(), error);
    if (reason.empty()) {
        fs::rename(beside, target, error);
        if (error) reason = error.message();
    }
    if (!reason.empty()) fs::remove(beside, error);
    return reason;
}

}  // namespace host
