#include "zeltpu_event_counter_channel.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <thread>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "allocation_counter.h"
#include "assertion_capture.h"
#include "config_item_variant.h"
#include "constraints_in_words.h"

namespace {

using config_items::asItem;
using config_items::ConfigItemVariant;
using config_items::SingleValueConfigItem;
using test_support::AllocationCounter;
using test_support::AssertionCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt::plugin_util::EventCounterChannel;
using zelt::plugin_util::SimpleChannelConfig;

using BoolItem = SingleValueConfigItem<bool>;
using StringItem = SingleValueConfigItem<std::string>;

struct Counter : EventCounterChannel {
    Counter() : EventCounterChannel("Camera17 SentCNT", "Sent frames", "frames") {}
    std::string text(const std::string& key) { return asItem(getItem(key)).toString(); }
    template <class Item>
    bool holds(const std::string& key) {
        const ConfigItemVariant item = getItem(key);
        return boost::get<Item>(&item) != nullptr;
    }
};

/// Keeps what it is given, without allocating: time, size and bytes of up to four samples.
struct Samples final : zelt::IfChannelSink {
    struct Sample {
        std::int64_t time = 0;
        std::uint64_t size = 0;
        std::array<unsigned char, 8> bytes{};
    };
    void addSample(std::int64_t time, const void* data, std::uint64_t size) override {
        Sample& sample = samples.at(count++);
        sample.time = time;
        sample.size = size;
        std::memcpy(sample.bytes.data(), data, std::min<std::uint64_t>(size, sample.bytes.size()));
    }
    std::array<Sample, 4> samples;
    std::size_t count = 0;
};

TEST(EventCounterChannel, ListsItsThirteenSettingsInOrder) {
    EXPECT_THAT(Counter().getKeys(), ElementsAre("Used", "Valid", "DefaultName", "ShortId", "Unit", "Range",
                                                 "Mode", "Threshold", "ReTrigger", "Counter_Filter",
                                                 "ChannelType", "SampleUpdateType", "SampleResolution"));
}

TEST(EventCounterChannel, DescribesItself) {
    Counter counter;
    EXPECT_EQ(counter.text("Used"), "1");
    EXPECT_EQ(counter.text("Valid"), "1");
    EXPECT_EQ(counter.text("DefaultName"), "Camera17 SentCNT");
    EXPECT_EQ(counter.text("ShortId"), "Sent frames");
    EXPECT_EQ(counter.text("Unit"), "frames");
    EXPECT_EQ(counter.text("Range"), "0 frames .. 2.14748e+09 frames");
    EXPECT_EQ(counter.text("Mode"), "Events");
    EXPECT_EQ(counter.text("Threshold"), "N/A");
    EXPECT_EQ(counter.text("ReTrigger"), "N/A");
    EXPECT_EQ(counter.text("Counter_Filter"), "N/A");
    EXPECT_EQ(counter.text("ChannelType"), "3");
    EXPECT_EQ(counter.text("SampleUpdateType"), "1");
    EXPECT_EQ(counter.text("SampleResolution"), "3");
}

TEST(EventCounterChannel, CarriesEachSettingAsItsOwnKindOfItem) {
    Counter counter;
    for (const char* key : {"Used", "Valid"}) EXPECT_TRUE(counter.holds<BoolItem>(key)) << key;
    for (const char* key :
         {"DefaultName", "ShortId", "Unit", "Mode", "Threshold", "ReTrigger", "Counter_Filter"}) {
        EXPECT_TRUE(counter.holds<StringItem>(key)) << key;
    }
    EXPECT_TRUE(counter.holds<SingleValueConfigItem<channel_config::DAQChannelType>>("ChannelType"));
    EXPECT_TRUE(
        counter.holds<SingleValueConfigItem<channel_config::SampleOccurrenceType>>("SampleUpdateType"));
    EXPECT_TRUE(
        counter.holds<SingleValueConfigItem<channel_config::DAQSampleResolution>>("SampleResolution"));
}

TEST(EventCounterChannel, EndsItsRangeWhereASigned32BitNumberEnds) {
    Counter counter;
    const ConfigItemVariant item = counter.getItem("Range");
    const auto& range = boost::get<config_items::RangeConfigItem<double>>(item);
    EXPECT_EQ(range.m_min, 0);
    EXPECT_EQ(range.m_max, 2147483647);
    EXPECT_EQ(range.m_min_unit, "frames");
    EXPECT_EQ(range.m_max_unit, "frames");
}

TEST(EventCounterChannel, LetsNothingButUsedBeSet) {
    Counter counter;
    for (const std::string& key : std::vector<std::string>(counter.getKeys())) {
        if (key == "Used") continue;
        EXPECT_FALSE(counter.setItem(key, counter.getItem(key))) << key;
        EXPECT_FALSE(counter.setItem(key, StringItem("other"))) << key;
    }
    EXPECT_EQ(counter.text("DefaultName"), "Camera17 SentCNT");
}

TEST(EventCounterChannel, TellsWhichSettingsAreReadOnly) {
    Counter counter;
    for (const char* key : {"Valid", "Range", "Mode", "Threshold", "ReTrigger", "Counter_Filter",
                            "ChannelType", "SampleUpdateType", "SampleResolution"}) {
        EXPECT_THAT(inWords(counter.getConstraints(key)), ElementsAre("read-only true")) << key;
    }
    for (const char* key : {"DefaultName", "ShortId", "Unit"}) {
        EXPECT_THAT(inWords(counter.getConstraints(key)),
                    ElementsAre("read-only true", "during acquisition false"))
            << key;
    }
    EXPECT_THAT(inWords(counter.getConstraints("Used")),
                ElementsAre("during acquisition false", "choice true", "choice false"));
}

TEST(EventCounterChannel, IsUsedUntilSetOtherwise) {
    Counter counter;
    EXPECT_TRUE(counter.isUsed());
    EXPECT_TRUE(counter.setItem("Used", BoolItem(false)));
    EXPECT_FALSE(counter.isUsed());
    EXPECT_EQ(counter.text("Used"), "0");
    EXPECT_TRUE(counter.setItem("Used", BoolItem(true)));
    EXPECT_TRUE(counter.isUsed());
}

TEST(EventCounterChannel, TakesMoreSettingsAfterItsOwn) {
    Counter counter;
    counter.addOption(std::make_shared<zelt::plugin_util::ConstantGenericOption<std::string>>("Extra", "x"));
    EXPECT_EQ(counter.getKeys().back(), "Extra");
    EXPECT_EQ(counter.getKeys().size(), 14u);
}

TEST(EventCounterChannel, CountsFromZeroAndAnewAfterARestart) {
    Counter counter;
    EXPECT_EQ(counter.getCount(), 0u);
    counter.increment(1);
    counter.increment(2);
    EXPECT_EQ(counter.getCount(), 2u);
    counter.setCount(3, 40);
    counter.increment(4);
    EXPECT_EQ(counter.getCount(), 41u);
    counter.restart();
    EXPECT_EQ(counter.getCount(), 0u);
    counter.increment(5);
    EXPECT_EQ(counter.getCount(), 1u);
}

TEST(EventCounterChannel, WritesEveryCountAsEightBytesLowestFirst) {
    Counter counter;
    Samples sink;
    counter.setSink(&sink);
    counter.setCount(-5, 0x0102030405060708u);
    counter.increment(std::numeric_limits<std::int64_t>::max());
    counter.restart();
    ASSERT_EQ(sink.count, 2u);
    EXPECT_EQ(sink.samples[0].time, -5);
    EXPECT_EQ(sink.samples[0].size, 8u);
    EXPECT_THAT(sink.samples[0].bytes, ElementsAre(8, 7, 6, 5, 4, 3, 2, 1));
    EXPECT_EQ(sink.samples[1].time, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(sink.samples[1].size, 8u);
    EXPECT_THAT(sink.samples[1].bytes, ElementsAre(9, 7, 6, 5, 4, 3, 2, 1));
}

TEST(EventCounterChannel, CountsOnUnusedAndWithoutASinkButWritesNothing) {
    Counter counter;
    Samples sink;
    counter.increment(1);
    counter.setSink(&sink);
    counter.setItem("Used", BoolItem(false));
    counter.increment(2);
    EXPECT_EQ(sink.count, 0u);
    counter.setItem("Used", BoolItem(true));
    counter.increment(3);
    counter.setSink(nullptr);
    counter.increment(4);
    ASSERT_EQ(sink.count, 1u);
    EXPECT_EQ(sink.samples[0].bytes[0], 3);
    EXPECT_EQ(counter.getCount(), 4u);
}

TEST(EventCounterChannel, KeepsTheCountAndPassesOnWhatItsSinkThrows) {
    struct Full final : zelt::IfChannelSink {
        void addSample(std::int64_t, const void*, std::uint64_t) override {
            throw std::runtime_error("full");
        }
    };
    Counter counter;
    Full sink;
    counter.setSink(&sink);
    EXPECT_THROW(counter.increment(1), std::runtime_error);
    EXPECT_EQ(counter.getCount(), 1u);
}

TEST(EventCounterChannel, CountsWithoutAllocating) {
    Counter counter;
    Samples sink;
    counter.setSink(&sink);
    const AllocationCounter allocations;
    counter.setCount(1, 7);
    counter.increment(2);
    EXPECT_EQ(allocations.count(), 0u);
    EXPECT_EQ(sink.count, 2u);
}

TEST(EventCounterChannel, MayBeSwitchedWhileItCounts) {
    Counter counter;
    Samples sink;
    counter.setSink(&sink);
    std::thread host([&] {
        for (int i = 0; i < 100; ++i) counter.setItem("Used", BoolItem(false));
    });
    for (int i = 0; i < 4; ++i) counter.increment(i);
    host.join();
    EXPECT_EQ(counter.getCount(), 4u);
}

TEST(EventCounterChannel, IsAChannelConfigurationWithTheSameOperations) {
    EXPECT_TRUE((std::is_base_of_v<SimpleChannelConfig, EventCounterChannel>));
    const AssertionCapture assertions;
    EXPECT_EQ(Counter().text("NoSuchKey"), "Invalid ConfigItem");
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

}  // namespace
