#include "accuracy_judgement.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <gtest/gtest.h>

namespace test_support {
namespace {

std::string row(const AccuracyBounds& bounds) {
    return inWords(bounds.constant) + " | " + inWords(bounds.p50) + " | " + inWords(bounds.p99) + " | " +
           inWords(bounds.max);
}

AccuracyBounds rounded(const AccuracyBounds& nanoseconds) {
    return {statedMicroseconds(nanoseconds.constant), statedMicroseconds(nanoseconds.p50),
            statedMicroseconds(nanoseconds.p99), statedMicroseconds(nanoseconds.max)};
}

AccuracyBounds scaled(const AccuracyBounds& bounds, double factor) {
    return {bounds.constant * factor, bounds.p50 * factor, bounds.p99 * factor, bounds.max * factor};
}

}  // namespace

std::int64_t TimeErrors::constant() const {
    std::vector<std::int64_t> sorted = values;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    return *middle;
}

std::int64_t TimeErrors::spread(std::uint64_t perMille) const {
    const std::int64_t middle = constant();
    std::vector<std::int64_t> off;
    for (const std::int64_t value : values) off.push_back(std::abs(value - middle));
    const std::size_t rank = (off.size() * perMille + 999) / 1000;
    const auto place = off.begin() + static_cast<std::ptrdiff_t>(std::max<std::size_t>(rank, 1) - 1);
    std::nth_element(off.begin(), place, off.end());
    return *place;
}

AccuracyBounds measured(const TimeErrors& errors, double more) {
    const auto plus = [&](std::int64_t value) { return static_cast<double>(value) + more; };
    return {plus(std::abs(errors.constant() - errors.way)), plus(errors.spread(500)),
            plus(errors.spread(990)), plus(errors.spread(1000))};
}

void judge(const std::string& name, const AccuracyBounds& seen, const AccuracyBounds& needed,
           const AccuracyBounds& stated) {
    const AccuracyBounds found = scaled(seen, 1e-3);
    const AccuracyBounds least = scaled(needed, 1e-3);
    const AccuracyBounds stating = rounded(needed);
    const AccuracyBounds most = rounded(scaled(needed, 1.05));
    std::printf("%s: stated %s; seen %s\n", name.c_str(), row(stated).c_str(), row(found).c_str());
    const auto compare = [&](const char* what, double AccuracyBounds::*figure) {
        EXPECT_LE(found.*figure, stated.*figure) << what << " is worse than stated";
        EXPECT_LE(least.*figure, stated.*figure) << what << ": the rules alone need " << row(stating);
        EXPECT_LE(stated.*figure, most.*figure * (1 + 1e-12))
            << what << ": the rules need less, " << row(stating);
    };
    compare("the constant part", &AccuracyBounds::constant);
    compare("the spread of half of the frames", &AccuracyBounds::p50);
    compare("the spread of 99 % of the frames", &AccuracyBounds::p99);
    compare("the spread of all frames", &AccuracyBounds::max);
}

}  // namespace test_support
