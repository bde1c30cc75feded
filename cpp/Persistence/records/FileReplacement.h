#pragma once

#include "ZoPrimitives/TZoPath.h"

namespace ZoPrimitives {

/// The call that fails when a file cannot take the place of the one before.
inline constexpr const char* FINALIZE = "TFileBinOutStream::Finalize";

/// Puts a whole new version of a file in the place of the version before.
///
/// The new version is first renamed, in one step, to the target's name with "-new" added; then it is copied
/// over the target and deleted. While that file exists, the target may be torn. Every function throws as
/// `ThrowUnwritten` does; whatever happens, one of the names holds a whole version at every instant.
class FileReplacement {
public:
    /// Builds the names. Throws `std::bad_alloc` when there is no memory for them.
    explicit FileReplacement(const TZoPath& target);

    const TZoPath& Target() const { return target; }
    const TZoPath& Fresh() const { return fresh; }

    /// Throws when the system takes one of the names, or cannot tell; before anything is touched.
    void CheckNames(bool backup) const;
    /// Copies the target to its "-bak" name. A target that a stopped replacement left torn is first made
    /// whole.
    void MakeBackup() const;
    /// Puts `written` in the target's place; it is named `Fresh()` from then on.
    void Announce(const TZoPath& written) const;
    void Perform() const;
    /// Tells that the target is whole: deletes the file that announced a replacement, if that can be done.
    void Conclude() const;

private:
    bool TargetIsTorn() const;

    TZoPath target;
    TZoPath backup;
    TZoPath fresh;
};

} // namespace ZoPrimitives
