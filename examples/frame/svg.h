#pragma once

#include "ZoPrimitives/ColorScale.h"
#include "ZoPrimitives/TRegion.h"
#include "ZoPrimitives/TSegment2D.h"

#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace Frame {

// What the pictures have in common. Measures are in SVG units: one pixel on most screens.

constexpr double TEXT_HEIGHT = 13;

inline const char* const INK = "#222222";
inline const char* const PALE = "#767676";
inline const char* const THIN = "stroke=\"#222222\" stroke-width=\"1\"";

// Colours that people with any colour vision tell apart.
inline const char* const BLUE = "#0072b2";
inline const char* const ORANGE = "#d55e00";
inline const char* const GREEN = "#009e73";
inline const char* const YELLOW = "#e69f00";
inline const char* const PURPLE = "#aa4499";
inline const char* const GREY = "#a8a8a8";

std::string Coordinate(double value);
/// The style of a line; `dashes` as SVG has them.
std::string Stroke(const std::string& colour, double width = 1.5, const std::string& dashes = "");
std::string Fill(const std::string& colour, double opacity = 1);
/// Of a figure: filled palely, with a border.
std::string Area(const std::string& colour, double opacity = 0.18);
/// A text as XML has it.
std::string Escaped(const std::string& text);
std::string Hex(const ZoPrimitives::TZoColor& color);

double TextWidth(const std::string& text, double height = TEXT_HEIGHT);
/// The text, shortened with an ellipsis if it does not fit into `room`.
std::string Fitted(const std::string& text, double room, double height = TEXT_HEIGHT);

/// Builds an SVG text.
class Drawing {
public:
    void Line(double x1, double y1, double x2, double y2, const char* style);
    /// `style`: SVG attributes.
    void Text(double x, double y, const std::string& text, const std::string& style = "");
    /// A scale of colours, upright, with its upper left corner at (x, y): the values from limit to limit, as
    /// `number` writes them. Paler for an opacity below 1. `id` is unique in the picture.
    void Scale(const std::string& id, const ZoPrimitives::TColorScale& colours, double x, double y,
               double height, const std::function<std::string(double)>& number, double opacity = 1);
    void Add(const std::string& elements) { body += elements; }

    std::string Svg(double width, double height, const std::string& title) const;

private:
    std::string body;
};

/// A drawing in a picture, whose y runs upwards.
class View {
public:
    /// The drawing's origin comes to (x, y); its unit is `scale` SVG units long.
    View(Drawing& where, double x, double y, double scale = 1)
        : drawing(where), left(x), bottom(y), unit(scale) {}

    double X(const ZoPrimitives::Point2D& p) const { return left + p.X() * unit; }
    double Y(const ZoPrimitives::Point2D& p) const { return bottom - p.Y() * unit; }
    void Draw(const ZoPrimitives::TPath2D& path, const std::string& style) const;
    void Draw(const ZoPrimitives::TRegion& region, const std::string& style) const;
    void Draw(const ZoPrimitives::RRect& rectangle, const std::string& style) const;
    /// With its head at the end of the segment.
    void Arrow(const ZoPrimitives::TSegment2D& shaft, const std::string& colour, double width = 1.5) const;
    void Dot(const ZoPrimitives::Point2D& place, const std::string& colour, double radius = 3.5) const;
    void Ring(const ZoPrimitives::Point2D& place, const std::string& colour, double radius) const;
    /// A text that begins `dx` to the right of the place and `dy` below it, small, with a white edge.
    void Note(const ZoPrimitives::Point2D& place, double dx, double dy, const std::string& text,
              const std::string& style = "") const;

private:
    std::string At(const ZoPrimitives::Point2D& p) const { return Coordinate(X(p)) + " " + Coordinate(Y(p)); }
    std::string Outline(const ZoPrimitives::TPath2D& path) const;

    Drawing& drawing;
    double left;
    double bottom;
    double unit;
};

/// Positions of labels along an axis; skips those too close to an earlier one.
class Places {
public:
    explicit Places(double smallestDistance) : distance(smallestDistance) {}
    bool Take(double at) {
        for (double taken : all) {
            if (std::abs(taken - at) < distance) return false;
        }
        all.push_back(at);
        return true;
    }

private:
    double distance;
    std::vector<double> all;
};

} // namespace Frame
