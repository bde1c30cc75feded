#pragma once

#include "Platform/Platform.h"
#include "ZoPrimitives/FileReading.h"
#include "ZoPrimitives/TZoPath.h"
#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// Ends the name of the previous version, which is kept beside its target.
inline constexpr const char* BACKUP_SUFFIX = "-bak";
/// Ends the name of the whole new version while it is being put in the target's place. While a file of that
/// name exists, the target may be torn.
inline constexpr const char* FRESH_SUFFIX = "-new";

/// Opens an existing file for its reader. `reading` becomes viewing for a read-only file. Throws
/// `XReadStream` "Não foi possível ler o arquivo " and the name.
Platform::FileHandle OpenToRead(const TZoPath& name, TFileReading& reading, const char* location);

/// Whether a save is putting a new version in the place of the file, or was stopped doing so.
bool BeingReplaced(const TZoPath& name);

/// Loads a file that is viewed, and loads it again if a save was replacing it meanwhile; waits for that save
/// for a second at most. `load` must leave nothing of its previous call behind.
template <class Load>
void LoadSteadily(const TZoPath& name, Load load) {
    constexpr unsigned STEP = 10, PATIENCE = 1000; // ms
    for (unsigned waited = 0; waited < PATIENCE; waited += STEP) {
        if (!BeingReplaced(name)) {
            load();
            if (!BeingReplaced(name)) return;
        }
        Platform::Current().Wait(STEP);
    }
    load(); // the save was stopped, perhaps long ago
}

/// Whether there is such a file. Throws as `ThrowUnwritten` does when the system cannot tell.
bool FileIsThere(const TZoPath& name, const char* location);

/// Throws as `ThrowUnwritten` when there is such a file and it forbids writing.
void RefuseReadOnly(const TZoPath& name, const char* location);

/// Throws with the system's latest error.
[[noreturn]] void ThrowUnreadable(const TZoPath& name, const char* location);

/// Throws `XWriteStreamOutOfSpace` for a full device and `XWriteStream` otherwise. `path` names the file.
[[noreturn]] void ThrowUnwritten(unsigned long error, const ZoString& location, const TZoPath& path);

} // namespace ZoPrimitives
