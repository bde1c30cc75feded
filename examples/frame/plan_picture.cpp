#include "plan.h"
#include "svg.h"
#include "words.h"

#include "ZoPrimitives/ColorScale.h"
#include "ZoPrimitives/TPolyline2D.h"
#include "ZoPrimitives/TSegment2D.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Frame {

using namespace ZoPrimitives;

namespace {

constexpr double MARGIN = 28;
constexpr double PLAN_WIDTH = 760;  // at most
constexpr double PLAN_HEIGHT = 620; // at most
constexpr double LEFT = 84;
constexpr double RIGHT = 330; // right of the plan: colour scales, slips
constexpr double TOP = 116;
constexpr double BELOW = 96;
constexpr double SCALE_HEIGHT = 160;
constexpr double PANEL_OPACITY = 0.3;
constexpr double QUARTER_TURN = 1.5707963267948966;
const char* const MARK = "#c2185b";

class PlanPicture {
public:
    PlanPicture(const Plan& what, const Units& shownUnits) : plan(what), units(shownUnits) {
        Measure();
        SetLimits(panelColours, plan.panels, [](const Panel& p) { return !p.isOpening; });
        SetLimits(girderColours, plan.girders, [](const Bearer&) { return true; });
    }

    std::string Draw() {
        DrawTitle();
        DrawPanels();
        DrawLines();
        DrawBearers();
        DrawLabels();
        DrawSlips();
        DrawScales();
        DrawDimensions();
        return drawing.Svg(LEFT + width + RIGHT, TOP + height + BELOW, Words("{1}, plan", {plan.name}));
    }

private:
    void Measure() {
        for (const PlanLine& line : plan.lines) box.Add(line.path.BoundingBox());
        scale =
            std::min(PLAN_WIDTH / std::max(box.Width(), 1e-9), PLAN_HEIGHT / std::max(box.Height(), 1e-9));
        width = box.Width() * scale;
        height = std::max(box.Height() * scale, 2 * SCALE_HEIGHT);
    }

    template <class Items, class Takes>
    void SetLimits(TColorScale& colours, const Items& items, Takes takes) const {
        std::vector<double> loads;
        for (const auto& item : items)
            if (takes(item)) loads.push_back(Shown(item.load));
        if (loads.empty()) return;
        const auto [least, most] = std::minmax_element(loads.begin(), loads.end());
        colours.SetScaleLimits(*least, *most);
    }

    double Shown(const GForcaConcentrada& load) const { return load.Valor(units.load.unit); }

    double X(double x) const { return LEFT + (x - box.X1()) * scale; }
    double Y(double y) const { return TOP + (box.Y2() - y) * scale; }
    double X(const Point2D& p) const { return X(p.X()); }
    double Y(const Point2D& p) const { return Y(p.Y()); }
    std::string At(const Point2D& p) const { return Coordinate(X(p)) + " " + Coordinate(Y(p)); }

    void DrawTitle() {
        const double all = LEFT + width + RIGHT - 2 * MARGIN;
        drawing.Text(MARGIN, 42, Fitted(Words("Plan {1}", {plan.name}), all, 26),
                     "font-size=\"24\" font-weight=\"bold\"");
        GArea area(0.0);
        for (const Panel& panel : plan.panels)
            if (!panel.isOpening) area += panel.area;
        const std::string what =
            Words("{1} of slab, {2}; the girders carry {3} of {4}",
                  {units.Text(units.floor, area), units.Text(units.floorLoad, plan.floorLoad),
                   units.Text(units.load, plan.carried), units.Text(units.load, plan.load)});
        drawing.Text(MARGIN, 66, Fitted(what, all, 15),
                     "font-size=\"15\" fill=\"" + std::string(PALE) + "\"");
    }

    std::string PathOf(const TRegion& region) const {
        std::string path;
        for (unsigned long long i = 1; i <= region.NContours(); ++i) {
            const TContour contour = region.Contour(i);
            for (unsigned long long k = 1; k <= contour.NVertices(); ++k)
                path += (k == 1 ? "M" : "L") + At(contour.Vertex(k));
            path += "z";
        }
        return path;
    }

