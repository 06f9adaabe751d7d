// docs/MESSAGES.md against the texts of the sources.
#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <tuple>

#include <gmock/gmock.h>

#include "markdown.h"
#include "source_texts.h"

namespace {

using docs_check::codeIn;
using docs_check::codesIn;
using docs_check::Document;
using docs_check::piecesOf;
using docs_check::productSources;
using docs_check::Row;
using docs_check::Source;
using docs_check::withBareBlanks;
using ::testing::ContainerEq;
using ::testing::IsEmpty;

std::vector<Row> messageRows(const char* section) {
    return Document("docs/MESSAGES.md").rowsOf(section);
}

/// All texts that the document lists, of whatever kind.
std::vector<std::string> documentedTexts() {
    std::vector<std::string> texts;
    const auto add = [&texts](const char* section, std::initializer_list<const char*> columns) {
        for (const Row& row : messageRows(section)) {
            for (const char* column : columns) {
                for (const std::string& text : codesIn(row.at(column))) texts.push_back(withBareBlanks(text));
            }
        }
    };
    add("Messages of a channel", {"Message", "Log line ahead"});
    add("Reasons", {"Reason"});
    add("Log lines", {"Line"});
    add("Log lines of failed calls", {"Line"});
    add("Assertions", {"Expression", "Message"});
    add("Other texts", {"Text"});
    return texts;
}

/// A literal that says something: keys, names of features and the like have no blanks.
bool isSentence(const std::string& literal) {
    const bool hasLetter =
        std::any_of(literal.begin(), literal.end(), [](unsigned char c) { return std::isalpha(c) != 0; });
    return hasLetter && literal.find(' ') != std::string::npos;
}

/// Whether the literals stand one after the other in a source.
bool holds(const std::vector<std::string>& literals, const std::vector<std::string>& pieces) {
    return std::search(literals.begin(), literals.end(), pieces.begin(), pieces.end()) != literals.end();
}

TEST(MessagesDocument, HasEveryTextOfTheSources) {
    std::set<std::string> documented;
    for (const std::string& text : documentedTexts()) {
        for (const std::string& piece : piecesOf(text)) documented.insert(piece);
    }
    for (const Source& source : productSources()) {
        for (const std::string& literal : source.literals()) {
            if (isSentence(literal)) {
                EXPECT_TRUE(documented.contains(literal)) << source.file() << ": " << literal;
            }
        }
    }
}

TEST(MessagesDocument, HasNoTextThatTheSourcesDoNotHave) {
    std::vector<std::vector<std::string>> files;
    for (const Source& source : productSources()) files.push_back(source.literals());
    std::set<std::string> expressions;
    for (const Source& source : productSources()) {
        for (const auto& assertion : source.assertions()) expressions.insert(assertion.expression);
    }
    for (const std::string& text : documentedTexts()) {
        const std::vector<std::string> pieces = piecesOf(text);
        const bool isThere = expressions.contains(text) ||
                             std::any_of(files.begin(), files.end(),
                                         [&](const auto& literals) { return holds(literals, pieces); });
        EXPECT_TRUE(isThere) << text;
    }
}

TEST(MessagesDocument, HasTheLogLinesWithTheirSeverities) {
    std::set<std::pair<std::string, std::string>> documented;
    for (const Row& row : messageRows("Log lines")) {
        documented.emplace(row.at("Severity"), withBareBlanks(codeIn(row.at("Line"))));
    }
    std::set<std::pair<std::string, std::string>> found;
    for (const Source& source : productSources()) {
        for (const auto& statement : source.logStatements())
            found.emplace(statement.severity, statement.text);
    }
    EXPECT_THAT(documented, ContainerEq(found));
}

TEST(MessagesDocument, HasTheAssertionsWithTheirMessagesAndSources) {
    using Entry = std::tuple<std::string, std::string, std::string>;
    std::set<Entry> documented;
    for (const Row& row : messageRows("Assertions")) {
        const std::vector<std::string> message = codesIn(row.at("Message"));
        documented.emplace(codeIn(row.at("Source")), codeIn(row.at("Expression")),
                           message.empty() ? "" : message.front());
    }
    std::set<Entry> found;
    for (const Source& source : productSources()) {
        const std::string path = source.file().substr(0, source.file().rfind('.'));
        for (const auto& assertion : source.assertions()) {
            found.emplace(path, assertion.expression, assertion.message);
        }
    }
    EXPECT_THAT(documented, ContainerEq(found));
}

TEST(MessagesDocument, SaysForEveryMessageAndReasonWhatToDo) {
    for (const char* section : {"Messages of a channel", "Reasons"}) {
        for (const Row& row : messageRows(section)) {
            const std::string& text = row.contains("Message") ? row.at("Message") : row.at("Reason");
            EXPECT_NE(row.at("What to do"), "") << text;
            EXPECT_NE(row.contains("Cause") ? row.at("Cause") : row.at("When"), "") << text;
        }
    }
}

TEST(SourceTexts, AreReadAsTheCompilerReadsThem) {
    const Source source = Source::fromText(
        "#include \"no text.h\"\n// \"no text\"\n/* \"no text\" */ a(\"one \"\n  \"text\", '\"', 1'000, "
        "\"q\\\"uote\");");
    EXPECT_THAT(source.literals(), ::testing::ElementsAre("one text", "q\"uote"));
}

TEST(SourceTexts, OfLogStatementsHaveBlanksForValues) {
    const Source source = Source::fromText(
        "GIGE_LOG(Error) << \"a; \" << b(';') << \" c\";\nGIGE_LOG(Info) << text;\nZELT_LOG(logger, Trace) "
        "<< name << \" d\" << e;");
    const auto statements = source.logStatements();
    ASSERT_EQ(statements.size(), 2u);
    EXPECT_EQ(statements[0].severity, "Error");
    EXPECT_EQ(statements[1].severity, "Trace");
    EXPECT_EQ(statements[1].text, "<> d<>");
}

TEST(SourceTexts, OfAssertionsAreTheirExpressionAndMessage) {
    const Source source =
        Source::fromText("ZELT_ASSERT(a(b, c) == 1);\nZELT_ASSERT_AS(a, \"b <= c\",\n \"message\");");
    const auto assertions = source.assertions();
    ASSERT_EQ(assertions.size(), 2u);
    EXPECT_EQ(assertions[0].expression, "a(b, c) == 1");
    EXPECT_EQ(assertions[0].message, "");
    EXPECT_EQ(assertions[1].expression, "b <= c");
    EXPECT_EQ(assertions[1].message, "message");
}

TEST(DocumentedTexts, HaveBlanksWhereNamesStandInAngles) {
    EXPECT_EQ(withBareBlanks("a <name> b < c <two words>"), "a <> b < c <>");
    EXPECT_THAT(piecesOf("<>a<><>b"), ::testing::ElementsAre("a", "b"));
    EXPECT_THAT(piecesOf("<>"), IsEmpty());
}

}  // namespace
