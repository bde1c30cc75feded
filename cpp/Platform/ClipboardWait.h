#pragma once

#include "Platform/Platform.h"

namespace ZoPrimitives::Platform {

/// Repeats `attempt` for up to a second while it fails with a sharing violation; returns whether it
/// succeeded.
template <class Attempt>
bool AwaitClipboard(Services& services, Attempt attempt) {
    constexpr unsigned Pause = 10;
    constexpr unsigned Pauses = 100;
    for (unsigned paused = 0;; ++paused) {
        if (attempt()) return true;
        if (LastError() != ErrorSharingViolation || paused == Pauses) return false;
        services.Wait(Pause);
    }
}

} // namespace ZoPrimitives::Platform
