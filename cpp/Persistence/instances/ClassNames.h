#pragma once

#include "ZoPrimitives/ZoString.h"

#include <typeinfo>

// Both return the complete text or throw `std::bad_alloc`.

namespace ZoPrimitives {

/// "class " and the type's name without "ZoPrimitives::", the same with every compiler.
ZoString ClassText(const std::type_info& type);

/// A class's text without any "ZoPrimitives::" and any "class ".
ZoString PlainClassName(const ZoString& classText);

} // namespace ZoPrimitives
