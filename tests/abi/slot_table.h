/// The checked-in table of virtual operations, slots.txt, and the comparison with what a compiler made.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace slot_check {

/// One class and its operations, slot by slot.
struct ClassSlots {
    std::string name;
    std::vector<std::string> operations;
};

void PrintTo(const ClassSlots& slots, std::ostream* out);
/// The class, as a part of a test name.
std::string testNameOf(const ClassSlots& slots);

/// Reads the text form. Throws std::runtime_error with the line that is not understood.
std::vector<ClassSlots> parseSlots(std::istream& text);

/// The checked-in table.
const std::vector<ClassSlots>& slotTable();

/// One sentence for each slot in which `found` differs; none when they agree. What was found may carry its
/// arguments, "name(Type)"; they count only where the table gives some.
std::vector<std::string> differences(const ClassSlots& expected, const std::vector<std::string>& found);

}  // namespace slot_check
