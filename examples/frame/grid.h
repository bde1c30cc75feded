#pragma once

#include "words.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

namespace Frame {

/// Rows of cells under headings; columns of numbers are right-aligned.
class Grid {
public:
    /// A heading that begins with '>' marks a column of numbers.
    explicit Grid(const std::vector<std::string>& headings) {
        for (const std::string& heading : headings) {
            isNumber.push_back(heading[0] == '>');
            widths.push_back(0);
        }
        std::vector<std::string> cells;
        for (const std::string& heading : headings)
            cells.push_back(heading.substr(heading[0] == '>' ? 1 : 0));
        Add(cells);
        AddRule();
    }

    void Add(const std::vector<std::string>& cells) {
        for (std::size_t i = 0; i < cells.size(); ++i) widths[i] = std::max(widths[i], Width(cells[i]));
        rows.push_back(cells);
    }
    void AddRule() { rows.emplace_back(); }

    void Print(std::ostream& out) const {
        for (const auto& row : rows) {
            std::string line;
            for (std::size_t i = 0; i < widths.size(); ++i) {
                const std::string& cell = row.empty() ? std::string() : row[i];
                const std::string room(widths[i] - Width(cell), ' ');
                std::string field = isNumber[i] ? room + cell : cell + room;
                if (row.empty()) {
                    field.clear();
                    for (std::size_t n = 0; n < widths[i]; ++n) field += "─";
                }
                line += "  " + field;
            }
            out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
        }
    }

private:
    std::vector<bool> isNumber;
    std::vector<std::size_t> widths;
    std::vector<std::vector<std::string>> rows; // an empty row is printed as a rule
};

} // namespace Frame
