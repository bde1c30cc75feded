#pragma once

#include "ZoPrimitives/ZoObject.h"

#include <cstdint>
#include <vector>

namespace ZoPrimitives {

/// The objects that do not end with a `DestructionHold`, whoever lets go of them.
class KeptObjects {
public:
    class Action {
    public:
        virtual void operator()(const ZoObject* kept) = 0;

    protected:
        ~Action() = default;
    };
    /// Names each; allocates nothing. They may be gone already, and null may be among them.
    virtual void ForEach(Action& action) const = 0;

protected:
    ~KeptObjects() = default;
};

/// While one stands, no object of this thread ends because its last `pointer` goes: it is noted here. Holds
/// nest.
///
/// When it ends, what was noted ends too, unless somebody holds it again or it is kept. Where there is no
/// memory to note an object, it ends at once under the same conditions. Nothing here throws.
class DestructionHold {
public:
    explicit DestructionHold(const KeptObjects& kept) noexcept;
    ~DestructionHold() { End(); }
    DestructionHold(const DestructionHold&) = delete;
    DestructionHold& operator=(const DestructionHold&) = delete;

    void End() noexcept;

private:
    friend struct ZoReferenceCount;

    /// Whether the object is to live on, noted here or in an outer hold or kept by one.
    bool Takes(const ZoObject* object) noexcept;
    bool Knows(const ZoObject* object) const noexcept;

    const KeptObjects& kept;
    std::vector<std::uintptr_t> noted; // addresses; the lowest bit marks a kept one
    DestructionHold* outer;
    bool standing = true;
};

} // namespace ZoPrimitives
