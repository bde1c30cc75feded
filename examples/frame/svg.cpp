#include "svg.h"

#include "ZoPrimitives/Math2.h"

#include <cstring>

namespace Frame {

using namespace ZoPrimitives;

namespace {

/// The width of a character of a sans-serif font of height 1, overestimated rather than underestimated.
double CharacterWidth(char c) {
    const auto among = [c](const char* characters) { return std::strchr(characters, c) != nullptr; };
    if ((static_cast<unsigned char>(c) & 0xC0) == 0x80) return 0; // counted with the first byte
    if (among("WM@%")) return 0.95;
    if (among("mw")) return 0.85;
    if (among("iIjl.,;:'|!()[] ")) return 0.35;
    if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) return 0.57;
    return 0.78;
}

} // namespace

std::string Coordinate(double value) { return FormatFloat(value, 2, false, '.').c_str(); }

std::string Stroke(const std::string& colour, double width, const std::string& dashes) {
    return "fill=\"none\" stroke=\"" + colour + "\" stroke-width=\"" + Coordinate(width) + "\"" +
           (dashes.empty() ? "" : " stroke-dasharray=\"" + dashes + "\"");
}

std::string Fill(const std::string& colour, double opacity) {
    return "fill=\"" + colour + "\"" + (opacity < 1 ? " fill-opacity=\"" + Coordinate(opacity) + "\"" : "");
}

std::string Area(const std::string& colour, double opacity) {
    return Fill(colour, opacity) + " stroke=\"" + colour + "\" stroke-width=\"2\"";
}

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

std::string Hex(const TZoColor& color) {
    const char* const digits = "0123456789abcdef";
    std::string text = "#";
    for (const unsigned component : {color.GetRed(), color.GetGreen(), color.GetBlue()}) {
        text += digits[component / 16];
        text += digits[component % 16];
    }
    return text;
}

double TextWidth(const std::string& text, double height) {
    double width = 0;
    for (char c : text) width += CharacterWidth(c) * height;
    return width;
}

std::string Fitted(const std::string& text, double room, double height) {
    if (TextWidth(text, height) <= room) return text;
    double width = height; // of the ellipsis
    std::string part;
    for (std::size_t i = 0; i < text.size(); ++i) {
        width += CharacterWidth(text[i]) * height;
        if (width > room) break;
        part += text[i];
    }
    return part + "…";
}

void Drawing::Line(double x1, double y1, double x2, double y2, const char* style) {
    body += "<line x1=\"" + Coordinate(x1) + "\" y1=\"" + Coordinate(y1) + "\" x2=\"" + Coordinate(x2) +
            "\" y2=\"" + Coordinate(y2) + "\" " + style + "/>\n";
}

void Drawing::Text(double x, double y, const std::string& text, const std::string& style) {
    body += "<text x=\"" + Coordinate(x) + "\" y=\"" + Coordinate(y) + "\"" +
            (style.empty() ? "" : " " + style) + ">" + Escaped(text) + "</text>\n";
}

std::string Drawing::Svg(double width, double height, const std::string& title) const {
    const std::string size = Coordinate(width) + "\" height=\"" + Coordinate(height);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
           size + "\" viewBox=\"0 0 " + Coordinate(width) + " " + Coordinate(height) +
           "\" font-family=\"Helvetica, Arial, 'Liberation Sans', sans-serif\" font-size=\"" +
           Coordinate(TEXT_HEIGHT) + "\" fill=\"" + INK + "\">\n<title>" + Escaped(title) +
           "</title>\n<rect width=\"" + size + "\" fill=\"#ffffff\"/>\n" + body + "</svg>\n";
}

