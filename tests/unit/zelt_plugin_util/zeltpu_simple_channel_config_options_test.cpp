#include "zeltpu_simple_channel_config_options.h"

#include <functional>
#include <stdexcept>
#include <typeinfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "channel_config_constraints.h"
#include "config_item_variant.h"
#include "constraints_in_words.h"

namespace {

using namespace zelt::plugin_util;
using channel_config::ConfigurableDuringAcquisitionConstraint;
using channel_config::ReadOnlyConstraint;
using config_items::asItem;
using config_items::ConfigItemVariant;
using config_items::InvalidConfigItem;
using config_items::ScalarConfigItem;
using config_items::SingleValueConfigItem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using BoolItem = SingleValueConfigItem<bool>;
using StringItem = SingleValueConfigItem<std::string>;
using BoolChoice = config_items::OptionConstraint<BoolItem>;
using Constraint = config_items::IfConfigItemConstraint;

std::string optionText(const ConfigItemVariant& item) {
    return asItem(item).toString();
}

std::vector<std::string> constraintsOf(const ChannelConfigOption& option) {
    return inWords(option.getConstraints());
}

TEST(GenericOption, IsAvailableUnlessItsCallableSaysNo) {
    bool available = false;
    EXPECT_TRUE(GenericOption<bool>("a", {}).isAvailable());
    const GenericOption<bool> option("a", {.isAvailable = [&] { return available; }});
    EXPECT_FALSE(option.isAvailable());
    available = true;
    EXPECT_TRUE(option.isAvailable());
}

TEST(GenericOption, TellsItsKey) {
    EXPECT_EQ(GenericOption<bool>("CAMERA/Gain", {}).getKey(), "CAMERA/Gain");
}

TEST(GenericOption, WrapsWhatItsGetterGives) {
    const ConfigItemVariant boolean = GenericOption<bool>("a", {.get = [] { return true; }}).getItem();
    EXPECT_TRUE(boost::get<BoolItem>(boolean).m_value);
    const ConfigItemVariant string =
        GenericOption<std::string>("a", {.get = [] { return std::string("x"); }}).getItem();
    EXPECT_EQ(boost::get<StringItem>(string).m_value, "x");
    const ConfigItemVariant scalar =
        GenericOption<ScalarConfigItem>("a", {.get = [] { return ScalarConfigItem(25, "fps"); }}).getItem();
    EXPECT_EQ(boost::get<ScalarConfigItem>(scalar).toString(), "25 fps");
    const ConfigItemVariant any =
        GenericOption<ConfigItemVariant>(
            "a", {.get = [] { return ConfigItemVariant(config_items::RationalScalarConfigItem(1, 2)); }})
            .getItem();
    EXPECT_EQ(boost::get<config_items::RationalScalarConfigItem>(any).toString(), "1/2");
}

TEST(GenericOption, GivesTheTextOfAStandardErrorOfItsGetterAsAnInvalidItem) {
    const GenericOption<bool> option("a", {.get = []() -> bool { throw std::runtime_error("no camera"); }});
    const ConfigItemVariant item = option.getItem();
    EXPECT_EQ(boost::get<InvalidConfigItem>(item).toString(), "no camera");
    const GenericOption<ConfigItemVariant> any(
        "a", {.get = []() -> ConfigItemVariant { throw std::out_of_range("range"); }});
    EXPECT_EQ(boost::get<InvalidConfigItem>(any.getItem()).toString(), "range");
}

TEST(GenericOption, LetsOtherErrorsOfItsGetterPass) {
    const GenericOption<bool> option("a", {.get = []() -> bool { throw 5; }});
    EXPECT_THROW(option.getItem(), int);
}

TEST(GenericOption, GivesAnInvalidItemWithoutAGetter) {
    const ConfigItemVariant item = GenericOption<std::string>("a", {}).getItem();
    const std::string message = boost::get<InvalidConfigItem>(item).m_message;
    EXPECT_NE(message, "");
    EXPECT_EQ(message, std::bad_function_call().what());
}

TEST(GenericOption, HandsTheValueToItsSetterAndReturnsItsAnswer) {
    std::string set;
    bool answer = true;
    GenericOption<std::string> option("a", {.set = [&](const std::string& value) {
                                          set = value;
                                          return answer;
                                      }});
    EXPECT_TRUE(option.setItem(StringItem("x")));
    EXPECT_EQ(set, "x");
    answer = false;
    EXPECT_FALSE(option.setItem(StringItem("y")));
    EXPECT_EQ(set, "y");
}

TEST(GenericOption, RefusesOtherAlternativesWithoutCallingItsSetter) {
    int calls = 0;
    const auto count = [&](const auto&) { return ++calls > 0; };
    GenericOption<std::string> string("a", {.set = count});
    EXPECT_FALSE(string.setItem(ScalarConfigItem(1, "Hz")));
    EXPECT_FALSE(string.setItem(InvalidConfigItem("x")));
    GenericOption<bool> boolean("a", {.set = count});
    EXPECT_FALSE(boolean.setItem(StringItem("1")));
    EXPECT_FALSE(boolean.setItem(SingleValueConfigItem<int>(1)));
    GenericOption<ScalarConfigItem> scalar("a", {.set = count});
    EXPECT_FALSE(scalar.setItem(SingleValueConfigItem<double>(1)));
    EXPECT_FALSE(scalar.setItem(config_items::DecoratedNumberConfigItem(1, "", "")));
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(boolean.setItem(BoolItem(false)));
    EXPECT_TRUE(scalar.setItem(ScalarConfigItem(1)));
    EXPECT_EQ(calls, 2);
}

TEST(GenericOption, HandsEveryAlternativeOfTheUnionToASetterForTheUnion) {
    std::vector<std::string> set;
    GenericOption<ConfigItemVariant> option("a", {.set = [&](const ConfigItemVariant& value) {
                                                set.push_back(optionText(value));
                                                return true;
                                            }});
    EXPECT_TRUE(option.setItem(ScalarConfigItem(1, "Hz")));
    EXPECT_TRUE(option.setItem(StringItem("x")));
    EXPECT_TRUE(option.setItem(InvalidConfigItem()));
    EXPECT_THAT(set, ElementsAre("1 Hz", "x", "Invalid ConfigItem"));
}

TEST(GenericOption, RefusesEverythingWithoutASetter) {
    EXPECT_FALSE(GenericOption<bool>("a", {}).setItem(BoolItem(true)));
    EXPECT_FALSE(GenericOption<ConfigItemVariant>("a", {}).setItem(BoolItem(true)));
}

TEST(GenericOption, RefusesAValueWhenItsSetterThrowsAnything) {
    GenericOption<bool> standard("a", {.set = [](bool) -> bool { throw std::runtime_error("x"); }});
    EXPECT_FALSE(standard.setItem(BoolItem(true)));
    GenericOption<bool> other("a", {.set = [](bool) -> bool { throw 5; }});
    EXPECT_FALSE(other.setItem(BoolItem(true)));
}

TEST(GenericOption, AsksItsCallableForConstraintsOnEveryCall) {
    EXPECT_THAT(GenericOption<bool>("a", {}).getConstraints(), IsEmpty());
    bool flag = false;
    const GenericOption<bool> option(
        "a", {.getConstraints = [&flag] {
            return ChannelConfigOption::Constraints{std::make_shared<ReadOnlyConstraint>(flag)};
        }});
    EXPECT_THAT(constraintsOf(option), ElementsAre("read-only false"));
    flag = true;
    EXPECT_THAT(constraintsOf(option), ElementsAre("read-only true"));
}

template <class T>
void expectConstant(const T& value, const ConfigItemVariant& refused) {
    ConstantGenericOption<T> option("a", value);
    EXPECT_TRUE(option.isAvailable());
    EXPECT_EQ(boost::get<SingleValueConfigItem<T>>(option.getItem()).m_value, value);
    EXPECT_FALSE(option.setItem(refused));
    EXPECT_FALSE(option.setItem(option.getItem()));
    EXPECT_EQ(boost::get<SingleValueConfigItem<T>>(option.getItem()).m_value, value);
    EXPECT_THAT(constraintsOf(option), ElementsAre("read-only true"));
}

TEST(ConstantGenericOption, ShowsItsValueAndIsReadOnly) {
    using namespace channel_config;
    expectConstant<std::string>("x", StringItem("y"));
    expectConstant(true, BoolItem(false));
    expectConstant(DAQChannelType::Video, SingleValueConfigItem<DAQChannelType>(DAQChannelType::Counter));
    expectConstant(SampleOccurrenceType::Asynchronous, SingleValueConfigItem<SampleOccurrenceType>());
    expectConstant(DAQSampleResolution::Count,
                   SingleValueConfigItem<DAQSampleResolution>(DAQSampleResolution::Video));
}

TEST(ChannelUsedOption, ShowsTheChannelsFlag) {
    std::atomic<bool> used = true;
    const ChannelUsedOption option("Used", used, false);
    EXPECT_TRUE(option.isAvailable());
    EXPECT_TRUE(boost::get<BoolItem>(option.getItem()).m_value);
    used = false;
    EXPECT_FALSE(boost::get<BoolItem>(option.getItem()).m_value);
}

TEST(ChannelUsedOption, WritesTheFlagThenTellsItsListener) {
    std::atomic<bool> used = true;
    std::vector<std::string> told;
    ChannelUsedOption option("Used", used, false, [&](bool value) {
        told.push_back(std::string(value ? "on" : "off") + (used == value ? " written" : " not written"));
    });
    EXPECT_TRUE(option.setItem(BoolItem(false)));
    EXPECT_FALSE(used);
    EXPECT_TRUE(option.setItem(BoolItem(true)));
    EXPECT_TRUE(used);
    EXPECT_THAT(told, ElementsAre("off written", "on written"));
}

TEST(ChannelUsedOption, NeedsNoListener) {
    std::atomic<bool> used = true;
    ChannelUsedOption option("Used", used, false);
    EXPECT_TRUE(option.setItem(BoolItem(false)));
    EXPECT_FALSE(used);
}

TEST(ChannelUsedOption, AcceptsItsCurrentValueWithoutDoingAnythingEvenWhenLocked) {
    std::atomic<bool> used = true;
    int told = 0;
    ChannelUsedOption open("Used", used, false, [&](bool) { ++told; });
    ChannelUsedOption locked("Used", used, true, [&](bool) { ++told; });
    EXPECT_TRUE(open.setItem(BoolItem(true)));
    EXPECT_TRUE(locked.setItem(BoolItem(true)));
    EXPECT_EQ(told, 0);
}

TEST(ChannelUsedOption, RefusesAChangeWhenLocked) {
    std::atomic<bool> used = true;
    int told = 0;
    ChannelUsedOption option("Used", used, true, [&](bool) { ++told; });
    EXPECT_FALSE(option.setItem(BoolItem(false)));
    EXPECT_TRUE(used);
    EXPECT_EQ(told, 0);
}

TEST(ChannelUsedOption, RefusesOtherAlternatives) {
    std::atomic<bool> used = false;
    ChannelUsedOption option("Used", used, false);
    EXPECT_FALSE(option.setItem(StringItem("1")));
    EXPECT_FALSE(option.setItem(SingleValueConfigItem<int>(1)));
    EXPECT_FALSE(used);
}

TEST(ChannelUsedOption, CountsAThrowingListenerAsARefusalButKeepsTheFlag) {
    std::atomic<bool> used = true;
    ChannelUsedOption standard("Used", used, false, [](bool) { throw std::runtime_error("x"); });
    EXPECT_FALSE(standard.setItem(BoolItem(false)));
    EXPECT_FALSE(used);
    ChannelUsedOption other("Used", used, false, [](bool) { throw 5; });
    EXPECT_FALSE(other.setItem(BoolItem(true)));
    EXPECT_TRUE(used);
}

TEST(ChannelUsedOption, OffersItsCurrentValueFirst) {
    std::atomic<bool> used = true;
    const ChannelUsedOption option("Used", used, false);
    EXPECT_THAT(constraintsOf(option),
                ElementsAre("during acquisition false", "choice true", "choice false"));
    used = false;
    EXPECT_THAT(constraintsOf(option),
                ElementsAre("during acquisition false", "choice false", "choice true"));
}

TEST(ChannelUsedOption, OffersItsCurrentValueOnlyWhenLocked) {
    std::atomic<bool> used = false;
    const ChannelUsedOption option("Used", used, true);
    EXPECT_THAT(constraintsOf(option),
                ElementsAre("during acquisition false", "choice false", "read-only true"));
}

TEST(SimpleStringOption, ShowsItsTextAndIsAvailableUnlessItsCallableSaysNo) {
    bool available = false;
    const SimpleStringOption plain("a", "x", true, false);
    EXPECT_TRUE(plain.isAvailable());
    EXPECT_EQ(boost::get<StringItem>(plain.getItem()).m_value, "x");
    const SimpleStringOption option("a", "x", true, false, [&] { return available; });
    EXPECT_FALSE(option.isAvailable());
    available = true;
    EXPECT_TRUE(option.isAvailable());
}

TEST(SimpleStringOption, StoresATextThenTellsItsListener) {
    std::vector<std::string> told;
    SimpleStringOption* self = nullptr;
    SimpleStringOption option(
        "key", "x", false, false, {}, [&](const std::string& key, const std::string& value) {
            told.push_back(key + "=" + value + " stored " + optionText(self->getItem()));
        });
    self = &option;
    EXPECT_TRUE(option.setItem(StringItem("y")));
    EXPECT_TRUE(option.setItem(StringItem("y")));
    EXPECT_THAT(told, ElementsAre("key=y stored y", "key=y stored y"));
}

TEST(SimpleStringOption, NeedsNoListener) {
    SimpleStringOption option("key", "x", false, false);
    EXPECT_TRUE(option.setItem(StringItem("y")));
    EXPECT_EQ(optionText(option.getItem()), "y");
}

TEST(SimpleStringOption, RefusesOtherAlternativesAndEverythingWhenReadOnly) {
    int told = 0;
    const auto count = [&](const std::string&, const std::string&) { ++told; };
    SimpleStringOption writable("a", "x", false, true, {}, count);
    EXPECT_FALSE(writable.setItem(ScalarConfigItem(1)));
    EXPECT_EQ(optionText(writable.getItem()), "x");
    SimpleStringOption readOnly("a", "x", true, true, {}, count);
    EXPECT_FALSE(readOnly.setItem(StringItem("y")));
    EXPECT_EQ(optionText(readOnly.getItem()), "x");
    EXPECT_EQ(told, 0);
}

TEST(SimpleStringOption, CountsAThrowingListenerAsARefusalButKeepsTheText) {
    SimpleStringOption option("a", "x", false, false, {},
                              [](const std::string&, const std::string&) { throw 5; });
    EXPECT_FALSE(option.setItem(StringItem("y")));
    EXPECT_EQ(optionText(option.getItem()), "y");
}

TEST(SimpleStringOption, ReportsItsTwoPropertiesInOrder) {
    EXPECT_THAT(constraintsOf(SimpleStringOption("a", "x", true, false)),
                ElementsAre("read-only true", "during acquisition false"));
    EXPECT_THAT(constraintsOf(SimpleStringOption("a", "x", false, true)),
                ElementsAre("read-only false", "during acquisition true"));
}

TEST(Options, BuildTheirConstraintsAnewOnEachCall) {
    const SimpleStringOption option("a", "x", true, false);
    EXPECT_NE(option.getConstraints().front(), option.getConstraints().front());
}

TEST(OptionTypes, FormTheDocumentedTree) {
    EXPECT_TRUE((std::is_base_of_v<ChannelConfigOption, GenericOption<bool>>));
    EXPECT_TRUE((std::is_base_of_v<SimpleOptionBase, SimpleStringOption>));
    EXPECT_TRUE((std::is_base_of_v<ChannelConfigOption, SimpleOptionBase>));
    EXPECT_TRUE((std::is_base_of_v<ChannelConfigOption, ConstantGenericOption<bool>>));
    EXPECT_FALSE((std::is_base_of_v<SimpleOptionBase, GenericOption<std::string>>));
    EXPECT_FALSE((std::is_base_of_v<SimpleOptionBase, ConstantGenericOption<std::string>>));
    EXPECT_FALSE((std::is_base_of_v<SimpleOptionBase, ChannelUsedOption>));
}

}  // namespace
