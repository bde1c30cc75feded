#include "plan.h"

#include "failure.h"
#include "grid.h"
#include "table.h"
#include "tables.h"
#include "words.h"

#include "ZoPrimitives/TDrawingGraph.h"
#include "ZoPrimitives/TVector2D.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>
#include <utility>

namespace Frame {

using namespace ZoPrimitives;

namespace {

constexpr unsigned PRECISION = 0;     // points less than 1 cm apart are one
constexpr double CHORD_ERROR = 0.5;   // cm
constexpr double LEAST_SLIP = 0.005;  // cm: rounding is no slip
constexpr double LONG_OVERSHOOT = 50; // cm: more is a line that ends on nothing

bool Bears(const PlanLine& line) { return line.kind == PlanKind::Girder || line.kind == PlanKind::Beam; }

std::vector<PlanLine> ReadLines(const Table& table) {
    const std::pair<const char*, PlanKind> kinds[] = {{"slab", PlanKind::Slab},
                                                      {"girder", PlanKind::Girder},
                                                      {"beam", PlanKind::Beam},
                                                      {"opening", PlanKind::Opening}};
    std::vector<PlanLine> lines;
    for (const auto& row : table.Rows()) {
        const auto kind = std::find_if(std::begin(kinds), std::end(kinds),
                                       [&](const auto& k) { return row.fields[0] == k.first; });
        if (kind == std::end(kinds)) {
            table.Fail(
                row, Words("\"{1}\" is not drawn here: use slab, girder, beam or opening", {row.fields[0]}));
        }
        const auto point = [&](std::size_t field) {
            return Point2D(table.Number(row, field), table.Number(row, field + 1)) * 100; // cm
        };
        const double bulge = table.Number(row, 6);
        const TArc2D path(point(2), point(4), bulge);
        if (Bears({kind->second, "", path}) && (bulge != 0 || path.Start() == path.End()))
            table.Fail(row, Words("girders and beams are straight, and longer than nothing"));
        lines.push_back({kind->second, Printable(ZoFromUtf8(row.fields[1].c_str())), path});
    }
    return lines;
}

/// The load along a line that bears: its sum in kN, and its moment about the start in kN cm.
struct Carried {
    double load = 0;
    double moment = 0;
};

/// Finds what a plan does not say itself.
class Finder {
public:
    explicit Finder(Plan& toFill) : plan(toFill), graph(PRECISION, CHORD_ERROR) {
        for (const PlanLine& line : plan.lines) graph.Add(line.path); // the thing's number is the line's
        carried.resize(plan.lines.size());
        ends.resize(plan.lines.size());
    }

    void Fill() {
        FindEnds();
        FindSlips();
        FindPanels();
        HandOn();
        for (std::size_t i = 0; i < plan.lines.size(); ++i) {
            const PlanLine& line = plan.lines[i];
            if (!Bears(line)) continue;
            if (ends[i].none) {
                const bool told = std::any_of(plan.slips.begin(), plan.slips.end(),
                                              [&](const Slip& slip) { return slip.names == line.name; });
                const Point2D middle = (line.path.Start() + line.path.End()) / 2;
                if (!told) plan.slips.push_back({Slip::Idle, middle, line.name});
                continue;
            }
            Bearer bearer;
            bearer.line = &plan.lines[i];
            bearer.start = Node(ends[i].first);
            bearer.end = Node(ends[i].last);
            bearer.load = GForcaConcentrada(carried[i].load, TForcaConcentrada::kN);
            const bool girder = plan.lines[i].kind == PlanKind::Girder;
            (girder ? plan.girders : plan.beams).push_back(bearer);
            if (girder) plan.carried += bearer.load;
        }
    }

private:
    /// The nodes between which a line borders panels.
    struct Ends {
        bool none = true;
        unsigned first = 0;
        unsigned last = 0;
    };

    Point2D Node(unsigned number) const { return graph.Node(number).Point(); }
    const PlanLine& LineOf(unsigned thing) const { return plan.lines[thing - 1]; }

    /// How far along its direction a line passes the point.
    double Along(std::size_t line, const Point2D& point) const {
        const TVector2D direction =
            TVector2D(plan.lines[line].path.Start(), plan.lines[line].path.End()).Normalized();
        return direction.DotProduct(point - plan.lines[line].path.Start());
    }

