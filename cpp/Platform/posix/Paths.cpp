#include "Platform/Platform.h"

namespace ZoPrimitives::Platform {

std::string PathFromText(const char* text) { return text; }
std::string TextOfPath(const char* path) { return path; }

} // namespace ZoPrimitives::Platform
