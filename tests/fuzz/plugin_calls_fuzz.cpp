// Any sequence of a host's calls, among cameras that give trouble.
#include <cstdio>
#include <cstdlib>

#include "plugin_calls.h"
#include "temporary_directory.h"

namespace {

/// Small pictures, for speed.
constexpr const char* kSmallCameras = R"({"cameras": [
    {"model": "Manta_G-033C", "sensor": {"width": 64, "height": 16}},
    {"model": "Manta_G-032B", "sensor": {"width": 64, "height": 16}}]})";

const std::string& scenario() {
    static const test_support::TemporaryDirectory directory;
    static const std::string path = [] {
        const std::string file = (directory.path() / "cameras.json").string();
        std::FILE* const out = std::fopen(file.c_str(), "w");
        std::fputs(kSmallCameras, out);
        std::fclose(out);
        return file;
    }();
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::PluginCalls calls(scenario(), data, size);
    const std::string wrong = calls.run();
    if (wrong.empty()) return 0;
    std::fprintf(stderr, "%s\n", wrong.c_str());
    std::abort();
}
