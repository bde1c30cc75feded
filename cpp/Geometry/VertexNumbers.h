#pragma once

#include "ZoPrimitives/TPolyline2D.h"

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

// How vertices are streamed: as a list of numbers, x, y and bulge of each.

/// `count` is how many numbers the last vertex has got, 0 if it has all.
inline void AddNumber(std::vector<TPathVertex>& vertices, unsigned& count, double number) {
    if (count == 0) vertices.emplace_back();
    TPathVertex& vertex = vertices.back();
    (count == 0 ? vertex.point.x : count == 1 ? vertex.point.y : vertex.bulge) = number;
    count = (count + 1) % 3;
}

/// `index` counts from 1.
inline double NumberAt(const std::vector<TPathVertex>& vertices, int index) {
    const auto i = static_cast<std::size_t>(index) - 1;
    const TPathVertex& vertex = vertices[i / 3];
    return i % 3 == 0 ? vertex.point.x : i % 3 == 1 ? vertex.point.y : vertex.bulge;
}

} // namespace ZoPrimitives
