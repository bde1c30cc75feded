#include "diagram.h"

#include "diagram_boxes.h"
#include "font.h"
#include "markup.h"
#include "routes.h"
#include "words.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

// In SVG units: one pixel on most screens.
constexpr double BORDER = 20; // around the picture
constexpr double LEGEND = 34; // height of the line that explains the signs

enum class LineKind { Derives, Owns, Refers };

/// What a net joins: the boxes from which it comes, and the one to which it leads.
struct Relation {
    LineKind kind;
    int to;
    std::set<int> from;
};

struct Nets {
    std::vector<Net> nets;
    std::vector<Relation> relations; ///< of each
};

/// Where the lines to its parents leave a box's top, from its left: beside each other. The line of the box
/// above it, if that has children (otherwise -1), comes down in the middle, which is only for a line to that
/// box.
std::vector<double> TopPorts(const Box& box, int above, double boxWidth) {
    constexpr double APART = 14;
    std::vector<double> ports;
    int next = above < 0 ? 0 : 1; // 0, 1, -1, 2, -2 ...
    for (const int parent : box.parents) {
        const int number = parent == above ? 0 : next++;
        const int steps = (number % 2 == 0 ? -1 : 1) * ((number + 1) / 2);
        ports.push_back(std::clamp(boxWidth / 2 + steps * APART, 8.0, boxWidth - 8));
    }
    return ports;
}

/// From each class to its parents.
void AddInheritance(const Boxes& boxes, double boxWidth, Nets& all) {
    const std::vector<std::vector<int>> children = ChildrenOf(boxes);
    std::map<std::pair<int, int>, int> parentAt; // by row and column
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (!children[i].empty()) parentAt[{boxes[i].row, boxes[i].column}] = static_cast<int>(i);
    }
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (children[i].empty()) continue;
        const int parent = static_cast<int>(i);
        Net net{{boxes[i].row, boxes[i].column, boxWidth / 2, true, Side::Bottom}, {}};
        for (const int child : children[i]) {
            const Box& box = boxes[static_cast<std::size_t>(child)];
            const auto above = parentAt.find({box.row - 1, box.column});
            const std::vector<double> ports =
                TopPorts(box, above == parentAt.end() ? -1 : above->second, boxWidth);
            const auto place =
                std::find(box.parents.begin(), box.parents.end(), parent) - box.parents.begin();
            net.sources.push_back(
                {box.row, box.column, ports[static_cast<std::size_t>(place)], true, Side::Top});
        }
        all.nets.push_back(std::move(net));
        all.relations.push_back({LineKind::Derives, parent, {children[i].begin(), children[i].end()}});
    }
}

/// From each field of one sign to the class of its objects.
void AddPointers(const Boxes& boxes, Sign sign, Nets& all) {
    struct Sources {
        std::vector<Port> ports;
        std::set<int> boxes;
    };
    std::map<int, Sources> sources; // by target
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        for (std::size_t k = 0; k < boxes[i].lines.size(); ++k) {
            const BoxLine& line = boxes[i].lines[k];
            if (line.sign != sign || line.target < 0 || boxes[static_cast<std::size_t>(line.target)].isValue)
                continue;
            sources[line.target].ports.push_back(
                {boxes[i].row, boxes[i].column, LineMiddle(k), false, Side::Left});
            sources[line.target].boxes.insert(static_cast<int>(i));
        }
    }
    for (auto& [target, its] : sources) {
        const Box& box = boxes[static_cast<std::size_t>(target)];
        const double along = BOX_TITLE / 2 + (sign == Sign::Owns ? -5 : 5);
        all.nets.push_back({{box.row, box.column, along, false, Side::Left}, std::move(its.ports)});
        all.relations.push_back(
            {sign == Sign::Owns ? LineKind::Owns : LineKind::Refers, target, std::move(its.boxes)});
    }
}

Nets NetsOf(const Boxes& boxes, double boxWidth) {
    Nets all;
    AddInheritance(boxes, boxWidth, all);
    if (boxes.size() > MOST_CLASSES_WITH_LINES) return all;
    AddPointers(boxes, Sign::Owns, all);
    AddPointers(boxes, Sign::Refers, all);
    return all;
}

// ------------------------------------------------------------------------------------------------- drawing

