#ifndef POS_TESTS_TABLE_H
#define POS_TESTS_TABLE_H

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

/**
 * The rows of a data file: lines that begin with "#" are comments, the first other line names the columns, commas
 * separate and nothing is quoted. Fails the test when the file cannot be read or a row has another number of cells.
 */
std::vector<TableRow> readTable(const std::string& name);

#endif
