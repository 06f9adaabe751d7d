/// Runs the real host program as a process of its own.
#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "child_process.h"
#include "console.h"
#include "temporary_directory.h"
#include "test_system.h"

namespace scenario {

namespace fs = std::filesystem;

/// Folder of all binaries of the build.
inline fs::path binaries() {
    return test_support::programDirectory();
}

inline const std::string kPlugin = test_support::libraryFileName("zelt_plugin_gige_camera");
inline const std::string kVendor = test_support::libraryFileName("VimbaC");

using test_support::readFile;
using test_support::TemporaryDirectory;

/// As the program writes a text for users.
inline std::string shown(const std::string& utf8) {
    return test_support::kShowsUtf8 ? utf8 : host::toAscii(utf8);
}

inline std::vector<std::string> readLines(const fs::path& file) {
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

struct RunOptions {
    std::string scenario = "two-cameras";
    /// As in test_support::ChildOptions.
    bool fullOutput = false;
    std::uint64_t fileSizeLimit = 0;
    bool terminal = false;
};

/// A running host program. Everything it writes is collected.
class Program {
  public:
    Program(const std::vector<std::string>& arguments, const RunOptions& options)
        : m_process(binaries() / test_support::programFileName("zelt_host"), arguments,
                    childOptions(options)) {}

    /// Waits until `done` holds, asking after every output and now and then; false when the program has ended
    /// before.
    template <class Done>
    bool waitUntil(Done done) {
        while (!done()) {
            if (!m_process.readSome(std::chrono::milliseconds(10))) return false;
        }
        return true;
    }
    /// Waits until `done` is satisfied with the output so far; false when the program has ended before.
    template <class Done>
    bool waitForOutput(Done done) {
        return waitUntil([&] { return done(out()); });
    }

    void interrupt() { m_process.interrupt(); }

    /// Waits for the end; the exit code, or the negative number of the signal that killed it.
    int wait() { return m_process.wait(); }

    const std::string& out() const { return m_process.out(); }
    const std::string& error() const { return m_process.error(); }

  private:
    static test_support::ChildOptions childOptions(const RunOptions& options) {
        return {{{"VIMBAC_SIMULATOR_SCENARIO", options.scenario},
                 {"LC_ALL", "C.UTF-8"},
                 {"LD_LIBRARY_PATH", std::nullopt}},
                options.fullOutput,
                options.fileSizeLimit,
                options.terminal};
    }

    test_support::ChildProcess m_process;
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
