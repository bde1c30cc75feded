#pragma once

#include "Platform/Platform.h"
#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// Opens an existing file for its reader: locked against everybody who would write it, unless it is
/// read-only. Throws `XReadStream` "Não foi possível ler o arquivo " and the name.
Platform::FileHandle OpenToRead(const char* name, const char* location);

[[noreturn]] void ThrowUnreadable(const char* name, const char* location);

/// Throws `XWriteStreamOutOfSpace` for a full device and `XWriteStream` otherwise.
[[noreturn]] void ThrowUnwritten(unsigned long error, const ZoString& location);

} // namespace ZoPrimitives
