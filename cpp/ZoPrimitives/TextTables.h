#pragma once

#include "ZoPrimitives/ZoLanguage.h"

namespace ZoPrimitives {

/// Among the library's texts, then among those added by the application; null if there is none. Safe while
/// another thread adds texts.
const TZoText* FindInTables(const char* key) noexcept;

} // namespace ZoPrimitives
