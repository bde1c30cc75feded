#pragma once

#include "Geometry/GapClosing.h"

#include <memory>
#include <vector>

namespace ZoPrimitives {

/// At precisions from this one on, nothing is near enough to be moved.
constexpr unsigned FIRST_WITHOUT_TOLERANCE = 21;

/// A drawing whose gaps are closed, round by round, until nothing is near enough to be moved, or after 20
/// rounds.
class ClosedDrawing {
public:
    /// As for `Arrangement`. At the last precisions nothing is moved.
    ClosedDrawing(std::vector<Stretch> stretches, Ranges labels, unsigned precision);

    const Arrangement& Result() const { return *rounds[ResultRound()].arrangement; }
    bool IsSettled() const;
    std::vector<GapClosing::Move> Moves() const;

    /// A stretch and its label.
    struct Labelled {
        Stretch stretch;
        unsigned label;
    };
    /// What a change of the drawing changed in the result.
    struct Changes {
        bool all = true; // it is another round's: everything
        std::vector<unsigned> nodes, edges, faces;
    };
    /// Stretches go, and others come; those that go are there.
    Changes Change(const std::vector<Labelled>& removed, const std::vector<Labelled>& added);
    /// How many stretches were drawn.
    std::size_t Size() const { return rounds[0].arrangement->stretches.size(); }

private:
    struct Round {
        std::unique_ptr<Arrangement> arrangement;
        std::unique_ptr<GapClosing> gaps; // null where there is no tolerance
        Ranges led;                       // edge: the stretches of the next round that it leads through
    };
    std::size_t ResultRound() const;
    void AddRounds();
    unsigned Find(const Labelled& stretch) const;
    static std::vector<Stretch> LedThrough(const Round& round, unsigned edge);
    static void Pass(Round& round, const ArrangementChange& change, const Arrangement& nextDrawing,
                     ArrangementChange& next);

    unsigned precision;
    std::vector<Round> rounds;
};

} // namespace ZoPrimitives
