#pragma once

#include <cstddef>
#include <map>
#include <vector>

namespace ZoPrimitives {

class ZoStreamableBase;

/// Objects by uid. Uids are dense as a rule, so the table is an array; those that would make it much larger
/// than the number of objects go to a map.
class UidTable {
public:
    void Set(int uid, ZoStreamableBase* object) {
        ++count;
        if (!sparse.empty()) sparse.erase(uid);
        const auto index = static_cast<std::size_t>(uid);
        if (uid >= 0 && index < dense.size()) {
            dense[index] = object;
        } else if (uid >= 0 && index == dense.size()) {
            dense.push_back(object);
        } else if (uid >= 0 && index < SLACK + 4 * count) {
            if (index >= dense.capacity()) dense.reserve(2 * index + SLACK);
            dense.resize(index + 1);
            dense[index] = object;
        } else {
            sparse[uid] = object;
        }
    }
    /// Null for a uid without object, and for 0.
    ZoStreamableBase* Get(int uid) const {
        if (uid == 0) return nullptr;
        const auto index = static_cast<std::size_t>(uid);
        if (uid > 0 && index < dense.size() && dense[index] != nullptr) return dense[index];
        if (sparse.empty()) return nullptr;
        const auto found = sparse.find(uid);
        return found == sparse.end() ? nullptr : found->second;
    }
    void Reserve(std::size_t uids) { dense.reserve(uids); }
    void Clear() { *this = UidTable(); }

private:
    static constexpr std::size_t SLACK = 1024;

    std::vector<ZoStreamableBase*> dense;
    std::map<int, ZoStreamableBase*> sparse; // no hash that a file could work against
    std::size_t count = 0;
};

} // namespace ZoPrimitives
