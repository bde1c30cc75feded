#include "Platform/Platform.h"
#include "Platform/windows/Interference.h"
#include "Platform/windows/Paths.h"
#include "Platform/windows/Windows.h"

#include <random>
#include <string>
#include <string_view>

namespace ZoPrimitives::Platform {

namespace {

bool Fails(DWORD error) {
    ::SetLastError(error);
    return false;
}

/// What the system says of a name, with the attributes of what it names.
struct Found {
    DWORD attributes = INVALID_FILE_ATTRIBUTES;

    bool Exists() const { return attributes != INVALID_FILE_ATTRIBUTES; }
    bool Has(DWORD any) const { return Exists() && (attributes & any) != 0; }
};

/// False, with the last error, when the system cannot tell whether there is such a file.
bool Find(Services& services, const SystemPath& path, Found& found) {
    return DespiteInterference(services, {{path, GENERIC_READ}}, [&] {
        found.attributes = ::GetFileAttributesW(path.c_str());
        return found.Exists() || NotFound(::GetLastError());
    });
}

bool SameFile(const SystemPath& a, const SystemPath& b) {
    const OpenedFile first = OpenAmongAll(a.c_str(), FILE_READ_ATTRIBUTES),
                     second = OpenAmongAll(b.c_str(), FILE_READ_ATTRIBUTES);
    BY_HANDLE_FILE_INFORMATION one, other;
    return first && second && ::GetFileInformationByHandle(first.Get(), &one) != 0 &&
           ::GetFileInformationByHandle(second.Get(), &other) != 0 &&
           one.dwVolumeSerialNumber == other.dwVolumeSerialNumber &&
           one.nFileIndexHigh == other.nFileIndexHigh && one.nFileIndexLow == other.nFileIndexLow;
}

/// The disk space of a file; 0 if it does not exist.
unsigned long long Room(const SystemPath& path) {
    DWORD high = 0;
    ::SetLastError(ErrorNone);
    const DWORD low = ::GetCompressedFileSizeW(path.c_str(), &high);
    if (low == INVALID_FILE_SIZE && ::GetLastError() != ErrorNone) return 0;
    return static_cast<unsigned long long>(high) << 32 | low;
}

/// Whether the copy certainly does not fit. False also if the disk does not tell.
bool NoRoom(const SystemPath& from, const SystemPath& to) {
    ULARGE_INTEGER available;
    if (::GetDiskFreeSpaceExW(FolderOf(to.c_str()).c_str(), &available, nullptr, nullptr) == 0) return false;
    const unsigned long long needed = Room(from), present = Room(to);
    return needed > present && needed - present > available.QuadPart;
}

/// Writes a copy to the device, even if it became read-only with its source's attributes.
bool SynchroniseCopy(const SystemPath& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
        ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    const OpenedFile file = OpenAmongAll(path.c_str(), GENERIC_WRITE);
    return file && (::FlushFileBuffers(file.Get()) != 0 || ::GetLastError() == ERROR_INVALID_FUNCTION);
}

/// Gives a file, at the end of its own life, attributes of another one.
class AttributesInTheEnd {
public:
    AttributesInTheEnd(const SystemPath& file, const Found& as)
        : path(file), attributes((as.attributes & TAKEN) | FILE_ATTRIBUTE_ARCHIVE) {}
    AttributesInTheEnd(const AttributesInTheEnd&) = delete;
    AttributesInTheEnd& operator=(const AttributesInTheEnd&) = delete;
    ~AttributesInTheEnd() {
        const DWORD error = ::GetLastError();
        ::SetFileAttributesW(path.c_str(), attributes);
        ::SetLastError(error);
    }

private:
    static constexpr DWORD TAKEN = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                   FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

