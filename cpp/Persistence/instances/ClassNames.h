#pragma once

#include "ZoPrimitives/ZoString.h"

#include <typeinfo>

// Whole, or `std::bad_alloc`.

namespace ZoPrimitives {

/// "class " and the type's name without "ZoPrimitives::", the same with every compiler.
ZoString ClassText(const std::type_info& type);

/// A class's text without every "ZoPrimitives::" and every "class ".
ZoString PlainClassName(const ZoString& classText);

} // namespace ZoPrimitives
