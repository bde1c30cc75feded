#include "pictures.h"
#include "svg.h"
#include "words.h"

#include "ZoPrimitives/Math2.h"
#include "ZoPrimitives/T3DCylinder.h"
#include "ZoPrimitives/T3DMesh.h"
#include "ZoPrimitives/TCircle2D.h"
#include "ZoPrimitives/TExtrusionPath.h"
#include "ZoPrimitives/TSegment2D.h"
#include "ZoPrimitives/TTransformation.h"

#include <algorithm>
#include <map>

namespace Frame {

using namespace ZoPrimitives;

namespace {

constexpr double DEGREE = 0.017453292519943295; // in radians

// Transformations.

Point2D Image(const TTransformation& place, const Point2D& p) {
    double x = p.X(), y = p.Y(), z = 0;
    place.TransformPoint(x, y, z);
    return {x, y};
}

/// A flag, whose images tell which way they lie.
TContour Flag(const TTransformation& place) {
    TContour flag;
    for (const Point2D& p : {Point2D(0, 0), Point2D(8, 0), Point2D(8, 24), Point2D(40, 24), Point2D(28, 37),
                             Point2D(40, 50), Point2D(0, 50)})
        flag.Add(Image(place, p));
    return flag;
}

void DrawMatrix(Drawing& drawing, const TTransformation& matrix, double x, double y) {
    constexpr double column = 44, row = 18;
    for (unsigned i = 1; i <= 4; ++i) {
        for (unsigned k = 1; k <= 4; ++k)
            drawing.Text(x + column * k - 8, y + row * i,
                         FormatFloat(matrix.Element(i, k), 2, false, '.').c_str(),
                         "font-size=\"12\" text-anchor=\"end\"");
    }
    for (const double side : {0.0, 1.0}) {
        const double at = x + side * column * 4, tip = at + (side == 0 ? 6 : -6);
        drawing.Add("<path d=\"M" + Coordinate(tip) + " " + Coordinate(y + 2) + "H" + Coordinate(at) + "V" +
                    Coordinate(y + row * 4 + 8) + "H" + Coordinate(tip) + "\" " + Stroke(INK, 1.2) + "/>\n");
    }
}

// Space: bodies in parallel projection.

/// A transformation after which x runs to the right, y up, and z towards the observer.
TTransformation Observer() {
    return TTransformation::Rotation(-62 * DEGREE, 1, 0, 0) *
           TTransformation::Rotation(-32 * DEGREE, 0, 0, 1);
}

Point3D Seen(const Point3D& p) {
    static const TTransformation observer = Observer();
    double x = p.X(), y = p.Y(), z = p.Z();
    observer.TransformPoint(x, y, z);
    return {x, y, z};
}

Point2D Projected(const Point3D& p) {
    const Point3D seen = Seen(p);
    return {seen.X(), seen.Y()};
}

/// A triangle that faces the observer.
struct Facet {
    Point3D corners[3]; // as they are seen
    TVector3D normal;   // of length 1
    bool sharp[3];      // whether the edge from that corner is one of the body's
    double depth() const { return corners[0].Z() + corners[1].Z() + corners[2].Z(); }
};

TVector3D NormalOf(const Point3D& a, const Point3D& b, const Point3D& c) {
    const Point3D u = b - a, v = c - a;
    const double x = u.Y() * v.Z() - u.Z() * v.Y(), y = u.Z() * v.X() - u.X() * v.Z(),
                 z = u.X() * v.Y() - u.Y() * v.X(), length = std::sqrt(x * x + y * y + z * z);
    return {x / length, y / length, z / length};
}

/// The facets of a mesh that face the observer, those behind others first.
std::vector<Facet> VisibleFacets(const T3DMesh& mesh) {
    std::vector<Facet> facets;
    std::map<std::pair<int, int>, TVector3D> beside; // the normal of the triangle that passes an edge so
    const auto cornersOf = [&](int i) {
        return std::vector<int>{mesh.Triangle(i).a, mesh.Triangle(i).b, mesh.Triangle(i).c};
    };
    for (int pass = 1; pass <= 2; ++pass) {
        for (int i = 1; i <= mesh.NTriangles(); ++i) {
            const std::vector<int> corner = cornersOf(i);
            Facet facet;
            for (std::size_t k = 0; k < 3; ++k) facet.corners[k] = Seen(mesh.Vertex(corner[k]));
            facet.normal = NormalOf(facet.corners[0], facet.corners[1], facet.corners[2]);
            for (std::size_t k = 0; k < 3; ++k) {
                const int from = corner[k], to = corner[(k + 1) % 3];
                if (pass == 1) {
                    beside[{from, to}] = facet.normal;
                    continue;
                }
                const TVector3D& other = beside[{to, from}];
                facet.sharp[k] = other.X() * facet.normal.X() + other.Y() * facet.normal.Y() +
                                     other.Z() * facet.normal.Z() <
                                 0.8;
            }
            if (pass == 2 && facet.normal.Z() > 1e-6) facets.push_back(facet);
        }
    }
    std::stable_sort(facets.begin(), facets.end(),
                     [](const Facet& a, const Facet& b) { return a.depth() < b.depth() - 1e-6; });
    return facets;
}

/// A colour as light from above and from the left shows it.
std::string Lit(const TZoColor& colour, const TVector3D& normal) {
    const double light =
        0.62 + 0.38 * std::max(0.0, -0.35 * normal.X() + 0.75 * normal.Y() + 0.56 * normal.Z());
    const auto shade = [light](unsigned component) {
        return static_cast<unsigned char>(std::lround(component * light));
    };
    return Hex(TZoColor(shade(colour.GetRed()), shade(colour.GetGreen()), shade(colour.GetBlue()), 255));
}

void DrawBody(const View& view, const T3DMesh& mesh, const TZoColor& colour) {
    for (const Facet& facet : VisibleFacets(mesh)) {
        const auto at = [&](std::size_t k) {
            return Point2D(facet.corners[k % 3].X(), facet.corners[k % 3].Y());
        };
        const std::string fill = Lit(colour, facet.normal);
        view.Draw(TContour({at(0), at(1), at(2)}), "fill=\"" + fill + "\" stroke=\"" + fill + "\"");
        for (std::size_t k = 0; k < 3; ++k)
            if (facet.sharp[k])
                view.Draw(TSegment2D(at(k), at(k + 1)), Stroke(INK, 1.2) + " stroke-linecap=\"round\"");
    }
}

/// The edges of a box around a body.
void DrawBox(const View& view, const T3DBox& box) {
    const auto corner = [&](int i) {
        return Projected(
            {i & 1 ? box.X2() : box.X1(), i & 2 ? box.Y2() : box.Y1(), i & 4 ? box.Z2() : box.Z1()});
    };
    for (int i = 0; i < 8; ++i) {
        for (const int axis : {1, 2, 4})
            if (!(i & axis)) view.Draw(TSegment2D(corner(i), corner(i | axis)), Stroke(GREY, 1, "4 3"));
    }
}

} // namespace

std::string DrawTransformations() {
    const TTransformation move = TTransformation::Translation(30, 24, 0),
                          turn = TTransformation::Rotation(30 * DEGREE, 0, 0, 1),
                          mirror = TTransformation::Scaling(-1, 1.4, 1);
    const std::pair<const char*, TTransformation> cells[] = {{"Translation(30, 24, 0)", move},
                                                             {"Rotation(30°, 0, 0, 1)", turn},
                                                             {"Scaling(-1, 1.4, 1)", mirror},
                                                             {"move * turn * mirror", move * turn * mirror}};
    Drawing drawing;
    for (std::size_t i = 0; i < std::size(cells); ++i) {
        const double x = 225 * static_cast<double>(i);
        const View view(drawing, x + 96, 190, 1.35);
        view.Arrow(TSegment2D({-58, 0}, {84, 0}), GREY, 1);
        view.Arrow(TSegment2D({0, -8}, {0, 100}), GREY, 1);
        view.Draw(Flag(TTransformation()), Fill(GREY, 0.35) + " stroke=\"#767676\" stroke-width=\"1.5\"");
        view.Draw(Flag(cells[i].second), Area(BLUE, 0.25));
        drawing.Text(x + 112, 30, cells[i].first, CAPTION);
        DrawMatrix(drawing, cells[i].second, x + 24, 216);
    }
    return drawing.Svg(WIDTH, 316, Words("Transformations"));
}

std::string DrawSpace(const Units& units) {
    const auto volume = [&](const I3DShape& shape) {
        return units.Text(units.modulus, GVolume(shape.Volume(), TVolume::cm3));
    };
    const TExtrusionPath block(TRegion(TContour::Rectangle(RRect({-35, -25}, {35, 25}))),
                               {{0, 0, 0}, {0, 0, 90}});
    const T3DCylinder column({170, 0, 0}, {170, 0, 120}, 30);
    const TExtrusionPath rail(TRegion(TContour::Rectangle(RRect({-12, -12}, {12, 12}))),
                              {{370, 70, 0}, {370, 70, 100}, {370, -50, 100}, {450, -50, 30}});

    Drawing drawing;
    const View view(drawing, 210, 180, 1.25);
    DrawBody(view, block.Mesh(1), TZoColor(240, 200, 110, 255));
    DrawBody(view, column.Mesh(0.6), TZoColor(130, 190, 225, 255));
    DrawBox(view, rail.BoundingBox());
    DrawBody(view, rail.Mesh(1), TZoColor(120, 205, 175, 255));

    const Point3D eye(70, -150, 40);
    T3DHit hit;
    if (column.RayHit(eye, TVector3D(100, 126, 30), hit)) {
        view.Arrow(TSegment2D(Projected(eye), Projected(hit.point)), ORANGE, 2);
        view.Arrow(
            TSegment2D(Projected(hit.point),
                       Projected(hit.point + Point3D(hit.normal.X(), hit.normal.Y(), hit.normal.Z()) * 40)),
            PURPLE, 2);
        view.Dot(Projected(eye), ORANGE);
        view.Note(Projected(eye), -8, 18, LengthText(units, hit.distance * 10), "text-anchor=\"middle\"");
    }
    const std::tuple<const char*, std::string, double> captions[] = {
        {"TExtrusionPath", volume(block), 210},
        {"T3DCylinder, RayHit", volume(column), 390},
        {"TExtrusionPath, BoundingBox", volume(rail), 650}};
    for (const auto& [name, fact, x] : captions) {
        drawing.Text(x, 390, name, CAPTION);
        drawing.Text(x, 410, fact, FACT);
    }
    return drawing.Svg(WIDTH, 430, Words("Bodies in space"));
}

} // namespace Frame
