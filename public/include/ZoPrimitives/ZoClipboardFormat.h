#pragma once

#include "ZoPrimitives/Export.h"

namespace ZoPrimitives {

/// The system's identifier of the clipboard format "ZoCad", which this library's streams use. Registered on
/// first use; 0 when the system refuses.
ZO_API unsigned IdZoClipboardFormat();

} // namespace ZoPrimitives