    const SystemPath& path;
    DWORD attributes;
};

/// Copies over what is there.
bool CopyOver(Services& services, const SystemPath& from, const SystemPath& to) {
    const std::initializer_list<Use> uses = {{from, GENERIC_READ}, {to, GENERIC_WRITE}};
    return DespiteInterference(services, uses,
                               [&] { return ::CopyFileW(from.c_str(), to.c_str(), FALSE) != 0; }) &&
           DespiteInterference(services, {}, [&] { return SynchroniseCopy(to); });
}

bool Delete(Services& services, const SystemPath& path) {
    return DespiteInterference(services, {{path, DELETE}}, [&] { return ::DeleteFileW(path.c_str()) != 0; });
}

/// Copies to a file of our own making, which does not stay when that fails.
bool CopyToNew(Services& services, const SystemPath& from, const SystemPath& to) {
    const bool made = DespiteInterference(services, {{to, GENERIC_WRITE}}, [&] {
        return static_cast<bool>(OpenedFile(
            ::CreateFileW(to.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                          nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)));
    });
    if (!made) return false;
    if (CopyOver(services, from, to)) return true;
    const DWORD error = ::GetLastError();
    Delete(services, to);
    return Fails(error);
}

/// Of a file or folder that exists, links followed.
std::wstring FinalPath(const OpenedFile& file) {
    std::wstring path(::GetFinalPathNameByHandleW(file.Get(), nullptr, 0, 0), L'\0');
    path.resize(::GetFinalPathNameByHandleW(file.Get(), path.data(), static_cast<DWORD>(path.size()), 0));
    return path;
}

bool OnRemoteDrive(const std::wstring& full) {
    std::wstring root(full.size() + MAX_PATH, L'\0');
    return ::GetVolumePathNameW(full.c_str(), root.data(), static_cast<DWORD>(root.size())) != 0 &&
           ::GetDriveTypeW(root.c_str()) == DRIVE_REMOTE;
}

} // namespace

bool Services::CopyWholeFile(const char* fromName, const char* toName) {
    const SystemPath from(fromName), to(toName);
    if (!from || !to) return false;
    Found source, target;
    if (!Find(*this, from, source) || !source.Exists() || !Find(*this, to, target)) return false;
    // These do not change by waiting.
    if (source.Has(FILE_ATTRIBUTE_DIRECTORY)) return Fails(ErrorAccessDenied);
    if (target.Has(FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) return Fails(ErrorAccessDenied);
    if (target.Exists() && SameFile(from, to)) return Fails(ErrorSharingViolation);
    if (NoRoom(from, to)) return Fails(ErrorDiskFull);
    const AttributesInTheEnd attributes(to, target.Exists() ? target : source);
    if (!target.Exists()) return CopyToNew(*this, from, to);
    // The system copies over no file that has these.
    if (target.Has(FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM))
        ::SetFileAttributesW(to.c_str(), FILE_ATTRIBUTE_NORMAL);
    return CopyOver(*this, from, to);
}

bool Services::DeleteWholeFile(const char* name) {
    const SystemPath path(name);
    return path && Delete(*this, path);
}

bool Services::MoveWholeFile(const char* fromName, const char* toName) {
    const SystemPath from(fromName), to(toName);
    if (!from || !to) return false;
    Found target;
    if (!Find(*this, to, target)) return false;
    // Not every system refuses this by itself.
    if (target.Has(FILE_ATTRIBUTE_READONLY)) return Fails(ErrorAccessDenied);
    return DespiteInterference(*this, {{from, DELETE}, {to, DELETE}}, [&] {
        // Moving onto an open file is only reported as denied; opening it for deletion tells why.
        if (!OpenAmongAll(to.c_str(), DELETE) && ::GetLastError() == ERROR_SHARING_VIOLATION) return false;
        return ::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) !=
               0;
    });
}

bool Services::FileExists(const char* name, bool* readOnly) {
    if (readOnly != nullptr) *readOnly = false;
    const SystemPath path(name);
    Found found;
    if (!path || !Find(*this, path, found) || !found.Exists()) return false;
    if (found.Has(FILE_ATTRIBUTE_DIRECTORY)) return Fails(ErrorFileNotFound);
    if (readOnly == nullptr) return true;
    *readOnly = found.Has(FILE_ATTRIBUTE_READONLY);
    if (*readOnly) return true;
    // Access rights or the disk may forbid writing too, which only an attempt tells.
    if (!OpenAmongAll(path.c_str(), GENERIC_WRITE)) {
        const DWORD error = ::GetLastError();
        *readOnly = error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT;
    }
    return true;
}

bool Services::NetworkFile(const char* name) {
    if (name == nullptr || *name == '\0') return false;
    const SystemPath path(name);
    if (!path) return false;
    const std::wstring full = FullPath(path.c_str());
    if (NamesServer(full)) return true;
    // A drive, and a link on the way, may lead to a server.
    for (const std::wstring& asked : {full, FolderOf(full)}) {
        const OpenedFile file = OpenAmongAll(asked.c_str(), 0);
        const DWORD error = ::GetLastError();
        if (file) return NamesServer(FinalPath(file)) || OnRemoteDrive(full);
        const DWORD attributes = ::GetFileAttributesW(asked.c_str());
        // A link leads to something that does not answer, or is not there yet.
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
            return true;
        if (!NotFound(error)) break;
    }
    return OnRemoteDrive(full);
}

std::string Services::TemporaryFileName(const char* target) {
    if (target == nullptr || *target == '\0') {
        SetLastError(ErrorPathNotFound);
        return {};
    }
    const std::string_view beside = target;
    const std::string prefix = std::string(beside.substr(0, beside.find_last_of("\\/:") + 1)) + "~zo";
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string name = prefix;
        for (int i = 0; i < 6; ++i) name += "0123456789abcdefghijklmnopqrstuv"[random() % 32];
        name += ".tmp";
        const SystemPath path(name.c_str());
        if (!path) break;
        const OpenedFile file(::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                            CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file) return name;
        if (::GetLastError() != ERROR_FILE_EXISTS && ::GetLastError() != ERROR_ALREADY_EXISTS) break;
    }
    return {};
}

} // namespace ZoPrimitives::Platform
