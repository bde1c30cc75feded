#include "Geometry/StretchForest.h"

#include "Geometry/Ranges.h"

#include <algorithm>

namespace ZoPrimitives {

void StretchForest::Build(const std::vector<Stretch>& all) {
    stretches = &all;
    BuildWhole();
}

void StretchForest::BuildWhole() {
    std::vector<unsigned> contents;
    contents.reserve(stretches->size());
    for (unsigned i = 0; i < stretches->size(); ++i) {
        if (std::isfinite((*stretches)[i].a.x)) contents.push_back(i);
    }
    stale = 0;
    trees.resize(1);
    sizes.assign(1, contents.size());
    trees[0].Build(*stretches, std::move(contents));
}

void StretchForest::Add(unsigned index) {
    std::vector<unsigned> contents{index};
    while (!trees.empty() && sizes.back() <= contents.size()) {
        const std::vector<unsigned> more = trees.back().Contents();
        contents.insert(contents.end(), more.begin(), more.end());
        trees.pop_back();
        sizes.pop_back();
    }
    SortUnique(contents);
    contents.erase(std::remove_if(contents.begin(), contents.end(),
                                  [&](unsigned i) { return !std::isfinite((*stretches)[i].a.x); }),
                   contents.end());
    sizes.push_back(contents.size());
    trees.emplace_back().Build(*stretches, std::move(contents));
}

void StretchForest::Remove() {
    if (++stale > stretches->size() / 2 + 64) BuildWhole();
}

} // namespace ZoPrimitives
