#pragma once

#include "ZoPrimitives/ZoObject.h"

#include <vector>

namespace ZoPrimitives {

/// While one stands, no object of this thread ends because its last `pointer` goes: it is noted here. Holds
/// nest.
class DestructionHold {
public:
    DestructionHold();
    ~DestructionHold();
    DestructionHold(const DestructionHold&) = delete;
    DestructionHold& operator=(const DestructionHold&) = delete;

    /// Ends the hold early. Of the objects noted, those that nobody holds and `isKept` does not name end now;
    /// kept ones are not looked at and may be gone already.
    template <class IsKept>
    void End(IsKept isKept) {
        const std::vector<const ZoObject*> objects = Lift();
        // Held first, so that none goes with another before its turn.
        for (const ZoObject* object : objects) {
            if (!isKept(object)) ZoReferenceCount::Add(object);
        }
        for (const ZoObject* object : objects) {
            if (!isKept(object)) ZoReferenceCount::Release(object);
        }
    }
    bool Noted() const { return !noted.empty(); }

private:
    friend struct ZoReferenceCount;

    std::vector<const ZoObject*> Lift(); // each object once

    std::vector<const ZoObject*> noted;
    DestructionHold* outer;
    bool standing = true;
};

} // namespace ZoPrimitives
