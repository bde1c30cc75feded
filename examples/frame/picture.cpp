#include "picture.h"

#include "failure.h"
#include "report.h"
#include "svg.h"
#include "words.h"

#include "ZoPrimitives/ColorScale.h"
#include "ZoPrimitives/Math2.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

namespace Frame {

using namespace ZoPrimitives;

namespace {

constexpr double FRAME_WIDTH = 720;  // at most
constexpr double FRAME_HEIGHT = 640; // at most
constexpr double LEFT = 190;         // left of the frame: names and levels of storeys
constexpr double RIGHT = 310;        // right of it: sections and loads of storeys, colour scale
constexpr double TOP = 132;          // above it: title
constexpr double BELOW = 150;        // below it: supports, spans, names of lines, total steel
constexpr double SCALE_HEIGHT = 240;
const char* const NEUTRAL = "#a8a8a8"; // for a member without a value

class Elevation {
public:
    Elevation(const Building& what, Property shownProperty, const Units& shownUnits)
        : building(what), property(shownProperty), units(shownUnits) {
        Measure();
        SetColours();
    }

    std::string Draw() {
        DrawTitle();
        DrawLevels();
        DrawLines();
        DrawGround();
        DrawMembers();
        if (property == Property::Area) DrawColumnSections();
        DrawSupports();
        DrawFloors();
        DrawScale();
        DrawFoot();
        return drawing.Svg(LEFT + width + RIGHT, TOP + height + BELOW,
                           Words("{1}, elevation", {Printable(building.name)}));
    }

private:
    // Fits the frame into the picture.
    void Measure() {
        bool first = true;
        const auto include = [&](const Point3D& place) {
            const double x = place.X();
            const double y = place.Y();
            if (!std::isfinite(x) || !std::isfinite(y)) {
                throw Failure(Words("The building cannot be drawn: it is of no finite size."));
            }
            if (first) {
                left = right = x;
                bottom = top = y;
            }
            first = false;
            left = std::min(left, x);
            right = std::max(right, x);
            bottom = std::min(bottom, y);
            top = std::max(top, y);
        };
        ForMembers([&](const Storey&, const Member& member) {
            include(member.start->place);
            include(member.end->place);
        });
        if (first) throw Failure(Words("The building cannot be drawn: it has no members."));
        // Half of each, because the difference of two doubles may overflow.
        const double wide = right / 2 - left / 2;
        const double high = top / 2 - bottom / 2;
        scale = std::min(FRAME_WIDTH / 2 / std::max(wide, 1e-9), FRAME_HEIGHT / 2 / std::max(high, 1e-9));
        if (wide <= 0 && high <= 0) scale = 1;
        frameWidth = wide * scale * 2;
        frameHeight = high * scale * 2;
        width = std::max(frameWidth, 360.0); // for the title
        height = std::max(frameHeight, SCALE_HEIGHT);
    }

    template <class Action>
    void ForMembers(Action action) const {
        for (const auto& storey : building.storeys) {
            for (const auto& member : storey->members) action(*storey, *member);
        }
    }

    double X(double x) const { return LEFT + (width - frameWidth) / 2 + (x / 2 - left / 2) * scale * 2; }
    double Y(double y) const { return TOP + (height - frameHeight) / 2 + (top / 2 - y / 2) * scale * 2; }
    double X(const Node& node) const { return X(node.place.X()); }
    double Y(const Node& node) const { return Y(node.place.Y()); }

    /// The value in the displayed unit; false for a member without one.
    bool ValueOf(const Member& member, double& value) const {
        if (property == Property::Area) {
            value = member.section->area.Valor(units.area.unit);
            return true;
        }
        const auto* girder = dynamic_cast<const Girder*>(&member);
        if (girder != nullptr) value = girder->LineLoad().Valor(units.lineLoad.unit);
        return girder != nullptr;
    }
    std::string UnitName() const {
        return property == Property::Area ? units.Name(units.area) : units.Name(units.lineLoad);
    }
    std::string Number(double value) const {
        return units.Decimal(value,
                             property == Property::Area ? units.area.decimals : units.lineLoad.decimals);
    }

