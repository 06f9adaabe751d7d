/// The documents as tests read them: sections, tables, texts in backticks, links.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace docs_check {

/// A row of a table: cells by the name of their column. What a document writes as "\|" is read as "|".
using Row = std::map<std::string, std::string>;

struct Table {
    std::string section;  ///< heading above it, without the "#"
    std::vector<std::string> columns;
    std::vector<Row> rows;
};

struct Link {
    std::string text;
    std::string target;
};

/// One Markdown document of the tree.
class Document {
  public:
    /// `file`: path inside the source tree. Throws std::runtime_error when it cannot be read.
    explicit Document(const std::string& file);
    /// For tests of this class.
    static Document fromText(const std::string& text);

    const std::string& file() const { return m_file; }
    /// Tables in order. Throws std::runtime_error for a row with another number of cells than its header.
    std::vector<Table> tables() const;
    /// All rows of the tables of a section. Throws std::runtime_error when it has none.
    std::vector<Row> rowsOf(const std::string& section) const;
    /// Headings without their "#".
    std::vector<std::string> headings() const;
    /// Texts in backticks and links, outside blocks of code.
    std::vector<std::string> codes() const;
    std::vector<Link> links() const;

  private:
    Document() = default;
    std::vector<std::string> prose() const;

    std::string m_file;
    std::vector<std::string> m_lines;
};

/// What stands in backticks, in order.
std::vector<std::string> codesIn(const std::string& text);
/// The first text in backticks. Throws std::runtime_error when there is none.
std::string codeIn(const std::string& cell);
/// What stands before the first ";".
std::string firstPart(const std::string& cell);

std::filesystem::path sourceTree();
/// Paths inside the tree of all Markdown documents, without those of builds and recordings.
std::vector<std::string> documentFiles();

}  // namespace docs_check