    void FindEnds() {
        for (unsigned i = 1; i <= graph.NEdges(); ++i) {
            const TLineEdge edge = graph.Edge(i);
            if (edge.IsBridge()) continue;
            for (unsigned k = 1; k <= edge.NThings(); ++k) {
                const std::size_t line = edge.Thing(k) - 1;
                if (!Bears(plan.lines[line])) continue;
                for (const unsigned node : {edge.Start().Number(), edge.End().Number()}) {
                    Ends& found = ends[line];
                    if (found.none || Along(line, Node(node)) < Along(line, Node(found.first)))
                        found.first = node;
                    if (found.none || Along(line, Node(node)) > Along(line, Node(found.last)))
                        found.last = node;
                    found.none = false;
                }
            }
        }
    }

    /// What bears at an edge: a girder before a beam, and the one drawn first; 0 for none.
    unsigned BearerOf(const TLineEdge& edge) const {
        unsigned bearer = 0;
        for (unsigned k = 1; k <= edge.NThings(); ++k) {
            const unsigned thing = edge.Thing(k);
            if (Bears(LineOf(thing)) && (bearer == 0 || LineOf(thing).kind < LineOf(bearer).kind))
                bearer = thing;
        }
        return bearer;
    }

    std::string NameOf(unsigned thing) const { return LineOf(thing).name; }

    void FindSlips() {
        for (unsigned i = 1; i <= graph.NMoves(); ++i) {
            const TGraphMove move = graph.Move(i);
            const double size = move.from.Distance(move.to);
            if (size < LEAST_SLIP) continue;
            std::string names;
            for (const PlanLine& line : plan.lines) {
                const bool moved = line.path.Start() == move.from || line.path.End() == move.from;
                if (moved) names += (names.empty() ? "" : ", ") + line.name;
            }
            plan.slips.push_back({Slip::Gap, move.to, names, GComprimento(size)});
        }
        std::map<std::set<std::string>, std::pair<double, Point2D>> doubled;
        for (unsigned i = 1; i <= graph.NEdges(); ++i) {
            const TLineEdge edge = graph.Edge(i);
            const TSegment2D segment = edge.Segment();
            const double length = segment.Length();
            if (edge.IsDangle() && (edge.Start().NEdges() == 1 || edge.End().NEdges() == 1)) {
                const Point2D end = edge.Start().NEdges() == 1 ? segment.Start() : segment.End();
                plan.slips.push_back({length > LONG_OVERSHOOT ? Slip::Loose : Slip::Overshoot, end,
                                      NameOf(edge.Thing(1)), GComprimento(length)});
            }
            std::set<std::string> names;
            for (unsigned k = 1; k <= edge.NThings(); ++k)
                if (Bears(LineOf(edge.Thing(k)))) names.insert(NameOf(edge.Thing(k)));
            if (names.size() < 2) continue;
            auto& [sum, place] = doubled[names];
            place = (segment.Start() + segment.End()) / 2;
            sum += length;
        }
        for (const auto& [names, found] : doubled) {
            std::string all;
            for (const std::string& name : names) all += (all.empty() ? "" : ", ") + name;
            plan.slips.push_back({Slip::Doubled, found.second, all, GComprimento(found.first)});
        }
    }

    void FindPanels() {
        if (graph.NFaces() == 0) throw Failure(Words("The plan {1} holds no closed region.", {plan.name}));
        const double floorLoad = plan.floorLoad.Valor(TForcaArea::kN_m2) / 1e4; // kN/cm2
        for (unsigned i = 1; i <= graph.NFaces(); ++i) {
            const TGraphFace face = graph.Face(i);
            Panel panel;
            panel.region = face.Region();
            panel.area = GArea(panel.region.Area());
            panel.isOpening = IsOpening(face);
            if (!panel.isOpening) {
                panel.load = GForcaConcentrada(panel.region.Area() * floorLoad, TForcaConcentrada::kN);
                plan.load += panel.load;
                Spread(face, floorLoad);
            }
            plan.panels.push_back(panel);
        }
        // In rows, as they are read.
        std::sort(plan.panels.begin(), plan.panels.end(), [](const Panel& a, const Panel& b) {
            const RRect first = a.region.BoundingBox(), second = b.region.BoundingBox();
            return std::pair(std::llround(first.Y1()), first.X1()) <
                   std::pair(std::llround(second.Y1()), second.X1());
        });
        unsigned number = 0;
        for (Panel& panel : plan.panels)
            if (!panel.isOpening) panel.name = "P" + std::to_string(++number);
    }

    template <class Action>
    static void ForBorder(const TGraphFace& face, unsigned border, Action action) {
        TSortedEdge edge = face.Border(border);
        do {
            action(edge);
            edge = edge.NextAroundFace();
        } while (edge != face.Border(border));
    }

