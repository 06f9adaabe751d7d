#include "slot_table.h"

#include <sstream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using slot_check::ClassSlots;
using slot_check::differences;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::ThrowsMessage;

std::vector<ClassSlots> parse(const std::string& text) {
    std::istringstream stream(text);
    return slot_check::parseSlots(stream);
}

void expectRefused(const std::string& text, const std::string& reason) {
    EXPECT_THAT([&] { parse(text); }, ThrowsMessage<std::runtime_error>(HasSubstr(reason))) << text;
}

TEST(SlotTable, ReadsClassesSlotBySlot) {
    const auto classes = parse("# comment\n\nn::A 0 destructor\nn::A 1 f\nn::B<unsigned int> 0 g(C<int>)\n");
    ASSERT_EQ(classes.size(), 2u);
    EXPECT_EQ(classes[0].name, "n::A");
    EXPECT_THAT(classes[0].operations, ElementsAre("destructor", "f"));
    EXPECT_EQ(classes[1].name, "n::B<unsigned int>");
    EXPECT_THAT(classes[1].operations, ElementsAre("g(C<int>)"));
}

TEST(SlotTable, GivesAClassTheSlotsOfAnother) {
    const auto classes = parse("n::A 0 f\nn::A 1 g\nn::B<a, b> as n::A\n");
    ASSERT_EQ(classes.size(), 2u);
    EXPECT_EQ(classes[1].name, "n::B<a, b>");
    EXPECT_THAT(classes[1].operations, ElementsAre("f", "g"));
}

TEST(SlotTable, RefusesWhatItDoesNotUnderstand) {
    expectRefused("n::A\n", "a part is missing");
    expectRefused("0 f\n", "a part is missing");
    expectRefused("n::A 1 f\n", "slots are not in order");
    expectRefused("n::A 0 f\nn::A 2 g\n", "slots are not in order");
    expectRefused("n::A 0 f\nn::B 0 f\nn::A 1 g\n", "n::A stands here twice");
    expectRefused("n::A 0 f\nn::A as n::A\n", "n::A stands here twice");
    expectRefused("n::A as n::B\n", "n::B does not stand above");
}

TEST(FieldTable, ReadsAClassAndItsFields) {
    std::istringstream text("# comment\n\nn::A: unsigned int a; n::B<c, d> e\nn::B<c, d>: int f\n");
    const auto classes = slot_check::parseFields(text);
    ASSERT_EQ(classes.size(), 2u);
    EXPECT_EQ(classes[0].name, "n::A");
    EXPECT_THAT(classes[0].fields, ElementsAre("unsigned int a", "n::B<c, d> e"));
    EXPECT_EQ(classes[1].name, "n::B<c, d>");
    EXPECT_THAT(classes[1].fields, ElementsAre("int f"));
}

TEST(FieldTable, RefusesWhatItDoesNotUnderstand) {
    for (const char* const bad : {"n::A\n", "n::A: int a\nn::A: int b\n"}) {
        std::istringstream text(bad);
        EXPECT_THROW(slot_check::parseFields(text), std::runtime_error) << bad;
    }
}

TEST(SlotTable, FindsNoDifferenceInTheSameOrder) {
    EXPECT_THAT(differences({"n::A", {"destructor", "f"}}, {"destructor", "f"}), IsEmpty());
}

TEST(SlotTable, NamesClassSlotExpectedAndFound) {
    EXPECT_THAT(differences({"n::A", {"f", "g"}}, {"g", "f"}),
                ElementsAre("n::A slot 0: expected f, found g", "n::A slot 1: expected g, found f"));
    EXPECT_THAT(differences({"n::A", {"f", "g"}}, {"f"}),
                ElementsAre("n::A slot 1: expected g, found nothing"));
    EXPECT_THAT(differences({"n::A", {"f"}}, {"f", "g"}),
                ElementsAre("n::A slot 1: expected nothing, found g"));
}

TEST(SlotTable, LooksAtArgumentsOnlyWhereItGivesSome) {
    EXPECT_THAT(differences({"n::A", {"f"}}, {"f(int)"}), IsEmpty());
    EXPECT_THAT(differences({"n::A", {"f(int)"}}, {"f(int)"}), IsEmpty());
    EXPECT_THAT(
        differences({"n::A", {"f(int)", "f(B)"}}, {"f(B)", "f(int)"}),
        ElementsAre("n::A slot 0: expected f(int), found f(B)", "n::A slot 1: expected f(B), found f(int)"));
}

}  // namespace
