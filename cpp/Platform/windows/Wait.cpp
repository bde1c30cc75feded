#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"

namespace ZoPrimitives::Platform {

void Services::Wait(unsigned milliseconds) { Sleep(milliseconds); }

} // namespace ZoPrimitives::Platform
