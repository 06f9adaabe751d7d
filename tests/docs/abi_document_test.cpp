// docs/ABI.md against the tables that the build is checked with.
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

#include <gmock/gmock.h>

#include "markdown.h"
#include "slot_table.h"
#include "source_texts.h"

namespace {

using docs_check::codeIn;
using docs_check::codesIn;
using docs_check::Document;
using docs_check::Row;
using docs_check::Table;
using ::testing::ContainerEq;

using Classes = std::map<std::string, std::vector<std::string>>;

Classes checkedClasses() {
    Classes classes;
    for (const auto& each : slot_check::slotTable()) classes[each.name] = each.operations;
    return classes;
}

/// The first slots are those of another class, "0 to 11".
void addInherited(const Row& row, const Classes& classes, std::vector<std::string>& operations) {
    const std::string& slots = row.at("Slot");
    const auto last = std::stoul(slots.substr(slots.rfind(' ')));
    const std::vector<std::string>& base = classes.at(codeIn(row.at("Operation")));
    EXPECT_EQ(slots, "0 to " + std::to_string(last));
    ASSERT_LT(last, base.size());
    operations.assign(base.begin(), base.begin() + static_cast<std::ptrdiff_t>(last) + 1);
}

std::vector<std::string> operationsOf(const Table& table, const Classes& classes) {
    std::vector<std::string> operations;
    for (const Row& row : table.rows) {
        if (row.at("Slot").find(" to ") != std::string::npos) {
            addInherited(row, classes, operations);
            continue;
        }
        EXPECT_EQ(row.at("Slot"), std::to_string(operations.size())) << table.section;
        const std::string& operation = row.at("Operation");
        operations.push_back(operation == "destructor" ? operation : codeIn(operation));
    }
    return operations;
}

Classes documentedClasses() {
    Classes classes;
    const auto add = [&classes](const std::string& name, const std::vector<std::string>& operations) {
        EXPECT_TRUE(classes.emplace(name, operations).second) << name << " stands there twice";
    };
    std::vector<Row> aliases;
    for (const Table& table : Document("docs/ABI.md").tables()) {
        if (table.columns.front() == "Slot") add(codeIn(table.section), operationsOf(table, classes));
        if (table.columns.front() == "Class")
            aliases.insert(aliases.end(), table.rows.begin(), table.rows.end());
    }
    for (const Row& row : aliases) add(codeIn(row.at("Class")), classes.at(codeIn(row.at("Slots of"))));
    return classes;
}

TEST(AbiDocument, HasTheSlotsThatTheBuildIsCheckedAgainst) {
    EXPECT_THAT(documentedClasses(), ContainerEq(checkedClasses()));
}

TEST(AbiDocument, SaysOfEveryOperationThatHostsCallWhatItThrowsAndLocks) {
    for (const Table& table : Document("docs/ABI.md").tables()) {
        const bool isCalled =
            table.columns == std::vector<std::string>{"Slot", "Operation", "Called", "Throws", "Locks"};
        const bool isHostApi = table.section.rfind("`zelt::If", 0) == 0 ||
                               table.section.rfind("`plugin_api::", 0) == 0 ||
                               table.section.rfind("`channel_config::IfChannelConfig", 0) == 0;
        if (table.columns.front() == "Slot") {
            EXPECT_EQ(isCalled, isHostApi) << table.section;
        }
        if (!isCalled) continue;
        for (const Row& row : table.rows) {
            if (row.at("Operation").rfind("as ", 0) == 0) continue;
            EXPECT_NE(row.at("Throws"), "") << table.section << " " << row.at("Operation");
            EXPECT_NE(row.at("Locks"), "") << table.section << " " << row.at("Operation");
        }
    }
}

TEST(AbiDocument, NamesTheExportsOfTheLibrary) {
    std::ifstream stream(docs_check::sourceTree() / "lib/zelt_gige_camera/zelt_gige_camera.exports");
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    const std::regex name("ZELT_[A-Za-z]+");
    const std::set<std::string> exported(std::sregex_token_iterator(text.begin(), text.end(), name), {});
    std::set<std::string> documented;
    for (const Row& row : Document("docs/ABI.md").rowsOf("The two exports")) {
        documented.insert(codeIn(row.at("Symbol")));
    }
    EXPECT_THAT(documented, ContainerEq(exported));
}

TEST(AbiDocument, NamesTheIdsOfTheSources) {
    const std::regex id("\\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\}");
    std::set<std::string> known;
    for (const docs_check::Source& source : docs_check::productSources()) {
        for (const std::string& literal : source.literals()) {
            if (std::regex_match(literal, id)) known.insert(literal);
        }
    }
    std::set<std::string> documented;
    for (const Row& row : Document("docs/ABI.md").rowsOf("Ids")) documented.insert(codeIn(row.at("Id")));
    EXPECT_THAT(documented, ContainerEq(known));
}

}  // namespace
