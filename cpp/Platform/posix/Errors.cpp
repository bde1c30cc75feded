#include "Platform/posix/Errors.h"

#include <cerrno>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

namespace ZoPrimitives::Platform {

namespace {

thread_local unsigned long lastError = ErrorNone;

} // namespace

unsigned long LastError() { return lastError; }
void SetLastError(unsigned long error) { lastError = error; }

unsigned long ErrorFromErrno(int number) {
    switch (number) {
    case 0:
        return ErrorNone;
    case ENOENT:
        return ErrorFileNotFound;
    case ENOTDIR:
        return ErrorPathNotFound;
    case EMFILE:
    case ENFILE:
        return ErrorTooManyOpenFiles;
    case EACCES:
    case EPERM:
    case EISDIR:
        return ErrorAccessDenied;
    case EBADF:
        return ErrorInvalidHandle;
    case ENOMEM:
        return ErrorNotEnoughMemory;
    case EROFS:
        return ErrorWriteProtect;
    case ETXTBSY:
    case EBUSY:
        return ErrorSharingViolation;
    case EAGAIN:
        return ErrorLockViolation;
    case EEXIST:
        return ErrorFileExists;
    case EINVAL:
    case EOVERFLOW:
        return ErrorInvalidParameter;
    // Windows also reports a full disk for a file that outgrows its file system.
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return ErrorDiskFull;
    case ENAMETOOLONG:
        return ErrorFilenameTooLong;
    case ELOOP:
        return ErrorUnresolvedLink;
    case ESPIPE:
        return ErrorInvalidFunction;
    case EPIPE:
        return ErrorBrokenPipe;
    case EINTR:
        return ErrorOperationAborted;
    case EFAULT:
        return ErrorInvalidAddress;
    case EIO:
        return ErrorDevice;
    case ENXIO:
    case ENODEV:
        return ErrorDeviceGone;
    case ENOSYS:
    case EOPNOTSUPP:
        return ErrorNotSupported;
    case ESTALE:
    case EREMOTEIO:
    case ETIMEDOUT:
    case EHOSTDOWN:
    case EHOSTUNREACH:
    case ENETDOWN:
    case ENETUNREACH:
    case ENOTCONN:
    case ECONNRESET:
        return ErrorNetwork;
    default:
        return ErrorGeneralFailure;
    }
}

std::string DescribeError(unsigned long error) {
    constexpr int NUMBERS = 256;
    for (int number = 1; number < NUMBERS; ++number) {
        // Those that are not known apart say nothing.
        if (error != ErrorGeneralFailure && ErrorFromErrno(number) == error)
            return std::generic_category().message(number);
    }
    return {};
}

void SetErrorFromErrno(const char* path) {
    const int number = errno;
    unsigned long error = ErrorFromErrno(number);
    if (number == ENOENT) {
        struct stat status;
        if (path == nullptr || *path == '\0' || stat(FolderOf(path).c_str(), &status) != 0 ||
            !S_ISDIR(status.st_mode))
            error = ErrorPathNotFound;
    }
    SetLastError(error);
}

void SetErrorFromErrno() { SetLastError(ErrorFromErrno(errno)); }

FolderOf::FolderOf(const char* path) {
    std::string_view folder = path;
    while (folder.size() > 1 && folder.back() == '/') folder.remove_suffix(1);
    const std::size_t slash = folder.rfind('/');
    folder = slash == std::string_view::npos ? "." : folder.substr(0, slash == 0 ? 1 : slash);
    if (folder.size() >= sizeof text) folder = {};
    text[folder.copy(text, folder.size())] = '\0';
}

} // namespace ZoPrimitives::Platform
