#include "Geometry/DrawnThings.h"

#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>

namespace ZoPrimitives {

void DrawnThings::Check(const TPath2D& path) {
    const unsigned long long count = path.NPieces();
    for (unsigned long long i = 1; i <= count; ++i)
        ZO_ASSERT(IsFinite(path.Piece(i)), "finite coordinates", "cpp/Geometry/TDrawingGraph");
}

unsigned DrawnThings::Begin() {
    things.push_back({pieces.size(), 0, false});
    return static_cast<unsigned>(things.size());
}

void DrawnThings::Add(const TPath2D& path) {
    const unsigned long long count = path.NPieces();
    for (unsigned long long i = 1; i <= count; ++i) {
        const TPathPiece piece = path.Piece(i);
        if (piece.from == piece.to) continue;
        pieces.push_back(piece);
        ++things.back().count;
    }
}

bool DrawnThings::Remove(unsigned thing) {
    if (thing - 1 >= things.size() || things[thing - 1].removed) return false;
    things[thing - 1].removed = true;
    removedPieces += things[thing - 1].count;
    if (2 * removedPieces > pieces.size()) Compact();
    return true;
}

void DrawnThings::Compact() {
    std::size_t kept = 0;
    for (Thing& thing : things) {
        const auto first = pieces.begin() + static_cast<std::ptrdiff_t>(thing.begin);
        if (thing.removed) thing.count = 0;
        if (kept != thing.begin)
            std::copy(first, first + static_cast<std::ptrdiff_t>(thing.count),
                      pieces.begin() + static_cast<std::ptrdiff_t>(kept));
        thing.begin = kept;
        kept += thing.count;
    }
    pieces.resize(kept);
    removedPieces = 0;
}

template <class Visit>
void DrawnThings::ForEachStretch(const Thing& thing, Visit visit) const {
    if (thing.removed) return;
    for (std::size_t i = thing.begin; i < thing.begin + thing.count; ++i) {
        LDPoint from = pieces[i].from;
        const auto lead = [&](const LDPoint& to) {
            if (from == to || !IsFinite(to)) return;
            visit(LexicographicallyLess(from, to) ? Stretch{from, to} : Stretch{to, from});
            from = to;
        };
        const unsigned parts = PartsOf(pieces[i], chordError);
        if (parts > 1) {
            for (const LDPoint& p : PointsOf(pieces[i], parts)) lead(p);
        }
        lead(pieces[i].to);
    }
}

std::vector<Stretch> DrawnThings::StretchesOf(unsigned thing) const {
    std::vector<Stretch> stretches;
    if (thing - 1 < things.size())
        ForEachStretch(things[thing - 1], [&](const Stretch& stretch) { stretches.push_back(stretch); });
    return stretches;
}

void DrawnThings::Collect(std::vector<Stretch>& all, Ranges& labels) const {
    struct Labelled {
        Stretch stretch;
        unsigned thing;
    };
    std::vector<Labelled> found;
    found.reserve(pieces.size());
    for (std::size_t i = 0; i < things.size(); ++i) {
        ForEachStretch(things[i], [&](const Stretch& stretch) {
            found.push_back({stretch, static_cast<unsigned>(i) + 1});
        });
    }
    std::sort(found.begin(), found.end(), [](const Labelled& p, const Labelled& q) {
        if (p.stretch.a != q.stretch.a) return LexicographicallyLess(p.stretch.a, q.stretch.a);
        if (p.stretch.b != q.stretch.b) return LexicographicallyLess(p.stretch.b, q.stretch.b);
        return p.thing < q.thing;
    });
    for (const auto& [stretch, thing] : found) {
        all.push_back(stretch);
        labels.values.push_back(thing);
        labels.EndRange();
    }
}

} // namespace ZoPrimitives
