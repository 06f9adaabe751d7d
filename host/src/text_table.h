#pragma once

#include <string>
#include <vector>

namespace host {

struct TableColumn {
    std::string title;
    bool alignRight = false;
};

/// Lines of a table, indented by two columns, two between columns, each ending in '\n'; widths are counted
/// in characters of UTF-8.
std::string formatTable(const std::vector<TableColumn>& columns,
                        const std::vector<std::vector<std::string>>& rows);

}  // namespace host
