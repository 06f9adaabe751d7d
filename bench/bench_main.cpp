// All figures; --json FILE writes them for programs, too.
#include <cstdio>
#include <exception>
#include <string_view>

#include "counted_figures.h"
#include "disturbance.h"
#include "probes.h"
#include "recording.h"
#include "report.h"
#include "throughput.h"
#include "timed_figures.h"

namespace {

void append(bench::Figures& figures, const bench::Figures& more) {
    figures.insert(figures.end(), more.begin(), more.end());
}

bench::Figures allFigures() {
    bench::Figures figures = bench::timedFigures();
    figures.push_back(bench::throughputOfAllCores());
    append(figures, bench::figuresOfDisturbance());
    append(figures, bench::countedFigures());
    figures.push_back(bench::recordingRate(std::filesystem::read_symlink("/proc/self/exe").parent_path()));
    return figures;
}

}  // namespace

int main(int count, char** arguments) {
    const bool wantsJson = count == 3 && std::string_view(arguments[1]) == "--json";
    if (count != 1 && !wantsJson) {
        std::fputs("usage: bench/run [--json FILE]\n", stderr);
        return 2;
    }
    bench::switchLogOff();
    try {
        const bench::Figures figures = allFigures();
        bench::printFigures(figures);
        if (wantsJson) bench::writeJson(figures, arguments[2]);
        return bench::exitCodeOf(figures);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
