#include "Geometry/DrawnThings.h"

#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <utility>

namespace ZoPrimitives {

std::size_t DrawnThings::ChordsOf(const TPathPiece& piece) const {
    return piece.bulge == 0 ? 0 : PartsOf(piece, chordError);
}

std::size_t DrawnThings::Check(const TPath2D& path) const {
    const unsigned long long count = path.NPieces();
    std::size_t needed = 0;
    for (unsigned long long i = 1; i <= count; ++i) {
        const TPathPiece piece = path.Piece(i);
        ZO_ASSERT(IsFinite(piece), "finite coordinates", "cpp/Geometry/TDrawingGraph");
        needed += ChordsOf(piece);
    }
    return needed;
}

unsigned DrawnThings::Begin() {
    things.push_back({pieces.size(), 0, 0});
    return static_cast<unsigned>(things.size());
}

void DrawnThings::Add(const TPath2D& path) {
    const unsigned long long count = path.NPieces();
    for (unsigned long long i = 1; i <= count; ++i) {
        const TPathPiece piece = path.Piece(i);
        if (piece.from == piece.to) continue;
        pieces.push_back(piece);
        ++things.back().count;
        const std::size_t more = ChordsOf(piece);
        things.back().chords += more;
        chords += more;
    }
}

bool DrawnThings::Remove(unsigned thing) {
    if (thing - 1 >= things.size() || things[thing - 1].count == REMOVED) return false;
    removedPieces += static_cast<std::size_t>(things[thing - 1].count);
    things[thing - 1].count = REMOVED;
    chords -= std::exchange(things[thing - 1].chords, 0);
    if (2 * removedPieces > pieces.size()) Compact();
    return true;
}

void DrawnThings::Compact() {
    std::size_t kept = 0;
    for (Thing& thing : things) {
        const std::size_t begin = std::exchange(thing.begin, kept);
        for (int i = 0; i < thing.count; ++i) pieces[kept++] = pieces[begin + static_cast<std::size_t>(i)];
    }
    pieces.resize(kept);
    removedPieces = 0;
}

template <class Visit>
void DrawnThings::ForEachStretch(const Thing& thing, Visit visit) const {
    for (int i = 0; i < thing.count; ++i) {
        const TPathPiece& piece = pieces[thing.begin + static_cast<std::size_t>(i)];
        LDPoint from = piece.from;
        const auto lead = [&](const LDPoint& to) {
            if (from == to || !IsFinite(to)) return;
            visit(StretchBetween(from, to));
            from = to;
        };
        const unsigned parts = PartsOf(piece, chordError);
        if (parts > 1) {
            for (const LDPoint& p : PointsOf(piece, parts)) lead(p);
        }
        lead(piece.to);
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

bool DrawnThings::operator==(const DrawnThings& other) const {
    if (chordError != other.chordError || things.size() != other.things.size()) return false;
    for (std::size_t i = 0; i < things.size(); ++i) {
        const int count = things[i].count;
        if (count != other.things[i].count) return false;
        for (std::size_t k = 0; k < static_cast<std::size_t>(std::max(count, 0)); ++k) {
            const TPathPiece &a = pieces[things[i].begin + k], &b = other.pieces[other.things[i].begin + k];
            if (a.from != b.from || a.to != b.to || a.bulge != b.bulge) return false;
        }
    }
    return true;
}

std::size_t DrawnThings::NNumbers() {
    if (removedPieces != 0) Compact();
    return PIECE_NUMBERS * pieces.size();
}

double DrawnThings::Number(std::size_t index) const {
    const TPathPiece& piece = pieces[index / PIECE_NUMBERS];
    const double numbers[] = {piece.from.x, piece.from.y, piece.to.x, piece.to.y, piece.bulge};
    return numbers[index % PIECE_NUMBERS];
}

void DrawnThings::ClearNumbers() {
    pieces.clear();
    pending = 0;
}

void DrawnThings::AddNumber(double number) {
    if (pending == 0) pieces.emplace_back();
    TPathPiece& piece = pieces.back();
    double* const numbers[] = {&piece.from.x, &piece.from.y, &piece.to.x, &piece.to.y, &piece.bulge};
    *numbers[pending] = number;
    pending = (pending + 1) % PIECE_NUMBERS;
}

bool DrawnThings::AddPiece() {
    if (things.empty() || things.back().count == REMOVED) return false;
    ++things.back().count;
    return true;
}

bool DrawnThings::Complete() {
    std::size_t begin = 0;
    for (Thing& thing : things) {
        if (thing.count < REMOVED) return false;
        thing.begin = begin;
        begin += static_cast<std::size_t>(std::max(thing.count, 0));
    }
    if (begin != pieces.size() || pending != 0) return false;
    chords = 0;
    for (Thing& thing : things) {
        thing.chords = 0;
        for (int i = 0; i < thing.count; ++i) {
            const TPathPiece& piece = pieces[thing.begin + static_cast<std::size_t>(i)];
            if (!IsFinite(piece)) return false;
            thing.chords += ChordsOf(piece);
        }
        chords += thing.chords;
    }
    return HasRoomFor(0);
}

} // namespace ZoPrimitives
