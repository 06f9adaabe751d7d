#include "countable.h"

#include <array>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "config_item_variant.h"
#include "latch.h"

namespace {

using config_items::ConfigItemVariant;
using config_items::IfConfigItem;
using config_items::ScalarConfigItem;

uni::CountReader itemReader() {
    return uni::getCountedTypes().at("config_items::IfConfigItem");
}

TEST(Countable, RegistersTheItemsUnderTheirNameWhenTheLibraryLoads) {
    EXPECT_EQ(uni::getCountedTypes().count("config_items::IfConfigItem"), 1u);
}

TEST(Countable, CountsEveryItemMadeAndEveryItemDestroyed) {
    const uni::CountReader read = itemReader();
    const std::int64_t before = read();
    {
        const ScalarConfigItem first(1.0, "Hz");
        EXPECT_EQ(read(), before + 1);
        const config_items::InvalidConfigItem second;
        const config_items::ValueListConfigItem<std::string> third;
        EXPECT_EQ(read(), before + 3);
    }
    EXPECT_EQ(read(), before);
}

TEST(Countable, CountsCopiesAndMovesButNotAssignments) {
    const uni::CountReader read = itemReader();
    const std::int64_t before = read();
    {
        ScalarConfigItem item(1.0, "Hz");
        ScalarConfigItem copy(item);
        EXPECT_EQ(read(), before + 2);
        const ScalarConfigItem moved(std::move(copy));
        EXPECT_EQ(read(), before + 3);
        item = moved;
        item = ScalarConfigItem(2.0);
        EXPECT_EQ(read(), before + 3);
    }
    EXPECT_EQ(read(), before);
}

TEST(Countable, CountsItemsOnceWhetherTheLibraryOrItsUserMakesThem) {
    const uni::CountReader read = itemReader();
    const std::int64_t before = read();
    {
        const auto byTheLibrary = config_items::SingleValueConfigItem<int>::fromText("7");
        const config_items::SingleValueConfigItem<int> byItsUser(7);
        EXPECT_EQ(read(), before + 2);
        EXPECT_EQ(IfConfigItem::getInstanceCount(), before + 2);
    }
    EXPECT_EQ(read(), before);
}

TEST(Countable, ReturnsToTheStartWhenUnionsChangeTheirAlternative) {
    const uni::CountReader read = itemReader();
    const std::int64_t before = read();
    {
        ConfigItemVariant value;
        value = ScalarConfigItem(1.0, "Hz");
        ConfigItemVariant copy(value);
        value = config_items::InvalidConfigItem("gone");
        std::swap(value, copy);
        EXPECT_EQ(read(), before + 2);
    }
    EXPECT_EQ(read(), before);
}

TEST(Countable, CountsOnSeveralThreadsWithoutLosingAny) {
    const uni::CountReader read = itemReader();
    const std::int64_t before = read();
    constexpr int kThreads = 4;
    constexpr int kEach = 20000;
    test_support::Latch start(kThreads);
    std::array<std::vector<ScalarConfigItem>, kThreads> kept;
    std::vector<std::jthread> threads;
    for (auto& items : kept) {
        threads.emplace_back([&items, &start] {
            items.reserve(kEach);
            start.arrive_and_wait();
            for (int i = 0; i < kEach; ++i) {
                items.emplace_back(1.0);
                const ScalarConfigItem passing(2.0);
            }
        });
    }
    threads.clear();
    EXPECT_EQ(read(), before + kThreads * kEach);
    for (auto& items : kept) items.clear();
    EXPECT_EQ(read(), before);
}

std::int64_t readSeven() noexcept {
    return 7;
}

std::int64_t readEight() noexcept {
    return 8;
}

TEST(CountedTypes, ListsATypeThatWasRegisteredNextToTheOthers) {
    static uni::CountedType s_type{"test::Listed", &readSeven};
    uni::registerCountedType(s_type);
    const auto types = uni::getCountedTypes();
    EXPECT_EQ(types.at("test::Listed")(), 7);
    EXPECT_EQ(types.count("config_items::IfConfigItem"), 1u);
}

TEST(CountedTypes, KeepsTheFirstOfTwoEntriesWithOneName) {
    static uni::CountedType s_first{"test::Twice", &readSeven};
    static uni::CountedType s_second{"test::Twice", &readEight};
    uni::registerCountedType(s_first);
    uni::registerCountedType(s_second);
    EXPECT_EQ(uni::getCountedTypes().at("test::Twice")(), 7);
}

TEST(CountedTypes, TakesEntriesFromSeveralThreads) {
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kEach = 500;
    static std::vector<std::string> s_names;
    static std::vector<uni::CountedType> s_types;
    for (std::size_t i = 0; i < kThreads * kEach; ++i) s_names.push_back("test::Type" + std::to_string(i));
    for (const std::string& name : s_names) s_types.push_back({name.c_str(), &readSeven});
    test_support::Latch start(kThreads);
    {
        std::vector<std::jthread> threads;
        for (std::size_t thread = 0; thread < kThreads; ++thread) {
            threads.emplace_back([&start, thread] {
                start.arrive_and_wait();
                for (std::size_t i = 0; i < kEach; ++i) {
                    uni::registerCountedType(s_types[thread * kEach + i]);
                }
            });
        }
    }
    const auto types = uni::getCountedTypes();
    for (const std::string& name : s_names) ASSERT_EQ(types.count(name), 1u) << name;
}

}  // namespace
