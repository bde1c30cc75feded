#include "Geometry/SweptMesh.h"

#include "Geometry/Triangulation.h"

#include <algorithm>

namespace ZoPrimitives {

std::vector<std::vector<LDPoint>> FlattenedRings(const TRegion& section, double chordError) {
    std::vector<std::vector<LDPoint>> rings;
    for (unsigned long long i = 1; i <= section.NContours(); ++i) {
        const TPolyline2D chords = section.Contour(i).Flattened(chordError);
        std::vector<LDPoint> ring;
        for (unsigned long long k = 1; k <= chords.NVertices(); ++k) {
            const LDPoint vertex(chords.Vertex(k).X(), chords.Vertex(k).Y());
            if (ring.empty() || ring.back() != vertex) ring.push_back(vertex);
        }
        while (ring.size() > 1 && ring.front() == ring.back()) ring.pop_back();
        const double area = chords.SignedArea();
        if (ring.size() < 3 || area == 0) continue;
        if ((area < 0) != section.IsHole(i)) std::reverse(ring.begin(), ring.end());
        rings.push_back(ring);
    }
    return rings;
}

T3DMesh SweptMesh(const std::vector<std::vector<LDPoint>>& rings, const std::vector<Station>& stations) {
    T3DMesh mesh;
    int count = 0; // of vertices at a station
    for (const auto& ring : rings) count += static_cast<int>(ring.size());
    for (const Station& station : stations) {
        for (const auto& ring : rings)
            for (const LDPoint& p : ring) mesh.AddVertex(PointAt(station.At(p)));
    }
    const int last = count * (static_cast<int>(stations.size()) - 1);
    for (const auto& [a, b, c] : Triangulated(rings)) {
        mesh.AddTriangle({c + 1, b + 1, a + 1});
        mesh.AddTriangle({last + a + 1, last + b + 1, last + c + 1});
    }
    for (int station = 0; station < last; station += count) {
        int first = station + 1;
        for (const auto& ring : rings) {
            const auto size = static_cast<int>(ring.size());
            for (int i = 0; i < size; ++i) {
                const int p = first + i, q = first + (i + 1) % size;
                mesh.AddTriangle({p, q, q + count});
                mesh.AddTriangle({p, q + count, p + count});
            }
            first += size;
        }
    }
    return mesh;
}

} // namespace ZoPrimitives
