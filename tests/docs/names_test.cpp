// Links and names in all documents: what they point to exists.
#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

#include <gmock/gmock.h>

#include "markdown.h"

namespace {

namespace fs = std::filesystem;

using docs_check::codeIn;
using docs_check::Document;
using docs_check::documentFiles;
using docs_check::Link;
using docs_check::Row;
using docs_check::sourceTree;
using docs_check::Table;
using ::testing::IsSubsetOf;

constexpr const char* kFolders[] = {"bench", "cmake", "docs", "host", "lib", "simulator", "tests", "tools"};

/// Texts of the tree by their paths in it, without documents and without this one, which names what does not
/// exist.
const std::map<std::string, std::string>& sources() {
    static const std::map<std::string, std::string> texts = [] {
        std::map<std::string, std::string> read;
        const auto add = [&read](const fs::path& path) {
            std::ifstream stream(path);
            read.emplace(path.lexically_relative(sourceTree()).generic_string(),
                         std::string{std::istreambuf_iterator<char>(stream), {}});
        };
        for (const char* folder : kFolders) {
            for (const auto& entry : fs::recursive_directory_iterator(sourceTree() / folder)) {
                const bool isOfInterest = entry.is_regular_file() && entry.path().extension() != ".md" &&
                                          !entry.path().generic_string().ends_with("docs/names_test.cpp");
                if (isOfInterest) add(entry.path());
            }
        }
        for (const char* file : {"CMakeLists.txt", "CMakePresets.json", "run", "test"})
            add(sourceTree() / file);
        return read;
    }();
    return texts;
}

bool isWordPart(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool hasWord(const std::string& text, const std::string& word) {
    for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        const bool begins = at == 0 || !isWordPart(text[at - 1]);
        const std::size_t end = at + word.size();
        if (begins && (end == text.size() || !isWordPart(text[end]))) return true;
    }
    return false;
}

/// Whether one source has all of these words.
bool areTogether(const std::vector<std::string>& words) {
    return std::any_of(sources().begin(), sources().end(), [&](const auto& source) {
        return std::all_of(words.begin(), words.end(),
                           [&](const std::string& word) { return hasWord(source.second, word); });
    });
}

/// A path that begins with a folder of the tree.
bool isPath(const std::string& code) {
    static const std::regex path("[a-z]+/[A-Za-z0-9_./-]*");
    const bool isInFolder = std::find(std::begin(kFolders), std::end(kFolders),
                                      code.substr(0, code.find('/'))) != std::end(kFolders);
    return isInFolder && std::regex_match(code, path);
}

bool isFileName(const std::string& code) {
    static const std::regex name("[A-Za-z0-9_-]+\\.(h|c|cpp|inc|txt|md|sh|py|cmake|exports|map|def)");
    return std::regex_match(code, name);
}

/// A name of several words, as the code has them; a single plain word may be anything.
bool isName(const std::string& code) {
    static const std::regex name("[A-Za-z_]\\w*(<T>)?(::~?[A-Za-z_]\\w*(<T>)?)*(\\(\\))?");
    if (!std::regex_match(code, name)) return false;
    return std::any_of(code.begin() + 1, code.end(),
                       [](unsigned char c) { return std::isupper(c) != 0 || c == '_' || c == ':'; });
}

std::vector<std::string> wordsOf(const std::string& name) {
    static const std::regex word("\\w\\w+");
    return {std::sregex_token_iterator(name.begin(), name.end(), word), {}};
}

/// A file's path and, where several have it, paths without their extension, as assertions tell them.
bool exists(const std::string& path) {
    const fs::path full = sourceTree() / path;
    return fs::exists(full) || fs::exists(full.string() + ".cpp") || fs::exists(full.string() + ".h");
}

bool existsSomewhere(const std::string& fileName) {
    const auto isIt = [&](const std::string& path) { return fs::path(path).filename() == fileName; };
    const std::vector<std::string> documents = documentFiles();
    return std::any_of(sources().begin(), sources().end(),
                       [&](const auto& each) { return isIt(each.first); }) ||
           std::any_of(documents.begin(), documents.end(), isIt);
}

bool isThere(const std::string& code) {
    if (isPath(code)) return exists(code);
    if (isFileName(code)) return existsSomewhere(code);
    if (isName(code)) return areTogether(wordsOf(code)) || existsSomewhere(code + ".cpp");
    return true;
}

TEST(Documents, PointToFilesThatExist) {
    for (const std::string& file : documentFiles()) {
        for (const Link& link : Document(file).links()) {
            EXPECT_EQ(link.target.find(':'), std::string::npos) << file << ": " << link.target;
            const fs::path target = sourceTree() / fs::path(file).parent_path() / link.target;
            EXPECT_TRUE(fs::exists(target)) << file << ": " << link.target;
        }
    }
}

TEST(Documents, NameWhatIsInTheTree) {
    for (const std::string& file : documentFiles()) {
        for (const std::string& code : Document(file).codes()) {
            EXPECT_TRUE(isThere(code)) << file << ": " << code;
        }
    }
}

TEST(Documents, PlaceFunctionsIntoTheFilesThatHaveThem) {
    int places = 0;
    for (const std::string& file : documentFiles()) {
        for (const Table& table : Document(file).tables()) {
            const auto& columns = table.columns;
            const bool hasPlaces = std::find(columns.begin(), columns.end(), "File") != columns.end() &&
                                   std::find(columns.begin(), columns.end(), "Function") != columns.end();
            if (!hasPlaces) continue;
            for (const Row& row : table.rows) {
                const std::string name = "/" + codeIn(row.at("File"));
                const std::string function = codeIn(row.at("Function")) + "(";
                const bool isHere = std::any_of(sources().begin(), sources().end(), [&](const auto& source) {
                    return source.first.ends_with(name) && source.second.find(function) != std::string::npos;
                });
                EXPECT_TRUE(isHere) << file << ": " << name << ", " << function;
                ++places;
            }
        }
    }
    EXPECT_GT(places, 0);
}

/// Documents that one reaches from the first by links.
std::set<std::string> reachedFrom(const std::string& first) {
    std::set<std::string> reached;
    std::vector<std::string> open{first};
    while (!open.empty()) {
        const std::string file = open.back();
        open.pop_back();
        if (!reached.insert(file).second) continue;
        for (const Link& link : Document(file).links()) {
            const std::string target =
                (fs::path(file).parent_path() / link.target).lexically_normal().generic_string();
            if (target.ends_with(".md") && fs::exists(sourceTree() / target)) open.push_back(target);
        }
    }
    return reached;
}

TEST(Documents, AreAllReachedFromTheReadme) {
    const std::set<std::string> reached = reachedFrom("README.md");
    EXPECT_THAT(documentFiles(), IsSubsetOf(reached));
}

/// The folder of a table whose file this is; empty for none.
std::string folderOf(const std::string& path, const std::vector<std::string>& folders) {
    const auto found = std::find_if(folders.begin(), folders.end(), [&](const std::string& folder) {
        return path.rfind(folder + "/", 0) == 0;
    });
    return found != folders.end() ? *found : std::string();
}

/// Folders whose headers a folder includes, but itself.
std::set<std::string> includedBy(const std::string& folder, const std::vector<std::string>& folders) {
    static const std::regex include("#include \"([^\"]+)\"");
    std::set<std::string> headers;
    std::set<std::string> included;
    for (const auto& [path, text] : sources()) {
        if (folderOf(path, folders) != folder) continue;
        headers.insert(std::sregex_token_iterator(text.begin(), text.end(), include, 1), {});
    }
    std::map<std::string, std::set<std::string>> places;
    for (const auto& [path, text] : sources())
        places[fs::path(path).filename().string()].insert(folderOf(path, folders));
    for (const std::string& header : headers) {
        const std::set<std::string>& found = places[fs::path(header).filename().string()];
        if (!found.contains(folder)) included.insert(found.begin(), found.end());
    }
    included.erase("");
    return included;
}

TEST(Architecture, SaysWhichFoldersUseWhich) {
    const std::vector<Row> rows = Document("docs/ARCHITECTURE.md").rowsOf("Folders and arrows");
    std::vector<std::string> folders;
    for (const Row& row : rows) {
        if (row.contains("Folder")) folders.push_back(codeIn(row.at("Folder")));
    }
    for (const auto& entry : fs::directory_iterator(sourceTree() / "lib")) {
        const std::string folder = "lib/" + entry.path().filename().string();
        if (entry.is_directory()) {
            EXPECT_NE(std::find(folders.begin(), folders.end(), folder), folders.end()) << folder;
        }
    }
    for (const Row& row : rows) {
        if (!row.contains("Folder")) continue;
        const std::vector<std::string> uses = docs_check::codesIn(row.at("Uses"));
        EXPECT_EQ(std::set<std::string>(uses.begin(), uses.end()),
                  includedBy(codeIn(row.at("Folder")), folders))
            << row.at("Folder");
    }
}

TEST(Decisions, AreNumberedAndListedInOrder) {
    std::vector<std::string> files;
    for (const auto& entry : fs::directory_iterator(sourceTree() / "docs/decisions")) {
        if (entry.path().filename() != "README.md") files.push_back(entry.path().filename().string());
    }
    std::sort(files.begin(), files.end());
    const Document index("docs/decisions/README.md");
    const std::vector<Link> links = index.links();
    const std::vector<Row> rows = index.rowsOf("Decisions");
    ASSERT_EQ(links.size(), files.size());
    ASSERT_EQ(rows.size(), files.size());
    for (std::size_t at = 0; at < files.size(); ++at) {
        const std::string number = (at < 9 ? "000" : "00") + std::to_string(at + 1);
        EXPECT_EQ(links[at].target, files[at]);
        EXPECT_EQ(files[at].substr(0, 5), number + "-");
        EXPECT_EQ(rows[at].at("Number"), number);
        const Document decision("docs/decisions/" + files[at]);
        EXPECT_EQ(decision.headings(), std::vector<std::string>{number + " " + links[at].text});
    }
}

TEST(Names, AreToldFromOtherTextsInBackticks) {
    for (const char* path : {"lib/host_api/inc", "docs/TIME.md"}) EXPECT_TRUE(isPath(path)) << path;
    for (const char* other : {"CAMERA/Gain", "build/bin", "./run"}) EXPECT_FALSE(isPath(other)) << other;
    for (const char* name : {"a_b", "aB", "A::b", "A<T>::b", "ab()::c"}) {
        EXPECT_EQ(isName(name), std::string(name) != "ab()::c") << name;
    }
    for (const char* other : {"frames", "a b", "--set", "frames.empty()"})
        EXPECT_FALSE(isName(other)) << other;
    EXPECT_TRUE(isThere("ClockSyncBase::addSyncPoint"));
    EXPECT_FALSE(isThere("ClockSyncBase::addNoPoint"));
    EXPECT_FALSE(isThere("lib/no_folder"));
    EXPECT_FALSE(isThere("no_file.h"));
}

TEST(MarkdownDocuments, HaveTablesLinksAndCodes) {
    const Document document = Document::fromText(
        "# A\n\n| x | y |\n|---|---|\n| `1` | a \\| b |\n\n## B\n\n[text](to.md) and `c`\n\n```\n`no` "
        "[no](no)\n```\n");
    ASSERT_EQ(document.tables().size(), 1u);
    EXPECT_EQ(document.rowsOf("A").front().at("y"), "a | b");
    EXPECT_EQ(document.headings(), (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(document.codes(), (std::vector<std::string>{"1", "c"}));
    ASSERT_EQ(document.links().size(), 1u);
    EXPECT_EQ(document.links().front().target, "to.md");
    EXPECT_THROW(document.rowsOf("B"), std::runtime_error);
    EXPECT_THROW(Document::fromText("| x |\n|---|\n| 1 | 2 |\n").tables(), std::runtime_error);
}

}  // namespace
