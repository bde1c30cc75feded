#include "Persistence/records/ErrorText.h"

#include "Platform/Platform.h"

#include <iterator>

namespace ZoPrimitives {

const char* ErrorText(unsigned long error) {
    static const char* const texts[] = {
        "No error",
        "Operation not permitted",
        "No such file or directory",
        "No such process",
        "Interrupted function call",
        "Input/output error",
        "No such device or address",
        "Arg list too long",
        "Exec format error",
        "Bad file descriptor",
        "No child processes",
        "Resource temporarily unavailable",
        "Not enough space",
        "Permission denied",
        "Bad address",
        "Unknown error",
        "Resource device",
        "File exists",
        "Improper link",
        "No such device",
        "Not a directory",
        "Is a directory",
        "Invalid argument",
        "Too many open files in system",
        "Too many open files",
        "Inappropriate I/O control operation",
        "Unknown error",
        "File too large",
        "No space left on device",
        "Invalid seek",
        "Read-only file system",
        "Too many links",
        "Broken pipe",
        "Domain error",
        "Result too large",
        "Unknown error",
        "Resource deadlock avoided",
        "Unknown error",
        "Filename too long",
        "No locks available",
        "Function not implemented",
        "Directory not empty",
        "Illegal byte sequence",
    };
    return error < std::size(texts) ? texts[error] : "Unknown error";
}

TStreamCause CauseOf(unsigned long error) {
    const auto code = static_cast<unsigned>(error);
    if (Platform::NotFound(error)) return {TStreamFailure::NotFound, code};
    switch (error) {
    case Platform::ErrorAccessDenied:
    case Platform::ErrorWriteProtect:
    case Platform::ErrorInvalidOwner:
        return {TStreamFailure::Denied, code};
    case Platform::ErrorSharingViolation:
    case Platform::ErrorLockViolation:
    case Platform::ErrorUserMappedFile:
        return {TStreamFailure::InUse, code};
    case Platform::ErrorDiskFull:
    case Platform::ErrorHandleDiskFull:
        return {TStreamFailure::DiskFull, code};
    default:
        return {TStreamFailure::Device, code};
    }
}

} // namespace ZoPrimitives
