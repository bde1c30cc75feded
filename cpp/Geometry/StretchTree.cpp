#include "Geometry/StretchTree.h"

#include "Geometry/Ranges.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr std::size_t FEW = 12;
// From so many stretches on, it is worth looking for the best way to divide a cell.
constexpr std::size_t MANY = 32;
constexpr double GOOD_GROWTH_ACROSS = 1.2;
// A division that leaves more stretches than this in both halves together is of no use.
constexpr double MOST_GROWTH = 1.8;
// Cells hold so many stretches for each one that there is; beyond, only divisions without growth go on.
constexpr double MOST_COPIES = 48;
constexpr double LITTLE_GROWTH = 1.05;
constexpr double MORE = 2;
constexpr double INF = std::numeric_limits<double>::infinity();

} // namespace

/// The highest stretch found so far below a point, just to its left.
struct StretchTree::Highest {
public:
    Highest(const StretchTree& owner, const LDPoint& point)
        : tree(owner), stretches(*owner.stretches), p(point), upright(Upright(point)) {}

    std::size_t Index() const { return best; }
    /// Whether a cell holds nothing higher.
    bool IsAbove(const Bounds& cell) const {
        if (p.x < cell.low.x || p.x > cell.high.x || p.y < cell.low.y) return true;
        double top = cell.high.y;
        if (cell.strip != NO_STRIP) {
            const Strip& strip = tree.strips[cell.strip];
            const Direction::Place place = strip.direction.Across(p);
            if (place.value + place.error < strip.low) return true;
            const double across = strip.Top(p.x);
            if (across < top) top = across;
        }
        return best != NONE && SideOf(stretches[best], {p.x, top}) < 0;
    }
    void Try(std::size_t index) {
        const Stretch& stretch = stretches[index];
        if (!(stretch.a.x < p.x && p.x <= stretch.b.x) || index == best) return;
        if (std::min(stretch.a.y, stretch.b.y) > p.y || SideOf(stretch, p) < 0) return;
        const Crossing found = CrossingOf(upright, stretch);
        if (best != NONE) {
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

    const StretchTree& tree;
    const std::vector<Stretch>& stretches;
    LDPoint p;
    Stretch upright;
    std::size_t best = NONE;
    Crossing crossing{};
};

void StretchTree::Build(const std::vector<Stretch>& all, std::vector<unsigned> contents) {
    stretches = &all;
    cells.clear();
    strips.clear();
    items.clear();
    const double room = MOST_COPIES * static_cast<double>(contents.size());
    if (!contents.empty()) Divide(contents, {{-INF, -INF}, {INF, INF}}, 0, room);
}

std::vector<unsigned> StretchTree::Contents() const {
    std::vector<unsigned> contents = items;
    SortUnique(contents);
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

/// A cell holds no more than its contents need.
StretchTree::Bounds StretchTree::Shrunk(const Bounds& bounds, const std::vector<unsigned>& contents) const {
    LDPoint least(INF, INF), most(-INF, -INF);
    for (const unsigned index : contents) {
        const Stretch& s = (*stretches)[index];
        least.x = std::min(least.x, s.a.x);
        most.x = std::max(most.x, s.b.x);
        least.y = std::min({least.y, s.a.y, s.b.y});
        most.y = std::max({most.y, s.a.y, s.b.y});
    }
    return {{std::max(bounds.low.x, least.x), std::max(bounds.low.y, least.y)},
            {std::min(bounds.high.x, most.x), std::min(bounds.high.y, most.y)},
            bounds.strip};
}

/// Two halves of a cell.
struct StretchTree::Division {
    Bounds bounds[2];
    std::vector<unsigned> contents[2];
    std::optional<Strip> strips[2]; // of division across a direction
    unsigned middle = 0;            // the one in the middle of these
    double growth = INF;            // of the number of stretches, in both together

    void TellGrowth(std::size_t whole) {
        growth = static_cast<double>(contents[0].size() + contents[1].size()) / static_cast<double>(whole);
    }
    /// As about a point that all pass through: the other half is to be divided on.
    bool KeepsMost(std::size_t whole) const {
        return growth > GOOD_GROWTH_ACROSS &&
               20 * std::max(contents[0].size(), contents[1].size()) > 19 * whole;
    }
    /// Of the room for copies, the share of a half. One that keeps most of the stretches, as about a point
    /// that all pass through, needs more than in proportion.
    double Share(int half) const {
        const double own = static_cast<double>(contents[half].size()),
                     other = static_cast<double>(contents[1 - half].size());
        return own * own / (own * own + other * other);
    }
};

/// Across x or y, at a fraction of the extent.
StretchTree::Division StretchTree::DivideAt(const std::vector<unsigned>& contents, const Bounds& bounds,
                                            bool acrossX, double fraction) const {
    Division division;
    const auto between = [&](double low, double high) { return low * (1 - fraction) + high * fraction; };
    const LDPoint &low = bounds.low, &high = bounds.high;
    const double x = between(low.x, high.x), y = between(low.y, high.y);
    if (!(acrossX ? low.x < x && x < high.x : low.y < y && y < high.y)) return division;
    division.bounds[0] = {low, acrossX ? LDPoint(x, high.y) : LDPoint(high.x, y), bounds.strip};
    division.bounds[1] = {acrossX ? LDPoint(x, low.y) : LDPoint(low.x, y), high, bounds.strip};
    for (const unsigned i : contents) {
        for (const int half : {0, 1}) {
            const Bounds& part = division.bounds[half];
            if (Touches((*stretches)[i], part.low, part.high)) division.contents[half].push_back(i);
        }
    }
    division.TellGrowth(contents.size());
    return division;
}

/// Of the part of a stretch that lies in a box.
StretchTree::Range StretchTree::RangeAcross(const Stretch& s, const Bounds& box, const Direction& direction) {
    constexpr double ROUNDING = 1e-14;
    double first = 0, last = 1;
    const auto clip = [&](double from, double to, double low, double high) {
        if (from == to) return;
        const double one = (low - from) / (to - from), other = (high - from) / (to - from);
        first = std::max(first, std::min(one, other));
        last = std::min(last, std::max(one, other));
    };
    clip(s.a.x, s.b.x, box.low.x, box.high.x);
    clip(s.a.y, s.b.y, box.low.y, box.high.y);
    const Direction::Place a = direction.Across(s.a), b = direction.Across(s.b);
    const double way = b.value - a.value;
    const double one = a.value + first * way, other = a.value + last * way;
    const double error = a.error + b.error + ROUNDING * (std::abs(way) + std::abs(one) + std::abs(other));
    return {std::min(one, other) - error, std::max(one, other) + error};
}

/// Across the direction of a stretch, with as many below as above.
StretchTree::Division StretchTree::DivideAcross(const std::vector<unsigned>& contents, const Bounds& bounds,
                                                const Stretch& pattern) const {
    Division division;
    const Direction direction{pattern.a, pattern.b - pattern.a};
    if (!(direction.along.x > 0) || direction.along.y == 0) return division;
    std::vector<Range> ranges;
    std::vector<double> middles;
    for (const unsigned i : contents) {
        const Range range = RangeAcross((*stretches)[i], bounds, direction);
        if (!(range.low > -1e290 && range.high < 1e290)) return division;
        ranges.push_back(range);
        middles.push_back(range.low / 2 + range.high / 2);
    }
    const auto middle = middles.begin() + static_cast<std::ptrdiff_t>(middles.size() / 2);
    std::nth_element(middles.begin(), middle, middles.end());
    Strip all{direction, INF, -INF};
    for (std::size_t k = 0; k < contents.size(); ++k) {
        if (ranges[k].low / 2 + ranges[k].high / 2 == *middle) division.middle = contents[k];
        all.low = std::min(all.low, ranges[k].low);
        all.high = std::max(all.high, ranges[k].high);
        if (ranges[k].low <= *middle) division.contents[0].push_back(contents[k]);
        if (ranges[k].high >= *middle) division.contents[1].push_back(contents[k]);
    }
    division.bounds[0] = division.bounds[1] = bounds;
    division.strips[0] = {direction, all.low, *middle};
    division.strips[1] = {direction, *middle, all.high};
    // A half that keeps nearly all lies along them as the whole does: nothing is gained.
    const std::size_t greater = std::max(division.contents[0].size(), division.contents[1].size());
    if (10 * greater <= 9 * contents.size()) division.TellGrowth(contents.size());
    return division;
}

/// The one that leaves the fewest stretches in both halves, if the plain ones leave many.
StretchTree::Division StretchTree::Choose(const std::vector<unsigned>& contents, const Bounds& bounds) const {
    Division best;
    const auto beats = [&](Division division, double enough) {
        if (division.growth < best.growth) best = std::move(division);
        return best.growth <= enough;
    };
    const bool many = contents.size() > MANY;
    const double enough = contents.size() > 2 * MANY ? 1.25 : many ? 1.4 : MOST_GROWTH;
    const bool wide = bounds.high.x / 2 - bounds.low.x / 2 >= bounds.high.y / 2 - bounds.low.y / 2;
    if (beats(DivideAt(contents, bounds, wide, 0.5), enough)) return best;
    if (!many && beats(DivideAt(contents, bounds, !wide, 0.5), enough)) return best;
    const auto size = [&](unsigned i) {
        const Stretch& s = (*stretches)[i];
        return std::abs(s.b.x - s.a.x) + std::abs(s.b.y - s.a.y);
    };
    const unsigned longest = *std::max_element(contents.begin(), contents.end(),
                                               [&](unsigned i, unsigned j) { return size(i) < size(j); });
    Division across = DivideAcross(contents, bounds, (*stretches)[longest]);
    const unsigned middle = across.middle;
    if (beats(std::move(across), GOOD_GROWTH_ACROSS) || !many) return best;
    if (beats(DivideAcross(contents, bounds, (*stretches)[middle]), enough)) return best;
    if (beats(DivideAt(contents, bounds, !wide, 0.5), MOST_GROWTH)) return best;
    // All may pass through one point, in the middle.
    beats(DivideAt(contents, bounds, wide, 0.25), MOST_GROWTH);
    return best;
}

/// `room` is for the stretches of all cells that it becomes.
void StretchTree::Divide(std::vector<unsigned>& contents, const Bounds& given, int level, double room) {
    const Bounds bounds = Shrunk(given, contents);
    const std::size_t index = cells.size();
    cells.push_back({bounds, items.size(), items.size(), 0});
    if (contents.size() > FEW && level < MOST_LEVELS) {
        Division division = Choose(contents, bounds);
        const double wants = division.KeepsMost(contents.size()) ? MORE : 1;
        const bool fits = wants * division.growth * static_cast<double>(contents.size()) < room;
        const double most = !fits ? LITTLE_GROWTH : contents.size() > MANY ? 2 : MOST_GROWTH;
        if (division.growth <= most) {
            std::vector<unsigned>().swap(contents);
            const double rooms[] = {room * division.Share(0), room * division.Share(1)};
            for (const int half : {0, 1}) {
                if (half == 1) cells[index].right = cells.size();
                Bounds& part = division.bounds[half];
                if (division.strips[half]) {
                    part.strip = static_cast<unsigned>(strips.size());
                    strips.push_back(*division.strips[half]);
                }
                Divide(division.contents[half], part, level + 1, rooms[half]);
            }
            return;
        }
    }
    items.insert(items.end(), contents.begin(), contents.end());
    cells[index].end = items.size();
}

std::size_t StretchTree::Below(const LDPoint& p, std::size_t best) const {
    if (cells.empty()) return best;
    Highest highest(*this, p);
    if (best != NONE) highest.Try(best);
    std::size_t stack[MOST_LEVELS + 2];
    std::size_t depth = 0;
    stack[depth++] = 0;
    while (depth != 0) {
        const std::size_t index = stack[--depth];
        const Cell& cell = cells[index];
        if (highest.IsAbove(cell)) continue;
        if (cell.right == 0) {
            for (std::size_t i = cell.begin; i < cell.end; ++i) highest.Try(items[i]);
            continue;
        }
        const std::size_t left = index + 1, right = cell.right;
        const bool rightFirst = cells[right].strip != cell.strip || cells[right].high.y > cells[left].high.y;
        stack[depth++] = rightFirst ? left : right; // the higher one is looked at first
        stack[depth++] = rightFirst ? right : left;
    }
    return highest.Index();
}

} // namespace ZoPrimitives
