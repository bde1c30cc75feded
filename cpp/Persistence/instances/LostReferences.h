#pragma once

#include "ZoPrimitives/ZoReadReport.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace ZoPrimitives {

class TZoClassField;

/// Counts the references that one reading could not set. Empty, and never asked, where all is well.
class LostReferences {
public:
    using Counts = std::map<std::pair<const TZoClassField*, TReferenceLoss>, unsigned long long>;

    /// `some`: not all classes are read.
    void Begin(bool some) noexcept {
        dropped.clear();
        sorted = true;
        counts.clear();
        partial = some;
    }
    /// The record of that uid was there, its object was not made.
    void Drop(int uid) {
        dropped.push_back(uid);
        sorted = false;
    }
    unsigned long long DroppedCount() const { return dropped.size(); }
    /// `wrongType`: the object is there.
    void Add(const TZoClassField& field, int uid, bool wrongType) {
        const TReferenceLoss why = wrongType         ? TReferenceLoss::WrongType
                                   : WasDropped(uid) ? TReferenceLoss::Dropped
                                   : partial         ? TReferenceLoss::NotRead
                                                     : TReferenceLoss::Missing;
        ++counts[{&field, why}];
    }
    const Counts& GetCounts() const { return counts; }

private:
    bool WasDropped(int uid) {
        if (!sorted) std::sort(dropped.begin(), dropped.end());
        sorted = true;
        return std::binary_search(dropped.begin(), dropped.end(), uid);
    }

    std::vector<int> dropped;
    bool sorted = true;
    bool partial = false;
    Counts counts; // as many as the application has fields
};

} // namespace ZoPrimitives
