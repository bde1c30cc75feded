#include "Platform/posix/Errors.h"
#include "Platform/posix/Files.h"
#include "Platform/posix/Sharing.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/random.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace ZoPrimitives::Platform {

namespace {

// Lets the file system, or the server, copy as much as it can; reports no errors.
void CopyWithinSystem(int from, int to) {
    constexpr std::size_t Step = std::size_t{1} << 30;
    while (copy_file_range(from, nullptr, to, nullptr, Step, 0) > 0) {
    }
}

// On failure sets errno.
bool CopyRest(int from, int to) {
    char buffer[std::size_t{1} << 16]; // on the stack: from here on nothing may fail for lack of memory
    for (;;) {
        std::size_t done = 0;
        if (!ReadAll(from, buffer, sizeof buffer, done) || !WriteAll(to, buffer, done)) return false;
        if (done < sizeof buffer) return true;
    }
}

// Reserves room for the whole copy before the target loses anything. False only if there is none.
bool Reserve(int descriptor, const struct stat& before, off_t size) {
    if (size == 0) return true;
    int result;
    do result = fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, size);
    while (result != 0 && errno == EINTR);
    if (result == 0 || (errno != ENOSPC && errno != EDQUOT && errno != EFBIG)) return true;
    const int number = errno;
    TruncateUninterrupted(descriptor, before.st_size);
    errno = number;
    return false;
}

// On failure sets errno.
bool CopyContent(int from, const struct stat& source, int to, const struct stat& target) {
    const bool regular = S_ISREG(target.st_mode);
    if (regular && !Reserve(to, target, source.st_size)) return false;
    if (regular) CopyWithinSystem(from, to);
    if (!CopyRest(from, to)) return false;
    if (!regular) return Synchronise(to);
    const off_t length = lseek(to, 0, SEEK_CUR);
    if (length < 0 || TruncateUninterrupted(to, length) != 0) return false;
    // A copy keeps its source's date, so a backup shows the date of its version.
    const timespec times[2] = {{0, UTIME_OMIT}, source.st_mtim};
    futimens(to, times);
    return Synchronise(to);
}

// Whether the errno value `number` says that writing is forbidden, not just that it cannot be determined.
bool Forbidden(int number) {
    return number == EACCES || number == EPERM || number == EROFS || number == ETXTBSY;
}

bool RandomName(char* letters, std::size_t count) {
    unsigned char random[16];
    if (count > sizeof random || getrandom(random, count, 0) != static_cast<ssize_t>(count)) return false;
    for (std::size_t i = 0; i < count; ++i) letters[i] = "0123456789abcdefghijklmnopqrstuv"[random[i] % 32];
    return true;
}

/// Claims a file exclusively before its name is removed; if it must stay, sets the last error and returns
/// false.
bool ClaimName(const char* path, Descriptor& claim, const struct stat& status) {
    // For a link, the link itself is removed.
    const bool link = S_ISLNK(status.st_mode);
    if (S_ISDIR(status.st_mode) || (!link && ReadOnly(status))) {
        SetLastError(ErrorAccessDenied);
        return false;
    }
    if (!S_ISREG(status.st_mode)) return true;
    claim = Descriptor(OpenUninterrupted(path, O_RDONLY | O_NOFOLLOW));
    if (!claim) {
        // An unreadable file may still be deleted.
        if (errno == EACCES) return true;
        SetErrorFromErrno(path);
        return false;
    }
    if (ClaimShare(claim.Get(), Access::ReadWrite, Share::None)) return true;
    SetLastError(ErrorSharingViolation);
    return false;
}

} // namespace

bool Services::CopyWholeFile(const char* from, const char* to) {
    if (to == nullptr) to = "";
    Opening source;
    const Descriptor in = OpenShared(from != nullptr ? from : "", source);
    if (!in) return false;
    if (!S_ISREG(source.status.st_mode)) {
        SetLastError(ErrorAccessDenied);
        return false;
    }
    Opening target;
    target.access = Access::ReadWrite;
    target.share = Share::Read;
    target.create = true;
    target.permissions = source.status.st_mode & 0777;
    const Descriptor out = OpenShared(to, target);
    if (!out) return false;
    if (source.status.st_dev == target.status.st_dev && source.status.st_ino == target.status.st_ino) {
        SetLastError(ErrorSharingViolation);
        return false;
    }
    // The umask may have removed permissions that the source's owner granted; some file systems have none.
    if (target.created) fchmod(out.Get(), target.permissions);
    if (!CopyContent(in.Get(), source.status, out.Get(), target.status)) {
        SetErrorFromErrno();
        if (target.created) unlink(to);
        return false;
    }
    if (target.created) SynchroniseFolder(FolderOf(to).c_str());
    return true;
}