void Drawing::Scale(const std::string& id, const TColorScale& colours, double x, double y, double height,
                    const std::function<std::string(double)>& number, double opacity) {
    const double least = colours.GetLimitMin(), most = colours.GetLimitMax();
    const auto between = [&](int step, int steps) {
        const double part = static_cast<double>(step) / steps;
        return least * (1 - part) + most * part;
    };
    constexpr int steps = 16; // colours change linearly within a quarter
    constexpr int ticks = 4;
    const bool one = number(least) == number(most);
    if (!one) {
        Add("<linearGradient id=\"" + id + "\" x1=\"0\" y1=\"1\" x2=\"0\" y2=\"0\">\n");
        for (int i = 0; i <= steps; ++i) {
            Add("<stop offset=\"" + Coordinate(static_cast<double>(i) / steps) + "\" stop-color=\"" +
                Hex(colours.GetColor(between(i, steps))) + "\"/>\n");
        }
        Add("</linearGradient>\n");
    }
    Add("<rect x=\"" + Coordinate(x) + "\" y=\"" + Coordinate(y) + "\" width=\"20\" height=\"" +
        Coordinate(height) + "\" stroke=\"" + INK + "\" fill=\"" +
        (one ? Hex(colours.GetColor(least)) : "url(#" + id + ")") + "\"" +
        (opacity < 1 ? " fill-opacity=\"" + Coordinate(opacity) + "\"" : "") + "/>\n");
    for (int i = 0; i <= (one ? 0 : ticks); ++i) {
        const double at = one ? y + height / 2 : y + height * (1 - static_cast<double>(i) / ticks);
        Line(x + 20, at, x + 26, at, THIN);
        Text(x + 32, at + 4.5, number(between(i, ticks)));
    }
}

std::string View::Outline(const TPath2D& path) const {
    std::string outline;
    for (unsigned long long i = 1; i <= path.NPieces(); ++i) {
        const TPathPiece piece = path.Piece(i);
        const Point2D from(piece.from.x, piece.from.y), to(piece.to.x, piece.to.y);
        if (i == 1) outline += "M" + At(from);
        if (piece.bulge == 0) {
            outline += "L" + At(to);
            continue;
        }
        const double bulge = std::abs(piece.bulge);
        const std::string radius = Coordinate(from.Distance(to) * unit * (1 + bulge * bulge) / bulge / 4);
        outline += "A" + radius + " " + radius + " 0 " + (bulge > 1 ? "1 " : "0 ") +
                   (piece.bulge > 0 ? "0 " : "1 ") + At(to);
    }
    return path.IsClosed() ? outline + "z" : outline;
}

void View::Draw(const TPath2D& path, const std::string& style) const {
    drawing.Add("<path d=\"" + Outline(path) + "\" " + style + "/>\n");
}

void View::Draw(const TRegion& region, const std::string& style) const {
    std::string outline;
    for (unsigned long long i = 1; i <= region.NContours(); ++i) outline += Outline(region.Contour(i));
    drawing.Add("<path d=\"" + outline + "\" fill-rule=\"evenodd\" " + style + "/>\n");
}

void View::Draw(const RRect& rectangle, const std::string& style) const {
    Draw(TContour::Rectangle(rectangle), style);
}

void View::Arrow(const TSegment2D& shaft, const std::string& colour, double width) const {
    const double length = shaft.Length();
    if (!(length > 0)) return;
    const Point2D back = (shaft.Start() - shaft.End()) / length / unit, aside(-back.Y(), back.X());
    const Point2D neck = shaft.End() + back * 8;
    Draw(TSegment2D(shaft.Start(), neck), Stroke(colour, width));
    Draw(TContour({shaft.End(), neck + aside * 3.5, neck - aside * 3.5}), Fill(colour));
}

void View::Dot(const Point2D& place, const std::string& colour, double radius) const {
    drawing.Add("<circle cx=\"" + Coordinate(X(place)) + "\" cy=\"" + Coordinate(Y(place)) + "\" r=\"" +
                Coordinate(radius) + "\" " + Fill(colour) + "/>\n");
}

void View::Ring(const Point2D& place, const std::string& colour, double radius) const {
    drawing.Add("<circle cx=\"" + Coordinate(X(place)) + "\" cy=\"" + Coordinate(Y(place)) + "\" r=\"" +
                Coordinate(radius) + "\" " + Stroke(colour, 2) + "/>\n");
}

void View::Note(const Point2D& place, double dx, double dy, const std::string& text,
                const std::string& style) const {
    drawing.Text(X(place) + dx, Y(place) + dy, text,
                 "font-size=\"12\" stroke=\"#ffffff\" stroke-width=\"3\" stroke-linejoin=\"round\" "
                 "paint-order=\"stroke\"" +
                     (style.empty() ? "" : " " + style));
}

} // namespace Frame
