#pragma once

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

    std::vector<ZoStreamableBase*> dense;
    std::vector<std::pair<int, ZoStreamableBase*>> rising;
    std::map<int, ZoStreamableBase*> others; // no hash that a file could work against
    std::size_t count = 0;
    bool hasSparse = false; // one of the two holds something
};

} // namespace ZoPrimitives
