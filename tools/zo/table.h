#pragma once

#include "tool.h"

#include <string>
#include <vector>

namespace ZoTool {

enum class Align { Left, Right };

/// Rows in columns of their own widths, under a line of headings.
class Table {
public:
    struct Column {
        std::string heading;
        Align align;
    };
    explicit Table(std::vector<Column> columns) : columns(std::move(columns)) {}

    void Add(std::vector<std::string> row) { rows.push_back(std::move(row)); }
    std::size_t Rows() const { return rows.size(); }
    /// The column counts from 1.
    void SetAlign(int column, Align align) { columns[static_cast<std::size_t>(column) - 1].align = align; }
    /// Prints the rows added since the last time, the first time under the headings; the columns are as wide
    /// as they have become. `indent` stands before each line.
    void Print(Output& out, std::string_view indent = "");

private:
    std::vector<Column> columns;
    std::vector<std::vector<std::string>> rows;
    std::vector<std::size_t> widths; // none: the headings are to be printed
};

} // namespace ZoTool
