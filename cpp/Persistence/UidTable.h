#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace ZoPrimitives {

class ZoStreamableBase;

/// Objects by uid. Uids are dense as a rule, so the table is an array. Those that would make it much larger
/// than the number of objects stand in a list, as long as they come in rising order, or in a map. A uid
/// stands in one of the three.
class UidTable {
public:
    void Set(int uid, ZoStreamableBase* object) {
        ++count;
        if (ZoStreamableBase** present = FindSparse(uid)) {
            *present = object;
            return;
        }
        const auto index = static_cast<std::size_t>(uid);
        if (uid >= 0 && index < dense.size()) {
            dense[index] = object;
        } else if (uid >= 0 && index == dense.size()) {
            dense.push_back(object);
        } else if (uid >= 0 && index < SLACK + 4 * count) {
            if (index >= dense.capacity()) dense.reserve(2 * index + SLACK);
            dense.resize(index + 1);
            dense[index] = object;
        } else if (rising.empty() || rising.back().first < uid) {
            rising.emplace_back(uid, object);
        } else {
            others[uid] = object;
        }
    }
    /// Null for a uid without object, and for 0.
    ZoStreamableBase* Get(int uid) const {
        if (uid == 0) return nullptr;
        const auto index = static_cast<std::size_t>(uid);
        if (uid > 0 && index < dense.size() && dense[index] != nullptr) return dense[index];
        ZoStreamableBase* const* found = const_cast<UidTable*>(this)->FindSparse(uid);
        return found == nullptr ? nullptr : *found;
    }
    void Reserve(std::size_t uids) { dense.reserve(uids); }
    void Clear() { *this = UidTable(); }

private:
    static constexpr std::size_t SLACK = 1024;

    ZoStreamableBase** FindSparse(int uid) {
        if (!rising.empty() && uid <= rising.back().first) {
            const auto found =
                std::lower_bound(rising.begin(), rising.end(), uid,
                                 [](const auto& entry, int wanted) { return entry.first < wanted; });
            if (found->first == uid) return &found->second;
        }
        if (others.empty()) return nullptr;
        const auto found = others.find(uid);
        return found == others.end() ? nullptr : &found->second;
    }

    std::vector<ZoStreamableBase*> dense;
    std::vector<std::pair<int, ZoStreamableBase*>> rising;
    std::map<int, ZoStreamableBase*> others; // no hash that a file could work against
    std::size_t count = 0;
};

} // namespace ZoPrimitives
