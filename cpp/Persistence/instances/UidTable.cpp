#include "Persistence/instances/UidTable.h"

#include <algorithm>

namespace ZoPrimitives {

void UidTable::SetApart(int uid, ZoStreamableBase* object) {
    const auto index = static_cast<std::size_t>(uid);
    if (ZoStreamableBase** present = hasSparse ? FindSparse(uid) : nullptr) {
        *present = object;
    } else if (uid >= 0 && index < dense.size()) {
        dense[index] = object;
    } else if (uid >= 0 && (index == dense.size() || index < SLACK + 4 * count)) {
        if (index >= dense.capacity()) dense.reserve(2 * index + SLACK);
        dense.resize(index + 1);
        dense[index] = object;
    } else {
        hasSparse = true;
        if (rising.empty() || rising.back().first < uid) {
            rising.emplace_back(uid, object);
        } else {
            others[uid] = object;
        }
    }
}

ZoStreamableBase* UidTable::GetSparse(int uid) const {
    ZoStreamableBase* const* found = const_cast<UidTable*>(this)->FindSparse(uid);
    return found == nullptr ? nullptr : *found;
}

ZoStreamableBase** UidTable::FindSparse(int uid) {
    if (!rising.empty() && uid <= rising.back().first) {
        const auto found =
            std::lower_bound(rising.begin(), rising.end(), uid,
                             [](const auto& entry, int wanted) { return entry.first < wanted; });
        if (found->first == uid) return &found->second;
    }
    const auto found = others.find(uid);
    return found == others.end() ? nullptr : &found->second;
}

} // namespace ZoPrimitives
