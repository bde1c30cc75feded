#pragma once

#include "Geometry/Predicates.h"

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// Finds the stretches near a place. Cells are halved until few stretches are left in one; a stretch is in
/// every cell that it touches. Stretches run from the lexicographically lesser end to the greater.
class StretchTree {
public:
    void Build(const std::vector<Stretch>& stretches);

    /// Calls `visit(begin, end)` for the stretches of each cell. Two stretches with a point in common are
    /// together in one cell at least.
    template <class Visit>
    void ForEachCell(Visit visit) const {
        for (const Cell& cell : cells) {
            if (cell.right == 0) visit(items.data() + cell.begin, items.data() + cell.end);
        }
    }
    /// Calls `visit(index)` for the stretches of all cells that touch a square about the point, perhaps
    /// several times for one.
    template <class Visit>
    void ForEachNear(const LDPoint& p, double reach, Visit visit) const {
        if (cells.empty()) return;
        std::size_t stack[MOST_LEVELS + 2];
        std::size_t depth = 0;
        stack[depth++] = 0;
        while (depth != 0) {
            const std::size_t index = stack[--depth];
            const Cell& cell = cells[index];
            if (p.x < cell.low.x - reach || p.x > cell.high.x + reach || p.y < cell.low.y - reach ||
                p.y > cell.high.y + reach)
                continue;
            if (cell.right == 0) {
                for (std::size_t i = cell.begin; i < cell.end; ++i) visit(items[i]);
                continue;
            }
            stack[depth++] = cell.right;
            stack[depth++] = index + 1;
        }
    }
    /// The highest stretch below `p`, or through it, just to the left of it; `NONE` if there is none. Of
    /// stretches that cross there, the one that is highest just to the left.
    std::size_t Below(const LDPoint& p) const;
    static constexpr std::size_t NONE = static_cast<std::size_t>(-1);

private:
    static constexpr int MOST_LEVELS = 100;
    struct Cell {
        LDPoint low;
        LDPoint high;
        std::size_t begin = 0;
        std::size_t end = 0;
        std::size_t right = 0; // the second half; the first one follows. 0 if it is not divided
    };
    struct Division;
    void Divide(std::vector<unsigned>& contents, LDPoint low, LDPoint high, int level);
    bool Touches(const Stretch& stretch, const LDPoint& low, const LDPoint& high) const;

    const std::vector<Stretch>* stretches = nullptr;
    std::vector<Cell> cells;
    std::vector<unsigned> items;
};

} // namespace ZoPrimitives
