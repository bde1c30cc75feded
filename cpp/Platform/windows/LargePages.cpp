#include "Platform/Memory.h"

namespace ZoPrimitives::Platform {

void AdviseLargePages(void*, std::size_t) noexcept {} // Windows gives them to the privileged only

} // namespace ZoPrimitives::Platform
