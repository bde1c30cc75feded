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
        keeps = false;
    }
    /// From here on what refers to these uids, which rise, or to an object that the field does not take, is
    /// kept.
    void Keep(std::vector<int>&& uids) {
        kept = std::move(uids);
        keeps = true;
    }
    bool IsKept(int uid, bool wrongType) const {
        return keeps && (wrongType || std::binary_search(kept.begin(), kept.end(), uid));
    }
    /// Whether such a reference was met since the last call.
    bool TakeMet() { return std::exchange(met, false); }
    /// The record of that uid was there, its object was not made.
    void Drop(int uid) {
        dropped.push_back(uid);
        sorted = false;
    }
    unsigned long long DroppedCount() const { return dropped.size(); }
    /// `wrongType`: the object is there.
    void Add(const TZoClassField& field, int uid, bool wrongType) {
        if (IsKept(uid, wrongType)) {
            met = true;
            return;
        }
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
    bool keeps = false;
    bool met = false;
    std::vector<int> kept;
    Counts counts; // as many as the application has fields
};

} // namespace ZoPrimitives
