#include "table.h"

#include "text.h"

#include <algorithm>

namespace ZoTool {

void Table::Print(Output& out, std::string_view indent) {
    const bool isFirst = widths.empty();
    widths.resize(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        widths[i] = std::max(widths[i], Width(columns[i].heading));
        for (const auto& row : rows) widths[i] = std::max(widths[i], Width(row[i]));
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
    if (isFirst)
        line([&](std::size_t i) -> const std::string& { return columns[i].heading; }, Style::Heading);
    for (const auto& row : rows)
        line([&](std::size_t i) -> const std::string& { return row[i]; }, Style::Plain);
    rows.clear();
}

} // namespace ZoTool
