/// Runs the real host program as a process of its own.
#pragma once

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "temporary_directory.h"

namespace scenario {

namespace fs = std::filesystem;

/// Folder of all binaries of the build.
inline fs::path binaries() {
    return fs::read_symlink("/proc/self/exe").parent_path();
}

using test_support::readFile;
using test_support::TemporaryDirectory;

inline std::vector<std::string> readLines(const fs::path& file) {
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

struct RunOptions {
    std::string scenario = "two-cameras";
    /// Bytes to which every file of the program may grow; 0 for no limit.
    rlim_t fileSizeLimit = 0;
    /// The output stream is a terminal.
    bool terminal = false;
    /// The output stream has no room.
    bool fullOutput = false;
};

/// A running host program. Everything it writes is collected.
class Program {
  public:
    Program(const std::vector<std::string>& arguments, const RunOptions& options) {
        openStreams(options);
        m_pid = fork();
        if (m_pid == 0) become(arguments, options);
        close(m_child_out);
        close(m_child_error);
    }
    ~Program() {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        close(m_out);
        close(m_error);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Waits until `done` is satisfied with the output so far; false when the program has ended before.
    template <class Done>
    bool waitForOutput(Done done) {
        while (!done(m_out_text)) {
            if (!readSome()) return false;
        }
        return true;
    }

    void interrupt() { kill(m_pid, SIGINT); }

    /// Waits for the end; the exit code, or the negative number of the signal that killed it.
    int wait() {
        while (readSome()) {
        }
        int status = 0;
        waitpid(m_pid, &status, 0);
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    const std::string& out() const { return m_out_text; }
    const std::string& error() const { return m_error_text; }

  private:
    void openStreams(const RunOptions& options) {
        std::array<int, 2> pipe{};
        if (::pipe(pipe.data()) != 0) throw std::runtime_error("no pipe");
        m_error = pipe[0];
        m_child_error = pipe[1];
        if (options.terminal) {
            winsize size{};
            size.ws_col = 120;
            size.ws_row = 24;
            if (openpty(&m_out, &m_child_out, nullptr, nullptr, &size) != 0)
                throw std::runtime_error("no pty");
        } else {
            if (::pipe(pipe.data()) != 0) throw std::runtime_error("no pipe");
            m_out = pipe[0];
            m_child_out = pipe[1];
        }
    }

    [[noreturn]] void become(const std::vector<std::string>& arguments, const RunOptions& options) {
        dup2(options.fullOutput ? ::open("/dev/full", O_WRONLY) : m_child_out, STDOUT_FILENO);
        dup2(m_child_error, STDERR_FILENO);
        for (const int descriptor : {m_out, m_error, m_child_out, m_child_error}) close(descriptor);
        if (options.fileSizeLimit != 0) {
            const rlimit limit{options.fileSizeLimit, options.fileSizeLimit};
            setrlimit(RLIMIT_FSIZE, &limit);
        }
        setenv("VIMBAC_SIMULATOR_SCENARIO", options.scenario.c_str(), 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        unsetenv("LD_LIBRARY_PATH");
        std::string program = (binaries() / "zelt_host").string();
        std::vector<std::string> texts = arguments;
        std::vector<char*> pointers{program.data()};
        for (std::string& text : texts) pointers.push_back(text.data());
        pointers.push_back(nullptr);
        execv(program.c_str(), pointers.data());
        _exit(127);
    }

    bool readSome() {
        std::array<pollfd, 2> streams{
            {{m_out_open ? m_out : -1, POLLIN, 0}, {m_error_open ? m_error : -1, POLLIN, 0}}};
        if (!m_out_open && !m_error_open) return false;
        if (poll(streams.data(), streams.size(), -1) < 0) return errno == EINTR;
        if (streams[0].revents != 0) m_out_open = take(m_out, m_out_text);
        if (streams[1].revents != 0) m_error_open = take(m_error, m_error_text);
        return true;
    }

    static bool take(int descriptor, std::string& text) {
        std::array<char, 4096> buffer{};
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
        return count > 0 || (count < 0 && errno == EINTR);
    }

    pid_t m_pid = -1;
    int m_out = -1;
    int m_error = -1;
    int m_child_out = -1;
    int m_child_error = -1;
    bool m_out_open = true;
    bool m_error_open = true;
    std::string m_out_text;
    std::string m_error_text;
};

struct ProgramResult {
    int code = 0;
    std::string out;
    std::string error;

    /// The program's own sentences on the error stream, without the records of the log.
    std::vector<std::string> sentences() const {
        std::vector<std::string> found;
        for (std::size_t begin = 0; begin < error.size();) {
            const std::size_t end = std::min(error.find('\n', begin), error.size());
            const std::string line = error.substr(begin, end - begin);
            if (line.rfind("zelt_host: ", 0) == 0) found.push_back(line.substr(11));
            begin = end + 1;
        }
        return found;
    }
};

inline ProgramResult runProgram(const std::vector<std::string>& arguments, const RunOptions& options = {}) {
    Program program(arguments, options);
    ProgramResult result;
    result.code = program.wait();
    result.out = program.out();
    result.error = program.error();
    return result;
}

}  // namespace scenario
