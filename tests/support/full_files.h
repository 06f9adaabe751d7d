/// Files that have no room.
#pragma once

#include <cstdint>
#include <filesystem>

namespace test_support {

/// Lets every file of the process grow to `bytes` only while it lives; a write beyond returns an error. One
/// at a time.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(std::uint64_t bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
};

/// The system's words for a write beyond that limit.
extern const char* const kTooLarge;

/// While it lives, the file of that name can be opened, but as on a full disk nothing can be written to it.
/// One at a time; the file is not there before.
class FullFile {
  public:
    explicit FullFile(const std::filesystem::path& file);
    ~FullFile();
    FullFile(const FullFile&) = delete;
    FullFile& operator=(const FullFile&) = delete;
};

/// The system's words for a write to it.
inline constexpr const char* kNoRoom = "No space left on device";

}  // namespace test_support
