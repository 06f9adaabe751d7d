#include "slot_table.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <stdexcept>

namespace slot_check {
namespace {

using Classes = std::vector<ClassSlots>;

template <class Class>
Class* find(std::vector<Class>& classes, const std::string& name) {
    const auto found = std::find_if(classes.begin(), classes.end(),
                                    [&](const Class& candidate) { return candidate.name == name; });
    return found == classes.end() ? nullptr : &*found;
}

void addAlias(Classes& classes, const std::string& name, const std::string& other) {
    const ClassSlots* const model = find(classes, other);
    if (model == nullptr) throw std::invalid_argument(other + " does not stand above");
    if (find(classes, name) != nullptr) throw std::invalid_argument(name + " stands here twice");
    classes.push_back({name, model->operations});
}

void addSlot(Classes& classes, const std::string& name, const std::string& slot,
             const std::string& operation) {
    if (classes.empty() || classes.back().name != name) {
        if (find(classes, name) != nullptr) throw std::invalid_argument(name + " stands here twice");
        classes.push_back({name, {}});
    }
    auto& operations = classes.back().operations;
    if (slot != std::to_string(operations.size())) throw std::invalid_argument("slots are not in order");
    operations.push_back(operation);
}

void addLine(Classes& classes, const std::string& line) {
    const auto as = line.find(" as ");
    if (as != std::string::npos) return addAlias(classes, line.substr(0, as), line.substr(as + 4));
    // Class names may hold blanks, so the line is read from its end.
    const auto last = line.rfind(' ');
    const auto middle = last == std::string::npos || last == 0 ? last : line.rfind(' ', last - 1);
    if (middle == std::string::npos || middle == 0) throw std::invalid_argument("a part is missing");
    addSlot(classes, line.substr(0, middle), line.substr(middle + 1, last - middle - 1),
            line.substr(last + 1));
}

void addFields(std::vector<ClassFields>& classes, const std::string& line) {
    const auto colon = line.find(": ");
    if (colon == std::string::npos) throw std::invalid_argument("a part is missing");
    ClassFields found{line.substr(0, colon), {}};
    if (find(classes, found.name) != nullptr) throw std::invalid_argument(found.name + " stands here twice");
    for (std::size_t begin = colon + 2; begin < line.size();) {
        const auto end = std::min(line.find("; ", begin), line.size());
        found.fields.push_back(line.substr(begin, end - begin));
        begin = end + 2;
    }
    classes.push_back(found);
}

template <class Class>
std::vector<Class> parse(std::istream& text, void (*add)(std::vector<Class>&, const std::string&)) {
    std::vector<Class> classes;
    std::string line;
    while (std::getline(text, line)) {
        if (line.empty() || line.front() == '#') continue;
        try {
            add(classes, line);
        } catch (const std::invalid_argument& error) {
            throw std::runtime_error("table, \"" + line + "\": " + error.what());
        }
    }
    return classes;
}

bool matches(const std::string& expected, const std::string& found) {
    return expected == found || expected == found.substr(0, found.find('('));
}

}  // namespace

void PrintTo(const ClassSlots& slots, std::ostream* out) {
    *out << slots.name;
}

void PrintTo(const ClassFields& fields, std::ostream* out) {
    *out << fields.name;
}

std::string testNameOf(std::string className) {
    const auto isOther = [](unsigned char c) { return std::isalnum(c) == 0; };
    std::replace_if(className.begin(), className.end(), isOther, '_');
    return className;
}

std::vector<ClassSlots> parseSlots(std::istream& text) {
    return parse(text, &addLine);
}

std::vector<ClassFields> parseFields(std::istream& text) {
    return parse(text, &addFields);
}

const std::vector<ClassSlots>& slotTable() {
    static const std::vector<ClassSlots> table = [] {
        std::ifstream file(ZELT_SOURCE_DIR "/tests/abi/slots.txt");
        return parseSlots(file);
    }();
    return table;
}

const std::vector<ClassFields>& fieldTable() {
    static const std::vector<ClassFields> table = [] {
        std::ifstream file(ZELT_SOURCE_DIR "/tests/abi/fields.txt");
        return parseFields(file);
    }();
    return table;
}

std::vector<std::string> differences(const ClassSlots& expected, const std::vector<std::string>& found) {
    const auto at = [](const std::vector<std::string>& names, std::size_t slot) {
        return slot < names.size() ? names[slot] : std::string("nothing");
    };
    std::vector<std::string> sentences;
    for (std::size_t slot = 0; slot < std::max(expected.operations.size(), found.size()); ++slot) {
        const std::string want = at(expected.operations, slot);
        const std::string have = at(found, slot);
        if (matches(want, have)) continue;
        sentences.push_back(expected.name + " slot " + std::to_string(slot) + ": expected " + want +
                            ", found " + have);
    }
    return sentences;
}

}  // namespace slot_check
