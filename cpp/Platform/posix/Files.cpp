#include "Platform/posix/Files.h"

#include "Platform/posix/Errors.h"
#include "Platform/posix/Sharing.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace ZoPrimitives::Platform {

namespace {

// Linux transfers at most 2 GiB less a page in one call.
constexpr std::size_t LargestTransfer = std::size_t{1} << 30;

// A handle is the descriptor itself; that of standard input would be the null handle.
constexpr int LowestDescriptor = 3;

FileHandle ToHandle(int descriptor) {
    return reinterpret_cast<FileHandle>(
        static_cast<std::intptr_t>(descriptor)); // NOLINT(performance-no-int-to-ptr)
}

int FromHandle(FileHandle file) {
    const auto number = reinterpret_cast<std::intptr_t>(file);
    return number > 0 && number <= INT_MAX ? static_cast<int>(number) : -1;
}

// Folders cannot be opened; opening a pipe would wait for its other end.
bool Openable(const struct stat& status) {
    return S_ISREG(status.st_mode) || S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode);
}

int OpenOnce(const char* path, Opening& opening) {
    const int flags = opening.access == Access::ReadWrite || opening.create ? O_RDWR : O_RDONLY;
    opening.created = false;
    const bool exists = stat(path, &opening.status) == 0;
    if (!exists && !Absent(errno)) return -1;
    if (exists && !Openable(opening.status)) {
        errno = EACCES;
        return -1;
    }
    int descriptor = OpenUninterrupted(path, flags, 0);
    if (descriptor < 0 && errno == ENOENT && opening.create) {
        descriptor = OpenUninterrupted(path, flags | O_CREAT | O_EXCL, opening.permissions);
        opening.created = descriptor >= 0;
        // A link to a missing file, or another process was faster.
        if (descriptor < 0 && errno == EEXIST)
            descriptor = OpenUninterrupted(path, flags | O_CREAT, opening.permissions);
    }
    if (descriptor >= 0 && descriptor < LowestDescriptor) {
        const int higher = fcntl(descriptor, F_DUPFD_CLOEXEC, LowestDescriptor);
        const int number = errno;
        if (higher < 0 && opening.created) unlink(path);
        close(descriptor);
        errno = number;
        descriptor = higher;
    }
    return descriptor;
}

bool Inspect(int descriptor, const char* path, Opening& opening) {
    if (fstat(descriptor, &opening.status) == 0) return true;
    SetErrorFromErrno();
    if (opening.created) unlink(path);
    return false;
}

} // namespace

