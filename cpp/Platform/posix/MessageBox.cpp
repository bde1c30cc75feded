#include "Platform/Platform.h"

#include <cstdio>

namespace ZoPrimitives::Platform {

void Services::ShowMessageBox(const char* text) { std::fprintf(stderr, "%s\n", text); }

} // namespace ZoPrimitives::Platform
