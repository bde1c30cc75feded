#pragma once

#include "Platform/Platform.h"

namespace ZoPrimitives::Platform {

/// The Windows number for a value of errno.
unsigned long ErrorFromErrno(int number);

/// Sets the last error from `errno` after a call on `path`; tells a missing folder from a missing file.
void SetErrorFromErrno(const char* path);
/// The same for a call on an open file.
void SetErrorFromErrno();

/// The path of the folder that holds `path`: "." for a bare name.
std::string FolderOf(const char* path);

} // namespace ZoPrimitives::Platform
