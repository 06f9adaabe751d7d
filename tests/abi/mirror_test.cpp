// Every class of the table, called slot by slot; and the mirror itself, held before wrong tables.
#include "mirror.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "slot_table.h"

namespace {

using slot_check::ClassSlots;
using slot_check::differences;
using slot_check::Operations;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MirroredClass : public ::testing::TestWithParam<ClassSlots> {};

TEST_P(MirroredClass, AnswersSlotBySlot) {
    const slot_check::MirrorOf* const mirror = slot_check::MirrorOf::find(GetParam().name);
    ASSERT_NE(mirror, nullptr) << GetParam().name << " has no mirror";
    mirror->check(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, MirroredClass, ::testing::ValuesIn(slot_check::slotTable()),
                         [](const auto& tested) { return slot_check::testNameOf(tested.param.name); });

TEST(Mirrors, StandForNothingThatTheTableLacks) {
    std::set<std::string> names = slot_check::MirrorOf::classNames();
    EXPECT_FALSE(names.empty());
    for (const ClassSlots& known : slot_check::slotTable()) names.erase(known.name);
    EXPECT_THAT(names, IsEmpty());
}

// What a recording object of `Interface` finds, written for the interface that has first, then second.
template <class Interface>
class RecordingPair : public slot_check::EndOf<Interface> {
  public:
    virtual int first(int value) {
        slot_check::answered("first");
        return value + 1;
    }
    virtual std::string second() {
        slot_check::answered("second");
        return "two";
    }

    static Operations operations() {
        return {{"first", slot_check::entryOf(&RecordingPair::first)},
                {"second", slot_check::entryOf(&RecordingPair::second)}};
    }

  protected:
    ~RecordingPair() = default;
};

template <class Interface>
std::vector<std::string> found() {
    return slot_check::recorded<RecordingPair<Interface>>().slots;
}

class NoDestructor {
  public:
    virtual int first(int value) = 0;
    virtual std::string second() = 0;

  protected:
    ~NoDestructor() = default;
};

TEST(Mirror, CallsByNumber) {
    const ClassSlots slots{"n::A", {"first", "second"}};
    slot_check::Mirror mirror(slots, slot_check::recorded<RecordingPair<NoDestructor>>());
    ASSERT_TRUE(mirror.standsInOrder());
    EXPECT_EQ(mirror.slot<int(int)>(0)(41), 42);
    EXPECT_EQ(mirror.slot<std::string()>(1)(), "two");
    mirror.expectEverySlotCalled();
}

TEST(Mirror, SeesADestructorAsOneSlot) {
    struct Before {
        virtual ~Before() = default;
        virtual int first(int value) = 0;
        virtual std::string second() = 0;
    };
    struct Between {
        virtual int first(int value) = 0;
        virtual ~Between() = default;
        virtual std::string second() = 0;
    };
    EXPECT_THAT(found<Before>(), ElementsAre("destructor", "first", "second"));
    EXPECT_THAT(found<Between>(), ElementsAre("first", "destructor", "second"));

    const ClassSlots slots{"n::A", {"first", "destructor", "second"}};
    slot_check::Mirror mirror(slots, slot_check::recorded<RecordingPair<Between>>());
    ASSERT_TRUE(mirror.standsInOrder());
    EXPECT_EQ(mirror.slot<int(int)>(0)(41), 42);
    mirror.destroys(1);
    EXPECT_EQ(mirror.slot<std::string()>(2)(), "two");
    mirror.expectEverySlotCalled();
}

TEST(Mirror, RefusesADestructorWithoutSlot) {
    struct Destructible {
        ~Destructible() = default;
        virtual int first(int value) = 0;
        virtual std::string second() = 0;
    };
    const ClassSlots slots{"n::A", {"first", "second"}};
    slot_check::Mirror mirror(slots, slot_check::recorded<RecordingPair<Destructible>>());
    bool stands = true;
    EXPECT_NONFATAL_FAILURE(stands = mirror.standsInOrder(),
                            "n::A has no destructor slot, but a destructor for everyone");
    EXPECT_FALSE(stands);
}

TEST(Mirror, CallsNothingInAWrongOrder) {
    const ClassSlots slots{"n::A", {"first", "third"}};
    slot_check::Mirror mirror(slots, slot_check::recorded<RecordingPair<NoDestructor>>());
    bool stands = true;
    EXPECT_NONFATAL_FAILURE(stands = mirror.standsInOrder(), "n::A slot 1: expected third, found second");
    EXPECT_FALSE(stands);
}

TEST(Mirror, SeesThatASlotWasLeftOut) {
    const ClassSlots slots{"n::A", {"first", "second"}};
    slot_check::Mirror mirror(slots, slot_check::recorded<RecordingPair<NoDestructor>>());
    ASSERT_TRUE(mirror.standsInOrder());
    EXPECT_EQ(mirror.slot<int(int)>(0)(41), 42);
    EXPECT_NONFATAL_FAILURE(mirror.expectEverySlotCalled(), "n::A slot 1 is not mirrored");
}

TEST(Mirror, SeesOperationsThatChangedPlaces) {
    struct Swapped {
        virtual std::string second() = 0;
        virtual int first(int value) = 0;

      protected:
        ~Swapped() = default;
    };
    EXPECT_THAT(found<Swapped>(), ElementsAre("second", "first"));
}

TEST(Mirror, SeesOperationsThatCameIn) {
    struct Overloaded {
        virtual int first(int value) = 0;
        virtual int first(double) { return 0; }
        virtual std::string second() = 0;

      protected:
        ~Overloaded() = default;
    };
    struct Longer {
        virtual int first(int value) = 0;
        virtual std::string second() = 0;
        virtual void third() = 0;
        virtual ~Longer() = default;
    };
    EXPECT_THAT(differences({"n::A", {"first", "second"}}, found<Overloaded>()),
                ElementsAre("n::A slot 1: expected second, found an operation that the table does not know",
                            "n::A slot 2: expected nothing, found second"));
    EXPECT_THAT(differences({"n::A", {"first", "second"}}, found<Longer>()).size(), 2u);
}

TEST(Mirror, SeesOperationsThatLeft) {
    struct Shorter {
        virtual int first(int value) = 0;

      protected:
        ~Shorter() = default;
    };
    struct OtherSignature {
        virtual int first(int value) = 0;
        virtual std::string second() const = 0;

      protected:
        ~OtherSignature() = default;
    };
    EXPECT_THAT(found<Shorter>(), ElementsAre("first"));
    EXPECT_THAT(found<OtherSignature>(), ElementsAre("first", "an operation that the table does not know"));
}

}  // namespace
