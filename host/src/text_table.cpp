#include "text_table.h"

#include <algorithm>

#include "console.h"

namespace host {
namespace {

std::string formatRow(const std::vector<TableColumn>& columns, const std::vector<std::size_t>& widths,
                      const std::vector<std::string>& cells) {
    std::string line;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string padding(widths[i] - displayWidth(cells[i]), ' ');
        line += "  " + (columns[i].alignRight ? padding + cells[i] : cells[i] + padding);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line + '\n';
}

}  // namespace

std::string formatTable(const std::vector<TableColumn>& columns,
                        const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::string> titles;
    std::vector<std::size_t> widths;
    for (const TableColumn& column : columns) {
        titles.push_back(column.title);
        widths.push_back(displayWidth(column.title));
    }
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < columns.size(); ++i)
            widths[i] = std::max(widths[i], displayWidth(row[i]));
    }
    std::string text = formatRow(columns, widths, titles);
    for (const auto& row : rows) text += formatRow(columns, widths, row);
    return text;
}

}  // namespace host
