#include "Geometry/Chords.h"

#include "Geometry/BoxTree.h"
#include "Geometry/ChordFrame.h"
#include "Geometry/PiecePairs.h"

#include <array>
#include <cstdint>
#include <map>
#include <unordered_map>

namespace ZoPrimitives {

namespace {

constexpr double MOST_BULGE = 0.2; // of a chord: less than an eighth of a turn
constexpr std::size_t FEW_HALVINGS = 256;

bool IsArc(const TPathPiece& piece) { return piece.bulge != 0 && piece.from != piece.to; }

/// Makes points one that differ by no more than a rounding.
class Welding {
public:
    explicit Welding(double rounding) : size(4 * rounding) {}
    LDPoint Weld(const LDPoint& p) {
        const double x = std::floor(p.x / size), y = std::floor(p.y / size);
        for (const double dx : {0.0, -1.0, 1.0}) {
            for (const double dy : {0.0, -1.0, 1.0}) {
                const auto found = points.find({x + dx, y + dy});
                if (found != points.end() && std::abs(found->second.x - p.x) <= size &&
                    std::abs(found->second.y - p.y) <= size)
                    return found->second;
            }
        }
        return points[{x, y}] = p;
    }

private:
    double size;
    std::map<std::pair<double, double>, LDPoint> points; // by cell
};

/// An arc that may have been halved, or a straight piece, from the lesser end to the greater.
struct Part {
    TPathPiece piece;
    std::size_t whole = 0;  // that it comes from by halving, perhaps itself
    std::size_t halves = 0; // the first of two; 0 for none
    std::size_t count = 0;  // of halvings, of a whole one

    double Belly() const { return std::abs(piece.bulge) * Chord() / 2; }
    double Chord() const { return std::hypot(piece.to.x - piece.from.x, piece.to.y - piece.from.y); }
    /// What it lies in, if it need not be halved: a triangle of the chord and the tangents of its ends.
    std::array<LDPoint, 3> Hull() const {
        const LDPoint step = piece.to - piece.from;
        const double b = piece.bulge, height = b == 0 ? 0 : b / (1 - b * b);
        return {piece.from, piece.to, piece.from + step * 0.5 + LDPoint(step.y, -step.x) * height};
    }
    Box Bounds() const {
        Box box;
        for (const LDPoint& p : Hull()) box.Add(p);
        return box;
    }
};

/// Where a triangle lies beside a line.
struct Shadow {
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    void Add(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
};

/// Whether the line along `step` through `from` keeps both triangles apart: they touch at most in an end of
/// both pieces.
bool IsBetween(const LDPoint& from, const LDPoint& step, const Part& a, const Part& b) {
    const auto p = a.Hull(), q = b.Hull();
    double size = 0;
    const auto height = [&](const LDPoint& c) {
        const double left = step.x * (c.y - from.y), right = step.y * (c.x - from.x);
        size = std::max(size, std::abs(left) + std::abs(right));
        return left - right;
    };
    Shadow one, other;
    for (const LDPoint& c : p) one.Add(height(c));
    for (const LDPoint& c : q) other.Add(height(c));
    const double rounding = 1e-15 * size;
    if (one.high < other.low - rounding || other.high < one.low - rounding) return true;
    const bool below = one.high <= other.low + rounding;
    if (!below && other.high > one.low + rounding) return false;
    // Both reach the line: where along it?
    const auto along = [&](const LDPoint& c) { return step.x * (c.x - from.x) + step.y * (c.y - from.y); };
    const double level = below ? one.high : other.high;
    Shadow alongOne, alongOther;
    for (const LDPoint& c : p) {
        if (std::abs(height(c) - level) <= 2 * rounding) alongOne.Add(along(c));
    }
    for (const LDPoint& c : q) {
        if (std::abs(height(c) - level) <= 2 * rounding) alongOther.Add(along(c));
    }
    const double start = std::max(alongOne.low, alongOther.low),
                 end = std::min(alongOne.high, alongOther.high);
    if (start != end) return start > end;
    const auto isCommonEnd = [&](const LDPoint& c) {
        return along(c) == start && (c == b.piece.from || c == b.piece.to);
    };
    return isCommonEnd(a.piece.from) || isCommonEnd(a.piece.to);
}

/// Whether a line along an edge of one of both triangles keeps them apart.
bool AreApart(const Part& a, const Part& b) {
    for (const Part* part : {&a, &b}) {
        const auto corners = part->Hull();
        for (std::size_t i = 0; i < 3; ++i) {
            if (IsBetween(corners[i], corners[(i + 1) % 3] - corners[i], a, b)) return true;
        }
    }
    return false;
}

class Chords {
public:
    Chords(const std::vector<TPathPiece>& given, double leastNarrow)
        : pieces(given), narrow(leastNarrow), partsOf(given.size()) {
        DivideWherePiecesMeet();
        HalveArcs();
    }
    void Emit(std::vector<Stretch>& stretches, Ranges& labels) const {
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            LDPoint from = pieces[i].from;
            const auto lead = [&](const LDPoint& to) {
                if (from == to || !IsFinite(to)) return;
                stretches.push_back({from, to});
                labels.values.push_back(static_cast<unsigned>(i));
                labels.EndRange();
                from = to;
            };
            for (const auto& [part, reversed] : partsOf[i]) Walk(part, reversed, lead);
            lead(pieces[i].to);
        }
    }

private:
    /// A part as a piece goes along it.
    struct Use {
        std::size_t part;
        bool reversed;
    };

