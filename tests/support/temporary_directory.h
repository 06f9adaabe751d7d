/// An empty directory for a test's files.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>

#include "test_system.h"

namespace test_support {

/// An empty directory that goes with the object.
class TemporaryDirectory {
  public:
    TemporaryDirectory() = default;
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return m_path; }

  private:
    const std::filesystem::path m_path = makeTemporaryDirectory();
};

inline std::string readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    return std::move(content).str();
}

}  // namespace test_support
