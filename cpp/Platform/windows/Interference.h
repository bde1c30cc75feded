#pragma once

#include "Platform/Platform.h"
#include "Platform/windows/Paths.h"
#include "Platform/windows/Windows.h"

#include <initializer_list>

namespace ZoPrimitives::Platform {

/// A file and what an operation does with it.
struct Use {
    const SystemPath& path;
    DWORD access; // GENERIC_READ, GENERIC_WRITE or DELETE
};

/// Whether its attributes, its user's rights or its folder's are why the file cannot be used so.
bool DenialStays(const Use& use);

/// Whether somebody who has the file open can be the reason.
inline bool MayPass(DWORD error) {
    return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ||
           error == ERROR_LOCK_VIOLATION || error == ERROR_USER_MAPPED_FILE;
}

/// Repeats an operation for some 1.3 seconds while other programs may be in its way: virus scanners, indexers
/// and backups open what was just written. False with the last error when they stay, and at once when waiting
/// cannot help.
template <class Operation>
bool DespiteInterference(Services& services, std::initializer_list<Use> uses, Operation operation) {
    constexpr unsigned LONGEST_PAUSE = 640;
    for (unsigned pause = 10;; pause *= 2) {
        if (operation()) return true;
        const DWORD error = ::GetLastError();
        bool passes = MayPass(error) && pause <= LONGEST_PAUSE;
        if (error == ERROR_ACCESS_DENIED)
            for (const Use& use : uses) passes = passes && !DenialStays(use);
        ::SetLastError(error);
        if (!passes) return false;
        services.Wait(pause);
    }
}

/// Closes the handle when destroyed, keeping the last error.
class OpenedFile {
public:
    explicit OpenedFile(HANDLE opened) : handle(opened) {}
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;
    ~OpenedFile() {
        if (!*this) return;
        const DWORD error = ::GetLastError();
        ::CloseHandle(handle);
        ::SetLastError(error);
    }
    explicit operator bool() const { return handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle; }

private:
    HANDLE handle;
};

/// Opens a file, or a folder, whatever others do with it.
OpenedFile OpenAmongAll(const wchar_t* path, DWORD access);

} // namespace ZoPrimitives::Platform
