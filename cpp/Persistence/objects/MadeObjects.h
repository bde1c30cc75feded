#pragma once

#include "Persistence/instances/UidTable.h"
#include "Persistence/objects/AwaitedMembers.h"
#include "ZoPrimitives/DestructionHold.h"
#include "ZoPrimitives/ZoStreamable.h"

#include <vector>

namespace ZoPrimitives {

class TBinInStream;

/// Owns what one read makes until it hands it over: a read that fails before deletes it. The finished objects
/// stand in the stream's list. No object ends because a setter lets go of it.
class MadeObjects final : private KeptObjects {
public:
    explicit MadeObjects(TBinInStream& stream);
    ~MadeObjects();
    MadeObjects(const MadeObjects&) = delete;
    MadeObjects& operator=(const MadeObjects&) = delete;

    void Begin(ZoStreamableBase* object) { current = object; }
    void Drop();
    void Finish();
    /// From here on the objects are the caller's, whatever happens.
    void HandOver() { owned = false; }
    /// Takes objects for which a member of another object stands now out of the stream's list and owns them.
    /// They are sorted. Never throws.
    void Consume(std::vector<const ZoStreamableBase*>&& objects) noexcept;
    /// From here on objects end when they are let go of. What was read stays, held by somebody or not.
    void EndHold() { hold.End(); }

    /// An object whose uid another one got later, which references to the uid mean then.
    struct Replaced {
        const ZoStreamableBase* object;
        int uid;
    };

    std::vector<ZoStreamableBase*> invalid; // by their own word, while they were read
    std::vector<Replaced> replaced;
    UidTable members; // objects that stand inside others
    AwaitedMembers awaited;
    bool hasValues = false;
    bool mayBeInvalid = false;        // some class answers GetIsValid
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
