#include "Platform/windows/Interference.h"

namespace ZoPrimitives::Platform {

namespace {

bool Refused(const wchar_t* path, DWORD access) {
    return !OpenAmongAll(path, access) && ::GetLastError() == ERROR_ACCESS_DENIED;
}

} // namespace

OpenedFile OpenAmongAll(const wchar_t* path, DWORD access) {
    return OpenedFile(::CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

bool DenialStays(const Use& use) {
    const wchar_t* const path = use.path.c_str();
    const DWORD attributes = ::GetFileAttributesW(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        // The attributes of a file that is deleted once the last one closes it are denied too.
        const bool none = NotFound(::GetLastError());
        return Refused(FolderOf(path).c_str(), none ? FILE_ADD_FILE : FILE_LIST_DIRECTORY);
    }
    const DWORD forbidding = use.access == GENERIC_READ ? FILE_ATTRIBUTE_DIRECTORY
                                                        : FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    return (attributes & forbidding) != 0 || Refused(path, use.access);
}

} // namespace ZoPrimitives::Platform
