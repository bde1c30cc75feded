#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"

namespace ZoPrimitives::Platform {

unsigned long LastError() { return ::GetLastError(); }
void SetLastError(unsigned long error) { ::SetLastError(error); }

} // namespace ZoPrimitives::Platform
