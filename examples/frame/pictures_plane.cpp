#include "pictures.h"
#include "svg.h"
#include "words.h"

#include "ZoPrimitives/PathPairs.h"
#include "ZoPrimitives/TArc2D.h"
#include "ZoPrimitives/TBezier2D.h"
#include "ZoPrimitives/TCircle2D.h"
#include "ZoPrimitives/TLine2D.h"
#include "ZoPrimitives/TRay2D.h"
#include "ZoPrimitives/TSegment2D.h"

#include <functional>

namespace Frame {

using namespace ZoPrimitives;

namespace {

const char* const MIDDLE = "text-anchor=\"middle\"";
const char* const END = "text-anchor=\"end\"";

// Paths: cells of one form; a unit is a millimetre.

constexpr double CELL_WIDTH = WIDTH / 4;
constexpr double CELL_HEIGHT = 196;
const RRect CELL({0, 0}, {170, 110}); // that is drawn in

/// Draws into a cell and says what stands below it.
using DrawCell = std::function<std::string(const View&, const Units&)>;

std::string Length(const Units& units, double mm) { return Words("length {1}", {LengthText(units, mm)}); }

std::string Pieces(unsigned long long count) { return Words("{1} pieces", {std::to_string(count)}); }

std::string DrawLines(const View& view, const Units& units) {
    const TLine2D line({20, 62}, {4, 1.6});
    view.Draw(TSegment2D(line.Project({-4, 60}), line.Project({112, 108})), Stroke(BLUE, 2, "9 4"));
    const Point2D apart(96, 62), foot = line.Project(apart);
    view.Draw(TSegment2D(apart, foot), Stroke(INK, 1, "3 3"));
    view.Dot(apart, INK);
    view.Dot(foot, BLUE);
    view.Note(apart, 8, 4, LengthText(units, std::abs(line.SignedDistance(apart))));
    view.Note({4, 72}, 0, 0, "TLine2D", "fill=\"#0072b2\"");
    const TRay2D ray({10, 34}, {4, -0.8});
    view.Arrow(TSegment2D(ray.Start(), ray.NearestPoint({168, 0})), ORANGE, 2);
    view.Dot(ray.Start(), ORANGE);
    view.Note(ray.Start(), 2, 22, "TRay2D", "fill=\"#d55e00\"");
    return Words("point and direction");
}

std::string DrawSegment(const View& view, const Units& units) {
    const TSegment2D segment({20, 20}, {150, 85});
    view.Draw(segment.BoundingBox(), Stroke(GREY, 1, "4 3"));
    view.Draw(segment, Stroke(BLUE, 2.5));
    view.Dot(segment.Start(), BLUE);
    view.Dot(segment.End(), BLUE);
    return Length(units, segment.Length());
}

std::string DrawPolyline(const View& view, const Units& units) {
    TPolyline2D path;
    path.Add({10, 20});
    path.Add({60, 20}, 1);
    path.Add({60, 70}, -0.6);
    path.Add({110, 95});
    path.Add({160, 50});
    view.Draw(path, Stroke(BLUE, 2.5));
    for (unsigned long long i = 1; i <= path.NVertices(); ++i) view.Dot(path.Vertex(i), BLUE);
    view.Note({60, 45}, -4, 4, "1", MIDDLE);
    view.Note({74, 92}, -18, -2, FormatFloat(path.Bulge(3), 1, false, units.separator).c_str(), MIDDLE);
    return Length(units, path.Length());
}

std::string DrawArc(const View& view, const Units& units) {
    const Point2D through[] = {{20, 30}, {65, 92}, {150, 60}};
    const TArc2D arc = TArc2D::Through(through[0], through[1], through[2]);
    view.Draw(TSegment2D(arc.Centre(), arc.End()), Stroke(INK, 1, "3 3"));
    view.Draw(arc, Stroke(BLUE, 2.5));
    for (const Point2D& p : through) view.Dot(p, BLUE);
    view.Dot(arc.Centre(), INK, 2.5);
    return Words("radius {1}", {LengthText(units, arc.Radius())});
}

std::string DrawCircle(const View& view, const Units& units) {
    const TCircle2D circle({70, 55}, 48);
    const Point2D apart(154, 88), nearest = circle.NearestPoint(apart);
    view.Draw(circle, Stroke(BLUE, 2.5));
    view.Dot(circle.Centre(), BLUE, 2.5);
    view.Draw(TSegment2D(apart, nearest), Stroke(INK, 1, "3 3"));
    view.Dot(apart, INK);
    view.Dot(nearest, BLUE);
    view.Note(apart, -6, -12, LengthText(units, circle.Distance(apart)), MIDDLE);
    return Words("area {1}", {AreaText(units, circle.Area())});
}

/// A curve, its control points, and the chords that stand for it.
std::string DrawBezier(const View& view, const TBezier2D& curve, const TPolyline2D& controls) {
    view.Draw(controls, Stroke(GREY, 1, "4 3"));
    for (unsigned long long i = 1; i <= controls.NVertices(); ++i) view.Ring(controls.Vertex(i), GREY, 3);
    view.Draw(curve.Flattened(0.05), Stroke(BLUE, 5) + " stroke-opacity=\"0.35\"");
    const TPolyline2D chords = curve.Flattened(1.5);
    view.Draw(chords, Stroke(INK, 1.2));
    for (unsigned long long i = 1; i <= chords.NVertices(); ++i) view.Dot(chords.Vertex(i), INK, 2.5);
    return "Flattened(1.5): " + Pieces(chords.NPieces());
}

std::string DrawCubic(const View& view, const Units&) {
    return DrawBezier(view, TBezier2D({10, 15}, {45, 104}, {115, 2}, {160, 85}),
                      {{10, 15}, {45, 104}, {115, 2}, {160, 85}});
}

std::string DrawQuadratic(const View& view, const Units&) {
    return DrawBezier(view, TBezier2D::Quadratic({10, 15}, {80, 108}, {160, 25}),
                      {{10, 15}, {80, 108}, {160, 25}});
}

TContour Bracket() {
    TContour contour;
    contour.Add({30, 18});
    contour.Add({110, 18}, 0.9);
    contour.Add({120, 88});
    contour.Add({90, 88});
    contour.Add({78, 52}, -0.5);
    contour.Add({30, 52});
    return contour;
}

std::string DrawBounds(const View& view, const Units& units) {
    const RRect box = Bracket().BoundingBox();
    view.Draw(box, Stroke(ORANGE, 1.5, "5 3"));
    view.Draw(Bracket(), Area(BLUE));
    return LengthText(units, box.Width()) + " × " + LengthText(units, box.Height());
}

std::string DrawLocate(const View& view, const Units&) {
    view.Draw(Bracket(), Area(BLUE, 0.1));
    for (const Point2D& p : {Point2D(48, 34), Point2D(112, 70), Point2D(125, 40), Point2D(60, 82),
                             Point2D(16, 40), Point2D(150, 20), Point2D(70, 18), Point2D(105, 88)}) {
        const TLocation place = Bracket().Locate(p);
        if (place == InsideRegion) view.Dot(p, GREEN, 4.5);
        if (place == OutsideRegion) view.Ring(p, ORANGE, 4);
        if (place == OnBorder) view.Draw(RRect(p, p).Inflate(4.5), Fill(INK));
    }
    return Words("dots in, rings out, squares on");
}

std::string DrawHull(const View& view, const Units&) {
    const Point2D points[] = {{20, 40},   {45, 95}, {60, 20}, {88, 70},  {120, 12}, {150, 60},
                              {100, 101}, {75, 48}, {38, 60}, {128, 84}, {104, 40}, {136, 52}};
    const TContour hull = TContour::ConvexHull(points, std::size(points));
    view.Draw(hull, Area(BLUE, 0.12));
    for (const Point2D& p : points) view.Dot(p, INK, 3);
    return Words("{1} of {2} points", {std::to_string(hull.NVertices()), std::to_string(std::size(points))});
}

std::string DrawOffset(const View& view, const Units&) {
    const TRegion region(Bracket());
    view.Draw(region.Offset(12), Stroke(ORANGE, 2));
    view.Draw(region, Area(BLUE));
    view.Draw(region.Offset(-9), Stroke(GREEN, 2));
    return "Offset(12), Offset(-9)";
}

std::string DrawSimplified(const View& view, const Units&) {
    const TPolyline2D path({{5, 20},   {14, 28},  {22, 27},  {30, 40},  {38, 41},  {45, 56},  {54, 55},
                            {60, 70},  {70, 84},  {78, 86},  {84, 82},  {93, 70},  {97, 68},  {104, 52},
                            {110, 51}, {118, 37}, {126, 40}, {134, 37}, {145, 42}, {154, 38}, {165, 41}});
    const TPolyline2D simple = path.Simplified(6);
    view.Draw(path, Stroke(GREY, 1.5));
    for (unsigned long long i = 1; i <= path.NVertices(); ++i) view.Dot(path.Vertex(i), GREY, 2.5);
    view.Draw(simple, Stroke(BLUE, 2.5));
    for (unsigned long long i = 1; i <= simple.NVertices(); ++i) view.Dot(simple.Vertex(i), BLUE);
    return Words("{1} of {2} vertices",
                 {std::to_string(simple.NVertices()), std::to_string(path.NVertices())});
}

// Pairs: three panels.

constexpr double PANEL_WIDTH = WIDTH / 3;

void DrawDistances(const View& view, const Units& units) {
    TContour footing;
    footing.Add({15, 20});
    footing.Add({95, 20});
    footing.Add({95, 75}, 1);
    footing.Add({15, 75});
    const TCircle2D pier({200, 52}, 32);
    const TPolyline2D curve = TBezier2D({10, 175}, {90, 120}, {170, 290}, {250, 150}).Flattened(0.05);
    view.Draw(footing, Area(BLUE, 0.15));
    view.Draw(pier, Area(BLUE, 0.15));
    view.Draw(curve, Stroke(BLUE, 2.5));
    const auto connect = [&](const TPath2D& a, const TPath2D& b, double dx, double dy) {
        const TSegment2D line = NearestPoints(a, b);
        view.Draw(line, Stroke(ORANGE, 2));
        view.Dot(line.Start(), ORANGE);
        view.Dot(line.End(), ORANGE);
        view.Note((line.Start() + line.End()) / 2, dx, dy, LengthText(units, Distance(a, b)));
    };
    connect(footing, pier, -20, 22);
    connect(footing, curve, 8, 6);
    connect(pier, curve, 8, 6);
}

void DrawCrossings(const View& view, const Units&) {
    const TCircle2D circle({95, 105}, 68);
    TPolyline2D path;
    path.Add({10, 40});
    path.Add({120, 70}, 0.8);
    path.Add({120, 160}, -0.6);
    path.Add({210, 195});
    path.Add({252, 60});
    const TLine2D line({0, 128}, {5, -1});
    const TSegment2D axis = line.Beside(RRect({14, 20}, {246, 210}));
    view.Draw(circle, Stroke(BLUE, 2));
    view.Draw(path, Stroke(GREEN, 2));
    view.Draw(axis, Stroke(INK, 1.2, "9 3 2 3"));
    const auto mark = [&](const TPath2D& a, const TPath2D& b, const char* colour) {
        const TPolyline2D points = Intersections(a, b);
        for (unsigned long long i = 1; i <= points.NVertices(); ++i) {
            view.Dot(points.Vertex(i), "#ffffff", 8.5);
            view.Ring(points.Vertex(i), colour, 8);
            view.Note(points.Vertex(i), 0, 4, std::to_string(i), MIDDLE);
        }
    };
    mark(path, circle, ORANGE);
    mark(axis, path, PURPLE);
}

void DrawPlaces(const View& view, const Units&) {
    TRegion slab(TContour::Rectangle(RRect({25, 30}, {235, 185})));
    slab.AddHole(TContour(TCircle2D({165, 110}, 38)));
    view.Draw(slab, Fill(GREY, 0.3) + " stroke=\"#767676\" stroke-width=\"1.5\"");
    const struct {
        const char* name;
        const char* colour;
    } places[] = {
        {"PathOutside", ORANGE}, {"PathOnBorder", INK}, {"PathInside", BLUE}, {"PathCrosses", PURPLE}};
    const std::pair<TSegment2D, Point2D> rows[] = {{{{50, 55}, {110, 85}}, {48, 92}},
                                                   {{{70, 185}, {195, 185}}, {90, 190}},
                                                   {{{145, 100}, {185, 120}}, {128, 122}},
                                                   {{{90, 5}, {150, 50}}, {138, 14}}};
    for (const auto& [path, at] : rows) {
        const auto& place = places[PlaceOf(path, slab)];
        view.Draw(path, Stroke(place.colour, 3.5));
        view.Note(at, 0, 0, place.name, "fill=\"" + std::string(place.colour) + "\"");
    }
}

// Sections, in millimetres.

constexpr double QUARTER = 0.41421356237309503; // the bulge of a quarter of a circle: tan(90°/4)

/// A rolled I of two flanges and a web, with fillets between them, about its centre.
TRegion RolledSection(double height, double width, double web, double flange, double fillet) {
    const double x = width / 2, y = height / 2, w = web / 2, in = y - flange;
    TContour outline;
    for (const double side : {1.0, -1.0}) { // right and up, left and down
        outline.Add(Point2D(-x, -y) * side);
        outline.Add(Point2D(x, -y) * side);
        outline.Add(Point2D(x, -in) * side);
        outline.Add(Point2D(w + fillet, -in) * side, -QUARTER);
        outline.Add(Point2D(w, -in + fillet) * side);
        outline.Add(Point2D(w, in - fillet) * side, -QUARTER);
        outline.Add(Point2D(w + fillet, in) * side);
        outline.Add(Point2D(x, in) * side);
    }
    return TRegion(outline);
}

/// An angle from its heel up and to the right, with a fillet in the corner and round toes.
TRegion AngleSection(double height, double width, double thickness, double fillet, double toe) {
    TContour outline;
    outline.Add({0, 0});
    outline.Add({width, 0});
    outline.Add({width, thickness - toe}, QUARTER);
    outline.Add({width - toe, thickness});
    outline.Add({thickness + fillet, thickness}, -QUARTER);
    outline.Add({thickness, thickness + fillet});
    outline.Add({thickness, height - toe}, QUARTER);
    outline.Add({thickness - toe, height});
    outline.Add({0, height});
    return TRegion(outline);
}

std::string InertiaText(const Units& units, double mm4) {
    return units.Text(units.inertia, GInercia(mm4 / 10000, TInercia::cm4));
}

/// A principal axis through the centroid, with its name at its end.
void DrawAxis(const View& view, const Point2D& centroid, double angle, double reach, const char* colour,
              const char* name) {
    const Point2D arm(std::cos(angle) * reach, std::sin(angle) * reach);
    view.Draw(TSegment2D(centroid - arm, centroid + arm), Stroke(colour, 1.5, "9 3 2 3"));
    const Point2D beyond = centroid + arm * ((reach + 10) / reach);
    view.Note(beyond, 0, 4, name, std::string(MIDDLE) + " font-weight=\"bold\" fill=\"" + colour + "\"");
}

/// A section, its axes, and to its right what the library computes of it.
void DrawSection(Drawing& drawing, const View& view, const TRegion& section, const std::string& name,
                 double x, const double (&reaches)[2], const Units& units) {
    constexpr double quarterTurn = 1.5707963267948966;
    const TAreaProperties properties = section.AreaProperties();
    view.Draw(section, Area(BLUE, 0.2));
    const double angle = properties.PrincipalAngle();
    DrawAxis(view, properties.Centroid(), angle, reaches[0], ORANGE, "1");
    DrawAxis(view, properties.Centroid(), angle + quarterTurn, reaches[1], GREEN, "2");
    view.Dot(properties.Centroid(), INK);
    drawing.Text(x, 84, name, "font-weight=\"bold\"");
    const std::pair<const char*, std::string> rows[] = {
        {"Area", AreaText(units, properties.Area())},
        {"Centroid",
         LengthText(units, properties.Centroid().X()) + ", " + LengthText(units, properties.Centroid().Y())},
        {"Ix", InertiaText(units, properties.Ix())},
        {"Iy", InertiaText(units, properties.Iy())},
        {"Ixy", InertiaText(units, properties.Ixy())},
        {"MaxInertia (1)", InertiaText(units, properties.MaxInertia())},
        {"MinInertia (2)", InertiaText(units, properties.MinInertia())},
        {"PrincipalAngle", units.Decimal(angle * 90 / quarterTurn, 1) + "°"},
    };
    double y = 112;
    for (const auto& [what, value] : rows) {
        drawing.Text(x, y, what, "fill=\"#555555\"");
        drawing.Text(x + 196, y, value, END);
        y += 22;
    }
}

} // namespace

std::string DrawPaths(const Units& units) {
    const std::pair<const char*, DrawCell> cells[] = {
        {"TLine2D, TRay2D", DrawLines},
        {"TSegment2D", DrawSegment},
        {"TPolyline2D", DrawPolyline},
        {"TArc2D::Through", DrawArc},
        {"TCircle2D", DrawCircle},
        {"TBezier2D", DrawCubic},
        {"TBezier2D::Quadratic", DrawQuadratic},
        {"BoundingBox", DrawBounds},
        {"Locate", DrawLocate},
        {"TContour::ConvexHull", DrawHull},
        {"TRegion::Offset", DrawOffset},
        {"Simplified(6)", DrawSimplified},
    };
    Drawing drawing;
    for (std::size_t i = 0; i < std::size(cells); ++i) {
        const double x = CELL_WIDTH * static_cast<double>(i % 4),
                     y = 10 + CELL_HEIGHT * static_cast<double>(i / 4);
        const View view(drawing, x + (CELL_WIDTH - CELL.Width()) / 2, y + 40 + CELL.Height());
        const std::string fact = cells[i].second(view, units);
        drawing.Text(x + CELL_WIDTH / 2, y + 20, cells[i].first, CAPTION);
        drawing.Text(x + CELL_WIDTH / 2, y + CELL.Height() + 64, fact, FACT);
    }
    return drawing.Svg(WIDTH, 10 + CELL_HEIGHT * 3, Words("Paths of the plane"));
}

std::string DrawPairs(const Units& units) {
    const std::pair<const char*, void (*)(const View&, const Units&)> panels[] = {
        {"NearestPoints, Distance", DrawDistances},
        {"Intersections", DrawCrossings},
        {"PlaceOf", DrawPlaces}};
    Drawing drawing;
    for (std::size_t i = 0; i < std::size(panels); ++i) {
        const double x = PANEL_WIDTH * static_cast<double>(i);
        drawing.Text(x + PANEL_WIDTH / 2, 30, panels[i].first, CAPTION);
        panels[i].second(View(drawing, x + 20, 270), units);
    }
    return drawing.Svg(WIDTH, 290, Words("Pairs of paths"));
}

std::string DrawSections(const Units& given) {
    Units units = given;
    units.depth.decimals = 1;
    units.area.decimals = 2;
    units.inertia.decimals = 1;
    Drawing drawing;
    DrawSection(drawing, View(drawing, 120, 180, 0.9), RolledSection(300, 150, 7.1, 10.7, 15),
                "300 × 150 × 7.1 × 10.7, r 15", 252, {100, 160}, units);
    DrawSection(drawing, View(drawing, 520, 300, 1.5), AngleSection(150, 90, 10, 12, 6),
                "150 × 90 × 10, r 12, 6", 680, {62, 88}, units);
    return drawing.Svg(WIDTH, 360, Words("Sections"));
}

} // namespace Frame
