#include "Geometry/StretchTree.h"

#include "Geometry/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

using namespace ZoPrimitives;

namespace {

using Stretches = std::vector<Stretch>;

constexpr double PI = 3.141592653589793;

/// Lines side by side in one direction, from a corner of a square.
Stretches Hatch(unsigned count, double angle, const LDPoint& corner, double size) {
    const double x = std::cos(angle), y = std::sin(angle);
    Stretches lines;
    for (unsigned i = 0; i < count; ++i) {
        const double beside = size * i / count;
        const LDPoint from(corner.x - y * beside, corner.y + x * beside);
        lines.push_back({from, {from.x + x * size, from.y + y * size}});
    }
    return lines;
}
/// Lines from, or through, a point in directions between two angles.
Stretches Fan(unsigned count, double first, double last, double behind) {
    Stretches lines;
    for (unsigned i = 0; i < count; ++i) {
        const double angle = first + (last - first) * (i + 0.5) / count;
        const double x = std::cos(angle), y = std::sin(angle);
        lines.push_back({{-x * behind, -y * behind}, {x, y}});
    }
    return lines;
}
Stretches Both(Stretches a, const Stretches& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
/// Lines from anywhere in a drawing to anywhere else.
Stretches Across(const Stretches& lines) {
    Random random(7);
    const auto any = [&] {
        const Stretch& s = lines[static_cast<std::size_t>(random.Pick(static_cast<int>(lines.size())))];
        return random.Pick(2) == 0 ? s.a : LDPoint(s.a.x / 2 + s.b.x / 2, s.a.y / 2 + s.b.y / 2);
    };
    Stretches across;
    while (across.size() < 30) {
        const Stretch s{any(), any()};
        if (s.a != s.b) across.push_back(s);
    }
    return across;
}
/// Parts of lines, some much shorter than others.
Stretches Parts(Stretches lines) {
    Random random(3);
    for (Stretch& s : lines) {
        const double part = std::pow(10, random.Uniform(-4, 0)), start = random.Uniform(0, 1 - part);
        const LDPoint way = s.b - s.a;
        const auto at = [&](double k) { return LDPoint(s.a.x + way.x * k, s.a.y + way.y * k); };
        s = {at(start), at(start + part)};
    }
    return lines;
}

struct Kind {
    const char* name;
    Stretches (*make)(unsigned count);
    bool isFan = false; // many are together near one point
};
const Kind KINDS[] = {
    {"upright",
     [](unsigned n) {
         return Hatch(n, PI / 2, {1, 0}, 1);
     }},
    {"diagonal",
     [](unsigned n) {
         return Hatch(n, PI / 4, {0, 0}, 1);
     }},
    {"falling",
     [](unsigned n) {
         return Hatch(n, -1.2, {0, 0}, 1);
     }},
    {"nearly level",
     [](unsigned n) {
         return Hatch(n, 0.01, {0, 0}, 1e9);
     }},
    {"of many lengths",
     [](unsigned n) {
         return Parts(Hatch(n, PI / 4, {0, 0}, 1e-6));
     }},
    {"in a circle",
     [](unsigned n) {
         Stretches lines = Hatch(n, PI / 4, {0, 0}, 2);
         for (std::size_t i = 0; i < lines.size(); ++i) {
             const double across = 2.0 * static_cast<double>(i) / n - 1,
                          cut = 1 - std::sqrt(1 - across * across);
             const LDPoint step = (lines[i].b - lines[i].a) * (cut / 2);
             lines[i] = {{lines[i].a.x + step.x, lines[i].a.y + step.y}, lines[i].b - step};
         }
         return lines;
     }},
    {"two directions apart",
     [](unsigned n) {
         return Both(Hatch(n / 2, PI / 4, {0, 0}, 1), Hatch(n / 2, -PI / 4, {0.2, -0.9}, 0.5));
     }},
    {"and a few across",
     [](unsigned n) {
         return Both(Hatch(n, PI / 4, {0, 0}, 1), Hatch(6, 0.3, {-1, 0}, 2));
     }},
    {"a thin fan", [](unsigned n) { return Fan(n, 0.7, 0.8, 0); }, true},
    {"a fan all around", [](unsigned n) { return Fan(n, 0, 2 * PI, 0); }, true},
    {"through a point", [](unsigned n) { return Fan(n, 0, PI, 1); }, true},
};

class Tree {
public:
    explicit Tree(Stretches given) : lines(std::move(given)) {
        for (Stretch& s : lines) {
            if (LexicographicallyLess(s.b, s.a)) std::swap(s.a, s.b);
        }
        std::vector<unsigned> all(lines.size());
        std::iota(all.begin(), all.end(), 0u);
        tree.Build(lines, all);
    }
    Stretches lines;
    StretchTree tree;
};

TEST(StretchTreeTests, KeepsTogetherWhatMeetsAndFindsWhatLiesBelow) {
    for (const auto& [name, make, isFan] : KINDS) {
        const Tree found(Both(make(150), Across(make(150))));
        const Stretches& lines = found.lines;
        std::vector<std::vector<bool>> apart(lines.size(), std::vector<bool>(lines.size()));
        std::size_t meetings = 0;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                const Stretch &s = lines[i], &t = lines[j];
                apart[i][j] = CrossSign(s.a, s.b, t.a, t.b) != 0 && SideOf(s, t.a) * SideOf(s, t.b) <= 0 &&
                              SideOf(t, s.a) * SideOf(t, s.b) <= 0;
                meetings += apart[i][j];
            }
        }
        found.tree.ForEachLeaf([&](const StretchTree::Leaf& leaf) {
            for (const unsigned i : leaf) {
                for (const unsigned j : leaf) {
                    if (!apart[i][j]) continue;
                    const LDPoint p = CrossingPoint(lines[i], lines[j]);
                    apart[i][j] = !leaf.IsNear(p, 1e-15 * (std::abs(p.x) + std::abs(p.y)));
                }
            }
        });
        for (std::size_t i = 0; i < lines.size(); ++i)
            ASSERT_EQ(std::count(apart[i].begin(), apart[i].end(), true), 0) << name << ' ' << i;
        EXPECT_GT(meetings, 50u) << name;
        std::vector<StretchTree> single(lines.size());
        for (unsigned i = 0; i < lines.size(); ++i) single[i].Build(lines, {i});
        Random random(5);
        for (int k = 0; k < 300; ++k) {
            const Stretch& s = lines[static_cast<std::size_t>(random.Pick(static_cast<int>(lines.size())))];
            const double part = random.Uniform(-0.2, 1.2), size = s.a.DistFrom(s.b);
            const LDPoint p =
                k % 3 == 0 ? s.a
                           : LDPoint(s.a.x + (s.b.x - s.a.x) * part,
                                     s.a.y + (s.b.y - s.a.y) * part + size * random.Uniform(-1, 1) / 9);
            std::size_t best = StretchTree::NONE;
            for (const StretchTree& one : single) best = one.Below(p, best);
            const std::size_t below = found.tree.Below(p);
            ASSERT_TRUE(below == best || (below != StretchTree::NONE && best != StretchTree::NONE &&
                                          lines[below].a == lines[best].a && lines[below].b == lines[best].b))
                << name << ' ' << k;
            std::vector<bool> near(lines.size());
            found.tree.ForEachNear(p, size / 100, [&](unsigned i) { near[i] = true; });
            for (std::size_t i = 0; i < lines.size(); ++i)
                ASSERT_TRUE(near[i] || lines[i].a.DistFrom(p) > size / 100) << name << ' ' << k << ' ' << i;
        }
    }
}

TEST(StretchTreeTests, KeepsFewTogether) {
    constexpr unsigned COUNT = 4000;
    for (const auto& [name, make, isFan] : KINDS) {
        const Tree found(make(COUNT));
        std::size_t pairs = 0, items = 0, visits = 0;
        found.tree.ForEachLeaf([&](const StretchTree::Leaf& leaf) {
            const auto size = static_cast<std::size_t>(leaf.end() - leaf.begin());
            items += size;
            pairs += size * size / 2;
        });
        for (const Stretch& s : found.lines) {
            const bool atStart = s.a.DistFrom2({0, 0}) > s.b.DistFrom2({0, 0});
            found.tree.ForEachNear(atStart ? s.a : s.b, 1e-9, [&](unsigned) { ++visits; });
        }
        EXPECT_TRUE(isFan || pairs <= 60 * COUNT) << name << ' ' << pairs;
        EXPECT_LE(items, 20 * COUNT) << name;
        EXPECT_LE(visits, 25 * COUNT) << name;
    }
}

} // namespace
