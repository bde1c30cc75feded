#pragma once

#include "Platform/Platform.h"

#include <cerrno>
#include <climits>

namespace ZoPrimitives::Platform {

/// Whether the errno value `number` says that there is no such file, not just that it cannot be determined.
inline bool Absent(int number) { return number == ENOENT || number == ENOTDIR; }

/// The Windows number for a value of errno.
unsigned long ErrorFromErrno(int number);

/// Sets the last error from `errno` after a call on `path`, telling a missing folder from a missing file.
void SetErrorFromErrno(const char* path);
/// As above, after a call on an open file.
void SetErrorFromErrno();

/// The path of the folder that holds `path`: "." for a bare name; empty if it is too long for the system.
/// Allocates nothing.
class FolderOf {
public:
    explicit FolderOf(const char* path);
    const char* c_str() const { return text; }

private:
    char text[PATH_MAX];
};

} // namespace ZoPrimitives::Platform
