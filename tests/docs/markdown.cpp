#include "markdown.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace docs_check {
namespace {

namespace fs = std::filesystem;

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool isTableLine(const std::string& line) {
    return line.rfind('|', 0) == 0;
}

bool isRuler(const std::string& line) {
    return isTableLine(line) && line.find_first_not_of("|-: ") == std::string::npos;
}

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::string cell;
    for (std::size_t at = 1; at < line.size(); ++at) {
        if (line[at] == '\\' && at + 1 < line.size() && line[at + 1] == '|') {
            cell += line[++at];
        } else if (line[at] == '|') {
            cells.push_back(trimmed(cell));
            cell.clear();
        } else {
            cell += line[at];
        }
    }
    return cells;
}

std::string headingOf(const std::string& line) {
    const auto text = line.find_first_not_of('#');
    const bool isHeading = text != 0 && text != std::string::npos && line[text] == ' ';
    return isHeading ? trimmed(line.substr(text)) : std::string();
}

Row rowOf(const Table& table, const std::string& line) {
    const std::vector<std::string> cells = cellsOf(line);
    if (cells.size() != table.columns.size()) throw std::runtime_error("not as many cells: " + line);
    Row row;
    for (std::size_t at = 0; at < cells.size(); ++at) row[table.columns[at]] = cells[at];
    return row;
}

std::vector<std::string> linesOf(std::istream& stream) {
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

}  // namespace

Document::Document(const std::string& file) : m_file(file) {
    std::ifstream stream(sourceTree() / file);
    if (!stream) throw std::runtime_error("cannot read " + file);
    m_lines = linesOf(stream);
}

Document Document::fromText(const std::string& text) {
    Document document;
    std::istringstream stream(text);
    document.m_lines = linesOf(stream);
    return document;
}

std::vector<std::string> Document::prose() const {
    std::vector<std::string> lines;
    bool inBlock = false;
    for (const std::string& line : m_lines) {
        const bool isFence = line.rfind("```", 0) == 0;
        if (isFence) inBlock = !inBlock;
        if (!inBlock && !isFence) lines.push_back(line);
    }
    return lines;
}

std::vector<Table> Document::tables() const {
    std::vector<Table> tables;
    std::string section;
    const std::vector<std::string> lines = prose();
    for (std::size_t at = 0; at < lines.size(); ++at) {
        if (const std::string heading = headingOf(lines[at]); !heading.empty()) section = heading;
        if (at == 0 || !isRuler(lines[at])) continue;
        Table table{section, cellsOf(lines[at - 1]), {}};
        while (at + 1 < lines.size() && isTableLine(lines[at + 1])) {
            table.rows.push_back(rowOf(table, lines[++at]));
        }
        tables.push_back(std::move(table));
    }
    return tables;
}

std::vector<Row> Document::rowsOf(const std::string& section) const {
    std::vector<Row> rows;
    for (const Table& table : tables()) {
        if (table.section == section) rows.insert(rows.end(), table.rows.begin(), table.rows.end());
    }
    if (rows.empty()) throw std::runtime_error(m_file + " has no table below \"" + section + "\"");
    return rows;
}

std::vector<std::string> Document::headings() const {
    std::vector<std::string> headings;
    for (const std::string& line : prose()) {
        if (const std::string heading = headingOf(line); !heading.empty()) headings.push_back(heading);
    }
    return headings;
}

std::vector<std::string> Document::codes() const {
    std::string text;
    for (const std::string& line : prose()) text += line + '\n';
    return codesIn(text);
}

std::vector<Link> Document::links() const {
    std::vector<Link> links;
    for (const std::string& line : prose()) {
        for (auto middle = line.find("]("); middle != std::string::npos;
             middle = line.find("](", middle + 1)) {
            const auto begin = line.rfind('[', middle);
            const auto end = line.find(')', middle);
            if (begin == std::string::npos || end == std::string::npos) continue;
            links.push_back(
                {line.substr(begin + 1, middle - begin - 1), line.substr(middle + 2, end - middle - 2)});
        }
    }
    return links;
}

std::vector<std::string> codesIn(const std::string& text) {
    std::vector<std::string> codes;
    for (auto begin = text.find('`'); begin != std::string::npos; begin = text.find('`', begin)) {
        const auto end = text.find('`', begin + 1);
        if (end == std::string::npos) break;
        codes.push_back(text.substr(begin + 1, end - begin - 1));
        begin = end + 1;
    }
    return codes;
}

std::string codeIn(const std::string& cell) {
    const std::vector<std::string> codes = codesIn(cell);
    if (codes.empty()) throw std::runtime_error("nothing in backticks: " + cell);
    return codes.front();
}

std::string firstPart(const std::string& cell) {
    return trimmed(cell.substr(0, cell.find(';')));
}

fs::path sourceTree() {
    return ZELT_SOURCE_DIR;
}

std::vector<std::string> documentFiles() {
    std::vector<std::string> files;
    for (const char* folder : {"docs", "lib", "simulator", "host", "tests", "bench"}) {
        for (const auto& entry : fs::recursive_directory_iterator(sourceTree() / folder)) {
            if (entry.path().extension() == ".md")
                files.push_back(entry.path().lexically_relative(sourceTree()).generic_string());
        }
    }
    for (const auto& entry : fs::directory_iterator(sourceTree())) {
        if (entry.path().extension() == ".md") files.push_back(entry.path().filename().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace docs_check
