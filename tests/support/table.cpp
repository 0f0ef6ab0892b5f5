#include "table.h"

#include <fstream>
#include <gtest/gtest.h>

namespace {

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::size_t start = 0;
    for (std::size_t comma = line.find(','); comma != std::string::npos; comma = line.find(',', start)) {
        cells.push_back(line.substr(start, comma - start));
        start = comma + 1;
    }
    cells.push_back(line.substr(start));
    return cells;
}

} // namespace

std::vector<TableRow> readTable(const std::string& name) {
    std::ifstream file(name);
    EXPECT_TRUE(file.is_open()) << name;
    std::vector<std::string> columns;
    std::vector<TableRow> rows;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) {
            continue;
        }
        const std::vector<std::string> cells = cellsOf(line);
        if (columns.empty()) {
            columns = cells;
            continue;
        }
        if (cells.size() != columns.size()) {
            ADD_FAILURE() << name << " has a row of " << cells.size() << " cells: " << line;
            continue;
        }
        std::map<std::string, std::string> row;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            row[columns[i]] = cells[i];
        }
        rows.emplace_back(std::move(row));
    }
    return rows;
}
