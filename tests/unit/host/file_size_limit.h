#pragma once

#include <csignal>

#include <sys/resource.h>

namespace host_test {

/// Lets every file of the process grow to `bytes` only while it lives; a write beyond returns an error.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit m_before{};
    void (*m_handler)(int) = SIG_DFL;
};

}  // namespace host_test
