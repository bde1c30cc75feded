#pragma once

#include "ZoPrimitives/ColorScale.h"

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

std::string Coordinate(double value);
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
