#include "Persistence/objects/MemberObjects.h"

#include "Persistence/objects/ObjectReader.h"
#include "ZoPrimitives/BinUnresolved.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <algorithm>
#include <iterator>
#include <typeinfo>

namespace ZoPrimitives {

void MemberObjects::Run() {
    const auto& entries = unresolved.Entries();
    byUid.reserve(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) byUid.emplace_back(entries[i].uid, i);
    if (!std::is_sorted(byUid.begin(), byUid.end())) std::sort(byUid.begin(), byUid.end());
    claims.assign(entries.size(), NOBODY);
    collecting = true;
    for (std::size_t i = 0; i < entries.size(); ++i) Walk(i);
    collecting = false;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (claims[i] == NOBODY) waiting.push_back(i);
    }
    while (!waiting.empty()) {
        const std::size_t next = waiting.back();
        waiting.pop_back();
        Walk(next);
    }
    MoveInvalidToOwners();
    std::sort(taken.begin(), taken.end());
    taken.erase(std::unique(taken.begin(), taken.end()), taken.end());
    made.Consume(std::move(taken));
}

void MemberObjects::TakeValue(TZoClassFieldPointer& field, ZoStreamableBase* owner, int uid) {
    ZoStreamableBase* value = stream.GetHandle(uid);
    const std::size_t entry = EntryOf(uid);
    if (value == nullptr || entry == NOBODY || !field.Accepts(value)) {
        if (!collecting || uid == 0) return;
        LostReferences& lost = InstanceTables::Of(stream).lost;
        const bool wrongType = value != nullptr && entry != NOBODY;
        // The member would be saved, too.
        if (lost.IsKept(uid, wrongType))
            throw XCannotKeep(field.GetOwnerClass()->GetName(), field.GetFieldName(),
                              "TBinInStreamer::KeepUnknown");
        return lost.Add(field, uid, wrongType);
    }
    const bool stands = IsMember(uid, value) && field.Get(owner) == value;
    if (!collecting && stands) {
        if (claims[entry] != walked) return;
        Follow(entry);
        owners[value] = owner;
    } else if (!collecting) {
        Copy(field, owner, value, entry);
    } else if (claims[entry] == NOBODY && (stands || !IsMember(uid, value))) {
        claims[entry] = walked;
    }
}

/// Goes on with what the object claims itself.
void MemberObjects::Follow(std::size_t entry) {
    claims[entry] = NOBODY;
    waiting.push_back(entry);
}

void MemberObjects::Copy(TZoClassFieldPointer& field, ZoStreamableBase* owner, ZoStreamableBase* value,
                         std::size_t entry) {
    field.Set(owner, value);
    // A second owner only gets a copy.
    if (claims[entry] != walked) return;
    Follow(entry);
    // A member of another type took only a part of the object; the record's class does not fit it.
    ZoStreamableBase* member = field.Get(owner);
    if (member == nullptr || member == value || typeid(*member) != typeid(*value)) return;
    ZoReferenceCount::Add(member); // only its owner ends it, whatever else lets go of it
    TBinUnresolved& waits = unresolved.Entries()[entry];
    if (!IsMember(waits.uid, value)) taken.push_back(value);
    made.members.Set(waits.uid, member);
    stream.SetHandle(member, waits.uid);
    waits.object = member;
    owners[value] = owner;
    owners[member] = owner;
}

void MemberObjects::Walk(std::size_t entry) {
    walked = entry;
    const TBinUnresolved& waits = unresolved.Entries()[entry];
    TZoPointerResolver resolver(stream, nullptr, this);
    resolver.Begin(unresolved.Uids() + waits.firstUid, false);
    ObjectReader::Resolve(*waits.fileClass, resolver, waits.object);
}

/// The last entry of that uid.
std::size_t MemberObjects::EntryOf(int uid) const {
    const auto behind = std::upper_bound(byUid.begin(), byUid.end(), std::pair(uid, NOBODY));
    return behind == byUid.begin() || std::prev(behind)->first != uid ? NOBODY : std::prev(behind)->second;
}

void MemberObjects::MoveInvalidToOwners() {
    for (ZoStreamableBase*& object : made.invalid) {
        for (auto owner = owners.find(object); owner != owners.end(); owner = owners.find(object)) {
            object = owner->second;
        }
    }
}

} // namespace ZoPrimitives
