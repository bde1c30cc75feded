#pragma once

#include "Persistence/instances/UidTable.h"
#include "Persistence/objects/AwaitedMembers.h"
#include "ZoPrimitives/DestructionHold.h"
#include "ZoPrimitives/ZoStreamable.h"

#include <vector>

namespace ZoPrimitives {

class TBinInStream;

/// Owns what one read makes until it hands it over; a read that fails before that deletes it all. Finished
/// objects are in the stream's list. No object ends because a setter lets go of it.
class MadeObjects final : private KeptObjects {
public:
    explicit MadeObjects(TBinInStream& stream);
    ~MadeObjects();
    MadeObjects(const MadeObjects&) = delete;
    MadeObjects& operator=(const MadeObjects&) = delete;

    /// Takes all objects out of the stream's list and ends them, but those that own each other in a circle.
    static void ReleaseAll(TBinInStream& stream) noexcept;

    void Begin(ZoStreamableBase* object) { current = object; }
    void Drop();
    void Finish();
    /// From here on the objects are the caller's, whatever happens.
    void HandOver() { owned = false; }
    /// Takes over the objects that were copied into members: removes them from the stream's list. They must
    /// be sorted. Never throws.
    void Consume(std::vector<const ZoStreamableBase*>&& objects) noexcept;
    /// From here on objects end when they are let go of. What was read so far stays, held or not.
    void EndHold() { hold.End(); }

    /// An object whose uid a later one took over: references to the uid mean that one.
    struct Replaced {
        const ZoStreamableBase* object;
        int uid;
    };

    std::vector<ZoStreamableBase*> invalid; // their `OnRead` said so
    std::vector<Replaced> replaced;
    UidTable members; // objects that are members of others
    AwaitedMembers awaited;
    bool hasValues = false;
    bool mayBeInvalid = false;        // some class overrides `GetIsValid`
    bool membersMayBeInvalid = false; // so does the class of some member

private:
    void ForEach(Action& action) const override;

    TBinInStream& stream;
    DestructionHold hold;
    ZoStreamableBase* current = nullptr;
    std::vector<const ZoStreamableBase*> consumed;
    bool owned = true;
};

} // namespace ZoPrimitives
