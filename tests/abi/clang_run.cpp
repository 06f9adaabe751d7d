#include "clang_run.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "temporary_directory.h"

namespace slot_check {
namespace {

// Another release of clang may print otherwise, so the build names the one to run.
constexpr const char* kClang = ZELT_CLANGXX;

std::string quoted(const std::string& path) {
    return " '" + path + "'";
}

std::string commandFor(const std::string& sourceFile, const std::vector<std::string>& folders,
                       const std::string& flags) {
    std::string command = std::string(kClang) +
                          " --target=x86_64-pc-windows-msvc -std=c++20 -w -nostdinc -fno-access-control "
                          "-Dfinal= " +
                          flags + " -isystem" + quoted(ZELT_SOURCE_DIR "/tests/abi/windows_stubs");
    for (const std::string& folder : folders) command += " -I" + quoted(folder);
    return command + quoted(sourceFile) + " 2>&1";
}

}  // namespace

std::vector<std::string> runClang(const std::string& source, const std::vector<std::string>& folders,
                                  const std::string& flags) {
    if (std::string(kClang).ends_with("NOTFOUND")) {
        throw std::runtime_error("clang++ was not found: install clang-14 and configure again");
    }
    const test_support::TemporaryDirectory directory;
    const std::string file = (directory.path() / "source.cpp").string();
    std::ofstream(file) << source;

    FILE* const process = popen(commandFor(file, folders, flags).c_str(), "r");
    if (process == nullptr) throw std::runtime_error("clang++ cannot be started");
    std::string output;
    std::array<char, 65536> part{};
    while (const std::size_t size = std::fread(part.data(), 1, part.size(), process)) {
        output.append(part.data(), size);
    }
    if (pclose(process) != 0) throw std::runtime_error("clang++: " + output);

    std::vector<std::string> lines;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

}  // namespace slot_check
