#include "Platform/Platform.h"

#include "Platform/posix/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <time.h>
#include <unistd.h>

namespace ZoPrimitives::Platform {

namespace {

constexpr std::int64_t TICKS_PER_SECOND = 10'000'000;

timespec Now(clockid_t clock) {
    timespec now = {};
    clock_gettime(clock, &now);
    return now;
}

/// False for a year that a `tm` cannot hold.
bool Local(std::int64_t seconds, tm& local) {
    const time_t time = seconds;
    return localtime_r(&time, &local) != nullptr;
}

std::string TracePath() {
    const char* folder = nullptr;
    for (const char* name : {"ZO_TRACE_FOLDER", "TMPDIR"}) {
        folder = secure_getenv(name);
        if (folder != nullptr && *folder != '\0') break;
    }
    return std::string(folder != nullptr && *folder != '\0' ? folder : "/tmp") + "/Trace.txt";
}

} // namespace

std::uint32_t Services::Ticks() {
    const timespec now = Now(CLOCK_BOOTTIME);
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1'000'000);
}

std::int64_t Services::SystemTime() {
    const timespec now = Now(CLOCK_REALTIME);
    return static_cast<std::int64_t>(now.tv_sec) * TICKS_PER_SECOND + now.tv_nsec / 100;
}

bool Services::LocalTime(std::int64_t seconds, CalendarTime& time) {
    tm local;
    if (!Local(seconds, local)) return false;
    time = {local.tm_year + 1900LL, local.tm_mon + 1, local.tm_mday,
            local.tm_hour,          local.tm_min,     local.tm_sec};
    return true;
}

int Services::StandardTimeBias() {
    // Look the zone's current rules up at times around now; daylight saving always lasts longer than a step.
    constexpr std::int64_t Step = 14 * 86'400;
    constexpr std::int64_t Year = 366 * 86'400;
    const std::int64_t now = SystemTime() / TICKS_PER_SECOND;
    tm present;
    if (!Local(now, present)) return 0;
    // Standard time has the smaller of the two offsets, even if the zone's rules define negative daylight
    // saving in winter.
    const auto bias = [&](const tm& other) {
        return static_cast<int>(-std::min(present.tm_gmtoff, other.tm_gmtoff) / 60);
    };
    const bool daylight = present.tm_isdst > 0;
    for (const std::int64_t direction : {1, -1}) {
        tm other;
        for (std::int64_t distance = Step; distance <= Year; distance += Step) {
            if (Local(now + direction * distance, other) && (other.tm_isdst > 0) != daylight)
                return bias(other);
        }
        if (!daylight) return bias(present); // ignore rules that were abolished
    }
    return bias(present) + 60; // daylight saving all year
}

std::FILE* Services::OpenTraceFile(bool truncate) {
    const std::string path = TracePath();
    Descriptor file(OpenUninterrupted(
        path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | (truncate ? 0 : O_APPEND), 0600));
    // A second link could be a valuable file of another user.
    struct stat status;
    if (!file || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != geteuid() ||
        status.st_nlink != 1)
        return nullptr;
    if (truncate && TruncateUninterrupted(file.Get(), 0) != 0) return nullptr;
    std::FILE* opened = fdopen(file.Get(), truncate ? "w" : "a");
    if (opened != nullptr) file.Release();
    return opened;
}

} // namespace ZoPrimitives::Platform
