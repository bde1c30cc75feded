#pragma once

#include "ZoPrimitives/DestructionHold.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/dvector.h"

#include <unordered_set>
#include <vector>

namespace ZoPrimitives {

class TBinInStream;
class TZoMetaData;

/// Deletes objects that were read from a stream, with what they own. What an object that stays owns stays
/// too. If an accessor throws, all objects stay alive and in the stream's list.
class ObjectRemoval final : private KeptObjects {
public:
    ObjectRemoval(TBinInStream& stream, TZoMetaData* schema) : stream(stream), schema(schema) {}

    void Run(const TDList<ZoStreamableBase*>& invalid);

    /// The objects that are members of another (`ftChildValue`).
    static TDVector<ZoStreamableBase*> MembersOf(ZoStreamableBase* object, TZoMetaData* schema);

private:
    using Set = std::unordered_set<const ZoStreamableBase*>;

    void ForEach(Action& action) const override;
    void GatherRemoved(const TDList<ZoStreamableBase*>& invalid);
    void KeepWhatOthersOwn();
    void GatherMembers();
    void Detach(ZoStreamableBase* object);

    TBinInStream& stream;
    TZoMetaData* schema;
    TDVector<ZoStreamableBase*> all;     // the stream's objects, before
    Set doomed;                          // the objects to be removed, without what they own
    Set unreachable;                     // what is removed, and its members
    TDVector<ZoStreamableBase*> staying; // what stays, and its members
    std::vector<const ZoStreamableBase*> removed;
};

} // namespace ZoPrimitives