bool Services::DeleteWholeFile(const char* path) {
    if (path == nullptr) path = "";
    struct stat status;
    if (lstat(path, &status) != 0) {
        SetErrorFromErrno(path);
        return false;
    }
    Descriptor claim;
    if (!ClaimName(path, claim, status)) return false;
    if (unlink(path) != 0) {
        SetErrorFromErrno(path);
        return false;
    }
    SynchroniseFolder(FolderOf(path).c_str());
    return true;
}

bool Services::MoveWholeFile(const char* from, const char* to) {
    if (from == nullptr) from = "";
    if (to == nullptr) to = "";
    struct stat source, target;
    if (lstat(from, &source) != 0) {
        SetErrorFromErrno(from);
        return false;
    }
    const bool replaces = lstat(to, &target) == 0;
    if (!replaces && !Absent(errno)) {
        SetErrorFromErrno(to);
        return false;
    }
    Descriptor ours, theirs;
    if (!ClaimName(from, ours, source) || (replaces && !ClaimName(to, theirs, target))) return false;
    if (rename(from, to) != 0) {
        SetErrorFromErrno(to);
        return false;
    }
    SynchroniseFolder(FolderOf(to).c_str());
    return true;
}

bool Services::FileExists(const char* path, bool* readOnly) {
    if (readOnly != nullptr) *readOnly = false;
    struct stat status;
    if (path == nullptr || stat(path, &status) != 0) {
        if (path == nullptr) errno = ENOENT;
        SetErrorFromErrno(path);
        return false;
    }
    if (S_ISDIR(status.st_mode)) {
        SetLastError(ErrorFileNotFound);
        return false;
    }
    if (readOnly == nullptr) return true;
    *readOnly = ReadOnly(status) || faccessat(AT_FDCWD, path, W_OK, AT_EACCESS) != 0;
    if (ReadOnly(status) || !*readOnly || Forbidden(errno)) return true;
    *readOnly = false;
    SetErrorFromErrno(path);
    return false;
}

bool NetworkFileSystem(std::uint32_t type) {
    switch (type) {
    case 0x6969:     // NFS
    case 0x517B:     // SMB
    case 0xFE534D42: // SMB 2
    case 0xFF534D42: // CIFS
    case 0x564C:     // NCP
    case 0x5346414F: // AFS
    case 0x6B414653: // AFS of the Linux kernel
    case 0x73757245: // Coda
    case 0x01021997: // 9P
    case 0x00C36400: // Ceph
    case 0x0BD00BD0: // Lustre
    case 0x47504653: // GPFS
    case 0x19830326: // BeeGFS
    case 0x786F4256: // a folder shared by a virtual machine's host
        return true;
    default:
        return false;
    }
}

bool Services::NetworkFile(const char* path) {
    if (path == nullptr || *path == '\0') return false;
    const FolderOf folder(path);
    struct statfs status;
    for (const char* queried : {path, folder.c_str()}) {
        int result;
        do result = statfs(queried, &status);
        while (result != 0 && errno == EINTR);
        if (result == 0) return NetworkFileSystem(static_cast<std::uint32_t>(status.f_type));
        // A file system that does not answer is on a server.
        if (!Absent(errno)) return errno != EACCES;
    }
    return false;
}

std::string Services::TemporaryFileName(const char* target) {
    if (target == nullptr || *target == '\0') {
        SetLastError(ErrorPathNotFound);
        return {};
    }
    struct stat status;
    mode_t permissions = 0666;
    // Never less private than the target that it will become.
    if (stat(target, &status) == 0) {
        permissions = (status.st_mode & 0777) | 0600;
    } else if (!Absent(errno)) {
        SetErrorFromErrno(target);
        return {};
    }

    const std::string_view path = target;
    const std::string prefix = std::string(path.substr(0, path.rfind('/') + 1)) + "~zo";
    constexpr std::size_t Letters = 6;
    for (int attempt = 0; attempt < 100; ++attempt) {
        char letters[Letters];
        if (!RandomName(letters, Letters)) break;
        std::string name = prefix + std::string(letters, Letters) + ".tmp";
        const int descriptor =
            OpenUninterrupted(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, permissions);
        if (descriptor >= 0) {
            close(descriptor);
            return name;
        }
        if (errno != EEXIST) break;
    }
    SetErrorFromErrno(target);
    return {};
}

} // namespace ZoPrimitives::Platform
