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

    /// Asserts that all coordinates are finite.
    static void Check(const TPath2D& path);
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

private:
    struct Thing {
        std::size_t begin; // its pieces
        std::size_t count;
        bool removed;
    };
    /// Forgets the pieces of things that were removed.
    void Compact();
    template <class Visit>
    void ForEachStretch(const Thing& thing, Visit visit) const;

    double chordError;
    std::vector<TPathPiece> pieces; // of things removed, too, until they are more than half of all
    std::vector<Thing> things;
    std::size_t removedPieces = 0;
};

} // namespace ZoPrimitives