    void DrawPanels() {
        for (const Panel& panel : plan.panels) {
            const std::string about = panel.isOpening
                                          ? Words("opening")
                                          : panel.name + ", " + units.Text(units.floor, panel.area) + ", " +
                                                units.Text(units.load, panel.load);
            drawing.Add(
                "<path d=\"" + PathOf(panel.region) + "\" fill-rule=\"evenodd\" fill=\"" +
                (panel.isOpening ? std::string("#ffffff") : Hex(panelColours.GetColor(Shown(panel.load)))) +
                "\"" + (panel.isOpening ? "" : " fill-opacity=\"" + Coordinate(PANEL_OPACITY) + "\"") +
                "><title>" + Escaped(about) + "</title></path>\n");
            if (!panel.isOpening) continue;
            // Crossed out, as openings are.
            const RRect bounds = panel.region.BoundingBox();
            const Point2D centre = bounds.Centre();
            for (const Point2D& corner :
                 {Point2D(bounds.X1(), bounds.Y1()), Point2D(bounds.X1(), bounds.Y2())}) {
                const double reach = Reach(panel.region, centre, corner);
                const Point2D arm = (corner - centre) * reach;
                drawing.Line(X(centre + arm), Y(centre + arm), X(centre - arm), Y(centre - arm), OPENING);
            }
        }
    }

    /// How far from the centre to the corner the region goes: 1 for a rectangle.
    static double Reach(const TRegion& region, const Point2D& centre, const Point2D& corner) {
        double reach = 1;
        while (reach > 0.05 && region.Locate(centre + (corner - centre) * reach, 1) == OutsideRegion)
            reach -= 0.01;
        return reach;
    }

    void DrawPath(const TArc2D& path, const char* style) {
        const TPolyline2D chords = path.Flattened(1 / scale / 4);
        std::string d;
        for (unsigned long long i = 1; i <= chords.NVertices(); ++i)
            d += (i == 1 ? "M" : "L") + At(chords.Vertex(i));
        drawing.Add("<path d=\"" + d + "\" fill=\"none\" " + style + "/>\n");
    }

    void DrawLines() {
        for (const PlanLine& line : plan.lines) {
            if (line.kind == PlanKind::Slab) DrawPath(line.path, SLAB);
            if (line.kind == PlanKind::Opening) DrawPath(line.path, OPENING);
            if (line.kind == PlanKind::Beam) DrawPath(line.path, BEAM);
        }
    }

    void DrawBearers() {
        std::string casing, girders;
        for (const Bearer& girder : plan.girders) {
            const std::string path = "M" + At(girder.start) + "L" + At(girder.end);
            casing += path;
            girders += "<path d=\"" + path + "\" stroke=\"" +
                       Hex(girderColours.GetColor(Shown(girder.load))) + "\"><title>" +
                       Escaped(Words("girder") + " " + girder.line->name + ", " +
                               units.Text(units.load, girder.load)) +
                       "</title></path>\n";
        }
        drawing.Add("<path d=\"" + casing +
                    "\" fill=\"none\" stroke=\"#222222\" stroke-width=\"8\" stroke-linecap=\"square\"/>\n");
        drawing.Add("<g fill=\"none\" stroke-width=\"6\" stroke-linecap=\"butt\">\n" + girders + "</g>\n");
        // Columns stand where girders meet.
        std::string columns;
        for (const Point2D& p : Corners())
            columns += "<rect x=\"" + Coordinate(X(p) - 6) + "\" y=\"" + Coordinate(Y(p) - 6) +
                       "\" width=\"12\" height=\"12\"/>\n";
        drawing.Add("<g fill=\"#222222\">\n" + columns + "</g>\n");
    }

    /// The ends of girders, each once.
    std::vector<Point2D> Corners() const {
        std::vector<Point2D> corners;
        for (const Bearer& girder : plan.girders) {
            for (const Point2D& end : {girder.start, girder.end}) {
                if (std::none_of(corners.begin(), corners.end(),
                                 [&](const Point2D& p) { return p.Equal(end, 0); }))
                    corners.push_back(end);
            }
        }
        return corners;
    }

