#pragma once

#include "Geometry/Predicates.h"

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// Finds the stretches near a place. Cells are halved until few stretches are left in one; a stretch is in
/// every cell that it touches. Stretches run from the lexicographically lesser end to the greater.
class StretchTree {
public:
    /// Of those that `contents` tells. `stretches` must stay where they are.
    void Build(const std::vector<Stretch>& stretches, std::vector<unsigned> contents);
    /// Those that are in it, each once, in order.
    std::vector<unsigned> Contents() const;

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
        ForEachIn(
            [&](const Cell& cell) {
                return p.x >= cell.low.x - reach && p.x <= cell.high.x + reach && p.y >= cell.low.y - reach &&
                       p.y <= cell.high.y + reach;
            },
            visit);
    }
    /// The same for the cells within `reach` of a stretch, and some that are farther.
    template <class Visit>
    void ForEachNear(const Stretch& s, double reach, Visit visit) const {
        ForEachIn(
            [&](const Cell& cell) {
                return Touches(s, {cell.low.x - reach, cell.low.y - reach},
                               {cell.high.x + reach, cell.high.y + reach});
            },
            visit);
    }
    /// The highest stretch below `p`, or through it, just to the left of it; `NONE` if there is none. Of
    /// stretches that cross there, the one that is highest just to the left. `best` is one that competes.
    std::size_t Below(const LDPoint& p, std::size_t best = NONE) const;
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
    template <class IsNear, class Visit>
    void ForEachIn(IsNear isNear, Visit visit) const {
        if (cells.empty()) return;
        std::size_t stack[MOST_LEVELS + 2];
        std::size_t depth = 0;
        stack[depth++] = 0;
        while (depth != 0) {
            const std::size_t index = stack[--depth];
            const Cell& cell = cells[index];
            if (!isNear(cell)) continue;
            if (cell.right == 0) {
                for (std::size_t i = cell.begin; i < cell.end; ++i) visit(items[i]);
                continue;
            }
            stack[depth++] = cell.right;
            stack[depth++] = index + 1;
        }
    }
    void Divide(std::vector<unsigned>& contents, LDPoint low, LDPoint high, int level);
    bool Touches(const Stretch& stretch, const LDPoint& low, const LDPoint& high) const;

    const std::vector<Stretch>* stretches = nullptr;
    std::size_t mostItems = 0; // beyond, only divisions without growth go on
    std::vector<Cell> cells;
    std::vector<unsigned> items;
};

} // namespace ZoPrimitives
