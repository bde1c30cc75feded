#include "Geometry/ClosedDrawing.h"

#include <algorithm>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr std::size_t MOST_ROUNDS = 20;

} // namespace

ClosedDrawing::ClosedDrawing(std::vector<Stretch> stretches, Ranges labels, unsigned decimals)
    : precision(decimals) {
    rounds.emplace_back();
    rounds[0].arrangement = std::make_unique<Arrangement>(std::move(stretches), std::move(labels));
    if (precision >= FIRST_WITHOUT_TOLERANCE) return;
    rounds[0].gaps = std::make_unique<GapClosing>(*rounds[0].arrangement, precision);
    AddRounds();
}

/// The round from which on nothing moves.
std::size_t ClosedDrawing::ResultRound() const {
    std::size_t round = 0;
    while (round + 1 < rounds.size() && rounds[round].gaps->Moves()) ++round;
    return round;
}

bool ClosedDrawing::IsSettled() const {
    const Round& round = rounds[ResultRound()];
    return round.gaps == nullptr || !round.gaps->Moves();
}

std::vector<GapClosing::Move> ClosedDrawing::Moves() const {
    std::vector<GapClosing::Move> moves;
    for (std::size_t round = 0; round < ResultRound(); ++round) rounds[round].gaps->TellMoves(moves);
    return moves;
}

/// As long as something moves in the last one: the next one is of edges that were led elsewhere.
void ClosedDrawing::AddRounds() {
    while (rounds.back().gaps->Moves() && rounds.size() <= MOST_ROUNDS) {
        Round& last = rounds.back();
        const Arrangement& drawing = *last.arrangement;
        std::vector<Stretch> stretches;
        Ranges labels;
        last.led = Ranges();
        for (unsigned edge = 0; edge < drawing.edges.size(); ++edge) {
            for (const Stretch& stretch : LedThrough(last, edge)) {
                last.led.values.push_back(static_cast<unsigned>(stretches.size()));
                stretches.push_back(stretch);
                const Numbers drawn = drawing.LabelsOf(edge);
                labels.values.insert(labels.values.end(), drawn.begin(), drawn.end());
                labels.EndRange();
            }
            last.led.EndRange();
        }
        Round next;
        next.arrangement = std::make_unique<Arrangement>(std::move(stretches), std::move(labels));
        next.gaps = std::make_unique<GapClosing>(*next.arrangement, precision);
        rounds.push_back(std::move(next));
    }
}

unsigned ClosedDrawing::Find(const Labelled& wanted) const {
    const Arrangement& drawing = *rounds[0].arrangement;
    unsigned found = Arrangement::NONE;
    drawing.forest.ForEachNear(wanted.stretch.a, 0, [&](unsigned i) {
        const Stretch& s = drawing.stretches[i];
        if (s.a == wanted.stretch.a && s.b == wanted.stretch.b && drawing.labels[i][0] == wanted.label)
            found = i;
    });
    return found;
}

ClosedDrawing::Changes ClosedDrawing::Change(const std::vector<Labelled>& removed,
                                             const std::vector<Labelled>& added) {
    const std::size_t before = ResultRound();
    auto change = std::make_unique<ArrangementChange>(*rounds[0].arrangement);
    for (const Labelled& one : removed) change->Remove(Find(one));
    for (const Labelled& one : added) change->Add(one.stretch, {one.label});
    change->Finish();
    Changes changes;
    for (std::size_t round = 0;; ++round) {
        if (round == before) changes = {false, change->nodes, change->edges, change->faces};
        if (rounds[round].gaps == nullptr) break;
        if (round + 1 == rounds.size()) {
            rounds[round].gaps->Update(*change);
            AddRounds();
            break;
        }
        auto next = std::make_unique<ArrangementChange>(*rounds[round + 1].arrangement);
        Pass(rounds[round], *change, *rounds[round + 1].arrangement, *next);
        next->Finish();
        change = std::move(next);
    }
    changes.all = ResultRound() != before;
    return changes;
}

/// The stretches of the next round that an edge leads through.
std::vector<Stretch> ClosedDrawing::LedThrough(const Round& round, unsigned edge) {
    std::vector<Stretch> stretches;
    if (round.arrangement->edges[edge].from == Arrangement::NONE) return stretches;
    if (round.gaps->IsLeft(edge)) {
        const Stretch segment = round.gaps->SegmentOf(edge);
        return {StretchBetween(segment.a, segment.b)};
    }
    const std::vector<LDPoint> path = round.gaps->PathOf(edge);
    for (std::size_t i = 1; i < path.size(); ++i) stretches.push_back(StretchBetween(path[i - 1], path[i]));
    return stretches;
}

/// Changes the next round where edges of this one lead elsewhere.
void ClosedDrawing::Pass(Round& round, const ArrangementChange& change, const Arrangement& nextDrawing,
                         ArrangementChange& next) {
    struct Led {
        unsigned edge;
        std::vector<Stretch> stretches;
    };
    std::vector<Led> changed;
    for (const unsigned edge : round.gaps->Update(change)) {
        const Numbers drawn = round.arrangement->LabelsOf(edge), was = round.led[edge];
        std::vector<Stretch> stretches = LedThrough(round, edge);
        const auto isSame = [&](const Stretch& s, unsigned i) {
            const Stretch& t = nextDrawing.stretches[i];
            const Numbers labels = nextDrawing.labels[i];
            return s.a == t.a && s.b == t.b &&
                   std::equal(drawn.begin(), drawn.end(), labels.begin(), labels.end());
        };
        if (!std::equal(stretches.begin(), stretches.end(), was.begin(), was.end(), isSame))
            changed.push_back({edge, std::move(stretches)});
    }
    for (const Led& led : changed) {
        for (const unsigned stretch : round.led[led.edge]) next.Remove(stretch);
    }
    for (const Led& led : changed) {
        std::vector<unsigned>& numbers = round.led.Change(led.edge);
        numbers.clear();
        const Numbers drawn = round.arrangement->LabelsOf(led.edge);
        for (const Stretch& stretch : led.stretches)
            numbers.push_back(next.Add(stretch, {drawn.begin(), drawn.end()}));
    }
}

} // namespace ZoPrimitives
