#pragma once

#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

/// The C run-time's text for an error number, as the target's library words it, the same on every system.
const char* ErrorText(unsigned long error);

/// What an error number of the system's means to the user of a stream.
TStreamCause CauseOf(unsigned long error);

/// The number of the C run-time's general device error.
inline constexpr unsigned long DEVICE_ERROR = 5;

} // namespace ZoPrimitives
