// Replaces the program's allocation so that tests can count allocations and refuse one. Other libraries of
// the process use the replacement only where the loader lets a program replace symbols of its libraries.
#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "channel_config_constraints.h"
#include "config_items.h"

namespace {

thread_local int t_allocations = 0;
thread_local bool t_refuse = false;

}  // namespace

// Kept out of line: inlined halves of a pair look mismatched to the compiler.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++t_allocations;
    void* const memory = t_refuse ? nullptr : std::malloc(size == 0 ? 1 : size);
    t_refuse = false;
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using namespace config_items;

/// Refuses the first allocation of this thread while it lives.
struct NoMemory {
    NoMemory() { t_refuse = true; }
    ~NoMemory() { t_refuse = false; }
};

const std::string& longText() {
    static const std::string s_text(100, '1');
    return s_text;
}

int allocationsOfACloneOf(const IfConfigItemConstraint& constraint) {
    const int before = t_allocations;
    const auto clone = constraint.clone();
    return t_allocations - before;
}

TEST(Allocation, OfEveryCloneIsOneForCopyAndReferenceCount) {
    using namespace channel_config;
    using BoolItem = SingleValueConfigItem<bool>;
    using StringItem = SingleValueConfigItem<std::string>;
    EXPECT_EQ(allocationsOfACloneOf(ReadOnlyConstraint(true)), 1);
    EXPECT_EQ(allocationsOfACloneOf(ConfigurableDuringAcquisitionConstraint(true)), 1);
    EXPECT_EQ(allocationsOfACloneOf(FullyIndependentSampleRateConstraint(true)), 1);
    EXPECT_EQ(allocationsOfACloneOf(BooleanConstraint(true)), 1);
    EXPECT_EQ(allocationsOfACloneOf(ValueRangeConstraint<double>(0, 1, "pixel")), 1);
    // Texts short enough to need no memory of their own.
    EXPECT_EQ(allocationsOfACloneOf(OptionConstraint<ScalarConfigItem>(ScalarConfigItem(1, "Hz"))), 1);
    EXPECT_EQ(allocationsOfACloneOf(OptionConstraint<StringItem>(StringItem("x"))), 1);
    EXPECT_EQ(allocationsOfACloneOf(OptionConstraint<BoolItem>(BoolItem(true))), 1);
}

TEST(Allocation, FailureInACloneIsTheStandardError) {
    const channel_config::ReadOnlyConstraint readOnly(true);
    const NoMemory noMemory;
    EXPECT_THROW(readOnly.clone(), std::bad_alloc);
}

TEST(Allocation, FailureWhileReadingATextIsNotTakenForABadText) {
    const std::string text = longText();
    bool passed = false;
    try {
        const NoMemory noMemory;
        SingleValueConfigItem<int>::fromText(text);
    } catch (const std::bad_alloc&) {
        passed = true;
    } catch (const ConfigItemException&) {
    }
    EXPECT_TRUE(passed);
}

TEST(Allocation, FailureMakesConstraintsDifferInsteadOfThrowing) {
    const OptionConstraint<ScalarConfigItem> option(ScalarConfigItem(1, longText()));
    const OptionConstraint<ScalarConfigItem> same(ScalarConfigItem(1, longText()));
    EXPECT_TRUE(option.equals(same));
    const NoMemory noMemory;
    EXPECT_FALSE(option.equals(same));
}

}  // namespace
