#include "table.h"

#include "text.h"

#include <algorithm>

namespace ZoTool {

void Table::Print(Output& out, std::string_view indent) const {
    std::vector<std::size_t> widths;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        std::size_t width = Width(columns[i].heading);
        for (const auto& row : rows) width = std::max(width, Width(row[i]));
        widths.push_back(width);
    }
    const auto line = [&](const auto& cell, Style style) {
        std::string text(indent);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const std::string blanks(widths[i] - Width(cell(i)), ' ');
            const bool last = i + 1 == columns.size();
            const std::string painted = out.Paint(style, cell(i));
            text += columns[i].align == Align::Right ? blanks + painted : painted + (last ? "" : blanks);
            if (!last) text += "  ";
        }
        out.Print("{}\n", text);
    };
    line([&](std::size_t i) -> const std::string& { return columns[i].heading; }, Style::Heading);
    for (const auto& row : rows)
        line([&](std::size_t i) -> const std::string& { return row[i]; }, Style::Plain);
}

} // namespace ZoTool
