#pragma once

#include "Persistence/instances/InstanceTables.h"
#include "Persistence/objects/MadeObjects.h"
#include "Persistence/schema/PointerResolver.h"

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ZoPrimitives {

/// Copies objects that were read on their own into the members that they are the values of, owners first, and
/// lets the members take their places. Members that were read in place stay, or move with an owner that is
/// copied.
class MemberObjects final : private ValueTaker {
public:
    MemberObjects(TBinInStream& stream, MadeObjects& made)
        : stream(stream), unresolved(InstanceTables::Of(stream).unresolved), made(made) {}

    void Run();

private:
    void TakeValue(TZoClassFieldPointer& field, ZoStreamableBase* owner, int uid) override;
    void Copy(TZoClassFieldPointer& field, ZoStreamableBase* owner, ZoStreamableBase* value,
              std::size_t entry);
    void Walk(std::size_t entry);
    void Follow(std::size_t entry);
    std::size_t EntryOf(int uid) const;
    bool IsMember(int uid, const ZoStreamableBase* object) const { return made.members.Get(uid) == object; }
    void MoveInvalidToOwners();

    static constexpr std::size_t NOBODY = static_cast<std::size_t>(-1);

    TBinInStream& stream;
    TBinUnresolvedPointers& unresolved;
    MadeObjects& made;
    bool collecting = false;
    std::size_t walked = 0;                         // entry
    std::vector<std::pair<int, std::size_t>> byUid; // entries, rising
    std::vector<std::size_t> claims;                // by entry: the first entry that claims it
    std::unordered_map<const ZoStreamableBase*, ZoStreamableBase*> owners;
    std::vector<const ZoStreamableBase*> taken;
    std::vector<std::size_t> waiting;
};

} // namespace ZoPrimitives
