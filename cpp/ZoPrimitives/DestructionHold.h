#pragma once

#include "ZoPrimitives/ZoObject.h"

#include <cstdint>
#include <vector>

namespace ZoPrimitives {

/// The objects that outlive a `DestructionHold` even if nothing holds them.
class KeptObjects {
public:
    class Action {
    public:
        virtual void operator()(const ZoObject* kept) = 0;

    protected:
        ~Action() = default;
    };
    /// Calls `action` for each, allocating nothing. Objects may be null or already deleted.
    virtual void ForEach(Action& action) const = 0;

protected:
    ~KeptObjects() = default;
};

/// While a hold exists, losing the last `pointer` does not delete an object of this thread: the hold notes
/// it. Holds nest.
///
/// When the hold ends it deletes the noted objects, except those that something holds again and those that
/// are kept. An object that cannot be noted for lack of memory is deleted at once, under the same conditions.
/// Nothing here throws.
class DestructionHold {
public:
    explicit DestructionHold(const KeptObjects& kept) noexcept;
    ~DestructionHold() { End(); }
    DestructionHold(const DestructionHold&) = delete;
    DestructionHold& operator=(const DestructionHold&) = delete;

    void End() noexcept;

private:
    friend struct ZoReferenceCount;

    /// Whether the object must survive for now: noted here or by an outer hold, or kept by one.
    bool Takes(const ZoObject* object) noexcept;
    bool Knows(const ZoObject* object) const noexcept;

    const KeptObjects& kept;
    std::vector<std::uintptr_t> noted; // addresses; the lowest bit marks a kept object
    DestructionHold* outer;
    bool standing = true;
};

} // namespace ZoPrimitives
