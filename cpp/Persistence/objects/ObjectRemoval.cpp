#include "Persistence/objects/ObjectRemoval.h"

#include "Persistence/instances/InstanceTables.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <algorithm>

namespace ZoPrimitives {

TDVector<ZoStreamableBase*> ObjectRemoval::MembersOf(ZoStreamableBase* object, TZoMetaData* schema) {
    TDVector<ZoStreamableBase*> members;
    if (TZoClass* objectClass = object->GetOriginalClass(schema))
        objectClass->FillValueChildren(object, &members);
    return members;
}

void ObjectRemoval::Run(const TDList<ZoStreamableBase*>& invalid) {
    all = stream.Objects();
    GatherRemoved(invalid);
    KeepWhatOthersOwn();
    GatherMembers();
    // No object ends before the hold does, whoever lets go of it. What stays is the caller's then.
    DestructionHold hold(*this);
    for (ZoStreamableBase* object : staying) Detach(object);
    for (const ZoStreamableBase* object : unreachable) Detach(const_cast<ZoStreamableBase*>(object));
    InstanceTables::Of(stream).RemoveIf([this](const ZoStreamableBase* object) {
        return std::binary_search(removed.begin(), removed.end(), object);
    });
    for (const ZoStreamableBase* object : removed) delete object;
}

void ObjectRemoval::ForEach(Action& action) const {
    for (const ZoStreamableBase* object : all) action(object);
    for (const ZoStreamableBase* object : unreachable) action(object);
}

void ObjectRemoval::GatherRemoved(const TDList<ZoStreamableBase*>& invalid) {
    TDVector<ZoStreamableBase*> cascade;
    for (ZoStreamableBase* object : invalid) {
        if (doomed.insert(object).second) cascade.Add(object);
    }
    schema->FillObjectsCascade(&cascade);
    unreachable.insert(cascade.begin(), cascade.end());
}

/// What an object that stays owns stays too, with all that hangs from it and from its members.
void ObjectRemoval::KeepWhatOthersOwn() {
    for (ZoStreamableBase* object : all) {
        if (unreachable.count(object) == 0) staying.Add(object);
    }
    ZoItemAction keep([&](ZoStreamableBase* item) {
        if (item != nullptr && doomed.count(item) == 0 && unreachable.erase(item) != 0) staying.Add(item);
    });
    Set members;
    for (unsigned long long i = 1; i <= staying.NItems(); ++i) {
        ZoStreamableBase* object = staying[i];
        TZoClass* objectClass = object->GetOriginalClass(schema);
        if (objectClass == nullptr) continue;
        objectClass->ChildsReferences(object, keep);
        for (ZoStreamableBase* member : MembersOf(object, schema)) {
            if (members.insert(member).second) staying.Add(member);
        }
    }
}

/// Members end with their owners and must not be deleted.
void ObjectRemoval::GatherMembers() {
    Set members;
    for (const ZoStreamableBase* object : unreachable) {
        for (const ZoStreamableBase* member : MembersOf(const_cast<ZoStreamableBase*>(object), schema))
            members.insert(member);
    }
    removed.reserve(unreachable.size());
    for (const ZoStreamableBase* object : unreachable) {
        if (members.count(object) == 0) removed.push_back(object);
    }
    std::sort(removed.begin(), removed.end());
}

/// Removes all references to removed objects from the object's fields.
void ObjectRemoval::Detach(ZoStreamableBase* object) {
    const auto isRemoved = [](const void* context, const ZoStreamableBase* target) {
        return static_cast<const ObjectRemoval*>(context)->unreachable.count(target) != 0;
    };
    if (TZoClass* objectClass = object->GetOriginalClass(schema))
        objectClass->DeleteReferences(object, isRemoved, this);
}

} // namespace ZoPrimitives
