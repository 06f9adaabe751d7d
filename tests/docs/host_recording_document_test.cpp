// The tables of docs/HOST.md on what a recording holds, against real recordings.
#include <memory>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "markdown.h"
#include "program_run.h"

namespace {

namespace fs = std::filesystem;

using docs_check::codeIn;
using docs_check::Document;
using docs_check::Row;
using nlohmann::json;
using ::testing::ContainerEq;

std::set<std::string> documented(const char* section, const char* column) {
    std::set<std::string> names;
    for (const Row& row : Document("docs/HOST.md").rowsOf(section)) {
        EXPECT_TRUE(names.insert(codeIn(row.at(column))).second) << row.at(column);
        for (const auto& [title, cell] : row) {
            EXPECT_TRUE(title == "Unit" || title == "Zero point" || !cell.empty()) << row.at(column);
        }
    }
    return names;
}

/// Names of the leaves: "a.b" in an object, "a[].b" in a list of objects. What is keyed by options or
/// settings is one leaf.
void addFields(const json& value, const std::string& name, std::set<std::string>& fields) {
    if (value.is_object() && name != "options" && !name.ends_with(".settings")) {
        for (const auto& [key, part] : value.items()) {
            addFields(part, name.empty() ? key : name + '.' + key, fields);
        }
        return;
    }
    if (value.is_array() && !value.empty() && value.front().is_object()) {
        for (const json& part : value) addFields(part, name + "[]", fields);
        return;
    }
    fields.insert(name);
}

/// A recording of cameras that run freely and one of triggered ones; whether they can be trusted does not
/// matter here.
class HostRecordingDocument : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        m_directory = std::make_unique<scenario::TemporaryDirectory>();
        for (const char* frequency : {"", "20"}) {
            const std::string name = *frequency == '\0' ? "free" : "triggered";
            std::vector<std::string> arguments{
                "record", "--seconds", "0.3", "--out", (m_directory->path() / name).string(), "--counters"};
            if (*frequency != '\0') arguments.insert(arguments.end(), {"--aux", frequency});
            scenario::runProgram(arguments);
        }
    }
    static void TearDownTestSuite() { m_directory.reset(); }

    static std::vector<fs::path> files(const std::string& suffix) {
        std::vector<fs::path> found;
        for (const auto& entry : fs::recursive_directory_iterator(m_directory->path())) {
            if (entry.path().string().ends_with(suffix)) found.push_back(entry.path());
        }
        return found;
    }

    static std::unique_ptr<scenario::TemporaryDirectory> m_directory;
};

std::unique_ptr<scenario::TemporaryDirectory> HostRecordingDocument::m_directory;

TEST_F(HostRecordingDocument, ExplainsEveryColumn) {
    std::set<std::string> found;
    for (const fs::path& file : files(".csv")) {
        std::istringstream header(scenario::readLines(file).at(0));
        for (std::string column; std::getline(header, column, ',');) found.insert(column);
    }
    EXPECT_THAT(documented("Columns of the CSV files", "Column"), ContainerEq(found));
}

TEST_F(HostRecordingDocument, ExplainsEveryFieldOfTheSummary) {
    std::set<std::string> found;
    for (const fs::path& file : files("summary.json")) {
        addFields(json::parse(scenario::readFile(file)), "", found);
    }
    // Null in the one recording, an object in the other.
    for (const char* group : {"time_error", "pulses", "counters"}) {
        found.erase(std::string("channels[].") + group);
    }
    EXPECT_THAT(documented("Fields of summary.json", "Field"), ContainerEq(found));
}

}  // namespace
