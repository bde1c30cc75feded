#include "Geometry/StretchTree.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ZoPrimitives {

namespace {

constexpr std::size_t FEW = 12;
// A division that leaves more stretches than this in both halves together is of no use.
constexpr double MOST_GROWTH = 1.8;
// Cells hold so many stretches for each one that there is; beyond, only divisions without growth go on.
constexpr std::size_t MOST_COPIES = 48;

/// The highest stretch found so far below a point, just to its left.
class Highest {
public:
    Highest(const std::vector<Stretch>& all, const LDPoint& point)
        : stretches(all), p(point), upright(Upright(point)) {}

    std::size_t Index() const { return best; }
    /// Whether a cell holds nothing higher.
    bool IsAbove(const LDPoint& low, const LDPoint& high) const {
        if (p.x < low.x || p.x > high.x || p.y < low.y) return true;
        return best != StretchTree::NONE && SideOf(stretches[best], {p.x, high.y}) < 0;
    }
    void Try(std::size_t index) {
        const Stretch& stretch = stretches[index];
        if (!(stretch.a.x < p.x && p.x <= stretch.b.x) || index == best) return;
        if (std::min(stretch.a.y, stretch.b.y) > p.y || SideOf(stretch, p) < 0) return;
        const Crossing found = CrossingOf(upright, stretch);
        if (best != StretchTree::NONE) {
            int higher = CompareCrossings(upright, stretch, found, stretches[best], crossing);
            if (upright.b.y < upright.a.y) higher = -higher;
            const Stretch& other = stretches[best];
            if (higher == 0) higher = CrossSign(stretch.a, stretch.b, other.a, other.b);
            if (higher <= 0) return;
        }
        best = index;
        crossing = found;
    }

private:
    /// A stretch along the upright line through a point.
    static Stretch Upright(const LDPoint& p) { return {p, {p.x, std::abs(p.y) < 1 ? p.y + 1 : p.y / 2}}; }

    const std::vector<Stretch>& stretches;
    LDPoint p;
    Stretch upright;
    std::size_t best = StretchTree::NONE;
    Crossing crossing{};
};

} // namespace

void StretchTree::Build(const std::vector<Stretch>& all, std::vector<unsigned> contents) {
    stretches = &all;
    cells.clear();
    items.clear();
    mostItems = MOST_COPIES * contents.size();
    constexpr double INF = std::numeric_limits<double>::infinity();
    if (!contents.empty()) Divide(contents, {-INF, -INF}, {INF, INF}, 0);
}

std::vector<unsigned> StretchTree::Contents() const {
    std::vector<unsigned> contents = items;
    std::sort(contents.begin(), contents.end());
    contents.erase(std::unique(contents.begin(), contents.end()), contents.end());
    return contents;
}

/// False only if they do not touch.
bool StretchTree::Touches(const Stretch& s, const LDPoint& low, const LDPoint& high) const {
    if (s.b.x < low.x || s.a.x > high.x) return false;
    if (std::max(s.a.y, s.b.y) < low.y || std::min(s.a.y, s.b.y) > high.y) return false;
    // Halved, so that nothing overflows.
    const double dx = s.b.x / 2 - s.a.x / 2, dy = s.b.y / 2 - s.a.y / 2;
    const double halfX = high.x / 2 - low.x / 2, halfY = high.y / 2 - low.y / 2;
    const double x = low.x / 2 - s.a.x / 2 + halfX / 2, y = low.y / 2 - s.a.y / 2 + halfY / 2;
    const double reach = std::abs(dx) * halfY + std::abs(dy) * halfX;
    const double left = dx * y, right = dy * x;
    return !(std::abs(left - right) > reach / 2 + 1e-14 * (std::abs(left) + std::abs(right) + reach));
}

void StretchTree::Divide(std::vector<unsigned>& contents, LDPoint low, LDPoint high, int level) {
    // The cell holds no more than its contents need.
    constexpr double INF = std::numeric_limits<double>::infinity();
    LDPoint least(INF, INF), most(-INF, -INF);
    for (const unsigned index : contents) {
        const Stretch& s = (*stretches)[index];
        least.x = std::min(least.x, s.a.x);
        most.x = std::max(most.x, s.b.x);
        least.y = std::min({least.y, s.a.y, s.b.y});
        most.y = std::max({most.y, s.a.y, s.b.y});
    }
    low = {std::max(low.x, least.x), std::max(low.y, least.y)};
    high = {std::min(high.x, most.x), std::min(high.y, most.y)};

    const std::size_t index = cells.size();
    cells.push_back({low, high, items.size(), items.size(), 0});
    if (contents.size() > FEW && level < MOST_LEVELS) {
        const double growth = items.size() > mostItems ? 1.05 : MOST_GROWTH;
        const bool wide = high.x / 2 - low.x / 2 >= high.y / 2 - low.y / 2;
        for (const bool across : {wide, !wide}) {
            const double middle = across ? low.x / 2 + high.x / 2 : low.y / 2 + high.y / 2;
            if (!(across ? low.x < middle && middle < high.x : low.y < middle && middle < high.y)) continue;
            const LDPoint firstHigh = across ? LDPoint(middle, high.y) : LDPoint(high.x, middle);
            const LDPoint secondLow = across ? LDPoint(middle, low.y) : LDPoint(low.x, middle);
            std::vector<unsigned> first, second;
            for (const unsigned i : contents) {
                const Stretch& s = (*stretches)[i];
                if (Touches(s, low, firstHigh)) first.push_back(i);
                if (Touches(s, secondLow, high)) second.push_back(i);
            }
            const double both = static_cast<double>(first.size() + second.size());
            if (both > growth * static_cast<double>(contents.size())) continue;
            std::vector<unsigned>().swap(contents);
            Divide(first, low, firstHigh, level + 1);
            cells[index].right = cells.size();
            Divide(second, secondLow, high, level + 1);
            return;
        }
    }
    items.insert(items.end(), contents.begin(), contents.end());
    cells[index].end = items.size();
}

std::size_t StretchTree::Below(const LDPoint& p, std::size_t best) const {
    if (cells.empty()) return best;
    Highest highest(*stretches, p);
    if (best != NONE) highest.Try(best);
    std::size_t stack[MOST_LEVELS + 2];
    std::size_t depth = 0;
    stack[depth++] = 0;
    while (depth != 0) {
        const std::size_t index = stack[--depth];
        const Cell& cell = cells[index];
        if (highest.IsAbove(cell.low, cell.high)) continue;
        if (cell.right == 0) {
            for (std::size_t i = cell.begin; i < cell.end; ++i) highest.Try(items[i]);
            continue;
        }
        const std::size_t left = index + 1, right = cell.right;
        const bool rightFirst = cells[right].high.y > cells[left].high.y;
        stack[depth++] = rightFirst ? left : right; // the higher one is looked at first
        stack[depth++] = rightFirst ? right : left;
    }
    return highest.Index();
}

} // namespace ZoPrimitives