    /// Whether opening lines are all around it.
    bool IsOpening(const TGraphFace& face) const {
        bool all = true;
        ForBorder(face, 1, [&](const TSortedEdge& sorted) {
            const TLineEdge edge = sorted.Edge();
            bool opening = edge.IsBridge();
            for (unsigned k = 1; k <= edge.NThings(); ++k)
                opening = opening || LineOf(edge.Thing(k)).kind == PlanKind::Opening;
            all = all && opening;
        });
        return all;
    }

    /// A side of a panel, from its lower to its upper end.
    struct Side {
        Point2D low;
        Point2D high;
        unsigned bearer;
        double At(double y) const {
            return low.X() + (high.X() - low.X()) * (y - low.Y()) / (high.Y() - low.Y());
        }
    };

    /// Cuts a panel into strips between the levels of its corners: what lies between two sides rests on both,
    /// or on the one that bears.
    void Spread(const TGraphFace& face, double floorLoad) {
        std::vector<Side> sides;
        std::vector<double> levels;
        for (unsigned border = 1; border <= face.NBorders(); ++border) {
            ForBorder(face, border, [&](const TSortedEdge& sorted) {
                const TLineEdge edge = sorted.Edge();
                Point2D low = sorted.From().Point(), high = sorted.To().Point();
                if (edge.IsBridge() || low.Y() == high.Y()) return;
                if (low.Y() > high.Y()) std::swap(low, high);
                sides.push_back({low, high, BearerOf(edge)});
                levels.push_back(low.Y());
                levels.push_back(high.Y());
            });
        }
        std::sort(levels.begin(), levels.end());
        levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
        for (std::size_t i = 0; i + 1 < levels.size(); ++i) {
            const double low = levels[i], high = levels[i + 1], middle = low + (high - low) / 2;
            std::vector<Side> across;
            for (const Side& side : sides)
                if (side.low.Y() <= low && side.high.Y() >= high) across.push_back(side);
            std::sort(across.begin(), across.end(),
                      [&](const Side& a, const Side& b) { return a.At(middle) < b.At(middle); });
            for (std::size_t k = 0; k + 1 < across.size(); k += 2)
                AddStrip(across[k], across[k + 1], low, high, floorLoad);
        }
    }

    void AddStrip(const Side& left, const Side& right, double low, double high, double floorLoad) {
        const double below = right.At(low) - left.At(low), above = right.At(high) - left.At(high);
        const double area = (below + above) / 2 * (high - low);
        if (!(area > 0)) return;
        const double level = low + (high - low) * (below + 2 * above) / (3 * (below + above));
        const int bearing = (left.bearer != 0) + (right.bearer != 0);
        for (const Side* side : {&left, &right})
            if (side->bearer != 0) Rest(side->bearer, {side->At(level), level}, area * floorLoad / bearing);
    }

    void Rest(unsigned thing, const Point2D& place, double load) {
        carried[thing - 1].load += load;
        carried[thing - 1].moment += load * Along(thing - 1, place);
    }

    /// What carries the end of a beam at a node; 0 for none.
    unsigned SupportOf(std::size_t beam, unsigned node) const {
        unsigned support = 0;
        const TPointNode at = graph.Node(node);
        for (unsigned i = 1; i <= at.NEdges(); ++i) {
            const TLineEdge edge = at.Edge(i).Edge();
            for (unsigned k = 1; k <= edge.NThings(); ++k) {
                const unsigned thing = edge.Thing(k);
                const PlanLine& line = LineOf(thing);
                if (thing == beam + 1 || !Bears(line) || ends[thing - 1].none) continue;
                // A beam that ends there as well carries nothing.
                if (line.kind == PlanKind::Beam &&
                    (ends[thing - 1].first == node || ends[thing - 1].last == node))
                    continue;
                if (support == 0 || line.kind < LineOf(support).kind) support = thing;
            }
        }
        return support;
    }

    /// Hands the load of each beam on to what carries its ends, beams that carry others last.
    void HandOn() {
        struct Waiting {
            std::size_t beam;
            unsigned supports[2];
        };
        std::vector<Waiting> waiting;
        for (std::size_t i = 0; i < plan.lines.size(); ++i) {
            if (plan.lines[i].kind != PlanKind::Beam || ends[i].none) continue;
            waiting.push_back({i, {SupportOf(i, ends[i].first), SupportOf(i, ends[i].last)}});
        }
        while (!waiting.empty()) {
            const auto ready = std::find_if(waiting.begin(), waiting.end(), [&](const Waiting& beam) {
                return std::none_of(waiting.begin(), waiting.end(), [&](const Waiting& other) {
                    return other.supports[0] == beam.beam + 1 || other.supports[1] == beam.beam + 1;
                });
            });
            if (ready == waiting.end()) {
                throw Failure(
                    Words("The plan {1} cannot be computed: beam {2} rests on beams that rest on it.",
                          {plan.name, plan.lines[waiting.front().beam].name}));
            }
            HandOn(ready->beam, ready->supports);
            waiting.erase(ready);
        }
    }