struct Colour {
    const char* name; ///< of the page's
    const char* light;
    const char* dark;
};
constexpr Colour SHEET{"sheet", "#ffffff", "#191d21"}, INK{"ink", "#1d2227", "#e3e7ea"},
    MUTED{"muted", "#59636d", "#9ba6b0"}, EDGE{"strong-line", "#b9c0c6", "#4a535b"},
    BACK{"hover", "#f1f4f6", "#20262b"}, REFERS{"link", "#1b5a94", "#86b9ea"};

template <class ColourOf>
std::string Rules(ColourOf colour) {
    return fmt::format(".zo-d text{{fill:{1}}}.zo-d .m{{fill:{2}}}.zo-d "
                       ".n{{font-weight:bold;font-size:13px}}.zo-d .a{{font-style:italic}}"
                       ".zo-d .b{{fill:{0};stroke:{3}}}.zo-d .t{{fill:{4};stroke:{3}}}.zo-d "
                       ".l{{fill:none;stroke:{2};stroke-width:1.2}}"
                       ".zo-d .o{{stroke:{1}}}.zo-d .r{{stroke:{5};stroke-dasharray:4 3}}.zo-d "
                       ".d{{fill:{1}}}.zo-d .h{{fill:{0};stroke:{2};stroke-width:1.2}}"
                       ".zo-d .ro{{fill:none;stroke:{5};stroke-width:1.2}}.zo-d "
                       ".oo{{fill:none;stroke:{1};stroke-width:1.2}}.zo-d .s{{fill:{0}}}",
                       colour(SHEET), colour(INK), colour(MUTED), colour(EDGE), colour(BACK), colour(REFERS));
}

std::string StyleSheet(bool inPage) {
    if (inPage) return Rules([](const Colour& one) { return fmt::format("var(--{})", one.name); });
    return Rules([](const Colour& one) { return std::string(one.light); }) +
           "@media(prefers-color-scheme:dark){" +
           Rules([](const Colour& one) { return std::string(one.dark); }) + "}";
}

/// A length as SVG has it: with one decimal at most.
std::string Number(double value) {
    const double rounded = std::round(value * 10) / 10;
    return rounded == std::floor(rounded) ? fmt::format("{:.0f}", rounded) : fmt::format("{:.1f}", rounded);
}

class Drawing {
public:
    Drawing(const Boxes& boxes, const Routes& routes, double boxWidth, const DiagramStyle& style)
        : boxes(boxes), routes(routes), boxWidth(boxWidth), style(style) {}

    std::string Svg(const Nets& nets) {
        const double width = std::max(routes.width, 560.0) + 2 * BORDER;
        const double height = routes.height + LEGEND + 2 * BORDER;
        svg = fmt::format(
            "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"zo-d\" role=\"img\" "
            "aria-label=\"{0}\" width=\"{1}\" height=\"{2}\" viewBox=\"0 0 {1} {2}\" "
            "font-family=\"'Segoe UI', Helvetica, Arial, 'Liberation Sans', 'DejaVu Sans', sans-serif\" "
            "font-size=\"12\">\n<style>{3}</style>\n",
            Escaped(boxes.size() == 1 ? Words("Class diagram of {} class", 1)
                                      : Words("Class diagram of {} classes", boxes.size())),
            Number(width), Number(height), StyleSheet(style.inPage));
        if (!style.inPage) svg += "<rect class=\"s\" width=\"100%\" height=\"100%\"/>\n";
        Legend();
        svg += fmt::format("<g transform=\"translate({} {})\">\n",
                           Number(BORDER + (width - 2 * BORDER - routes.width) / 2), Number(BORDER + LEGEND));
        for (std::size_t i = 0; i < nets.nets.size(); ++i) Lines(routes.routes[i], nets.relations[i]);
        for (std::size_t i = 0; i < boxes.size(); ++i) DrawBox(i);
        for (std::size_t i = 0; i < nets.nets.size(); ++i) Ends(routes.routes[i], nets.relations[i]);
        return svg + "</g>\n</svg>\n";
    }

private:
    void Text(double x, double y, const std::string& text, const char* attributes) {
        svg += fmt::format("<text x=\"{}\" y=\"{}\"{}>{}</text>", Number(x), Number(y), attributes,
                           Escaped(text));
    }
    void Path(const std::string& path, const char* kind) {
        svg += fmt::format("<path class=\"{}\" d=\"{}\"/>", kind, path);
    }