    void DivideWherePiecesMeet();
    void AddParts(std::size_t piece, std::vector<LDPoint> points);
    void AddPart(std::size_t piece, const TPathPiece& part);
    void HalveArcs();
    void Separate(std::size_t a, std::size_t b);
    bool CanBeHalved(std::size_t index) const;
    void Halve(std::size_t index);

    template <class Lead>
    void Walk(std::size_t index, bool reversed, const Lead& lead) const {
        const Part& part = parts[index];
        if (part.halves == 0) return lead(reversed ? part.piece.from : part.piece.to);
        Walk(part.halves + (reversed ? 1 : 0), reversed, lead);
        Walk(part.halves + (reversed ? 0 : 1), reversed, lead);
    }

    const std::vector<TPathPiece>& pieces;
    double narrow;
    std::vector<Part> parts;
    std::vector<std::vector<Use>> partsOf;                           // a piece, in order
    std::map<std::array<double, 4>, std::vector<std::size_t>> known; // arcs by their ends
};

void Chords::DivideWherePiecesMeet() {
    std::vector<Box> boxes;
    boxes.reserve(pieces.size());
    double rounding = 0;
    for (const TPathPiece& piece : pieces) {
        boxes.push_back(Box::Of(piece));
        rounding = std::max(rounding, RoundingOf(piece, piece));
    }
    Welding welding(rounding);
    const BoxTree tree(boxes);
    std::vector<std::vector<LDPoint>> stops(pieces.size());
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (!IsArc(pieces[i])) continue;
        Box reach = boxes[i];
        reach.Add(reach.low - LDPoint(rounding, rounding));
        reach.Add(reach.high + LDPoint(rounding, rounding));
        tree.ForEachTouching(reach, [&](std::size_t j) {
            if (i == j || (j < i && IsArc(pieces[j]))) return;
            for (LDPoint p : MeetingPoints(pieces[i], pieces[j])) {
                const auto isEnd = [&](std::size_t k) { return p == pieces[k].from || p == pieces[k].to; };
                if (!isEnd(i) && !isEnd(j)) p = welding.Weld(p);
                for (const std::size_t k : {i, j}) {
                    if (!isEnd(k)) stops[k].push_back(p);
                }
            }
        });
    }
    for (std::size_t i = 0; i < pieces.size(); ++i) AddParts(i, std::move(stops[i]));
}

void Chords::AddParts(std::size_t index, std::vector<LDPoint> points) {
    const TPathPiece& piece = pieces[index];
    struct Stop {
        double at;
        LDPoint point;
    };
    std::vector<Stop> stops;
    for (const LDPoint& p : points) stops.push_back({ParameterOf(piece, p), p});
    std::sort(stops.begin(), stops.end(), [](const Stop& a, const Stop& b) { return a.at < b.at; });
    stops.push_back({1, piece.to});
    const double angle = 4 * std::atan(piece.bulge);
    Stop start{0, piece.from};
    for (const Stop& end : stops) {
        const double bulge = IsArc(piece) ? std::tan(angle * (end.at - start.at) / 4) : 0;
        AddPart(index, {start.point, end.point, bulge});
        start = end;
    }
}

/// An arc that was divided in the same way as another is the same, if their bellies differ by rounding only.
void Chords::AddPart(std::size_t index, const TPathPiece& given) {
    if (given.from == given.to) return;
    const bool reversed = LexicographicallyLess(given.to, given.from);
    const TPathPiece piece = reversed ? TPathPiece{given.to, given.from, -given.bulge} : given;
    if (piece.bulge != 0) {
        const double rounding = RoundingOf(pieces[index], piece);
        auto& same = known[{piece.from.x, piece.from.y, piece.to.x, piece.to.y}];
        for (const std::size_t part : same) {
            const double belly = std::abs(parts[part].piece.bulge - piece.bulge) * parts[part].Chord() / 2;
            if (belly <= rounding) return partsOf[index].push_back({part, reversed});
        }
        same.push_back(parts.size());
    }
    partsOf[index].push_back({parts.size(), reversed});
    parts.push_back({piece, parts.size()});
    for (std::size_t part = parts.size() - 1; part < parts.size(); ++part) {
        if (std::abs(parts[part].piece.bulge) > MOST_BULGE) Halve(part);
    }
}

void Chords::HalveArcs() {
    std::vector<std::size_t> whole;
    std::vector<Box> boxes;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (parts[i].halves != 0) continue;
        whole.push_back(i);
        boxes.push_back(parts[i].Bounds());
    }
    const BoxTree tree(boxes);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (parts[whole[i]].piece.bulge == 0) continue;
        tree.ForEachTouching(boxes[i], [&](std::size_t j) {
            if (i < j || (i != j && parts[whole[j]].piece.bulge == 0)) Separate(whole[i], whole[j]);
        });
    }
}