    void HandOn(std::size_t beam, const unsigned (&supports)[2]) {
        const Ends& at = ends[beam];
        const double start = Along(beam, Node(at.first)), length = Along(beam, Node(at.last)) - start;
        const double load = carried[beam].load, last = (carried[beam].moment - load * start) / length;
        for (const auto& [support, node, reaction] :
             {std::tuple(supports[0], at.first, load - last), std::tuple(supports[1], at.last, last)}) {
            if (support != 0) {
                Rest(support, Node(node), reaction);
            } else if (load != 0) {
                plan.slips.push_back({Slip::Loose, Node(node), plan.lines[beam].name, GComprimento(length)});
            }
        }
    }

    Plan& plan;
    TDrawingGraph graph;
    std::vector<Carried> carried; // by lines
    std::vector<Ends> ends;       // by lines
};

} // namespace

std::string Slip::Text(const Units& units) const {
    const std::string by = units.Text(units.depth, size);
    switch (kind) {
    case Gap:
        return Words("gap of {1} closed: {2}", {by, names});
    case Overshoot:
        return Words("{1} too long: {2}", {by, names});
    case Doubled:
        return Words("{1} drawn twice: {2}", {units.Text(units.length, size), names});
    case Loose:
        return Words("ends on nothing: {1}", {names});
    case Idle:
        return Words("borders no panel: {1}", {names});
    }
    return {};
}

Plan ReadPlan(const std::string& path) {
    const auto file = std::filesystem::u8path(path);
    Plan plan;
    const std::string name = file.filename().u8string();
    const std::string folder = file.has_parent_path() ? file.parent_path().u8string() : ".";
    plan.name = Printable(ZoFromUtf8(name.c_str()));
    plan.lines =
        ReadLines(Table(folder, name.c_str(), {"kind", "name", "x1_m", "y1_m", "x2_m", "y2_m", "bulge"}));
    plan.floorLoad = FloorLoad();
    Finder(plan).Fill();
    return plan;
}

void Print(const Plan& plan, const Units& units, std::ostream& out) {
    const std::string load = units.Name(units.load), floor = units.Name(units.floor);
    Grid panels({Words("Panel"), ">" + Words("Area {1}", {floor}), ">" + Words("Load {1}", {load})});
    GArea area(0.0);
    for (const Panel& panel : plan.panels) {
        if (panel.isOpening) continue;
        panels.Add({panel.name, units.Number(units.floor, panel.area), units.Number(units.load, panel.load)});
        area += panel.area;
    }
    panels.AddRule();
    panels.Add({Words("Total"), units.Number(units.floor, area), units.Number(units.load, plan.load)});
    panels.Print(out);
    out << '\n';

    Grid girders({Words("Girder"), ">" + Words("Length {1}", {units.Name(units.length)}),
                  ">" + Words("Load {1}", {load}), ">" + Words("Load {1}", {units.Name(units.lineLoad)})});
    for (const Bearer& girder : plan.girders) {
        const GForcaLinear along(girder.load.Valor(TForcaConcentrada::kN) /
                                     girder.Length().Valor(TComprimento::m),
                                 TForcaLinear::kN_m);
        girders.Add({girder.line->name, units.Number(units.length, girder.Length()),
                     units.Number(units.load, girder.load), units.Number(units.lineLoad, along)});
    }
    girders.AddRule();
    girders.Add({Words("Total"), "", units.Number(units.load, plan.carried), ""});
    girders.Print(out);
    out << '\n';
    for (std::size_t i = 0; i < plan.slips.size(); ++i)
        out << Label(i == 0 ? Words("Slips:") : "") << i + 1 << "  " << plan.slips[i].Text(units) << '\n';
    const GForcaConcentrada left(plan.load.Valor(TForcaConcentrada::kN) -
                                     plan.carried.Valor(TForcaConcentrada::kN),
                                 TForcaConcentrada::kN);
    if (left.Valor(TForcaConcentrada::kN) > plan.load.Valor(TForcaConcentrada::kN) * 1e-9)
        out << Label(Words("Attention:")) << Words("{1} rest on nothing", {units.Text(units.load, left)})
            << '\n';
}

} // namespace Frame
