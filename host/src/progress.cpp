#include "progress.h"

#include <algorithm>
#include <cmath>

#include "console.h"
#include "quantity_text.h"

namespace host {
namespace {

constexpr std::size_t kCells = 20;

std::string repeat(const char* character, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += character;
    return text;
}

std::string bar(double share, bool colour) {
    const auto full = static_cast<std::size_t>(std::floor(share * static_cast<double>(kCells)));
    if (!colour) return repeat("\u2501", full) + std::string(kCells - full, ' ');
    return "\x1b[36m" + repeat("\u2501", full) + "\x1b[90m" + repeat("\u2501", kCells - full) + "\x1b[0m";
}

// The end of a path tells more than its beginning.
std::string shortened(const std::string& directory, std::size_t room) {
    if (displayWidth(directory) <= room) return directory;
    std::string end = directory;
    while (!end.empty() && displayWidth(end) + 3 > room) {
        do end.erase(0, 1);
        while (!end.empty() && (static_cast<unsigned char>(end.front()) & 0xC0u) == 0x80u);
    }
    return "..." + end;
}

}  // namespace

std::string progressLine(const Progress& progress, std::size_t width, bool colour) {
    const double share = std::clamp(progress.elapsed / progress.seconds, 0.0, 1.0);
    std::string percent = decimals(std::floor(100 * share), 0) + " %";
    percent.insert(0, 5 - percent.size(), ' ');
    const std::string head = "recording " + decimals(progress.seconds, 1) + " s to ";
    const std::string counts =
        "   " + frameCount(progress.frames) + "   " + std::to_string(progress.lost) + " lost";
    const std::size_t taken = head.size() + 3 + kCells + 1 + percent.size() + counts.size();
    const std::string directory = shortened(progress.directory, width > taken ? width - taken : 0);
    return head + directory + "   " + bar(share, colour) + ' ' + percent + counts;
}

}  // namespace host
