#pragma once

#include "Geometry/Arrangement.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace ZoPrimitives {

/// Calls `visit(ring)` for closed walks along the half-edges for which `isBorder(half)` holds, which have
/// what they go around to their left; each walk meets no node twice. `halves` are all of these, sorted.
template <class IsBorder, class Visit>
void ForEachRing(const Arrangement& arrangement, const std::vector<unsigned>& halves, IsBorder isBorder,
                 Visit visit) {
    std::vector<bool> seen(halves.size());
    const auto isSeen = [&](unsigned half) -> std::vector<bool>::reference {
        return seen[static_cast<std::size_t>(std::lower_bound(halves.begin(), halves.end(), half) -
                                             halves.begin())];
    };
    const auto nextOf = [&](unsigned half) {
        unsigned h = arrangement.next[half];
        while (!isBorder(h)) h = arrangement.next[h ^ 1];
        return h;
    };
    // Where a walk comes back to a node, it has closed a ring.
    std::vector<unsigned> walk;
    std::unordered_map<unsigned, std::size_t> places; // in the walk: of its first node, and of those where it
                                                      // could come back
    for (const unsigned start : halves) {
        for (unsigned h = start; !isSeen(h); h = nextOf(h)) {
            isSeen(h) = true;
            const unsigned origin = arrangement.Origin(h);
            if (walk.empty() || arrangement.around.Size(origin) > 2) places[origin] = walk.size();
            walk.push_back(h);
            const auto met = places.find(arrangement.Target(h));
            if (met == places.end()) continue;
            const std::vector<unsigned> ring(walk.begin() + static_cast<std::ptrdiff_t>(met->second),
                                             walk.end());
            for (const unsigned closed : ring) places.erase(arrangement.Origin(closed));
            walk.resize(walk.size() - ring.size());
            visit(ring);
        }
    }
}

/// Whether a ring goes around something, and not around a hole: it turns left at its least node.
inline bool IsOuterRing(const Arrangement& arrangement, const std::vector<unsigned>& ring) {
    const std::size_t count = ring.size();
    std::size_t least = 0;
    for (std::size_t i = 1; i < count; ++i) {
        if (arrangement.CompareNodes(arrangement.Origin(ring[i]), arrangement.Origin(ring[least])) < 0)
            least = i;
    }
    return arrangement.Turn(ring[(least + count - 1) % count], ring[least]) > 0;
}

} // namespace ZoPrimitives