    void DrawLabels() {
        for (const Panel& panel : plan.panels) {
            if (panel.isOpening) continue;
            const Point2D at = MiddleOf(panel.region);
            const RRect bounds = panel.region.BoundingBox();
            const std::string area = units.Number(units.floor, panel.area);
            const double wide = bounds.Width() * scale - 12, high = bounds.Height() * scale - 12;
            const double room = std::max(TextWidth(panel.name), TextWidth(area, 11));
            if (room <= wide && high >= 28) {
                drawing.Text(X(at), Y(at) - 2, panel.name, "text-anchor=\"middle\" font-weight=\"bold\"");
                drawing.Text(X(at), Y(at) + 12, area, "text-anchor=\"middle\" font-size=\"11\"");
            } else if (TextWidth(panel.name + area) + 12 <= high && wide >= 12) {
                drawing.Text(X(at) + 5, Y(at), panel.name,
                             "text-anchor=\"end\" font-weight=\"bold\"" + Turned(-90, X(at) + 5, Y(at)));
                drawing.Text(X(at) + 5, Y(at) - 6, area,
                             "font-size=\"11\"" + Turned(-90, X(at) + 5, Y(at) - 6));
            }
        }
        for (const Bearer& girder : plan.girders) {
            const std::string text = girder.line->name + " · " + units.Number(units.load, girder.load);
            if (TextWidth(text, 12) > girder.start.Distance(girder.end) * scale - 4) continue;
            // Beside the line, read from below or from the right.
            const double dx = X(girder.end) - X(girder.start), dy = Y(girder.end) - Y(girder.start);
            double angle = std::atan2(dy, dx);
            if (angle > QUARTER_TURN - 1e-6) angle -= 2 * QUARTER_TURN;
            if (angle <= -QUARTER_TURN - 1e-6) angle += 2 * QUARTER_TURN;
            const double x = X(girder.start) + dx / 2 + 9 * std::sin(angle),
                         y = Y(girder.start) + dy / 2 - 9 * std::cos(angle);
            for (const double part : {-0.3, 0.0, 0.3})
                labels.emplace_back(x + part * TextWidth(text, 12) * std::cos(angle),
                                    y + part * TextWidth(text, 12) * std::sin(angle));
            drawing.Text(x, y, text,
                         "text-anchor=\"middle\" font-size=\"12\" stroke=\"#ffffff\" stroke-width=\"3\" "
                         "stroke-linejoin=\"round\" "
                         "paint-order=\"stroke\"" +
                             Turned(angle * 90 / QUARTER_TURN, x, y));
        }
    }

    static std::string Turned(double degrees, double x, double y) {
        return " transform=\"rotate(" + Coordinate(degrees) + " " + Coordinate(x) + " " + Coordinate(y) +
               ")\"";
    }

    /// A point well within, for a label: of the places of a grid one that is far from the border, and not far
    /// from the centre.
    static Point2D MiddleOf(const TRegion& region) {
        const Point2D centroid = region.AreaProperties().Centroid();
        const RRect bounds = region.BoundingBox();
        Point2D best = centroid;
        double highest = -HUGE_VAL;
        constexpr int steps = 24;
        for (int i = 1; i < steps; ++i) {
            for (int k = 1; k < steps; ++k) {
                const Point2D p(bounds.X1() + bounds.Width() * i / steps,
                                bounds.Y1() + bounds.Height() * k / steps);
                if (region.Locate(p) != InsideRegion) continue;
                const double value = Clearance(region, p) - 0.2 * centroid.Distance(p);
                if (value > highest) highest = value, best = p;
            }
        }
        return best;
    }
    static double Clearance(const TRegion& region, const Point2D& p) {
        double least = HUGE_VAL;
        for (unsigned long long i = 1; i <= region.NContours(); ++i)
            least = std::min(least, region.Contour(i).Distance(p));
        return least;
    }

    void DrawSlips() {
        const double x = LEFT + width + 44;
        double y = TOP + SCALE_HEIGHT + 92;
        if (!plan.slips.empty())
            drawing.Text(x - 10, y - 26, Words("Slips of the drawing"), "font-weight=\"bold\"");
        std::vector<Point2D> taken = labels;
        for (std::size_t i = 0; i < plan.slips.size(); ++i) {
            const Slip& slip = plan.slips[i];
            Mark(X(slip.place), Y(slip.place), slip.kind);
            const Point2D beside = Beside(slip.place, taken);
            taken.push_back(beside);
            Number(beside.X(), beside.Y(), i + 1);
            Number(x, y, i + 1);
            Mark(x + 22, y, slip.kind);
            drawing.Text(x + 38, y + 4.5, Fitted(slip.Text(units), RIGHT - 44 - 38 - 8));
            y += 26;
        }
    }

    /// Where a mark's number stands: where it is farthest from girders and other numbers, in the picture.
    Point2D Beside(const Point2D& place, const std::vector<Point2D>& taken) const {
        Point2D best;
        double farthest = -1;
        for (const double dx : {1.0, -1.0}) {
            for (const double dy : {1.0, -1.0}) {
                const Point2D number(X(place) + 15 * dx, Y(place) + 15 * dy);
                double clear = 15;
                for (const Bearer& girder : plan.girders) {
                    const TSegment2D line({X(girder.start), Y(girder.start)}, {X(girder.end), Y(girder.end)});
                    clear = std::min(clear, line.Distance(number));
                }
                for (const Point2D& other : taken) clear = std::min(clear, other.Distance(number) - 16);
                if (clear > farthest + 0.1) farthest = clear, best = number;
            }
        }
        return best;
    }

    void Number(double x, double y, std::size_t number) {
        drawing.Add("<circle cx=\"" + Coordinate(x) + "\" cy=\"" + Coordinate(y) + "\" r=\"8\" fill=\"" +
                    MARK + "\"/>\n");
        drawing.Text(x, y + 4, std::to_string(number),
                     "text-anchor=\"middle\" font-size=\"11\" fill=\"#ffffff\"");
    }

