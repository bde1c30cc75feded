#pragma once

#include "ZoPrimitives/ZoMemory.h"

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace ZoPrimitives {

class ZoStreamableBase;

/// Maps uids to objects. Uids are usually dense, so the table is an array. Uids that would make it much
/// larger than the number of objects go into a list while they ascend, otherwise into a map. A uid is in only
/// one of the three.
class UidTable {
public:
    void Set(int uid, ZoStreamableBase* object) {
        ++count;
        const auto index = static_cast<std::size_t>(uid);
        if (hasSparse || uid < 0 || index > dense.size()) {
            SetApart(uid, object);
        } else if (index < dense.size()) {
            dense[index] = object;
        } else {
            dense.push_back(object);
        }
    }
    /// Null for a uid without object, and for 0.
    ZoStreamableBase* Get(int uid) const {
        if (uid == 0) return nullptr;
        const auto index = static_cast<std::size_t>(uid);
        if (uid > 0 && index < dense.size() && dense[index] != nullptr) return dense[index];
        return hasSparse ? GetSparse(uid) : nullptr;
    }
    void Reserve(std::size_t uids) { dense.reserve(uids); }
    void Clear() noexcept { *this = UidTable(); }

private:
    static constexpr std::size_t SLACK = 1024;

    void SetApart(int uid, ZoStreamableBase* object);
    ZoStreamableBase* GetSparse(int uid) const;
    ZoStreamableBase** FindSparse(int uid);

    ZoVector<ZoStreamableBase*> dense;
    std::vector<std::pair<int, ZoStreamableBase*>> rising;
    std::map<int, ZoStreamableBase*> others; // not a hash table: a file could choose uids that collide
    std::size_t count = 0;
    bool hasSparse = false; // `rising` or `others` is not empty
};

} // namespace ZoPrimitives
