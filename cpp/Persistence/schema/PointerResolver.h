#pragma once

#include "Persistence/instances/InstanceTables.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/ZoClassField.h"

#include <cstdint>
#include <typeinfo>

namespace ZoPrimitives {

/// Takes the objects that are members of others: `owner`'s member behind `field` stands for the one read
/// under `uid`.
class ValueTaker {
public:
    virtual ~ValueTaker() = default;
    virtual void TakeValue(TZoClassFieldPointer& field, ZoStreamableBase* owner, int uid) = 0;
};

/// Walks the uids that one object's pointer fields hold and finds the objects that they name: in one pass
/// those that are members of their owner (with a `ValueTaker`), in the other all the rest.
class TZoPointerResolver {
public:
    /// `members` (may be null): by uid, the objects that stand inside others and can have no other owner.
    TZoPointerResolver(TBinInStream& stream, const UidTable* members, ValueTaker* taker)
        : handles(InstanceTables::Of(stream).handles), lost(InstanceTables::Of(stream).lost),
          members(members), taker(taker) {}

    /// Begins with an object's uids. `tells`: the object answers `OnReadPointer`.
    void Begin(const std::int32_t* uids, bool tells) {
        next = uids;
        tellsObject = tells;
    }
    int Next() { return *next++; }
    /// Returns a block of uids and moves the cursor past it.
    const std::int32_t* Take(int count) {
        const std::int32_t* begin = next;
        next += count;
        return begin;
    }
    bool Tells() const { return tellsObject; }
    void Tell(ZoStreamableBase* object, TZoClassField& application, ZoStreamableBase* target, int uid) const {
        if (tellsObject) object->OnReadPointer(&application, target, static_cast<unsigned>(uid));
    }
    ZoStreamableBase* Find(int uid) const { return handles.Get(uid); }
    /// The uid of the field names no object, or one that the field does not take.
    void Lose(const TZoClassFieldPointerBase& application, int uid, bool wrongType) const {
        lost.Add(application, uid, wrongType);
    }

    /// While true, uids are passed over.
    void SetPassing(bool passes) { passing = passes; }
    bool ResolvesReferences() const { return taker == nullptr && !passing; }
    void ResolveValue(TZoClassFieldPointer& field, ZoStreamableBase* owner, int uid) {
        if (taker != nullptr && !passing) taker->TakeValue(field, owner, uid);
    }
    /// The types of the objects that a field took last in this reading.
    struct TypesTaken {
        const std::type_info* latest = nullptr;
        const std::type_info* other = nullptr;
    };
    /// Whether the setter of `application` may be given the object that the uid names.
    bool Allows(const TZoClassFieldPointerBase& application, int uid, const ZoStreamableBase* target,
                TypesTaken& taken) const {
        if (members != nullptr && application.Owns() && members->Get(uid) == target) return false;
        const std::type_info* type = &typeid(*target);
        if (type == taken.latest || type == taken.other) return true;
        if (!application.Accepts(target)) return false;
        // Without a type test more than the type decides.
        if (application.typeTest != nullptr) taken = {type, taken.latest};
        return true;
    }

private:
    const UidTable& handles;
    LostReferences& lost;
    const UidTable* members;
    ValueTaker* taker;
    const std::int32_t* next = nullptr;
    bool tellsObject = true;
    bool passing = false;
};

} // namespace ZoPrimitives
