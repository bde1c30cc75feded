#pragma once

#include "ZoPrimitives/Export.h"

// The version of these headers. It stands here once: the build, the installed package and Windows' version
// resource read it from these three lines. docs/abi.md tells what may change in which part.
#define ZO_VERSION_MAJOR 3
#define ZO_VERSION_MINOR 0
#define ZO_VERSION_PATCH 0

/// For `#if`: 30000 is 3.0.0.
#define ZO_VERSION_NUMBER (ZO_VERSION_MAJOR * 10000 + ZO_VERSION_MINOR * 100 + ZO_VERSION_PATCH)

#define ZO_VERSION_QUOTED(text) #text
#define ZO_VERSION_JOINED(a, b, c) ZO_VERSION_QUOTED(a) "." ZO_VERSION_QUOTED(b) "." ZO_VERSION_QUOTED(c)
/// As a text: "3.0.0".
#define ZO_VERSION ZO_VERSION_JOINED(ZO_VERSION_MAJOR, ZO_VERSION_MINOR, ZO_VERSION_PATCH)

namespace ZoPrimitives {

/// The version of the library that is loaded, as `ZO_VERSION` writes it: an application compiled with 3.0.0
/// may meet a later 3.x.
ZO_API const char* ZoLibraryVersion() noexcept;

} // namespace ZoPrimitives
