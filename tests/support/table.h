#ifndef POS_TESTS_TABLE_H
#define POS_TESTS_TABLE_H

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

/** A row of a table: texts by the names of their columns. */
class TableRow {
public:
    explicit TableRow(std::map<std::string, std::string> cells) : cells_(std::move(cells)) {}

    const std::map<std::string, std::string>& cells() const {
        return cells_;
    }
    /** The text in a column, which there must be. */
    const std::string& text(const std::string& column) const {
        return cells_.at(column);
    }
    /** The number in a column, to the bit. */
    double number(const std::string& column) const {
        return std::stod(cells_.at(column));
    }

private:
    std::map<std::string, std::string> cells_;
};

/** The texts between the commas. */
inline std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::size_t start = 0;
    for (std::size_t comma = line.find(','); comma != std::string::npos; comma = line.find(',', start)) {
        cells.push_back(line.substr(start, comma - start));
        start = comma + 1;
    }
    cells.push_back(line.substr(start));
    return cells;
}

/**
 * The rows of a data file: lines that begin with "#" are comments, the first other line names the columns, commas
 * separate and nothing is quoted. Fails the test when the file cannot be read or a row has another number of cells.
 */
inline std::vector<TableRow> readTable(const std::string& name) {
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

#endif
