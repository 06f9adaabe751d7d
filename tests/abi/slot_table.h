/// The checked-in tables of virtual operations, slots.txt, and of data members, fields.txt; and the
/// comparison of the former with what a compiler made.
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

/// One class and its data members, "type name", in their order in the object.
struct ClassFields {
    std::string name;
    std::vector<std::string> fields;
};

void PrintTo(const ClassFields& fields, std::ostream* out);
/// The class, as a part of a test name.
std::string testNameOf(std::string className);

/// Reads the text form. Throws std::runtime_error with the line that is not understood.
std::vector<ClassSlots> parseSlots(std::istream& text);
std::vector<ClassFields> parseFields(std::istream& text);

/// The checked-in tables.
const std::vector<ClassSlots>& slotTable();
const std::vector<ClassFields>& fieldTable();

/// One sentence for each slot in which `found` differs; none when they agree. What was found may carry its
/// arguments, "name(Type)"; they count only where the table gives some.
std::vector<std::string> differences(const ClassSlots& expected, const std::vector<std::string>& found);

}  // namespace slot_check
