// The table of docs/TIME.md on how good times are, against the bounds that accuracy_tests demands.
#include <vector>

#include <gmock/gmock.h>

#include "accuracy_cases.h"
#include "markdown.h"

namespace {

using docs_check::Document;
using docs_check::Row;
using test_support::AccuracyBounds;
using test_support::AccuracyCase;
using test_support::inWords;

Row statedRow(const char* name, const AccuracyBounds& bounds) {
    return {{"Conditions", name},
            {"Constant", inWords(bounds.constant)},
            {"p50", inWords(bounds.p50)},
            {"p99", inWords(bounds.p99)},
            {"max", inWords(bounds.max)}};
}

TEST(AccuracyDocument, StatesTheBoundsThatEveryTestRunDemands) {
    std::vector<Row> expected;
    for (const AccuracyCase& each : test_support::accuracyCases())
        expected.push_back(statedRow(each.name, each.bounds));
    expected.push_back(statedRow(test_support::kTriggeredCase, test_support::triggeredBounds()));
    std::vector<Row> stated;
    for (const Row& row : Document("docs/TIME.md").rowsOf("What accuracy to expect")) {
        if (row.contains("Conditions")) stated.push_back(row);
    }
    EXPECT_THAT(stated, ::testing::ElementsAreArray(expected));
}

}  // namespace
