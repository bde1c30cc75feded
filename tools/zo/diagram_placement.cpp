#include "diagram_boxes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <set>
#include <utility>

namespace ZoTool {

namespace {

constexpr double SHAPE = 2.2; // width of the picture to its height, about

/// Gives each box a cell of a grid: a level after the other, parents' children side by side, and those that
/// belong together near each other.
class Placement {
public:
    Placement(Boxes& boxes, double boxWidth) : boxes(boxes) {
        double height = 0;
        for (const Box& box : boxes) height += box.Height() + 46;
        const double cellWidth = boxWidth + 50;
        const double width = std::sqrt(height * cellWidth * SHAPE);
        columns = std::max(3, static_cast<int>(std::lround(width / cellWidth)));
        columns = std::min(columns, std::max(1, static_cast<int>(boxes.size())));
    }

    Grid Place(bool tidy) {
        std::map<std::pair<bool, int>, std::vector<int>> bands;
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            bands[{boxes[i].isValue, boxes[i].level}].push_back(static_cast<int>(i));
        }
        for (auto& [unused, band] : bands) {
            SortByFamily(band);
            Fill(band);
        }
        if (tidy) {
            CollectTies();
            for (int sweep = 0; sweep < 6 && Improve(bands); ++sweep) {
            }
        }
        CloseUp();
        return {rows, columns};
    }

private:
    Box& At(int box) { return boxes[static_cast<std::size_t>(box)]; }

    /// Children stand in the order of their parents; those who have children themselves in the middle.
    void SortByFamily(std::vector<int>& band) {
        std::stable_sort(band.begin(), band.end(), [&](int a, int b) {
            const auto key = [&](int box) {
                const std::vector<int>& parents = At(box).parents;
                return parents.empty()
                           ? std::pair(0, 0)
                           : std::pair(At(parents[0]).row * columns + At(parents[0]).column, parents[0]);
            };
            return key(a) < key(b);
        });
    }

    /// Rows of nearly the same length, in the middle.
    void Fill(const std::vector<int>& band) {
        const int count = static_cast<int>(band.size());
        const int needed = (count + columns - 1) / columns;
        int next = 0;
        for (int row = 0; row < needed; ++row) {
            const int length = (count - next + needed - row - 1) / (needed - row);
            for (int i = 0; i < length; ++i, ++next) {
                At(band[static_cast<std::size_t>(next)]).row = rows + row;
                At(band[static_cast<std::size_t>(next)]).column = (columns - length) / 2 + i;
            }
        }
        rows += needed;
    }

    struct Tie {
        int other;
        double weight;
    };
    void CollectTies() {
        ties.resize(boxes.size());
        const auto tie = [&](int a, int b, double weight) {
            if (a == b) return;
            ties[static_cast<std::size_t>(a)].push_back({b, weight});
            ties[static_cast<std::size_t>(b)].push_back({a, weight});
        };
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            const int box = static_cast<int>(i);
            for (const int parent : boxes[i].parents) tie(box, parent, 1.5);
            for (const BoxLine& line : boxes[i].lines) {
                if (line.target >= 0 && !At(line.target).isValue) tie(box, line.target, 1);
            }
        }
    }

    double Length(int box) {
        double length = 0;
        for (const Tie& tie : ties[static_cast<std::size_t>(box)]) {
            length += tie.weight * (1.6 * std::abs(At(box).column - At(tie.other).column) +
                                    std::abs(At(box).row - At(tie.other).row));
        }
        return length;
    }

    /// Exchanges brothers where the lines get shorter by it.
    bool Improve(const std::map<std::pair<bool, int>, std::vector<int>>& bands) {
        bool better = false;
        const auto exchange = [&](int a, int b) {
            std::swap(At(a).row, At(b).row);
            std::swap(At(a).column, At(b).column);
        };
        for (const auto& [unused, band] : bands) {
            for (std::size_t i = 0; i < band.size(); ++i) {
                for (std::size_t k = i + 1; k < band.size(); ++k) {
                    const int a = band[i], b = band[k];
                    if (At(a).parents != At(b).parents) continue;
                    const double before = Length(a) + Length(b);
                    exchange(a, b);
                    if (Length(a) + Length(b) < before - 1e-9) {
                        better = true;
                    } else {
                        exchange(a, b);
                    }
                }
            }
        }
        return better;
    }

    /// Columns that stay empty go.
    void CloseUp() {
        std::set<int> used;
        for (const Box& box : boxes) used.insert(box.column);
        for (Box& box : boxes) {
            box.column = static_cast<int>(std::distance(used.begin(), used.find(box.column)));
        }
        columns = static_cast<int>(used.size());
    }

    Boxes& boxes;
    std::vector<std::vector<Tie>> ties;
    int rows = 0;
    int columns;
};

} // namespace

Grid PlaceBoxes(Boxes& boxes, double boxWidth, bool tidy) { return Placement(boxes, boxWidth).Place(tidy); }

} // namespace ZoTool