int OpenUninterrupted(const char* path, int flags, mode_t permissions) {
    int descriptor;
    do descriptor = open(path, flags | O_CLOEXEC | O_NOCTTY, permissions);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

int TruncateUninterrupted(int descriptor, off_t size) {
    int result;
    do result = ftruncate(descriptor, size);
    while (result != 0 && errno == EINTR);
    return result;
}

Descriptor::~Descriptor() {
    if (number < 0) return;
    ReleaseShare(number);
    close(number);
}

Descriptor OpenShared(const char* path, Opening& opening) {
    // Look again for a file that was deleted between being opened and being claimed.
    for (int attempt = 0; attempt < 16; ++attempt) {
        Descriptor file(OpenOnce(path, opening));
        if (!file) {
            SetErrorFromErrno(path);
            return Descriptor();
        }
        if (!Inspect(file.Get(), path, opening)) return Descriptor();
        const bool writes = opening.access == Access::ReadWrite || opening.create;
        if (!Openable(opening.status) || (writes && !opening.created && ReadOnly(opening.status))) {
            SetLastError(ErrorAccessDenied);
            return Descriptor();
        }
        if (!S_ISREG(opening.status.st_mode)) return file;
        if (!ClaimShare(file.Get(), writes ? Access::ReadWrite : Access::Read, opening.share)) {
            SetLastError(ErrorSharingViolation);
            return Descriptor();
        }
        // Only now no other user can change the size.
        if (!Inspect(file.Get(), path, opening)) return Descriptor();
        if (opening.status.st_nlink != 0) return file;
    }
    SetLastError(ErrorSharingViolation);
    return Descriptor();
}

bool ReadAll(int descriptor, void* data, std::size_t size, std::size_t& done) {
    auto* bytes = static_cast<unsigned char*>(data);
    done = 0;
    while (done < size) {
        const ssize_t count = read(descriptor, bytes + done, std::min(size - done, LargestTransfer));
        if (count == 0) break;
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return false;
    }
    return true;
}

bool WriteAll(int descriptor, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = write(descriptor, bytes + done, std::min(size - done, LargestTransfer));
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (count == 0) {
            errno = EIO;
            return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool Synchronise(int descriptor) {
    int result;
    do result = fsync(descriptor);
    while (result != 0 && errno == EINTR);
    return result == 0 || errno == EINVAL || errno == EOPNOTSUPP;
}

void SynchroniseFolder(const char* folder) {
    const int descriptor = OpenUninterrupted(folder, O_RDONLY | O_DIRECTORY);
    if (descriptor < 0) return;
    Synchronise(descriptor);
    close(descriptor);
}

FileHandle Services::OpenFile(const char* path, Access access, Share share, Creation creation) {
    Opening opening;
    opening.access = access;
    opening.share = share;
    opening.create = creation != Creation::OpenExisting;
    Descriptor file = OpenShared(path != nullptr ? path : "", opening);
    if (!file) return nullptr;
    if (opening.create && S_ISREG(opening.status.st_mode) && opening.status.st_size != 0 &&
        TruncateUninterrupted(file.Get(), 0) != 0) {
        SetErrorFromErrno();
        return nullptr;
    }
    return ToHandle(file.Release());
}

bool Services::CloseFile(FileHandle file) {
    const int descriptor = FromHandle(file);
    if (descriptor >= 0) ReleaseShare(descriptor);
    // An interrupted close has closed the file.
    if (close(descriptor) == 0 || errno == EINTR) return true;
    SetErrorFromErrno();
    return false;
}

bool Services::ReadFile(FileHandle file, void* data, std::size_t size, std::size_t& done) {
    if (ReadAll(FromHandle(file), data, size, done)) return true;
    SetErrorFromErrno();
    return false;
}

bool Services::WriteFile(FileHandle file, const void* data, std::size_t size) {
    if (WriteAll(FromHandle(file), data, size)) return true;
    SetErrorFromErrno();
    return false;
}

bool Services::SeekFile(FileHandle file, long long offset, Origin origin, unsigned long long& position) {
    const int whence = origin == Origin::Begin ? SEEK_SET : origin == Origin::Current ? SEEK_CUR : SEEK_END;
    const off_t reached = lseek(FromHandle(file), offset, whence);
    if (reached >= 0) {
        position = static_cast<unsigned long long>(reached);
        return true;
    }
    SetErrorFromErrno();
    if (errno == EINVAL) SetLastError(ErrorNegativeSeek);
    return false;
}

bool Services::FileSize(FileHandle file, unsigned long long& size) {
    struct stat status;
    if (fstat(FromHandle(file), &status) != 0) {
        SetErrorFromErrno();
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        SetLastError(ErrorInvalidFunction);
        return false;
    }
    size = static_cast<unsigned long long>(status.st_size);
    return true;
}

bool Services::TruncateFile(FileHandle file, unsigned long long size) {
    if (TruncateUninterrupted(FromHandle(file), static_cast<off_t>(size)) == 0) return true;
    SetErrorFromErrno();
    return false;
}

bool Services::SynchroniseFile(FileHandle file) {
    const int descriptor = FromHandle(file);
    if (!Synchronise(descriptor)) {
        SetErrorFromErrno();
        return false;
    }
    char link[32], path[PATH_MAX];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    if (length > 0 && path[0] == '/') {
        path[length] = '\0';
        SynchroniseFolder(FolderOf(path).c_str());
    }
    return true;
}

} // namespace ZoPrimitives::Platform
