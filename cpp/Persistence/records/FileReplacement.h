#pragma once

#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// Puts a whole new version of a file in the place of the version before.
///
/// The new version first takes the target's name with "-new" behind it, in one step; then it is copied over
/// the target and deleted. As long as that file stands, the target may be torn. Everything throws as
/// `ThrowUnwritten`; whatever happens, at every instant a whole version stands under one of the names.
class FileReplacement {
public:
    /// Builds the names. Throws `std::bad_alloc` when they find no memory.
    explicit FileReplacement(const char* target);

    const ZoString& Target() const { return target; }
    const ZoString& Fresh() const { return fresh; }

    /// Keeps the target as its "-bak" copy. A target that a stopped replacement left torn is made whole
    /// first.
    void MakeBackup() const;
    /// Puts `written` in the target's place; it is named `Fresh()` from then on.
    void Announce(const ZoString& written) const;
    void Perform() const;
    /// The target is whole: what announces a replacement goes, if it can.
    void Conclude() const;

private:
    bool TargetIsTorn() const;

    ZoString target;
    ZoString backup;
    ZoString fresh;
};

} // namespace ZoPrimitives
