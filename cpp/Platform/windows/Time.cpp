#include "Platform/windows/Time.h"

#include <cstdio>

namespace ZoPrimitives::Platform {

namespace {

constexpr std::int64_t From1601To1970 = 116'444'736'000'000'000; // ticks of 100 ns

bool SystemTimeOf(std::int64_t seconds, SYSTEMTIME& time) {
    constexpr std::int64_t TicksPerSecond = 10'000'000, Limit = INT64_MAX / TicksPerSecond;
    const std::int64_t since1601 = seconds + From1601To1970 / TicksPerSecond;
    if (seconds > Limit - From1601To1970 / TicksPerSecond || since1601 < 0) return false;
    const auto ticks = static_cast<std::uint64_t>(since1601 * TicksPerSecond);
    const FILETIME file = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    return ::FileTimeToSystemTime(&file, &time) != 0;
}

/// By the rules that the zone has in `year`.
bool ByRulesOf(WORD year, DYNAMIC_TIME_ZONE_INFORMATION* zone, const SYSTEMTIME& utc, SYSTEMTIME& local) {
    TIME_ZONE_INFORMATION rules;
    return ::GetTimeZoneInformationForYear(year, zone, &rules) != 0 &&
           ::SystemTimeToTzSpecificLocalTime(&rules, &utc, &local) != 0;
}

} // namespace

bool LocalTimeIn(DYNAMIC_TIME_ZONE_INFORMATION* zone, std::int64_t seconds, CalendarTime& time) {
    SYSTEMTIME utc, local;
    if (!SystemTimeOf(seconds, utc) || !ByRulesOf(utc.wYear, zone, utc, local)) return false;
    // The rules are those of the local year.
    if (local.wYear != utc.wYear && !ByRulesOf(local.wYear, zone, utc, local)) return false;
    time = {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
    return true;
}

std::uint32_t Services::Ticks() { return GetTickCount(); }

std::int64_t Services::SystemTime() {
    FILETIME now;
    GetSystemTimePreciseAsFileTime(&now);
    return ((static_cast<std::int64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime) - From1601To1970;
}

// The C runtime knows the rules of one year only, and a variable TZ in their place.
bool Services::LocalTime(std::int64_t seconds, CalendarTime& time) {
    return LocalTimeIn(nullptr, seconds, time);
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