    void Mark(double x, double y, Slip::Kind kind) {
        const std::string at = Coordinate(x) + " " + Coordinate(y);
        const std::string d = kind == Slip::Overshoot ? "M" + at + "m-5 -5l10 10m0 -10l-10 10"
                              : kind == Slip::Doubled ? "M" + at + "m-2.5 -7v14m5 0v-14"
                              : kind == Slip::Loose || kind == Slip::Idle ? "M" + at + "m-6 5h12l-6 -11z"
                                                                          : "";
        drawing.Add(d.empty() ? "<circle cx=\"" + Coordinate(x) + "\" cy=\"" + Coordinate(y) +
                                    "\" r=\"6\" fill=\"none\" " + SLIP + "/>\n"
                              : "<path d=\"" + d + "\" fill=\"none\" " + SLIP + "/>\n");
    }

    void DrawScales() {
        const double x = LEFT + width + 34;
        const auto number = [&](double value) { return units.Decimal(value, units.load.decimals); };
        const std::string unit = units.Name(units.load);
        drawing.Text(x, TOP - 14, Words("Panels, {1}", {unit}), "font-weight=\"bold\"");
        drawing.Scale("panels", panelColours, x, TOP, SCALE_HEIGHT, number, PANEL_OPACITY);
        drawing.Text(x + 140, TOP - 14, Words("Girders, {1}", {unit}), "font-weight=\"bold\"");
        drawing.Scale("girders", girderColours, x + 140, TOP, SCALE_HEIGHT, number);
    }

    /// The places of columns along both sides, and the distances between them.
    void DrawDimensions() {
        std::vector<double> xs, ys;
        for (const Point2D& p : Corners()) {
            xs.push_back(p.X());
            ys.push_back(p.Y());
        }
        const auto once = [](std::vector<double>& places) {
            std::sort(places.begin(), places.end());
            places.erase(
                std::unique(places.begin(), places.end(), [](double a, double b) { return b - a < 10; }),
                places.end());
        };
        once(xs);
        once(ys);
        const double foot = TOP + box.Height() * scale + 40, side = LEFT - 44;
        for (std::size_t i = 0; i < xs.size(); ++i) {
            drawing.Line(X(xs[i]) - 4, foot + 4, X(xs[i]) + 4, foot - 4, THIN);
            if (i == 0) continue;
            drawing.Line(X(xs[i - 1]), foot, X(xs[i]), foot, THIN);
            drawing.Text((X(xs[i - 1]) + X(xs[i])) / 2, foot - 6,
                         units.Number(units.length, GComprimento(xs[i] - xs[i - 1])),
                         "text-anchor=\"middle\"");
        }
        for (std::size_t i = 0; i < ys.size(); ++i) {
            drawing.Line(side - 4, Y(ys[i]) + 4, side + 4, Y(ys[i]) - 4, THIN);
            if (i == 0) continue;
            drawing.Line(side, Y(ys[i - 1]), side, Y(ys[i]), THIN);
            const double y = (Y(ys[i - 1]) + Y(ys[i])) / 2;
            drawing.Text(side - 6, y, units.Number(units.length, GComprimento(ys[i] - ys[i - 1])),
                         "text-anchor=\"middle\"" + Turned(-90, side - 6, y));
        }
        drawing.Text(xs.empty() ? LEFT : X(xs.back()) + 16, foot + 4, units.Name(units.length),
                     "fill=\"" + std::string(PALE) + "\"");
        drawing.Text(LEFT, foot + 34,
                     Words("Girders with their loads, {1}; panels with their areas, {2}. The deck spans from "
                           "left to right.",
                           {units.Name(units.load), units.Name(units.floor)}),
                     "fill=\"" + std::string(PALE) + "\" font-size=\"12\"");
    }

    static constexpr const char* SLAB = "stroke=\"#222222\" stroke-width=\"1.5\"";
    static constexpr const char* BEAM = "stroke=\"#444444\" stroke-width=\"2\"";
    static constexpr const char* OPENING = "stroke=\"#222222\" stroke-width=\"1\"";
    static constexpr const char* SLIP = "stroke=\"#c2185b\" stroke-width=\"2\"";

    const Plan& plan;
    const Units& units;
    Drawing drawing;
    std::vector<Point2D> labels; // points of texts beside girders, in the picture
    RRect box;
    double scale = 1; // SVG units per cm
    double width = 0;
    double height = 0;
    TColorScale panelColours;
    TColorScale girderColours;
};

} // namespace

std::string DrawPlan(const Plan& plan, const Units& units) { return PlanPicture(plan, units).Draw(); }

} // namespace Frame
