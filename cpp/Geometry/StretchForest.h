#pragma once

#include "Geometry/StretchTree.h"

#include <cmath>
#include <vector>

namespace ZoPrimitives {

/// Finds stretches near a place while some come and go: trees, the later ones smaller, which become one where
/// their sizes meet. Stretches that went lie nowhere (`Nowhere`), and no predicate finds them; their places
/// may be used again.
class StretchForest {
public:
    static Stretch Nowhere() { return {{HUGE_VAL, HUGE_VAL}, {HUGE_VAL, HUGE_VAL}}; }

    /// Of all stretches, which must stay where they are.
    void Build(const std::vector<Stretch>& stretches);
    void Add(unsigned index);
    /// One more lies nowhere.
    void Remove();

    /// As long as nothing was added.
    const StretchTree& Whole() const { return trees.front(); }
    template <class Place, class Visit>
    void ForEachNear(const Place& place, double reach, Visit visit) const {
        for (const StretchTree& tree : trees) tree.ForEachNear(place, reach, visit);
    }
    std::size_t Below(const LDPoint& p) const {
        std::size_t best = StretchTree::NONE;
        for (const StretchTree& tree : trees) best = tree.Below(p, best);
        return best;
    }

private:
    void BuildWhole();

    const std::vector<Stretch>* stretches = nullptr;
    std::vector<StretchTree> trees;
    std::vector<std::size_t> sizes; // of the trees
    std::size_t stale = 0;          // that went since they were built
};

} // namespace ZoPrimitives
