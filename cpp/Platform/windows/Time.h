#pragma once

#include "Platform/Platform.h"
#include "Platform/windows/Windows.h"

#include <cstdint>

namespace ZoPrimitives::Platform {

/// `Services::LocalTime` in a zone of the system's list; null for the zone in use.
bool LocalTimeIn(DYNAMIC_TIME_ZONE_INFORMATION* zone, std::int64_t seconds, CalendarTime& time);

} // namespace ZoPrimitives::Platform
