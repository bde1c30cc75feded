#pragma once

#include "Geometry/Predicates.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// Finds the stretches near a place. Cells are divided until few stretches are left in one, across x or y, or
/// across the direction of stretches that are long and lie side by side, as hatches do; a stretch is in every
/// cell that it touches. Stretches run from the lexicographically lesser end to the greater.
class StretchTree {
    struct Cell;

public:
    /// Of those that `contents` tells. `stretches` must stay where they are.
    void Build(const std::vector<Stretch>& stretches, std::vector<unsigned> contents);
    /// Those that are in it, each once, in order.
    std::vector<unsigned> Contents() const;

    /// A cell that is not divided.
    class Leaf {
    public:
        const unsigned* begin() const { return tree.items.data() + cell.begin; }
        const unsigned* end() const { return tree.items.data() + cell.end; }
        /// False only if nothing that far from the point lies in it.
        bool IsNear(const LDPoint& p, double reach) const { return tree.IsNear(cell, p, reach); }

    private:
        friend class StretchTree;
        Leaf(const StretchTree& owner, const StretchTree::Cell& visited) : tree(owner), cell(visited) {}
        const StretchTree& tree;
        const StretchTree::Cell& cell;
    };
    /// Calls `visit(leaf)` for each. A point that two stretches have in common lies in one of those that both
    /// are in.
    template <class Visit>
    void ForEachLeaf(Visit visit) const {
        for (const Cell& cell : cells) {
            if (cell.right == 0) visit(Leaf(*this, cell));
        }
    }
    /// Calls `visit(index)` for the stretches of all cells that touch a square about the point, perhaps
    /// several times for one.
    template <class Visit>
    void ForEachNear(const LDPoint& p, double reach, Visit visit) const {
        ForEachIn([&](const Cell& cell) { return IsNear(cell, p, reach); }, visit);
    }
    /// The same for the cells within `reach` of a stretch, and some that are farther.
    template <class Visit>
    void ForEachNear(const Stretch& s, double reach, Visit visit) const {
        ForEachIn(
            [&](const Cell& cell) {
                return Touches(s, {cell.low.x - reach, cell.low.y - reach},
                               {cell.high.x + reach, cell.high.y + reach}) &&
                       (cell.strip == NO_STRIP || !strips[cell.strip].IsBeside(s.a, s.b, reach));
            },
            visit);
    }
    /// The highest stretch below `p`, or through it, just to the left of it; `NONE` if there is none. Of
    /// stretches that cross there, the one that is highest just to the left. `best` is one that competes.
    std::size_t Below(const LDPoint& p, std::size_t best = NONE) const;
    static constexpr std::size_t NONE = static_cast<std::size_t>(-1);

private:
    static constexpr int MOST_LEVELS = 100;
    static constexpr unsigned NO_STRIP = static_cast<unsigned>(-1);

    /// A direction that rises or falls, and how far across it points lie, upward.
    struct Direction {
        LDPoint from;
        LDPoint along; // to the right
        struct Place {
            double value;
            double error; // which rounding does not exceed
        };
        Place Across(const LDPoint& p) const {
            const double left = along.x * (p.y - from.y), right = along.y * (p.x - from.x);
            return {left - right, 1e-15 * (std::abs(left) + std::abs(right)) + 1e-290};
        }
    };
    /// What lies between two lines in a direction.
    struct Strip {
        Direction direction;
        double low;
        double high;

        /// Whether a stretch, or a point, lies farther away than that.
        bool IsBeside(const LDPoint& a, const LDPoint& b, double reach) const {
            const Direction::Place p = direction.Across(a), q = direction.Across(b);
            const double size = std::abs(direction.along.x) + std::abs(direction.along.y);
            const double error = std::max(p.error, q.error) + 1.001 * reach * size;
            return std::max(p.value, q.value) + error < low || std::min(p.value, q.value) - error > high;
        }
        /// Not below the upper line.
        double Top(double x) const {
            const double rise = (x - direction.from.x) * (direction.along.y / direction.along.x);
            const double height = high / direction.along.x;
            return direction.from.y + rise + height +
                   1e-14 * (std::abs(direction.from.y) + std::abs(rise) + std::abs(height));
        }
    };
    /// A cell holds what touches its box and its strip, if it has one.
    struct Bounds {
        LDPoint low;
        LDPoint high;
        unsigned strip = NO_STRIP;
    };
    struct Cell : Bounds {
        std::size_t begin = 0;
        std::size_t end = 0;
        std::size_t right = 0; // the second half; the first one follows. 0 if it is not divided
    };
    struct Range {
        double low;
        double high;
    };
    struct Division;
    struct Highest;

    bool IsNear(const Cell& cell, const LDPoint& p, double reach) const {
        return !(p.x < cell.low.x - reach || p.x > cell.high.x + reach || p.y < cell.low.y - reach ||
                 p.y > cell.high.y + reach ||
                 (cell.strip != NO_STRIP && strips[cell.strip].IsBeside(p, p, reach)));
    }
    template <class Enters, class Visit>
    void ForEachIn(Enters enters, Visit visit) const {
        if (cells.empty()) return;
        std::size_t stack[MOST_LEVELS + 2];
        std::size_t depth = 0;
        stack[depth++] = 0;
        while (depth != 0) {
            const std::size_t index = stack[--depth];
            const Cell& cell = cells[index];
            if (!enters(cell)) continue;
            if (cell.right == 0) {
                for (std::size_t i = cell.begin; i < cell.end; ++i) visit(items[i]);
                continue;
            }
            stack[depth++] = cell.right;
            stack[depth++] = index + 1;
        }
    }
    void Divide(std::vector<unsigned>& contents, const Bounds& given, int level, double room);
    Division Choose(const std::vector<unsigned>& contents, const Bounds& bounds) const;
    Division DivideAt(const std::vector<unsigned>& contents, const Bounds& bounds, bool acrossX,
                      double fraction) const;
    static Range RangeAcross(const Stretch& stretch, const Bounds& box, const Direction& direction);
    Division DivideAcross(const std::vector<unsigned>& contents, const Bounds& bounds,
                          const Stretch& pattern) const;
    bool Touches(const Stretch& stretch, const LDPoint& low, const LDPoint& high) const;
    Bounds Shrunk(const Bounds& bounds, const std::vector<unsigned>& contents) const;

    const std::vector<Stretch>* stretches = nullptr;
    std::vector<Cell> cells;
    std::vector<Strip> strips;
    std::vector<unsigned> items;
};

} // namespace ZoPrimitives
