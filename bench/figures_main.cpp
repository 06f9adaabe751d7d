// The figures that are the same on every machine.
#include <cstdio>
#include <exception>

#include "counted_figures.h"
#include "probes.h"
#include "report.h"

int main() {
    bench::switchLogOff();
    try {
        const bench::Figures figures = bench::countedFigures();
        bench::printFigures(figures);
        return bench::exitCodeOf(figures);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