    void SetColours() {
        ForMembers([&](const Storey&, const Member& member) {
            double value = 0;
            if (!ValueOf(member, value) || !std::isfinite(value)) return;
            least = hasValues ? std::min(least, value) : value;
            most = hasValues ? std::max(most, value) : value;
            hasValues = true;
        });
        colours.SetScaleLimits(least, most);
    }

    void DrawTitle() {
        const double all = LEFT + width + RIGHT - 2 * MARGIN;
        drawing.Text(MARGIN, 42, Fitted(Printable(building.name), all, 26),
                     "font-size=\"24\" font-weight=\"bold\"");
        const std::string what = property == Property::Area ? Words("elevation, areas of the sections")
                                                            : Words("elevation, loads along the girders");
        const std::string place = Printable(building.site.name);
        drawing.Text(MARGIN, 66, Fitted((place.empty() ? "" : place + " · ") + what, all, 15),
                     "font-size=\"15\" fill=\"" + std::string(PALE) + "\"");
    }

    /// Labels each floor with name and level, and the roof with its level.
    void DrawLevels() {
        Places places(TEXT_HEIGHT + 2);
        const auto level = [&](const GComprimento& at, const std::string& name) {
            const double y = Y(at);
            if (!(y > TOP - 1 && y < TOP + height + 1) || !places.Take(y)) return;
            drawing.Line(MARGIN, y, X(right) + FLOOR_END, y, LEVEL_LINE);
            drawing.Text(MARGIN, y - 4, Fitted(name, 70));
            drawing.Text(LEFT - 34, y - 4, (at > 0.0 ? "+" : "") + units.Number(units.length, at),
                         "text-anchor=\"end\"");
        };
        GComprimento roof(0.0);
        for (const auto& storey : building.storeys) {
            level(storey->level, Printable(storey->name));
            roof = storey->level;
            roof += storey->height;
        }
        level(roof, Words("Top"));
        drawing.Text(MARGIN, TOP - 14 + (height - frameHeight) / 2 - 14,
                     Words("Level, {1}", {units.Name(units.length)}), "fill=\"" + std::string(PALE) + "\"");
    }

    /// The positions of the column lines, from left to right.
    std::vector<double> LinePlaces() const {
        std::vector<double> places;
        ForMembers([&](const Storey&, const Member& member) {
            if (dynamic_cast<const Column*>(&member) != nullptr) places.push_back(member.start->place.X());
        });
        std::sort(places.begin(), places.end());
        const auto same = [](double a, double b) { return Equal(a, b, 1); };
        places.erase(std::unique(places.begin(), places.end(), same), places.end());
        return places;
    }

    void DrawLines() {
        const std::vector<double> lines = LinePlaces();
        if (lines.empty() || lines.size() != building.lines.NItems()) return; // lines and names do not match
        constexpr double radius = 13;
        const double foot = Y(bottom);
        const double dimension = foot + 48;
        const double centre = foot + 88;
        Places places(2 * radius + 2);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const double x = X(lines[i]);
            if (!places.Take(x)) continue;
            drawing.Line(x, foot + 26, x, centre - radius, AXIS);
            drawing.Add("<circle cx=\"" + Coordinate(x) + "\" cy=\"" + Coordinate(centre) + "\" r=\"" +
                        Coordinate(radius) + "\" fill=\"none\" stroke=\"" + INK + "\"/>\n");
            drawing.Text(x, centre + 5, Fitted(Printable(building.lines[i + 1]), 2 * radius),
                         "text-anchor=\"middle\"");
            drawing.Line(x - 4, dimension + 4, x + 4, dimension - 4, THIN);
            if (i == 0) continue;
            const double before = X(lines[i - 1]);
            drawing.Line(before, dimension, x, dimension, THIN);
            const std::string span = units.Number(units.length, GComprimento(lines[i] - lines[i - 1]));
            if (TextWidth(span) <= x - before - 12) {
                drawing.Text((before + x) / 2, dimension - 6, span, "text-anchor=\"middle\"");
            }
        }
        drawing.Text(X(lines.back()) + 24, dimension + 4, units.Name(units.length),
                     "fill=\"" + std::string(PALE) + "\"");
    }

