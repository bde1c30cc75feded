#include "Platform/Platform.h"

#include <windows.h>

namespace ZoPrimitives::Platform {

void Services::Wait(unsigned milliseconds) { Sleep(milliseconds); }

} // namespace ZoPrimitives::Platform
