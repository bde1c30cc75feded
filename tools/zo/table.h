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
    /// `indent` stands before each line.
    void Print(Output& out, std::string_view indent = "") const;

private:
    std::vector<Column> columns;
    std::vector<std::vector<std::string>> rows;
};

} // namespace ZoTool
