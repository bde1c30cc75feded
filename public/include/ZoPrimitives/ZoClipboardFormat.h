#pragma once

#include "ZoPrimitives/Export.h"

namespace ZoPrimitives {

/// The system's identifier of the clipboard format "ZoCad", in which this library's streams exchange data. It
/// is registered on first use; 0 when the system refuses.
ZO_API unsigned IdZoClipboardFormat();

} // namespace ZoPrimitives
