#pragma once

#include "Platform/Platform.h"

namespace ZoPrimitives::Platform {

/// Claims `access` to an open regular file under `share` until the file is closed; false on a conflict with
/// another opening. True without a claim if the file system has no locks.
bool ClaimShare(int descriptor, Access access, Share share);

/// Releases the claim, even if a child process still holds a copy of the descriptor.
void ReleaseShare(int descriptor);

} // namespace ZoPrimitives::Platform