    void Legend() {
        const double y = BORDER + 8;
        double x = BORDER + 2;
        const auto next = [&](const std::string& text) {
            Text(x + 34, y + 4, text, " class=\"m\"");
            x += 34 + TextWidth(text) * BOX_TEXT + 26;
        };
        Path(fmt::format("M{} {}h18", Number(x + 10), Number(y)), "l");
        Triangle(x, y, Side::Left);
        next(Words("derives from"));
        for (const bool owns : {true, false}) {
            Mark(owns ? Sign::Owns : Sign::Refers, x, y);
            Path(fmt::format("M{} {}h16", Number(x + 12), Number(y)), owns ? "l o" : "l r");
            Arrow(x + 28, y, Side::Left, owns ? "oo" : "ro");
            next(owns ? Words("owns") : Words("refers to"));
        }
        if (boxes.size() > MOST_CLASSES_WITH_LINES) {
            Text(x, y + 4, Words("Owned and referred to: by name only, in a schema of this size"),
                 " class=\"m\"");
        }
        svg += '\n';
    }

    /// A point that lies `out` from the border of a box, and `aside` along it.
    struct Frame {
        double x, y;
        Side side;
        std::string operator()(double out, double aside) const {
            switch (side) {
            case Side::Left:
                return Number(x - out) + ' ' + Number(y + aside);
            case Side::Right:
                return Number(x + out) + ' ' + Number(y + aside);
            case Side::Top:
                return Number(x + aside) + ' ' + Number(y - out);
            case Side::Bottom:
                break;
            }
            return Number(x + aside) + ' ' + Number(y + out);
        }
    };
    /// Before a field.
    void Mark(Sign sign, double x, double y) {
        if (sign == Sign::Owns) Path(fmt::format("M{} {}l4-3l4 3l-4 3z", Number(x), Number(y)), "d");
        if (sign == Sign::Refers) Path(fmt::format("M{} {}h8m-3-3l3 3l-3 3", Number(x), Number(y)), "ro");
    }
    void Arrow(double x, double y, Side side, const char* kind) {
        const Frame at{x, y, side};
        Path(fmt::format("M{}L{}L{}", at(7, 3.5), at(0, 0), at(7, -3.5)), kind);
    }
    void Triangle(double x, double y, Side side) {
        const Frame at{x, y, side == Side::Left ? Side::Right : side};
        Path(fmt::format("M{}L{}L{}z", at(0, 0), at(10, 6), at(10, -6)), "h");
    }

    /// In a page, the lines know what they join.
    void Begin(const Relation& relation) {
        svg += "<g";
        if (style.inPage) {
            svg +=
                fmt::format(" data-to=\"{}\" data-from=\"{}\"", relation.to, fmt::join(relation.from, " "));
        }
        svg += '>';
    }
    void Lines(const Route& route, const Relation& relation) {
        Begin(relation);
        std::string path;
        for (const Piece& piece : route.pieces) {
            if (piece.x1 == piece.x2 && piece.y1 == piece.y2) continue;
            path += 'M' + Number(piece.x1) + ' ' + Number(piece.y1);
            path += piece.y1 == piece.y2 ? 'H' + Number(piece.x2) : 'V' + Number(piece.y2);
        }
        const LineKind kind = relation.kind;
        Path(path, kind == LineKind::Derives ? "l" : kind == LineKind::Owns ? "l o" : "l r");
        svg += "</g>\n";
    }
    void Ends(const Route& route, const Relation& relation) {
        Begin(relation);
        for (const Meeting& end : route.targets) {
            if (relation.kind == LineKind::Derives) {
                Triangle(end.x, end.y, end.side);
            } else {
                Arrow(end.x, end.y, end.side, relation.kind == LineKind::Owns ? "oo" : "ro");
            }
        }
        svg += "</g>\n";
    }

