#pragma once

#include "Platform/Platform.h"

namespace ZoPrimitives::Platform {

/// Claims `access` to an open regular file under `share`, for as long as the file stays open; false when that
/// conflicts with another opening. True without a claim on a file system that has no locks.
bool ClaimShare(int descriptor, Access access, Share share);

/// Gives the claim up, even when a child process still holds a copy of the descriptor.
void ReleaseShare(int descriptor);

} // namespace ZoPrimitives::Platform
