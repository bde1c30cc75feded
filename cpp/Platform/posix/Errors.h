#pragma once

#include "Platform/Platform.h"

#include <cerrno>
#include <climits>

namespace ZoPrimitives::Platform {

/// Whether `number` (of errno) says that there is no such file, rather than that it could not be told.
inline bool Absent(int number) { return number == ENOENT || number == ENOTDIR; }

/// The Windows number for a value of errno.
unsigned long ErrorFromErrno(int number);

/// Sets the last error from `errno` after a call on `path`; tells a missing folder from a missing file.
void SetErrorFromErrno(const char* path);
/// The same for a call on an open file.
void SetErrorFromErrno();

/// The path of the folder that holds `path`: "." for a bare name. Needs no memory; of a path longer than the
/// system takes it is empty.
class FolderOf {
public:
    explicit FolderOf(const char* path);
    const char* c_str() const { return text; }

private:
    char text[PATH_MAX];
};

} // namespace ZoPrimitives::Platform
