#pragma once

#include "Geometry/Pieces.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <numeric>
#include <vector>

namespace ZoPrimitives {

/// An upright box, empty when new.
struct Box {
    LDPoint low{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
    LDPoint high{-low.x, -low.y};

    void Add(const LDPoint& p) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    void Add(const Box& other) {
        Add(other.low);
        Add(other.high);
    }
    bool Touches(const Box& other) const {
        return low.x <= other.high.x && other.low.x <= high.x && low.y <= other.high.y &&
               other.low.y <= high.y;
    }
    /// 0 if both touch.
    double Distance(const Box& other) const {
        const double dx = std::max({0.0, low.x - other.high.x, other.low.x - high.x});
        const double dy = std::max({0.0, low.y - other.high.y, other.low.y - high.y});
        return std::hypot(dx, dy);
    }
    static Box Of(const TPathPiece& piece) {
        RRect bounds;
        AddBounds(bounds, piece);
        Box box;
        box.Add(LDPoint(bounds.X1(), bounds.Y1()));
        box.Add(LDPoint(bounds.X2(), bounds.Y2()));
        return box;
    }
};

/// Finds boxes near a place: the boxes of half of them around each half, and so on.
class BoxTree {
public:
    explicit BoxTree(std::vector<Box> given) : boxes(std::move(given)), order(boxes.size()) {
        std::iota(order.begin(), order.end(), std::size_t{0});
        if (!order.empty()) Divide(0, order.size());
    }

    /// Calls `visit(index)` for each box that touches this one.
    template <class Visit>
    void ForEachTouching(const Box& box, Visit visit) const {
        for (std::size_t i = 0; i < parts.size();) {
            const Part& part = parts[i];
            if (!part.box.Touches(box)) {
                i = part.after;
                continue;
            }
            if (part.after == i + 1) {
                for (std::size_t k = part.begin; k < part.end; ++k) {
                    if (boxes[order[k]].Touches(box)) visit(order[k]);
                }
            }
            ++i;
        }
    }
    /// Calls `visit(index)` for each box that is nearer than `least`, which the calls make less; near ones
    /// first.
    template <class Visit>
    void ForEachNearer(const Box& box, const double& least, Visit visit) const {
        if (!parts.empty()) VisitNearer(0, box, least, visit);
    }

private:
    static constexpr std::size_t FEW = 8;
    struct Part {
        Box box;
        std::size_t begin;
        std::size_t end;
        std::size_t after; // the part behind this one and its halves; the first half comes next
    };

    void Divide(std::size_t begin, std::size_t end) {
        const std::size_t index = parts.size();
        Box all;
        for (std::size_t k = begin; k < end; ++k) all.Add(boxes[order[k]]);
        parts.push_back({all, begin, end, 0});
        if (end - begin > FEW) {
            const std::size_t middle = begin + (end - begin) / 2;
            const bool wide = all.high.x / 2 - all.low.x / 2 >= all.high.y / 2 - all.low.y / 2;
            const auto centre = [&](std::size_t i) {
                return wide ? boxes[i].low.x / 2 + boxes[i].high.x / 2
                            : boxes[i].low.y / 2 + boxes[i].high.y / 2;
            };
            const auto at = [&](std::size_t k) { return order.begin() + static_cast<std::ptrdiff_t>(k); };
            std::nth_element(at(begin), at(middle), at(end),
                             [&](std::size_t i, std::size_t j) { return centre(i) < centre(j); });
            Divide(begin, middle);
            Divide(middle, end);
        }
        parts[index].after = parts.size();
    }

    template <class Visit>
    void VisitNearer(std::size_t index, const Box& box, const double& least, Visit& visit) const {
        const Part& part = parts[index];
        if (part.after == index + 1) {
            for (std::size_t k = part.begin; k < part.end; ++k) {
                if (boxes[order[k]].Distance(box) < least) visit(order[k]);
            }
            return;
        }
        const std::size_t first = index + 1, second = parts[first].after;
        const double toFirst = parts[first].box.Distance(box), toSecond = parts[second].box.Distance(box);
        const bool swapped = toSecond < toFirst;
        if (std::min(toFirst, toSecond) < least) VisitNearer(swapped ? second : first, box, least, visit);
        if (std::max(toFirst, toSecond) < least) VisitNearer(swapped ? first : second, box, least, visit);
    }

    std::vector<Box> boxes;
    std::vector<std::size_t> order;
    std::vector<Part> parts;
};

} // namespace ZoPrimitives
