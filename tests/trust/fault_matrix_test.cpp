// The plug-in's life with each of its vendor calls failing in turn, in virtual time.
#include "fault_matrix.h"

#include <iostream>
#include <tuple>

#include <gtest/gtest.h>

#include "full_run.h"

namespace {

using faults::Baseline;
using faults::Complaints;
using faults::Fault;
using faults::Phase;
using faults::World;

/// So that no test lasts long under a sanitizer, and shards have something to share.
constexpr std::size_t kParts = 4;
/// Enough to see what is wrong; the rest is most often the same.
constexpr std::size_t kMostFailures = 10;

struct Totals final : ::testing::Environment {
    void TearDown() override { std::cout << faults << " faults, " << failures << " failures\n"; }
    std::size_t faults = 0;
    std::size_t failures = 0;
};
// The framework's own from here on.
auto& totals = dynamic_cast<Totals&>(*::testing::AddGlobalTestEnvironment(new Totals));

class EveryVendorCall : public ::testing::TestWithParam<std::tuple<Phase, std::size_t>> {};

std::string textOf(const Fault& fault, const Complaints& complaints) {
    std::string text = faults::describe(fault);
    for (const std::string& complaint : complaints) text += "\n  - " + complaint;
    return text;
}

TEST_P(EveryVendorCall, ThatFailsIsToldAndLeavesAPluginThatRecords) {
    const auto [phase, part] = GetParam();
    World world;
    const Baseline baseline = faults::baselineOf(world, phase);
    const std::vector<Fault> all = faults::faultsOf(baseline, test_support::isFullRun());
    ASSERT_FALSE(all.empty());
    std::size_t examined = 0;
    std::size_t failures = 0;
    for (std::size_t i = part; i < all.size() && failures < kMostFailures; i += kParts) {
        ++examined;
        const Complaints complaints = faults::examine(world, baseline, all[i]);
        if (complaints.empty()) continue;
        ADD_FAILURE() << textOf(all[i], complaints);
        ++failures;
    }
    std::cout << faults::nameOf(phase) << ": " << examined << " faults, " << failures << " failures\n";
    RecordProperty("faults", static_cast<int>(examined));
    totals.faults += examined;
    totals.failures += failures;
}

INSTANTIATE_TEST_SUITE_P(OfAPluginsLife, EveryVendorCall,
                         ::testing::Combine(::testing::ValuesIn(faults::kPhases),
                                            ::testing::Range(std::size_t{0}, kParts)),
                         [](const auto& named) {
                             return std::string(faults::nameOf(std::get<0>(named.param))) +
                                    std::to_string(std::get<1>(named.param) + 1);
                         });

}  // namespace
