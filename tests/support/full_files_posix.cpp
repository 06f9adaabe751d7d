#include <csignal>

#include <sys/resource.h>

#include "full_files.h"

namespace test_support {
namespace {

rlimit s_before{};
void (*s_handler)(int) = SIG_DFL;

}  // namespace

const char* const kTooLarge = "File too large";

FileSizeLimit::FileSizeLimit(std::uint64_t bytes) {
    s_handler = std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &s_before);
    rlimit limit = s_before;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &s_before);
    std::signal(SIGXFSZ, s_handler);
}

FullFile::FullFile(const std::filesystem::path& file) {
    std::filesystem::create_symlink("/dev/full", file);
}

// The link goes with the folder it is in.
FullFile::~FullFile() = default;

}  // namespace test_support
