#pragma once

#include <string>

namespace ZoPrimitives::Platform {

/// The name that Microsoft's compiler has for a type, in the form that the others' demangler gives it:
/// without "class " and its kind, with a space behind a comma, and `long long` for `__int64`.
std::string CommonTypeName(std::string name);

} // namespace ZoPrimitives::Platform
