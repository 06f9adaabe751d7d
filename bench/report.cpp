#include "report.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace bench {
namespace {

std::size_t reachedOf(const Figures& figures) {
    const auto isReached = [](const Figure& figure) { return figure.isReached(); };
    return static_cast<std::size_t>(std::count_if(figures.begin(), figures.end(), isReached));
}

}  // namespace

void printFigures(const Figures& figures) {
    for (const Figure& figure : figures) {
        std::printf("%-7s %-62s %9.3g  (%s %.3g)  %s\n", figure.isReached() ? "reached" : "MISSED",
                    figure.name.c_str(), figure.value, figure.atLeast ? "at least" : "at most", figure.limit,
                    figure.explanation.c_str());
    }
    std::printf("%zu of %zu lines reached\n", reachedOf(figures), figures.size());
}

void writeJson(const Figures& figures, const std::string& file) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Figure& figure : figures) {
        list.push_back({{"name", figure.name},
                        {"value", figure.value},
                        {figure.atLeast ? "at_least" : "at_most", figure.limit},
                        {"reached", figure.isReached()},
                        {"explanation", figure.explanation}});
    }
    const nlohmann::ordered_json all{
        {"figures", list}, {"reached", reachedOf(figures)}, {"lines", figures.size()}};
    std::ofstream stream(file);
    stream << all.dump(2) << '\n';
    if (!stream.flush()) throw std::runtime_error("Cannot write " + file);
}

int exitCodeOf(const Figures& figures) {
    return reachedOf(figures) == figures.size() ? 0 : 1;
}

}  // namespace bench