    /// Draws the ground line if the building extends below it.
    void DrawGround() {
        if (bottom >= 0 || top < 0) return;
        const double y = Y(0);
        std::string hatches;
        for (const double from : {X(left) - 28, X(right) + 4}) {
            drawing.Line(from, y, from + 24, y, GROUND);
            for (double x = from + 6; x <= from + 24; x += 6) drawing.Line(x, y, x - 6, y + 6, THIN);
        }
    }

    void DrawMembers() {
        std::string casing;
        std::string girders;
        std::string columns; // drawn over the girders
        ForMembers([&](const Storey&, const Member& member) {
            const std::string x1 = Coordinate(X(*member.start));
            const std::string y1 = Coordinate(Y(*member.start));
            const std::string x2 = Coordinate(X(*member.end));
            const std::string y2 = Coordinate(Y(*member.end));
            double value = 0;
            const bool valued = ValueOf(member, value);
            std::string about =
                member.Kind() + " " + Printable(member.name) + ", " + Printable(member.section->name);
            if (valued) about += ", " + Number(value) + " " + UnitName();
            casing += "M" + x1 + " " + y1 + "L" + x2 + " " + y2;
            (dynamic_cast<const Column*>(&member) == nullptr ? girders : columns) +=
                "<line x1=\"" + x1 + "\" y1=\"" + y1 + "\" x2=\"" + x2 + "\" y2=\"" + y2 + "\" stroke=\"" +
                (valued ? Hex(colours.GetColor(value)) : NEUTRAL) + "\"><title>" + Escaped(about) +
                "</title></line>\n";
        });
        drawing.Add("<path d=\"" + casing + "\" fill=\"none\" " + CASING + "/>\n");
        drawing.Add("<g stroke-width=\"5\" stroke-linecap=\"square\">\n" + girders + columns + "</g>\n");
    }

    /// Labels columns with their section, from the lowest upward, wherever it changes.
    void DrawColumnSections() {
        constexpr double size = 11;
        std::map<long long, ZoString> below; // indexed by the column's position
        ForMembers([&](const Storey&, const Member& member) {
            if (dynamic_cast<const Column*>(&member) == nullptr) return;
            const double x = (X(*member.start) + X(*member.end)) / 2;
            const double y = (Y(*member.start) + Y(*member.end)) / 2;
            ZoString& last = below[std::llround(x)];
            const ZoString& section = member.section->name;
            const std::string name = Printable(section);
            if (last == section || TextWidth(name, size) > std::abs(Y(*member.start) - Y(*member.end)) - 12) {
                return;
            }
            last = section;
            drawing.Text(x - 8, y, name,
                         "font-size=\"" + Coordinate(size) +
                             "\" text-anchor=\"middle\" transform=\"rotate(-90 " + Coordinate(x - 8) + " " +
                             Coordinate(y) + ")\"");
        });
    }

    bool IsWithin(const Point3D& place) const {
        return place.X() >= left && place.X() <= right && place.Y() >= bottom && place.Y() <= top;
    }

    void DrawSupports() {
        for (const auto& node : building.nodes) {
            if (!node || !node->support || !IsWithin(node->place)) continue;
            const double x = X(*node);
            const double y = Y(*node) + 4;
            drawing.Add("<path d=\"M" + Coordinate(x) + " " + Coordinate(y) +
                        "l-8 13h16z\" fill=\"#ffffff\" stroke=\"" + INK + "\"/>\n");
            drawing.Line(x - 12, y + 13, x + 12, y + 13, GROUND);
        }
    }

