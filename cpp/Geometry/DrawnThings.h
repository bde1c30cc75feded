#pragma once

#include "Geometry/Arrangement.h"
#include "Geometry/Pieces.h"

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// What was added to a drawing, each thing under its number, from 1. The pieces are kept as they were drawn;
/// stretches are found from them whenever they are asked for.
class DrawnThings {
public:
    /// Stretches leave arcs by at most `chordError`.
    explicit DrawnThings(double newChordError) : chordError(newChordError) {}
    double ChordError() const { return chordError; }
    void ChordError(double value) { chordError = value; }

    /// Asserts that all coordinates are finite. Returns how many chords its arcs have.
    std::size_t Check(const TPath2D& path) const;
    /// Whether arcs with so many chords may be added.
    bool HasRoomFor(std::size_t newChords) const { return chords + newChords <= MOST_CHORDS; }
    /// Begins a thing and returns its number; paths are added to the last one.
    unsigned Begin();
    void Add(const TPath2D& path);
    /// False if there is nothing under the number.
    bool Remove(unsigned thing);

    /// Those of one thing, each from the lexicographically lesser end to the greater; none without length.
    /// Empty if there is nothing under the number.
    std::vector<Stretch> StretchesOf(unsigned thing) const;
    /// Those of all things, in an order that does not depend on that of adding; the label is the thing.
    void Collect(std::vector<Stretch>& all, Ranges& labels) const;

    /// Whether the same is under the same numbers.
    bool operator==(const DrawnThings& other) const;

    // How things are streamed: as a list of numbers, x1, y1, x2, y2 and bulge of each piece, and a list of
    // how many pieces each thing has, REMOVED for one that was removed.

    static constexpr int REMOVED = -1;
    static constexpr unsigned PIECE_NUMBERS = 5;
    /// Of all numbers; forgets what was removed.
    std::size_t NNumbers();
    /// `index` counts from 0, as `thing` does.
    double Number(std::size_t index) const;
    std::size_t NThings() const { return things.size(); }
    int NPieces(std::size_t thing) const { return things[thing].count; }

    void ClearNumbers();
    void ClearThings() { things.clear(); }
    void AddNumber(double number);
    /// How many numbers the last piece has got; 0 if it has all.
    unsigned NPending() const { return pending; }
    void AddThing(int count) { things.push_back({0, count, 0}); }
    /// Gives the last thing one more piece; false if there is none to give it to.
    bool AddPiece();
    /// To be called when everything is read. False if the lists do not fit each other, a number is not
    /// finite, or arcs have too many chords.
    bool Complete();

private:
    struct Thing {
        std::size_t begin; // its pieces
        int count;
        std::size_t chords = 0;
    };
    /// So that a small file cannot ask for all memory there is.
    static constexpr std::size_t MOST_CHORDS = std::size_t{1} << 24;
    std::size_t ChordsOf(const TPathPiece& piece) const;
    /// Forgets the pieces of things that were removed.
    void Compact();
    template <class Visit>
    void ForEachStretch(const Thing& thing, Visit visit) const;

    double chordError;
    std::vector<TPathPiece> pieces; // of things removed, too, until they are more than half of all
    std::vector<Thing> things;
    std::size_t removedPieces = 0;
    std::size_t chords = 0; // of all arcs
    unsigned pending = 0;
};

} // namespace ZoPrimitives
