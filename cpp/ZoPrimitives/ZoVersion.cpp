#include "ZoPrimitives/ZoVersion.h"

namespace ZoPrimitives {

const char* ZoLibraryVersion() noexcept { return ZO_VERSION; }

} // namespace ZoPrimitives