    /// Labels each storey with its girders' sections and values.
    void DrawFloors() {
        Places places(TEXT_HEIGHT + 2);
        const double x = X(right) + 38;
        for (const auto& storey : building.storeys) {
            std::vector<std::string> sections;
            std::vector<double> values;
            double y = 0;
            for (const auto& member : storey->members) {
                if (dynamic_cast<const Girder*>(member.get()) == nullptr) continue;
                const std::string name = Printable(member->section->name);
                if (std::find(sections.begin(), sections.end(), name) == sections.end())
                    sections.push_back(name);
                double value = 0;
                ValueOf(*member, value);
                values.push_back(value);
                y = Y(*member->end);
            }
            if (sections.empty() || !places.Take(y)) continue;
            const auto [low, high] = std::minmax_element(values.begin(), values.end());
            const std::string from = Number(*low);
            const std::string to = Number(*high);
            drawing.Text(x, y - 4,
                         sections.size() == 1 ? Fitted(sections[0], 76)
                                              : Words("{1} sections", {std::to_string(sections.size())}));
            drawing.Text(x + 130, y - 4, from == to ? from : from + "–" + to, "text-anchor=\"end\"");
        }
        drawing.Text(x, TOP - 14 + (height - frameHeight) / 2 - 14, Words("Girders, {1}", {UnitName()}),
                     "fill=\"" + std::string(PALE) + "\"");
    }

    void DrawFoot() {
        std::string text = Words("Steel {1}", {units.Text(units.steel, TotalSteel(building))});
        if (!building.saved.IsNull())
            text += " · " + Words("saved {1}", {building.SavedAt().InUTCTime("%Y-%m-%d %H:%M UTC").c_str()});
        drawing.Text(LEFT + width + RIGHT - MARGIN, TOP + height + BELOW - 18,
                     Fitted(text, LEFT + width + RIGHT - 2 * MARGIN),
                     "text-anchor=\"end\" fill=\"" + std::string(PALE) + "\"");
    }

    void DrawScale() {
        if (!hasValues) return;
        const double x = LEFT + width + 216;
        const double y = TOP + (height - SCALE_HEIGHT) / 2;
        drawing.Text(x, y - 18,
                     property == Property::Area ? Words("Area, {1}", {UnitName()})
                                                : Words("Load, {1}", {UnitName()}),
                     "font-weight=\"bold\"");
        const double shown = Number(least) == Number(most) ? 20 : SCALE_HEIGHT;
        drawing.Scale("scale", colours, x, y, shown, [&](double value) { return Number(value); });
        if (property == Property::Load) {
            drawing.Line(x, y + shown + 34, x + 20, y + shown + 34, CASING);
            drawing.Line(x, y + shown + 34, x + 20, y + shown + 34, COLUMN);
            drawing.Text(x + 32, y + shown + 38.5, Words("columns"));
        }
    }
    static constexpr double MARGIN = 28;
    static constexpr double FLOOR_END = 172;
    static constexpr const char* LEVEL_LINE = "stroke=\"#d0d0d0\" stroke-width=\"1\"";
    static constexpr const char* AXIS = "stroke=\"#767676\" stroke-width=\"1\" stroke-dasharray=\"12 3 2 3\"";
    static constexpr const char* GROUND = "stroke=\"#222222\" stroke-width=\"2\"";
    static constexpr const char* CASING = "stroke=\"#222222\" stroke-width=\"7\" stroke-linecap=\"square\"";
    static constexpr const char* COLUMN = "stroke=\"#a8a8a8\" stroke-width=\"5\" stroke-linecap=\"square\"";

    const Building& building;
    Property property;
    const Units& units;
    Drawing drawing;
    // Bounds of the frame, in cm.
    double left = 0;
    double right = 0;
    double bottom = 0;
    double top = 0;
    // Measures of the picture.
    double scale = 1; // SVG units per cm
    double frameWidth = 0;
    double frameHeight = 0;
    double width = 0;
    double height = 0;
    // The displayed values.
    TColorScale colours;
    bool hasValues = false;
    double least = 0;
    double most = 0;
};

} // namespace

Property PropertyNamed(const std::string& name) {
    if (name == "load") return Property::Load;
    if (name == "area") return Property::Area;
    throw Failure(Words("Members cannot be coloured by \"{1}\": use load or area.", {name}));
}

std::string DrawElevation(const Building& building, Property property, const Units& units) {
    return Elevation(building, property, units).Draw();
}

} // namespace Frame
