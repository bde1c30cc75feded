#include "Persistence/instances/InstanceTables.h"

#include <algorithm>
#include <utility>

namespace ZoPrimitives {

void ExcludedFields::Remove(TZoClassField* field, unsigned position) {
    const auto left = entries.begin() + static_cast<std::ptrdiff_t>(first);
    const auto found =
        std::find_if(left, entries.end(), [field](const Entry& entry) { return entry.field == field; });
    if (found == entries.end()) return;
    if (found->recordPosition != position) taken.push_back(field);
    if (found == left) {
        ++first;
    } else {
        entries.erase(found);
    }
}

void AwaitedObjects::Call(const TBinInStream& stream) {
    for (std::size_t i = 0; i < entries.size(); ++i) (*entries[i].action)(stream.GetHandle(entries[i].uid));
    Clear();
}

void InstanceTables::Add(ZoStreamableBase* object, int uid) {
    if (!uids.empty() && uids.back() > uid) uidsRise = false;
    uids.push_back(uid);
    try {
        objects.TDVector<ZoStreamableBase*>::Add(object);
    } catch (...) {
        uids.pop_back();
        throw;
    }
}

ZoStreamableBase* InstanceTables::Find(int uid) const {
    const auto found =
        uidsRise ? std::lower_bound(uids.begin(), uids.end(), uid) : std::find(uids.begin(), uids.end(), uid);
    if (found == uids.end() || *found != uid) return nullptr;
    return objects[static_cast<unsigned long long>(found - uids.begin()) + 1];
}

TDVector<ZoStreamableBase*> InstanceTables::Take() noexcept {
    TDVector<ZoStreamableBase*> taken(std::move(objects));
    Forget();
    return taken;
}

void InstanceTables::Reserve(std::size_t count) {
    objects.Reserve(count);
    uids.reserve(count);
    handles.Reserve(count + 1);
    unresolved.Reserve(count);
}

void InstanceTables::EndReading() noexcept {
    excluded.Clear();
    awaited.Clear();
    handles.Clear();
    unresolved.Clear();
}

void InstanceTables::Forget() noexcept {
    objects.RemoveAll();
    uids.clear();
    uidsRise = true;
    takenFields.clear();
    passedUids.clear();
    EndReading();
}

} // namespace ZoPrimitives
