#include "pictures.h"
#include "svg.h"
#include "words.h"

#include "ZoPrimitives/TCircle2D.h"
#include "ZoPrimitives/TDrawingGraph.h"
#include "ZoPrimitives/TSegment2D.h"

namespace Frame {

using namespace ZoPrimitives;

namespace {

/// A plate with a round corner and a round hole.
TRegion Plate() {
    TContour outline;
    outline.Add({0, 0});
    outline.Add({110, 0});
    outline.Add({110, 70}, 0.41421356237309503);
    outline.Add({80, 100});
    outline.Add({0, 100});
    TRegion plate(outline);
    plate.AddHole(TContour(TCircle2D({38, 60}, 22)));
    return plate;
}

/// A disc with a square hole.
TRegion Disc() {
    TRegion disc(TContour(TCircle2D({95, 45}, 58)));
    disc.AddHole(TContour::Rectangle(RRect({78, 22}, {122, 58})));
    return disc;
}

// The closed regions of a drawing, in centimetres.

/// What somebody drew: a frame with a gap in a corner, walls that are too short or too long or drawn twice,
/// and things within.
std::vector<TPolyline2D> DrawnLines() {
    std::vector<TPolyline2D> lines = {
        {{0, 0}, {60, 0}, {60, 40}, {0, 40}, {0, 0.7}}, // stops short of where it began
        {{34, -0.6}, {34, 44}},                         // too long above
        {{34, 22}, {59.3, 22}},                         // too short
        {{40, 22}, {50, 22}},                           // drawn once more
        {{6, 6}, {14, 6}, {14, 13}, {6, 13}, {6, 6}},   // joined to the frame by the next one
        {{0, 9.5}, {6, 9.5}},
        {{44, 30}, {52, 36}}, // loose
    };
    lines.emplace_back(TContour(TCircle2D({22, 27}, 7)));
    return lines;
}

void DrawFaces(const View& view, const TDrawingGraph& graph, const Units& units) {
    const char* const colours[] = {BLUE, YELLOW, GREEN, PURPLE, ORANGE};
    for (unsigned i = 1; i <= graph.NFaces(); ++i)
        view.Draw(graph.Face(i).Region(), Fill(colours[(i - 1) % std::size(colours)], 0.28));
    for (unsigned i = 1; i <= graph.NEdges(); ++i) {
        const TLineEdge edge = graph.Edge(i);
        view.Draw(edge.Segment(), edge.IsDangle()   ? Stroke(ORANGE, 2.5, "5 3")
                                  : edge.IsBridge() ? Stroke(PURPLE, 2.5, "5 3")
                                                    : Stroke(INK, edge.NThings() > 1 ? 4 : 1.5));
    }
    for (const Point2D& at :
         {Point2D(17, 15), Point2D(10, 9), Point2D(22, 27), Point2D(47, 11), Point2D(47, 27)}) {
        const unsigned face = graph.Locate(at).face;
        const GArea area(graph.Face(face).Region().Area(), TArea::cm2);
        view.Note(at, 0, -1, std::to_string(face), CAPTION);
        view.Note(at, 0, 13, units.Text(units.area, area), "text-anchor=\"middle\"");
    }
    for (unsigned i = 1; i <= graph.NMoves(); ++i) view.Ring(graph.Move(i).to, ORANGE, 8);
}

void DrawKey(Drawing& drawing, const TDrawingGraph& graph) {
    unsigned dangles = 0, bridges = 0, doubled = 0;
    for (unsigned i = 1; i <= graph.NEdges(); ++i) {
        const TLineEdge edge = graph.Edge(i);
        if (edge.IsDangle())
            ++dangles;
        else if (edge.IsBridge())
            ++bridges;
        if (edge.NThings() > 1) ++doubled;
    }
    const std::pair<std::string, std::string> rows[] = {
        {Stroke(ORANGE, 2.5, "5 3"), Words("dangling: {1}", {std::to_string(dangles)})},
        {Stroke(PURPLE, 2.5, "5 3"), Words("bridges: {1}", {std::to_string(bridges)})},
        {Stroke(INK, 4), Words("drawn twice: {1}", {std::to_string(doubled)})},
        {"", Words("gaps closed: {1}", {std::to_string(graph.NMoves())})},
    };
    double x = 56;
    for (const auto& [style, text] : rows) {
        const View view(drawing, x, 386);
        if (style.empty())
            view.Ring({17, 0}, ORANGE, 8);
        else
            view.Draw(TSegment2D({0, 0}, {34, 0}), style);
        drawing.Text(x + 44, 390.5, text);
        x += 206;
    }
}

} // namespace

std::string DrawOverlays(const Units& units) {
    const TRegion a = Plate(), b = Disc();
    const std::pair<const char*, TRegion> results[] = {{"Union", a.Union(b)},
                                                       {"Intersection", a.Intersection(b)},
                                                       {"Difference", a.Difference(b)},
                                                       {"ExclusiveOr", a.ExclusiveOr(b)}};
    constexpr double width = 180;
    const auto place = [](std::size_t i) { return 14 + width * static_cast<double>(i); };
    Drawing drawing;
    const View given(drawing, place(0), 160);
    given.Draw(a, Area(BLUE, 0.25));
    given.Draw(b, Area(YELLOW, 0.3));
    given.Note({8, 8}, 0, 0, "a", "font-weight=\"bold\"");
    given.Note({136, 8}, 0, 0, "b", "font-weight=\"bold\"");
    drawing.Text(place(0) + 76, 28, "a, b", CAPTION);
    drawing.Text(place(0) + 76, 202, AreaText(units, a.Area()) + ", " + AreaText(units, b.Area()), FACT);
    for (std::size_t i = 0; i < std::size(results); ++i) {
        const auto& [name, region] = results[i];
        const View view(drawing, place(i + 1), 160);
        view.Draw(a, Stroke(GREY, 1, "3 3"));
        view.Draw(b, Stroke(GREY, 1, "3 3"));
        view.Draw(region, Area(GREEN, 0.35));
        drawing.Text(place(i + 1) + 76, 28, name, CAPTION);
        drawing.Text(place(i + 1) + 76, 202, AreaText(units, region.Area()), FACT);
        drawing.Text(place(i + 1) + 76, 220, Words("contours: {1}", {std::to_string(region.NContours())}),
                     FACT);
    }
    return drawing.Svg(WIDTH, 236, Words("Overlays of two regions"));
}

std::string DrawClosedRegions(const Units& units) {
    TDrawingGraph graph(0, 0.1);
    Drawing drawing;
    const View drawn(drawing, 34, 344, 6.4), found(drawing, 482, 344, 6.4);
    for (const TPolyline2D& line : DrawnLines()) {
        graph.Add(line);
        drawn.Draw(line, Stroke(INK, 1.5));
    }
    drawing.Text(34 + 192, 34, Words("As it was drawn"), CAPTION);
    drawing.Text(482 + 192, 34, "TDrawingGraph", CAPTION);
    DrawFaces(found, graph, units);
    DrawKey(drawing, graph);
    return drawing.Svg(WIDTH, 410, Words("The closed regions of a drawing"));
}

} // namespace Frame
