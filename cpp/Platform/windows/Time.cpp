#include "Platform/Platform.h"

#include <cstdio>
#include <time.h>
#include <windows.h>

namespace ZoPrimitives::Platform {

std::uint32_t Services::Ticks() { return GetTickCount(); }

std::int64_t Services::SystemTime() {
    constexpr std::int64_t From1601To1970 = 116'444'736'000'000'000;
    FILETIME now;
    GetSystemTimePreciseAsFileTime(&now);
    return ((static_cast<std::int64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime) - From1601To1970;
}

bool Services::LocalTime(std::int64_t seconds, CalendarTime& time) {
    constexpr std::int64_t End = 32'535'215'999; // the last second of the year 3000
    // Beyond it the C runtime may end the process.
    const __time64_t value = seconds;
    tm local;
    if (value < 0 || value > End || _localtime64_s(&local, &value) != 0) return false;
    time = {local.tm_year + 1900LL, local.tm_mon + 1, local.tm_mday,
            local.tm_hour,          local.tm_min,     local.tm_sec};
    return true;
}

int Services::StandardTimeBias() {
    TIME_ZONE_INFORMATION zone;
    return GetTimeZoneInformation(&zone) == TIME_ZONE_ID_INVALID ? 0 : static_cast<int>(zone.Bias);
}

std::FILE* Services::OpenTraceFile(bool truncate) {
    return std::fopen("c:\\temp\\Trace.txt", truncate ? "w" : "a");
}

// Calls in its scope use the C++ locale here, which is the classic one unless the application replaces it.
ClassicLocale::ClassicLocale() : previous(nullptr) {}
ClassicLocale::~ClassicLocale() = default;

} // namespace ZoPrimitives::Platform