void Chords::Separate(std::size_t a, std::size_t b) {
    if (!parts[a].Bounds().Touches(parts[b].Bounds()) || AreApart(parts[a], parts[b])) return;
    if (!CanBeHalved(a) || (CanBeHalved(b) && parts[b].Belly() > parts[a].Belly())) std::swap(a, b);
    if (!CanBeHalved(a)) return;
    if (parts[a].halves == 0) Halve(a);
    if (parts[a].halves == 0) return;
    const std::size_t first = parts[a].halves;
    Separate(first, b);
    Separate(first + 1, b);
}

/// Where two arcs touch, or nearly lie upon each other, halving ends at what rounding leaves, or sooner, lest
/// it makes too many parts.
bool Chords::CanBeHalved(std::size_t index) const {
    const Part& part = parts[index];
    if (part.halves != 0 || part.piece.bulge == 0) return part.halves != 0;
    const Part& whole = parts[part.whole];
    const double least =
        whole.count < FEW_HALVINGS ? RoundingOf(whole.piece, whole.piece) : 1e-8 * LengthOf(whole.piece);
    return part.Belly() > std::max(narrow, least);
}

void Chords::Halve(std::size_t index) {
    const TPathPiece piece = parts[index].piece;
    const ChordFrame frame(piece);
    const LDPoint middle = frame.FromFrame(frame.OnCircle(0));
    if (!IsFinite(middle) || middle == piece.from || middle == piece.to) {
        parts[index].piece.bulge = 0;
        return;
    }
    const double bulge = piece.bulge / (1 + std::sqrt(1 + piece.bulge * piece.bulge));
    const std::size_t whole = parts[index].whole;
    ++parts[whole].count;
    parts[index].halves = parts.size();
    parts.push_back({{piece.from, middle, bulge}, whole});
    parts.push_back({{middle, piece.to, bulge}, whole});
}

} // namespace

void AddChords(const std::vector<TPathPiece>& pieces, double narrow, std::vector<Stretch>& stretches,
               Ranges& labels) {
    stretches.reserve(stretches.size() + pieces.size());
    if (std::any_of(pieces.begin(), pieces.end(), IsArc)) {
        Chords(pieces, narrow).Emit(stretches, labels);
        return;
    }
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (pieces[i].from == pieces[i].to) continue;
        stretches.push_back({pieces[i].from, pieces[i].to});
        labels.values.push_back(static_cast<unsigned>(i));
        labels.EndRange();
    }
}

} // namespace ZoPrimitives
