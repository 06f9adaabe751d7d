#include "mirror.h"

#include <algorithm>
#include <map>

#include <gtest/gtest.h>

namespace slot_check {
namespace {

constexpr const char* kUnknown = "an operation that the table does not know";

std::vector<std::string>& answers() {
    static std::vector<std::string> names;
    return names;
}

std::map<std::string, const MirrorOf*>& mirrors() {
    static std::map<std::string, const MirrorOf*> byName;
    return byName;
}

}  // namespace

void answered(const std::string& operation) {
    answers().push_back(operation);
}

void answerIf(const char* operation, bool argumentsArrived) {
    answered(operation);
    EXPECT_TRUE(argumentsArrived) << operation;
}

std::vector<std::string> takeAnswers() {
    return std::exchange(answers(), {});
}

void layOut(Recorded& recorded, const Operations& operations, std::size_t size, bool hasDestructor) {
    std::vector<std::string> names(size);
    for (const Operation& operation : operations) {
        if (operation.entry < size) names[operation.entry] = operation.name;
    }
    for (std::size_t entry = 0; entry < size; ++entry) {
        recorded.entries.push_back(entry);
        if (!names[entry].empty()) {
            recorded.slots.push_back(names[entry]);
        } else if (hasDestructor && entry + 1 < size && names[entry + 1].empty()) {
            recorded.slots.push_back("destructor");
            hasDestructor = false;
            ++entry;
        } else {
            recorded.slots.push_back(kUnknown);
        }
    }
}

Mirror::Mirror(const ClassSlots& slots, Recorded recorded)
    : m_slots(slots), m_recorded(std::move(recorded)) {}

Mirror::~Mirror() {
    if (m_object != nullptr) m_recorded.destroy(m_object);
    takeAnswers();
}

bool Mirror::standsInOrder() {
    const auto wrong = differences(m_slots, m_recorded.slots);
    for (const std::string& sentence : wrong) ADD_FAILURE() << sentence;
    if (!wrong.empty()) return false;
    const auto& table = m_slots.operations;
    if (m_recorded.destructible && std::find(table.begin(), table.end(), "destructor") == table.end()) {
        ADD_FAILURE() << m_slots.name << " has no destructor slot, but a destructor for everyone";
        return false;
    }
    if (m_recorded.make == nullptr) {
        ADD_FAILURE() << m_slots.name << " has operations behind a further base";
        return false;
    }
    m_object = m_recorded.make();
    return true;
}

void Mirror::before(std::size_t number) {
    m_called.insert(number);
    takeAnswers();
}

void Mirror::after(std::size_t number) const {
    if (m_recorded.records) expectAnswers(number, {m_slots.operations.at(number)});
}

void Mirror::expectAnswers(std::size_t number, const std::vector<std::string>& expected) const {
    EXPECT_EQ(takeAnswers(), expected) << m_slots.name << " slot " << number;
}

void Mirror::destroys(std::size_t number) {
    const std::size_t entry = m_recorded.entries.at(number);
    before(number);
    void* const inPlace = m_recorded.make();
    callEntry<void>(inPlace, entry);
    if (m_recorded.records) expectAnswers(number, {"destructor"});
    ::operator delete(inPlace);

    callEntry<void>(m_recorded.make(), entry + 1);
    if (m_recorded.records) expectAnswers(number, {"destructor", "operator delete"});
}

void Mirror::expectEverySlotCalled() const {
    for (std::size_t slot = 0; slot < m_slots.operations.size(); ++slot) {
        EXPECT_TRUE(m_called.contains(slot)) << m_slots.name << " slot " << slot << " is not mirrored";
    }
}

MirrorOf::MirrorOf(const std::string& className, std::function<Recorded()> recorded,
                   std::function<void(Mirror&)> calls)
    : m_recorded(std::move(recorded)), m_calls(std::move(calls)) {
    mirrors()[className] = this;
}

const MirrorOf* MirrorOf::find(const std::string& className) {
    const auto found = mirrors().find(className);
    return found == mirrors().end() ? nullptr : found->second;
}

std::set<std::string> MirrorOf::classNames() {
    std::set<std::string> names;
    for (const auto& [name, mirror] : mirrors()) names.insert(name);
    return names;
}

void MirrorOf::check(const ClassSlots& slots) const {
    Mirror mirror(slots, m_recorded());
    if (!mirror.standsInOrder()) return;
    m_calls(mirror);
    mirror.expectEverySlotCalled();
}

}  // namespace slot_check
