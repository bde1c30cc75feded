#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"

#include <random>
#include <string>
#include <string_view>
#include <utility>

namespace ZoPrimitives::Platform {

namespace {

/// Closes the handle when destroyed, keeping the last error.
class File {
public:
    explicit File(HANDLE opened) : handle(opened) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
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

/// Opens a file whatever others do with it.
File OpenAmongAll(const char* path, DWORD access) {
    return File(::CreateFileA(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool Fails(DWORD error) {
    ::SetLastError(error);
    return false;
}

bool SameFile(const char* a, const char* b) {
    const File first = OpenAmongAll(a, FILE_READ_ATTRIBUTES), second = OpenAmongAll(b, FILE_READ_ATTRIBUTES);
    BY_HANDLE_FILE_INFORMATION one, other;
    return first && second && ::GetFileInformationByHandle(first.Get(), &one) != 0 &&
           ::GetFileInformationByHandle(second.Get(), &other) != 0 &&
           one.dwVolumeSerialNumber == other.dwVolumeSerialNumber &&
           one.nFileIndexHigh == other.nFileIndexHigh && one.nFileIndexLow == other.nFileIndexLow;
}

/// The disk space of a file; 0 if it does not exist.
unsigned long long Room(const char* path) {
    DWORD high = 0;
    ::SetLastError(ErrorNone);
    const DWORD low = ::GetCompressedFileSizeA(path, &high);
    if (low == INVALID_FILE_SIZE && ::GetLastError() != ErrorNone) return 0;
    return static_cast<unsigned long long>(high) << 32 | low;
}

std::string FullPath(const char* path) {
    std::string full(MAX_PATH, '\0');
    for (int attempt = 0; attempt < 3; ++attempt) {
        const DWORD length = ::GetFullPathNameA(path, static_cast<DWORD>(full.size()), full.data(), nullptr);
        const bool fits = length < full.size();
        full.resize(length);
        if (fits) return full;
    }
    return {};
}

/// The path of the folder that holds a file, up to its last separator; empty for a bare name.
std::string FolderOf(std::string_view path) {
    return std::string(path.substr(0, path.find_last_of("\\/:") + 1));
}

/// Whether the copy certainly does not fit. False also if the disk does not tell.
bool NoRoom(const char* from, const char* to) {
    ULARGE_INTEGER available;
    if (::GetDiskFreeSpaceExA(FolderOf(FullPath(to)).c_str(), &available, nullptr, nullptr) == 0)
        return false;
    const unsigned long long needed = Room(from), present = Room(to);
    return needed > present && needed - present > available.QuadPart;
}

/// Writes a copy to the device, even if it is read-only like its source.
bool SynchroniseCopy(const char* path) {
    const DWORD attributes = ::GetFileAttributesA(path);
    const bool readOnly =
        attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    if (readOnly) ::SetFileAttributesA(path, attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    const File file = OpenAmongAll(path, GENERIC_WRITE);
    const DWORD error = ::GetLastError();
    if (readOnly) ::SetFileAttributesA(path, attributes);
    if (!file) return Fails(error);
    return ::FlushFileBuffers(file.Get()) != 0 || ::GetLastError() == ERROR_INVALID_FUNCTION;
}

/// Retries for a while when other programs (virus scanners, indexers, backups) may be in the way.
template <class Operation>
bool DespiteInterference(Services& services, Operation operation) {
    constexpr unsigned Longest = 640;
    for (unsigned pause = 10;; pause *= 2) {
        if (operation()) return true;
        const DWORD error = ::GetLastError();
        const bool passing = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
        if (!passing || pause > Longest) return Fails(error);
        services.Wait(pause);
    }
}

} // namespace

bool Services::CopyWholeFile(const char* from, const char* to) {
    if (from == nullptr) from = "";
    if (to == nullptr) to = "";
    const DWORD source = ::GetFileAttributesA(from);
    if (source == INVALID_FILE_ATTRIBUTES) return false;
    const DWORD target = ::GetFileAttributesA(to);
    const bool fresh = target == INVALID_FILE_ATTRIBUTES;
    if (fresh && !NotFound(::GetLastError())) return false;
    // These do not change by waiting.
    if ((source & FILE_ATTRIBUTE_DIRECTORY) != 0) return Fails(ErrorAccessDenied);
    if (!fresh && (target & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0)
        return Fails(ErrorAccessDenied);
    if (!fresh && SameFile(from, to)) return Fails(ErrorSharingViolation);
    if (NoRoom(from, to)) return Fails(ErrorDiskFull);
    const bool copied = DespiteInterference(*this, [&] { return ::CopyFileA(from, to, FALSE) != 0; }) &&
                        DespiteInterference(*this, [&] { return SynchroniseCopy(to); });
    if (copied) return true;
    const DWORD error = ::GetLastError();
    // If others are in the way, the file may be theirs.
    if (fresh && error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED) ::DeleteFileA(to);
    return Fails(error);
}

bool Services::DeleteWholeFile(const char* path) { return ::DeleteFileA(path != nullptr ? path : "") != 0; }

bool Services::MoveWholeFile(const char* from, const char* to) {
    if (from == nullptr) from = "";
    if (to == nullptr) to = "";
    // Not every system refuses this by itself.
    const DWORD attributes = ::GetFileAttributesA(to);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
        return Fails(ErrorAccessDenied);
    return DespiteInterference(*this, [&] {
        // Moving onto an open file is only reported as denied; opening it for deletion tells why.
        if (!OpenAmongAll(to, DELETE) && ::GetLastError() == ERROR_SHARING_VIOLATION) return false;
        return ::MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
    });
}

bool Services::FileExists(const char* path, bool* readOnly) {
    if (readOnly != nullptr) *readOnly = false;
    const DWORD attributes = ::GetFileAttributesA(path != nullptr ? path : "");
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return Fails(ErrorFileNotFound);
    if (readOnly == nullptr) return true;
    *readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    if (*readOnly) return true;
    // Access rights or the disk may forbid writing too, which only an attempt tells.
    if (!OpenAmongAll(path, GENERIC_WRITE)) {
        const DWORD error = ::GetLastError();
        *readOnly = error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT;
    }
    return true;
}

bool Services::NetworkFile(const char* path) {
    if (path == nullptr || *path == '\0') return false;
    const std::string full = FullPath(path);
    const std::string_view name = full;
    // A path on a server's share; one that begins with \\?\ or \\.\ is such a path only if UNC\ follows.
    if (name.substr(0, 2) == "\\\\") {
        const bool verbatim = name.substr(2, 2) == "?\\" || name.substr(2, 2) == ".\\";
        if (!verbatim) return true;
        const std::string device(name.substr(4, 4));
        if (::lstrcmpiA(device.c_str(), "UNC\\") == 0) return true;
    }
    std::string root(full.size() + MAX_PATH, '\0');
    if (::GetVolumePathNameA(full.c_str(), root.data(), static_cast<DWORD>(root.size())) == 0) return false;
    return ::GetDriveTypeA(root.c_str()) == DRIVE_REMOTE;
}

std::string Services::TemporaryFileName(const char* target) {
    if (target == nullptr || *target == '\0') {
        SetLastError(ErrorPathNotFound);
        return {};
    }
    const std::string prefix = FolderOf(target) + "~zo";
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string name = prefix;
        for (int i = 0; i < 6; ++i) name += "0123456789abcdefghijklmnopqrstuv"[random() % 32];
        name += ".tmp";
        const File file(::CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file) return name;
        if (::GetLastError() != ERROR_FILE_EXISTS && ::GetLastError() != ERROR_ALREADY_EXISTS) break;
    }
    return {};
}

} // namespace ZoPrimitives::Platform
