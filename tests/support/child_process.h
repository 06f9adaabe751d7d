/// A program that runs beside the test. Everything it writes is collected.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace test_support {

struct ChildOptions {
    /// Variables that differ from this process's; none where a variable shall not be set.
    std::map<std::string, std::optional<std::string>> environment;
    /// The output stream has no room.
    bool fullOutput = false;
    /// Bytes to which every file of the program may grow; 0 for no limit. Not on Windows.
    std::uint64_t fileSizeLimit = 0;
    /// The output stream is a terminal. Not on Windows.
    bool terminal = false;
};

/// The system's words for a write to an output stream without room.
extern const char* const kFullOutput;

/// Do programs without a terminal show characters beyond ASCII, as their environment says?
extern const bool kShowsUtf8;

class ChildProcess {
  public:
    ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                 const ChildOptions& options);
    /// Ends the program, whatever it does.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits until the program has written more, but not longer than `patience`; false when it has ended.
    bool readSome(std::chrono::milliseconds patience);

    /// As Ctrl-C by the user would.
    void interrupt();

    /// Waits for the end; the exit code, or the negative number of the signal that killed it.
    int wait();

    /// What it has written so far, with line ends as in every text here.
    const std::string& out() const { return m_out; }
    const std::string& error() const { return m_error; }

  private:
    struct Native;
    std::unique_ptr<Native> m_native;
    std::string m_out;
    std::string m_error;
};

}  // namespace test_support
