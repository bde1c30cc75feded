#include "ZoPrimitives/TArc2D.h"
#include "ZoPrimitives/TCircle2D.h"
#include "ZoPrimitives/TDrawingGraph.h"
#include "ZoPrimitives/TLine2D.h"
#include "ZoPrimitives/TVector2D.h"

#include "Geometry/Random.h"
#include "support/Assertions.h"
#include "support/RoundTrip.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numeric>
#include <set>
#include <sstream>
#include <vector>

#ifdef ZO_TEST_GEOS
#include <geos_c.h>
#endif

using namespace ZoPrimitives;

namespace {

constexpr unsigned EXACT = 22;
using Line = std::array<double, 4>;
using Drawing = std::vector<Line>;

void AddTo(TDrawingGraph& graph, const Drawing& drawing) {
    for (const auto& [x1, y1, x2, y2] : drawing) graph.Add(TSegment2D({x1, y1}, {x2, y2}));
}

std::vector<double> AreasOf(const TDrawingGraph& graph) {
    std::vector<double> areas;
    for (unsigned i = 1; i <= graph.NFaces(); ++i) areas.push_back(graph.Face(i).Area());
    std::sort(areas.begin(), areas.end());
    return areas;
}

unsigned HolesOf(const TRegion& region) {
    unsigned holes = 0;
    for (unsigned long long i = 1; i <= region.NContours(); ++i) holes += region.IsHole(i);
    return holes;
}

/// What must hold of the graph of any drawing.
void ExpectSound(const TDrawingGraph& graph, const std::string& name) {
    ASSERT_TRUE(graph.IsConsistent()) << name;
    double inner = 0, outer = 0;
    for (unsigned i = 0; i <= graph.NFaces(); ++i) {
        const TGraphFace face = graph.Face(i);
        const TRegion region = face.Region();
        ASSERT_EQ(region.NContours() - HolesOf(region), i == 0 ? 0u : 1u)
            << name << i << ": one outer contour";
        (i == 0 ? outer : inner) += i == 0 ? -region.Area() : face.Area();
        ASSERT_NEAR(i == 0 ? 0 : region.Area(), face.Area(), 1e-9) << name;
        for (unsigned k = 1; k <= face.NBorders(); ++k) {
            TSortedEdge edge = face.Border(k);
            do {
                ASSERT_EQ(edge.Face(), i) << name;
                edge = edge.NextAroundFace();
            } while (edge != face.Border(k));
        }
    }
    EXPECT_NEAR(inner, outer, 1e-9 * std::max(1.0, outer))
        << name << ": the faces fill what the outer one leaves";
    for (unsigned i = 1; i <= graph.NEdges(); ++i) {
        const TLineEdge edge = graph.Edge(i);
        ASSERT_TRUE(!edge.IsDangle() || edge.IsBridge()) << name;
        ASSERT_TRUE(!edge.IsBridge() || edge.LeftFace() == edge.RightFace()) << name;
        ASSERT_GE(edge.NThings(), 1u) << name;
    }
    for (unsigned i = 1; i <= graph.NNodes(); ++i) {
        const TPointNode node = graph.Node(i);
        for (unsigned k = 1; k <= node.NEdges(); ++k) {
            const TSortedEdge edge = node.Edge(k), next = node.Edge(k % node.NEdges() + 1);
            ASSERT_TRUE(edge.NextAroundNode() == next && edge.From().Number() == i) << name;
            ASSERT_EQ(edge.Opposite().To().Number(), i) << name;
            ASSERT_TRUE(k == node.NEdges() || edge.Angle() <= next.Angle()) << name;
            ASSERT_TRUE(next.Opposite().NextAroundFace() == edge) << name;
        }
    }
}

TEST(TDrawingGraphTests, FindsTheFacesOfDrawings) {
    const Drawing square = {{0, 0, 4, 0}, {4, 0, 4, 4}, {4, 4, 0, 4}, {0, 4, 0, 0}};
    const auto with = [&](const Drawing& more) {
        Drawing both = square;
        both.insert(both.end(), more.begin(), more.end());
        return both;
    };
    struct Row {
        const char* name;
        Drawing drawing;
        std::vector<double> areas;
        struct {
            unsigned nodes, edges, holes, bridges, dangles, components;
        } expected;
    };
    const Row rows[] = {
        {"nothing", {}, {}, {0, 0, 0, 0, 0, 0}},
        {"a line", {{0, 0, 1, 1}}, {}, {2, 1, 0, 1, 1, 1}},
        {"a square", square, {16}, {4, 4, 0, 0, 0, 1}},
        {"a doubled side", with({{4, 0, 0, 0}}), {16}, {4, 4, 0, 0, 0, 1}},
        {"an overlapping side", with({{-1, 0, 3, 0}}), {16}, {6, 6, 0, 1, 1, 1}},
        {"a side within a side", with({{1, 0, 3, 0}}), {16}, {6, 6, 0, 0, 0, 1}},
        {"crossing lines", {{0, 0, 4, 4}, {0, 4, 4, 0}}, {}, {5, 4, 0, 4, 4, 1}},
        {"diagonals", with({{0, 0, 4, 4}, {0, 4, 4, 0}}), {4, 4, 4, 4}, {5, 8, 0, 0, 0, 1}},
        {"a touching line", with({{2, 0, 2, 4}}), {8, 8}, {6, 7, 0, 0, 0, 1}},
        {"an overshoot", with({{2, 0, 2, 5}}), {8, 8}, {7, 8, 0, 1, 1, 1}},
        {"a dangling line inside", with({{2, 0, 2, 2}}), {16}, {6, 6, 0, 1, 1, 1}},
        {"a tree inside", with({{2, 0, 2, 2}, {1, 1, 3, 1}}), {16}, {9, 9, 0, 4, 4, 1}},
        {"a hole", with({{1, 1, 2, 1}, {2, 1, 2, 2}, {2, 2, 1, 1}}), {0.5, 15.5}, {7, 7, 1, 0, 0, 2}},
        {"a hole with a bridge",
         with({{1, 1, 2, 1}, {2, 1, 2, 2}, {2, 2, 1, 1}, {0, 0, 1, 1}}),
         {0.5, 15.5},
         {7, 8, 1, 1, 0, 1}},
        {"a hole that touches",
         with({{0, 0, 2, 1}, {2, 1, 1, 2}, {1, 2, 0, 0}}),
         {1.5, 14.5},
         {6, 7, 1, 0, 0, 1}},
        {"two that touch at a node",
         with({{4, 4, 6, 4}, {6, 4, 6, 6}, {6, 6, 4, 4}}),
         {2, 16},
         {6, 7, 0, 0, 0, 1}},
        {"a loose line inside", with({{1, 1, 2, 2}}), {16}, {6, 5, 0, 1, 1, 2}},
        {"a hole in a hole's island",
         with({{1, 1, 3, 1},
               {3, 1, 3, 3},
               {3, 3, 1, 3},
               {1, 3, 1, 1},
               {1.5, 1.5, 2, 1.5},
               {2, 1.5, 2, 2},
               {2, 2, 1.5, 1.5}}),
         {0.125, 3.875, 12},
         {11, 11, 2, 0, 0, 3}},
        {"beside each other",
         with({{5, 1, 6, 1}, {6, 1, 6, 2}, {6, 2, 5, 1}}),
         {0.5, 16},
         {7, 7, 0, 0, 0, 2}},
        {"three through a point that is no double",
         with({{0, 0, 3, 1}, {0, 1, 3, 0}, {1.5, 0, 1.5, 4}, {1.5, 0, 0, 1}}),
         {},
         {0, 0, 0, 0, 0, 1}},
    };
    for (const Row& row : rows) {
        for (const unsigned precision : {EXACT, 6u}) {
            for (const double size : {1.0, 1e-9 * 0x1p30, 1e9}) {
                if (size < 1e-3 && precision != EXACT) continue;
                Drawing drawing = row.drawing;
                for (Line& line : drawing) {
                    for (double& value : line) value *= size;
                }
                TDrawingGraph graph(precision);
                AddTo(graph, drawing);
                const std::string name =
                    row.name + (" " + std::to_string(precision)) + " " + std::to_string(size);
                ASSERT_TRUE(graph.IsConsistent()) << name;
                if (size == 1) ExpectSound(graph, name);
                if (row.areas.empty() && row.expected.nodes == 0 && !drawing.empty()) continue;
                EXPECT_EQ(graph.NNodes(), row.expected.nodes) << name;
                EXPECT_EQ(graph.NEdges(), row.expected.edges) << name;
                EXPECT_EQ(graph.NComponents(), row.expected.components) << name;
                EXPECT_EQ(graph.NMoves(), 0u) << name;
                ASSERT_EQ(graph.NFaces(), row.areas.size()) << name;
                const std::vector<double> areas = AreasOf(graph);
                unsigned holes = 0, bridges = 0, dangles = 0;
                for (unsigned i = 1; i <= graph.NFaces(); ++i) {
                    EXPECT_NEAR(areas[i - 1] / size / size, row.areas[i - 1], 1e-12) << name;
                    holes += HolesOf(graph.Face(i).Region());
                }
                for (unsigned i = 1; i <= graph.NEdges(); ++i) {
                    bridges += graph.Edge(i).IsBridge();
                    dangles += graph.Edge(i).IsDangle();
                }
                EXPECT_EQ(holes, row.expected.holes) << name;
                EXPECT_EQ(bridges, row.expected.bridges) << name;
                EXPECT_EQ(dangles, row.expected.dangles) << name;
            }
        }
    }
}

TEST(TDrawingGraphTests, ClosesGapsAndTellsWhatMoved) {
    struct Row {
        const char* name;
        Drawing drawing;
        std::vector<double> areas;
        std::vector<std::array<double, 4>> moves;
        unsigned dangles;
    };
    // A slab of 400 by 300 with a beam across, at the precision 0: less than 1 apart.
    const Drawing slab = {{0, 0, 400, 0}, {400, 0, 400, 300}, {400, 300, 0, 300}, {0, 300, 0, 0}};
    const auto with = [&](const Drawing& more) {
        Drawing both = slab;
        both.insert(both.end(), more.begin(), more.end());
        return both;
    };
    const Row rows[] = {
        {"exact", with({{100, 0, 100, 300}}), {30000, 90000}, {}, 0},
        {"short of the edge", with({{100, 0.75, 100, 300}}), {30000, 90000}, {{100, 0.75, 100, 0}}, 0},
        {"short by the tolerance", with({{100, 1, 100, 300}}), {120000}, {}, 1},
        {"an overshoot", with({{100, -0.5, 100, 300}}), {30000, 90000}, {{100, -0.5, 100, 0}}, 0},
        {"a long overshoot", with({{100, -2, 100, 300}}), {30000, 90000}, {}, 1},
        {"beside a corner", with({{0.5, 0.25, 400, 300}}), {60000, 60000}, {{0.5, 0.25, 0, 0}}, 0},
        {"a doubled line",
         with({{100, 0, 100, 300}, {100.5, 0, 100.5, 300}}),
         {30000, 90000},
         {{100.5, 0, 100, 0}, {100.5, 300, 100, 300}},
         0},
        {"an open corner",
         {{0.5, 0, 100, 0}, {100, 0, 0, 100}, {0, 100, 0, 0.5}},
         {4975},
         {{0.5, 0, 0, 0.5}},
         0},
        {"all of it within the tolerance",
         {{0, 0, 0.5, 0}, {0.5, 0, 0, 0.5}, {0, 0.5, 0, 0}},
         {},
         {{0, 0.5, 0, 0}, {0.5, 0, 0, 0}},
         0},
    };
    for (const Row& row : rows) {
        TDrawingGraph graph(0);
        AddTo(graph, row.drawing);
        ExpectSound(graph, row.name);
        EXPECT_TRUE(graph.IsSettled()) << row.name;
        const std::vector<double> areas = AreasOf(graph);
        EXPECT_EQ(areas, row.areas) << row.name;
        std::vector<std::array<double, 4>> moves;
        for (unsigned i = 1; i <= graph.NMoves(); ++i) {
            const TGraphMove move = graph.Move(i);
            moves.push_back({move.from.X(), move.from.Y(), move.to.X(), move.to.Y()});
        }
        std::sort(moves.begin(), moves.end());
        EXPECT_EQ(moves, row.moves) << row.name;
        unsigned dangles = 0;
        for (unsigned i = 1; i <= graph.NEdges(); ++i) dangles += graph.Edge(i).IsDangle();
        EXPECT_EQ(dangles, row.dangles) << row.name;
    }
}

TEST(TDrawingGraphTests, TellsThingsNeighboursAndPlaces) {
    TDrawingGraph graph(3, 0.001);
    const unsigned plan = graph.Add(TContour::Rectangle(RRect({0, 0}, {10, 10})));
    const unsigned beam = graph.Add(TSegment2D({5, 0}, {5, 10}));
    const unsigned again = graph.Add(TSegment2D({5, 2}, {5, 4}));
    const unsigned column = graph.Add(TCircle2D({2, 5}, 1));
    EXPECT_EQ(std::vector({plan, beam, again, column}), (std::vector{1u, 2u, 3u, 4u}));
    ExpectSound(graph, "plan");
    ASSERT_EQ(graph.NFaces(), 3u);
    const TGraphPlace left = graph.Locate({1, 1}), right = graph.Locate({9, 5}),
                      inside = graph.Locate({2, 5});
    EXPECT_NEAR(graph.Face(left.face).Area(), 50 - 3.14159265, 0.01);
    EXPECT_NEAR(graph.Face(right.face).Area(), 50, 1e-12);
    EXPECT_NEAR(graph.Face(inside.face).Area(), 3.14159265, 0.01);
    EXPECT_EQ(graph.Locate({-1, 5}).face, 0u);
    const TGraphPlace shared = graph.Locate({5, 3}), corner = graph.Locate({10, 0});
    ASSERT_TRUE(shared.edge != 0 && shared.node == 0 && shared.face == 0 && corner.node != 0 &&
                corner.edge == 0);
    const TLineEdge edge = graph.Edge(shared.edge);
    EXPECT_TRUE(edge.NThings() == 2 && edge.Thing(1) == beam && edge.Thing(2) == again);
    EXPECT_EQ(edge.Segment(), TSegment2D({5, 2}, {5, 4}));
    EXPECT_TRUE(edge.LeftFace() == left.face && edge.RightFace() == right.face);
    EXPECT_EQ(graph.Node(corner.node).Point(), Point2D(10, 0));

    EXPECT_TRUE(graph.Remove(beam) && !graph.Remove(beam) && !graph.Remove(9));
    EXPECT_EQ(graph.NFaces(), 2u);
    EXPECT_EQ(graph.Locate({5, 9}).face, graph.Locate({1, 1}).face);
    EXPECT_TRUE(graph.Edge(graph.Locate({5, 3}).edge).IsDangle());
    graph.RemoveAll();
    EXPECT_TRUE(graph.NFaces() == 0 && graph.NEdges() == 0 && graph.Locate({1, 1}).face == 0);
    TRegion frame(TContour::Rectangle(RRect({0, 0}, {10, 10})));
    frame.AddHole(TContour::Rectangle(RRect({1, 1}, {9, 9})));
    EXPECT_EQ(graph.Add(frame), 1u);
    EXPECT_EQ(AreasOf(graph), (std::vector<double>{36, 64}));
    const TRegion found = graph.Face(graph.Locate({0.5, 0.5}).face).Region();
    EXPECT_TRUE(found.Area() == 36 && found.Length() == frame.Length() && HolesOf(found) == 1);

    const std::pair<const char*, std::function<void()>> refused[] = {
        {"finite coordinates",
         [&] {
             graph.Add(TSegment2D({0, 0}, {HUGE_VAL, 0}));
         }},
        {"finite coordinates",
         [&] {
             graph.Locate({std::nan(""), 0});
         }},
        {"number >= 1 && number <= NNodes()", [&] { graph.Node(0); }},
        {"number >= 1 && number <= NEdges()", [&] { graph.Edge(9); }},
        {"number <= NFaces()", [&] { graph.Face(3); }},
        {"precision <= 22", [] { TDrawingGraph(23); }},
        {"chordError > 0", [] { TDrawingGraph(3, 0); }},
        {"no more than 2^24 chords of arcs",
         [] {
             TDrawingGraph fine(3, 1e-99);
             for (int i = 0; i < 17; ++i) fine.Add(TCircle2D({0, 0}, 1));
         }},
    };
    for (const auto& [text, call] : refused) EXPECT_EQ(AssertionOf(call).expression, text);
}

/// All that is found, to the last bit, whatever its numbers.
std::multiset<std::string> DumpOf(const TDrawingGraph& graph) {
    std::multiset<std::string> all;
    const auto add = [&](const Point2D& a, const Point2D& b, auto describe) {
        std::ostringstream text;
        text << std::hexfloat << a.X() << ' ' << a.Y() << ' ' << b.X() << ' ' << b.Y();
        describe(text);
        all.insert(text.str());
    };
    for (unsigned i = 1; i <= graph.NEdges(); ++i) {
        const TLineEdge edge = graph.Edge(i);
        add(edge.Start().Point(), edge.End().Point(), [&](std::ostream& text) {
            for (const unsigned face : {edge.LeftFace(), edge.RightFace()})
                text << (face == 0 ? " outside " : " inside ") << graph.Face(face).NBorders();
            for (unsigned k = 1; k <= edge.NThings(); ++k) text << ' ' << edge.Thing(k);
        });
    }
    for (unsigned i = 1; i <= graph.NMoves(); ++i)
        add(graph.Move(i).from, graph.Move(i).to, [](std::ostream& text) { text << " moved"; });
    return all;
}

TEST(TDrawingGraphTests, IsSavedAndOpenedAsItWasDrawn) {
    TZoMetaData schema;
    ZoRegisterGeometry(&schema);
    TDrawingGraph graph(2, 0.03), small(3, 0.5), empty;
    graph.Add(TCircle2D({1, 1}, 2.7));
    const unsigned gone = graph.Add(TContour::Rectangle(RRect({-9, -9}, {9, 9})));
    graph.Add(TArc2D({-1, 0.001}, {1.0 / 3, 3}, -0.4));
    TRegion frame(TContour::Rectangle(RRect({0, 0}, {7, 7})));
    frame.AddHole(TContour(TCircle2D({3, 3}, 1)));
    graph.Add(frame);
    graph.Add(TPolyline2D());
    const unsigned last = graph.Add(TSegment2D({0.004, -3}, {0, 7.1}));
    EXPECT_NE(graph.NFaces(), 0u); // found now, and changed from here on
    graph.Remove(gone);
    graph.Remove(last);
    graph.Add(TSegment2D({0, 3}, {7, 3.002}));
    Opened opened(ExpectOpened(schema, graph), schema);
    auto& read = dynamic_cast<TDrawingGraph&>(*opened.root);
    EXPECT_EQ(DumpOf(read), DumpOf(graph));
    EXPECT_FALSE(read.Remove(gone));
    EXPECT_EQ(read.Add(TSegment2D({0, 0}, {1, 0})), 8u);

    small.Add(TArc2D({1, 2}, {3, 4}, 0.5));
    EXPECT_TRUE(small.Remove(small.Add(TSegment2D({0, 0}, {1, 0}))));
    small.Add(TPolyline2D());
    EXPECT_EQ(ExpectReadAsText(schema, small), "70|3|40|0.5|71|1|10|1.|20|2.|11|3.|21|4.|42|0.5|71|2|71|1|");
    ExpectOpened(schema, empty);
    EXPECT_EQ(ExpectReadAsText(schema, empty), "70|6|40|1.e-002|");

    TDrawingGraph copy(graph);
    EXPECT_TRUE(copy == graph && DumpOf(copy) == DumpOf(graph));
    EXPECT_TRUE(copy.Remove(1) && copy != graph && graph.Remove(1) && copy == graph);
    copy = small;
    EXPECT_TRUE(copy == small && copy.NFaces() == 0 && copy != TDrawingGraph(3, 0.5) &&
                TDrawingGraph(3) != TDrawingGraph(3, 0.5) && TDrawingGraph(3) != TDrawingGraph(4));
}

TEST(TDrawingGraphTests, RefusesDrawingsThatAreNone) {
    TZoMetaData schema;
    ZoRegisterGeometry(&schema);
    const ClassEntry entry{.name = "TDrawingGraph",
                           .values = {{0, ftUnsigned, "precision"},
                                      {0, ftDouble, "chordError"},
                                      {0, ftListDouble, "pieces"},
                                      {0, ftListInt, "things"}}};
    const double endless = HUGE_VAL, none = std::nan("");
    const int most = 2147483647;
    std::vector<double> arcs;
    std::string arcsText;
    for (int i = 0; i < 17; ++i) {
        arcs.insert(arcs.end(), {0, 0, 1, 0, 1});
        arcsText += " 10 0 20 0 11 1 21 0 42 1";
    }
    struct Row {
        const char* name;
        std::vector<double> pieces;
        std::vector<int> things;
        std::string text;
        bool accepted = false;
        unsigned precision = 22;
        double chordError = 0.5;
    };
    const Row rows[] = {
        {"a piece", {0, 0, 1, 0, 0}, {1}, "70 22 40 0.5 71 1 10 0 20 0 11 1 21 0 42 0", true},
        {"nothing", {}, {}, "", true},
        {"of no precision there is", {}, {}, "70 23", false, 23},
        {"without a chord error", {}, {}, "40 0", false, 3, 0},
        {"a chord error that is no number", {}, {}, "40 nan", false, 3, none},
        {"an endless coordinate", {0, endless, 1, 0, 0}, {1}, "71 1 10 0 20 inf 11 1 21 0 42 0"},
        {"a bulge that is no number", {0, 0, 1, 0, none}, {1}, "71 1 10 0 20 0 11 1 21 0 42 nan"},
        {"half a piece", {0, 0, 1}, {1}, "71 1 10 0 20 0 11 1"},
        {"half a piece, then a thing", {0, 0, 1, 0, 0, 0}, {1, 1}, "71 1 10 0 20 0 11 1 71 1"},
        {"a number out of turn", {}, {1}, "71 1 10 0 11 1"},
        {"a piece of nothing", {0, 0, 1, 0, 0}, {}, "10 0 20 0 11 1 21 0 42 0"},
        {"a piece of what was removed", {0, 0, 1, 0, 0}, {-1}, "71 2 10 0 20 0 11 1 21 0 42 0"},
        {"less than removed", {}, {-2}, "71 0"},
        {"the least count", {}, {-most - 1}, "71 3"},
        {"counts that sum to 1", {0, 0, 1, 0, 0}, {most, most, 3}, "71 -1"},
        {"a million chords of each arc", arcs, {17}, "40 1e-99 71 1" + arcsText, false, 22, 1e-99},
    };
    for (const Row& row : rows) {
        Payload payload;
        payload.Int(row.precision).Double(row.chordError).Int(static_cast<long long>(row.pieces.size()));
        for (const double number : row.pieces) payload.Double(number);
        payload.Int(static_cast<long long>(row.things.size()));
        for (const int count : row.things) payload.Int(count);
        Opened opened(FileOf({entry}, {::Row{1, 1, payload}}), schema);
        EXPECT_EQ(opened.root != nullptr, row.accepted) << row.name;
        std::string text = row.text + (row.text.empty() ? "0\n" : "\n0\n");
        std::replace(text.begin(), text.end(), ' ', '\n');
        const Testing::TemporaryFolder folder;
        folder.Write("text", text);
        InputStreamer reader(new FileInputStream(folder.Path("text").c_str()), nullptr);
        TDrawingGraph graph(5, 7);
        graph.Add(TSegment2D({0, 0}, {1, 0}));
        const TDrawingGraph before(graph);
        EXPECT_EQ(FailureOf([&] { graph.Read(reader); }),
                  row.accepted ? "" : "Invalid object : data still incomplete after read. @ ")
            << row.name;
        EXPECT_EQ(graph == before, !row.accepted) << row.name << ": stays as it was";
        EXPECT_EQ(graph.NEdges(), row.accepted ? unsigned(row.pieces.size() / 5) : 1) << row.name;
    }
}

/// Drawings at random, each sort difficult in a way of its own.
using Maker = Drawing (*)(Random&);
Drawing Lines(int count, const std::function<double()>& coordinate) {
    Drawing drawing;
    for (int i = 0; i < count; ++i)
        drawing.push_back({coordinate(), coordinate(), coordinate(), coordinate()});
    return drawing;
}
const std::pair<const char*, Maker> MAKERS[] = {
    {"anywhere",
     [](Random& random) { return Lines(1 + random.Pick(30), [&] { return random.Uniform(0, 10); }); }},
    {"on a small grid",
     [](Random& random) { return Lines(1 + random.Pick(20), [&] { return 1.0 * random.Pick(5); }); }},
    {"on a grid of tenths",
     [](Random& random) { return Lines(1 + random.Pick(20), [&] { return random.Pick(6) * 0.1; }); }},
    {"upright, level and oblique",
     [](Random& random) {
         Drawing drawing;
         for (int i = 10 + random.Pick(40); i > 0; --i) {
             const int x = random.Pick(8), y = random.Pick(8), length = 1 + random.Pick(5),
                       kind = random.Pick(4);
             drawing.push_back({1.0 * x, 1.0 * y, x + 1.0 * (kind != 0) * length,
                                y + 1.0 *
                                        (kind == 0 || kind == 2 ? 1
                                         : kind == 3            ? -1
                                                                : 0) *
                                        length});
         }
         return drawing;
     }},
    {"rectangles and triangles",
     [](Random& random) {
         Drawing drawing;
         for (int i = 1 + random.Pick(8); i > 0; --i) {
             const double x = random.Pick(12), y = random.Pick(12), w = 1 + random.Pick(6),
                          h = 1 + random.Pick(6);
             drawing.push_back({x, y, x + w, y});
             if (random.Pick(2) == 0)
                 drawing.push_back({x + w, y, x + w, y + h}), drawing.push_back({x + w, y + h, x, y});
             else
                 drawing.push_back({x + w, y, x, y + h}), drawing.push_back({x, y + h, x, y});
         }
         return drawing;
     }},
    {"nearly parallel",
     [](Random& random) {
         Drawing drawing;
         for (int i = 2 + random.Pick(8); i > 0; --i)
             drawing.push_back(
                 {0, random.Pick(3) + random.Pick(3) * 1e-15, 10, random.Pick(3) + random.Pick(3) * 1e-15});
         drawing.push_back({5, -1, 5, 4});
         return drawing;
     }},
    {"hatches in a frame",
     [](Random& random) {
         Drawing drawing = {{0, 0, 60, 0}, {60, 0, 60, 20}, {60, 20, 0, 20}, {0, 20, 0, 0}};
         for (int i = 0; i < 70; ++i) {
             const int x = random.Pick(50), first = random.Pick(3), last = 20 - random.Pick(3);
             drawing.push_back({x + first / 2.0, 1.0 * first, x + last / 2.0, 1.0 * last});
         }
         drawing.push_back({1.0 * random.Pick(20), 20, 60, 1.0 * random.Pick(20)});
         return drawing;
     }},
    {"through a point",
     [](Random& random) {
         Drawing drawing;
         for (int i = 0; i < 70; ++i) {
             const double x = 16 * (random.Pick(13) - 6), y = 16 * (random.Pick(13) - 6);
             const int behind = random.Pick(3), ahead = random.Pick(8) == 0 ? 0 : 1 + random.Pick(2);
             drawing.push_back({-behind * x, -behind * y, ahead * x, ahead * y});
         }
         drawing.push_back({-100, 16.0 * random.Pick(9) - 64, 100, 16.0 * random.Pick(9) - 64});
         return drawing;
     }},
    {"nearly upright, across levels",
     [](Random& random) {
         Drawing drawing;
         for (int i = 2 + random.Pick(6); i > 0; --i)
             drawing.push_back({1 + random.Pick(3) * 0x1p-52, 4, 1 + random.Pick(3) * 0x1p-52, 0});
         for (int i = 3 + random.Pick(5); i > 0; --i) {
             const double y = random.Uniform(0.5, 3.5);
             drawing.push_back({0, y, 1 + random.Pick(2) * 1.5, y + random.Pick(2) * 0.4});
         }
         return drawing;
     }},
    {"of all sizes",
     [](Random& random) {
         return Lines(2 + random.Pick(12),
                      [&] { return random.Uniform(-1, 1) * std::pow(10, random.Uniform(-9, 9)); });
     }},
};

/// Fewer drawings are enough where each has many lines.
int Fewer(int rounds, const std::string& name) {
    return name == "hatches in a frame" || name == "through a point" ? rounds / 8 : rounds;
}

TEST(TDrawingGraphTests, IsSoundForAnyDrawing) {
    Random random(11);
    for (const auto& [name, make] : MAKERS) {
        const bool large = std::string(name) == "of all sizes";
        for (int i = 0; i < Fewer(20, name); ++i) {
            const Drawing drawing = make(random);
            for (const unsigned precision : {EXACT, 9u, 2u, 0u}) {
                TDrawingGraph graph(precision);
                AddTo(graph, drawing);
                const std::string what = name + std::to_string(i) + " " + std::to_string(precision);
                ASSERT_TRUE(graph.IsConsistent()) << what;
                if (!large) ExpectSound(graph, what);
                if (HasFatalFailure()) return;
                ASSERT_TRUE(graph.IsSettled()) << what;
                // The same drawing, the other way round.
                TDrawingGraph again(precision);
                for (auto line = drawing.rbegin(); line != drawing.rend(); ++line)
                    again.Add(TSegment2D({(*line)[2], (*line)[3]}, {(*line)[0], (*line)[1]}));
                ASSERT_EQ(graph.NNodes(), again.NNodes()) << what;
                ASSERT_EQ(graph.NFaces(), again.NFaces()) << what;
                if (large) continue;
                for (int k = 0; k < 20; ++k) { // where points lie
                    const Point2D p(random.Pick(64) * 0.125, random.Pick(64) * 0.125);
                    const TGraphPlace place = graph.Locate(p);
                    ASSERT_TRUE(place.node == 0 || graph.Node(place.node).Point() == p) << what;
                    if (place.face == 0) continue;
                    const TLocation location = graph.Face(place.face).Region().Locate(p, 12);
                    ASSERT_TRUE(location == InsideRegion ||
                                (location == OnBorder && place.node + place.edge == 0) || precision != EXACT)
                        << what;
                }
            }
        }
    }
}

/// All of a graph but its numbers: of each face, the edges of its borders, in order of their ends. `names`
/// are those of things.
using Shape = std::vector<std::vector<std::vector<double>>>;
Shape ShapeOf(const TDrawingGraph& graph, const std::vector<int>& names) {
    Shape shape;
    for (unsigned i = 0; i <= graph.NFaces(); ++i) {
        std::vector<std::vector<double>> edges{{i == 0 ? -1.0 : 0.0}};
        const TGraphFace face = graph.Face(i);
        for (unsigned k = 1; k <= face.NBorders(); ++k) {
            TSortedEdge at = face.Border(k);
            do {
                const TLineEdge edge = at.Edge();
                const Point2D from = at.From().Point(), to = at.To().Point();
                std::vector<double> one{
                    from.X(), from.Y(), to.X(), to.Y(), 1.0 * edge.IsBridge(), 1.0 * edge.IsDangle()};
                for (unsigned t = 1; t <= edge.NThings(); ++t) one.push_back(names[edge.Thing(t) - 1]);
                std::sort(one.begin() + 6, one.end());
                edges.push_back(one);
                at = at.NextAroundFace();
            } while (at != face.Border(k));
        }
        std::sort(edges.begin(), edges.end());
        shape.push_back(edges);
    }
    std::vector<std::vector<double>> rest{
        {1.0 * graph.NNodes(), 1.0 * graph.NEdges(), 1.0 * graph.NComponents(), 1.0 * graph.IsSettled()}};
    for (unsigned i = 1; i <= graph.NMoves(); ++i) {
        const TGraphMove move = graph.Move(i);
        rest.push_back({move.from.X(), move.from.Y(), move.to.X(), move.to.Y()});
    }
    std::sort(rest.begin(), rest.end());
    shape.push_back(rest);
    std::sort(shape.begin(), shape.end());
    return shape;
}

TEST(TDrawingGraphTests, ChangesAsIfItWereDrawnAnew) {
    Random random(31);
    for (const auto& [name, make] : MAKERS) {
        for (int i = 0; i < Fewer(8, name); ++i) {
            for (const unsigned precision : {EXACT, 9u, 2u, 0u}) {
                const Drawing drawing = make(random), more = make(random);
                TDrawingGraph graph(precision);
                std::vector<int> names;
                std::vector<Line> lines;
                std::vector<bool> isThere;
                const auto add = [&](const Line& line) {
                    graph.Add(TSegment2D({line[0], line[1]}, {line[2], line[3]}));
                    names.push_back(static_cast<int>(lines.size()));
                    lines.push_back(line);
                    isThere.push_back(true);
                };
                for (const Line& line : drawing) add(line);
                for (int step = 0; step < 10; ++step) {
                    graph.NFaces(); // found, so that it changes
                    for (int k = random.Pick(3); k >= 0; --k) {
                        const auto thing = static_cast<unsigned>(random.Pick(static_cast<int>(lines.size())));
                        if (random.Pick(2) == 0) {
                            add(more[static_cast<unsigned>(random.Pick(static_cast<int>(more.size())))]);
                        } else if (isThere[thing]) {
                            ASSERT_TRUE(graph.Remove(thing + 1));
                            isThere[thing] = false;
                        }
                    }
                    TDrawingGraph anew(precision);
                    std::vector<int> newNames;
                    for (std::size_t k = lines.size(); k-- > 0;) {
                        if (!isThere[k]) continue;
                        anew.Add(TSegment2D({lines[k][2], lines[k][3]}, {lines[k][0], lines[k][1]}));
                        newNames.push_back(names[k]);
                    }
                    const std::string what = name + std::to_string(i) + " " + std::to_string(precision) +
                                             " " + std::to_string(step);
                    ASSERT_TRUE(graph.IsConsistent()) << what;
                    ASSERT_EQ(ShapeOf(graph, names), ShapeOf(anew, newNames)) << what;
                }
            }
        }
    }
}

TEST(TDrawingGraphTests, LeavesTheNumbersOfWhatIsAwayFromAChange) {
    constexpr int SIDE = 12;
    for (const unsigned precision : {EXACT, 3u}) {
        TDrawingGraph graph(precision);
        for (int i = 0; i <= SIDE; ++i) {
            graph.Add(TSegment2D({0, 1.0 * i}, {1.0 * SIDE, 1.0 * i}));
            graph.Add(TSegment2D({1.0 * i, 0}, {1.0 * i, 1.0 * SIDE}));
        }
        const auto numbers = [&] {
            std::vector<unsigned> all;
            for (int i = 0; i < SIDE * SIDE; ++i) {
                const double x = i % SIDE, y = i / SIDE; // a corner, a side and the middle of each square
                for (const Point2D& p : {Point2D(x, y), Point2D(x + 0.5, y), Point2D(x + 0.7, y + 0.5)}) {
                    const TGraphPlace place = graph.Locate(p);
                    all.push_back(place.node + place.edge + place.face);
                }
            }
            return all;
        };
        const auto differences = [](const std::vector<unsigned>& a, const std::vector<unsigned>& b) {
            return std::inner_product(a.begin(), a.end(), b.begin(), 0, std::plus<>(), std::not_equal_to<>());
        };
        const std::vector<unsigned> before = numbers();
        const unsigned diagonal = graph.Add(TSegment2D({5, 5}, {6, 6}));
        EXPECT_EQ(graph.NFaces(), SIDE * SIDE + 1u);
        EXPECT_LE(differences(before, numbers()), 1) << "the square that it divides";
        const unsigned bar =
            graph.Add(TSegment2D({3, 7.5}, {4, 7.5})); // from one side of a square to another
        EXPECT_LE(differences(before, numbers()), 4);
        EXPECT_TRUE(graph.Remove(bar) && graph.Remove(diagonal));
        EXPECT_LE(differences(before, numbers()), 5)
            << "the last ones may have taken numbers that became free";
        EXPECT_TRUE(graph.NFaces() == SIDE * SIDE && graph.IsConsistent());
    }
}

#ifdef ZO_TEST_GEOS

/// The faces that the other library finds.
class Peer {
public:
    Peer() : handle(GEOS_init_r()) {}
    ~Peer() { GEOS_finish_r(handle); }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// Sorted areas; `holes` gets the number of all holes.
    std::vector<double> Areas(const Drawing& drawing, unsigned& holes) {
        std::vector<GEOSGeometry*> lines;
        for (const auto& [x1, y1, x2, y2] : drawing) {
            if (x1 == x2 && y1 == y2) continue;
            GEOSCoordSequence* ends = GEOSCoordSeq_create_r(handle, 2, 2);
            GEOSCoordSeq_setXY_r(handle, ends, 0, x1, y1);
            GEOSCoordSeq_setXY_r(handle, ends, 1, x2, y2);
            lines.push_back(GEOSGeom_createLineString_r(handle, ends));
        }
        GEOSGeometry* all = GEOSGeom_createCollection_r(handle, GEOS_MULTILINESTRING, lines.data(),
                                                        static_cast<unsigned>(lines.size()));
        GEOSGeometry* noded = GEOSUnaryUnion_r(handle, all);
        GEOSGeometry* faces = GEOSPolygonize_r(handle, &noded, 1);
        std::vector<double> areas;
        holes = 0;
        for (int i = 0; i < GEOSGetNumGeometries_r(handle, faces); ++i) {
            const GEOSGeometry* face = GEOSGetGeometryN_r(handle, faces, i);
            double area = 0;
            GEOSArea_r(handle, face, &area);
            if (area < LEAST) continue;
            areas.push_back(area);
            holes += static_cast<unsigned>(GEOSGetNumInteriorRings_r(handle, face));
        }
        for (GEOSGeometry* geometry : {all, noded, faces}) GEOSGeom_destroy_r(handle, geometry);
        std::sort(areas.begin(), areas.end());
        return areas;
    }
    /// Smaller faces are of one library's rounding.
    static constexpr double LEAST = 1e-9;

private:
    GEOSContextHandle_t handle;
};

TEST(TDrawingGraphTests, HasTheFacesThatAPolygonizerFinds) {
    Random random(23);
    Peer peer;
    for (const auto& [name, make] : MAKERS) {
        if (std::string(name) == "of all sizes") continue;
        if (std::string(name) == "nearly upright, across levels") continue; // which the peer rounds
        for (int i = 0; i < Fewer(150, name); ++i) {
            const Drawing drawing = make(random);
            // The same drawing again, drawn less well.
            Drawing slips = drawing;
            const bool slipping = std::string(name) == "upright, level and oblique" || i % 4 == 0;
            for (Line& line : slips) {
                for (double& value : line) value += random.Uniform(-1, 1) * 1e-4;
            }
            // Where tenths meet, rounding leaves gaps, which we are to close: the peer gets whole numbers.
            const bool tenths =
                std::string(name) == "on a grid of tenths" || std::string(name) == "nearly parallel";
            Drawing exact = drawing;
            for (Line& line : exact) {
                for (double& value : line) value = tenths ? std::round(value * 10) : value;
            }
            unsigned holes = 0;
            std::vector<double> expected = peer.Areas(exact, holes);
            for (double& area : expected) area *= tenths ? 0.01 : 1;
            for (const unsigned precision : {EXACT, 9u, 3u}) {
                const bool slipped = precision == 3;
                if (precision == EXACT && tenths) continue;
                if (slipped && (!slipping || std::string(name) != "upright, level and oblique")) continue;
                TDrawingGraph graph(precision);
                AddTo(graph, slipped ? slips : drawing);
                unsigned ours = 0;
                std::vector<double> areas;
                for (unsigned k = 1; k <= graph.NFaces(); ++k) {
                    const TGraphFace face = graph.Face(k);
                    if (face.Area() < Peer::LEAST) continue;
                    areas.push_back(face.Area());
                    ours += HolesOf(face.Region());
                }
                std::sort(areas.begin(), areas.end());
                ASSERT_EQ(areas.size(), expected.size()) << name << i << ' ' << precision;
                for (std::size_t k = 0; k < areas.size(); ++k)
                    ASSERT_NEAR(areas[k], expected[k], slipped ? 0.01 : 1e-9)
                        << name << i << ' ' << precision;
                ASSERT_EQ(ours, holes) << name << i << ' ' << precision;
            }
        }
    }
}

#endif

} // namespace
