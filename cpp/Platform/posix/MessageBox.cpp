#include "Platform/Platform.h"

namespace ZoPrimitives::Platform {

void Services::ShowMessageBox(const char*) {}

} // namespace ZoPrimitives::Platform
