// Any bytes as a scenario file: it is refused with a sentence, or its cameras can be started and its first
// events happen.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "temporary_directory.h"
#include "vimba_simulator.h"

namespace {

std::string failure(const std::string& path) {
    const VmbError_t loaded = VmbSimLoadScenario(path.c_str());
    const std::string sentence(VmbSimScenarioError(nullptr, 0) - 1, '\0');
    if (loaded != VmbErrorSuccess) {
        if (loaded != VmbErrorBadParameter) return "it is refused by another code";
        return sentence.empty() ? "it is refused without a sentence" : "";
    }
    if (!sentence.empty()) return "it is taken with a sentence";
    if (VmbStartup() != VmbErrorSuccess) return "it is taken, but does not start";
    VmbSimAdvance(2'000'000);
    VmbShutdown();
    return "";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const test_support::TemporaryDirectory directory;
    static const std::string path = (directory.path() / "any.json").string();
    std::FILE* const out = std::fopen(path.c_str(), "wb");
    if (out == nullptr) std::abort();
    std::fwrite(data, 1, size, out);
    std::fclose(out);
    VmbSimUseVirtualTime(true);
    const std::string wrong = failure(path);
    if (wrong.empty()) return 0;
    std::fprintf(stderr, "%s\n", wrong.c_str());
    std::abort();
}