    void DrawBox(std::size_t index) {
        const Box& box = boxes[index];
        const double x = routes.columns[static_cast<std::size_t>(box.column)];
        const double y = routes.rows[static_cast<std::size_t>(box.row)];
        svg += style.inPage ? fmt::format("<g data-box=\"{}\">", index) : "<g>";
        svg += fmt::format("<rect class=\"b\" x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" rx=\"3\"/>"
                           "<path class=\"t\" d=\"M{} {}v-{}a3 3 0 0 1 3-3h{}a3 3 0 0 1 3 3v{}z\"/>",
                           Number(x), Number(y), Number(boxWidth), Number(box.Height()), Number(x),
                           Number(y + BOX_TITLE), Number(BOX_TITLE - 3), Number(boxWidth - 6),
                           Number(BOX_TITLE - 3));
        Title(box, index, x, y);
        for (std::size_t i = 0; i < box.lines.size(); ++i) {
            DrawLine(box.lines[i], x, y + LineMiddle(i));
        }
        if (box.linesLeftOut > 0) {
            const double at = y + LineMiddle(box.lines.size());
            Text(x + 20, at + 4, Words("and {} more", box.linesLeftOut), " class=\"m\"");
        }
        svg += "</g>\n";
    }

    void Title(const Box& box, std::size_t index, double x, double y) {
        double room = boxWidth - 24;
        if (index < style.objects.size() && style.objects[index] > 0) {
            const std::string count = fmt::format("{}", style.objects[index]);
            Text(x + boxWidth - 10, y + 18, count, " class=\"m\" text-anchor=\"end\"");
            room -= TextWidth(count) * BOX_TEXT + 10;
        }
        const std::string name = Fitted(box.name, room, BOX_NAME, Weight::Bold);
        if (style.inPage) svg += fmt::format("<a href=\"#c{}\" tabindex=\"-1\">", index);
        if (name != box.name || box.abstract) {
            const std::string abstract = box.abstract ? fmt::format(" ({})", Words("abstract")) : "";
            svg += fmt::format("<title>{}</title>", Escaped(box.name + abstract));
        }
        Text(x + 10, y + 18, name, box.abstract ? " class=\"n a\"" : " class=\"n\"");
        if (style.inPage) svg += "</a>";
    }

    void DrawLine(const BoxLine& line, double x, double y) {
        Mark(line.sign, x + 8, y);
        const double room = boxWidth - 20 - 10 - 8;
        const double nameWidth = TextWidth(line.name) * BOX_TEXT;
        const double typeRoom = std::max(room - nameWidth, room * 0.42);
        const std::string type = Fitted(line.type, typeRoom, BOX_TEXT);
        const std::string name =
            Fitted(line.name, room - std::min(TextWidth(type) * BOX_TEXT, typeRoom), BOX_TEXT);
        const bool cut = type != line.type || name != line.name;
        if (cut) svg += fmt::format("<g><title>{}: {}</title>", Escaped(line.name), Escaped(line.type));
        Text(x + 20, y + 4, name, "");
        Text(x + boxWidth - 10, y + 4, type, " class=\"m\" text-anchor=\"end\"");
        if (cut) svg += "</g>";
    }

    const Boxes& boxes;
    const Routes& routes;
    double boxWidth;
    const DiagramStyle& style;
    std::string svg;
};

} // namespace

std::string ClassDiagram(const TZoMetaData& schema, const DiagramStyle& style) {
    Boxes boxes = BoxesOf(schema);
    const double boxWidth = BoxWidth(boxes);
    const Grid grid = PlaceBoxes(boxes, boxWidth, boxes.size() <= MOST_CLASSES_WITH_LINES);

    GridSizes sizes{boxWidth, {}, {}, 34, 42, 17, 8};
    const auto rows = static_cast<std::size_t>(grid.rows), columns = static_cast<std::size_t>(grid.columns);
    sizes.rowHeights.assign(rows, 0);
    sizes.boxHeights.assign(rows, std::vector<double>(columns, 0));
    for (const Box& box : boxes) {
        const auto row = static_cast<std::size_t>(box.row);
        sizes.boxHeights[row][static_cast<std::size_t>(box.column)] = box.Height();
        sizes.rowHeights[row] = std::max(sizes.rowHeights[row], box.Height());
    }
    const Nets nets = NetsOf(boxes, boxWidth);
    const Routes routes = LeadNets(sizes, nets.nets);
    return Drawing(boxes, routes, boxWidth, style).Svg(nets);
}

} // namespace ZoTool