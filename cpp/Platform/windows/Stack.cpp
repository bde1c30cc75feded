#include "Platform/Compiler.h"
#include "Platform/Platform.h"

// `GetCurrentThreadStackLimits` requires Windows 8.
#if !defined(_WIN32_WINNT) || _WIN32_WINNT < 0x0602
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0602
#endif
#include "Platform/windows/Windows.h"

#include <cstdint>

namespace ZoPrimitives::Platform {

Stack CallersStack() {
    const std::uintptr_t here = StackAddress();
    ULONG_PTR low = 0;
    ULONG_PTR high = 0;
    GetCurrentThreadStackLimits(&low, &high);
    if (here < low || here > high) return {};
    return {static_cast<std::size_t>(high - low), static_cast<std::size_t>(here - low)};
}

} // namespace ZoPrimitives::Platform
