#pragma once

#include "ZoPrimitives/ZoString.h"

#include <chrono>
#include <cstdint>

namespace ZoPrimitives {

/// A point in time: ticks of 100 nanoseconds since 1970-01-01 00:00:00 UTC.
///
/// What would lie beyond the first or the last tick (about 29,000 years from 1970) becomes that tick. Nothing
/// here throws or reports an error.
///
/// Formats are cctz's: the directives of C's `strftime` with its modifiers E and O, "%E3S", "%E*S" and "%E*f"
/// for parts of a second, "%Ez" and "%E*z" for the distance from UTC, "%E4Y" for years of four digits. Names
/// are English ones whatever the locale is. What is none of these is printed as it stands, and reads nothing.
class ZO_API TTimestamp {
public:
    /// Now.
    TTimestamp();
    /// `text` read by `format`, in UTC unless it tells another zone ("%z"). Parts that it does not tell are
    /// those of 1970-01-01 00:00:00. A text that is no such time gives the present one, silently: ask
    /// `IsValid` first.
    TTimestamp(const ZoString& text, const ZoString& format);
    TTimestamp(const TTimestamp& other) = default;
    TTimestamp(TTimestamp&& other) = default;
    TTimestamp& operator=(const TTimestamp& other) = default;
    TTimestamp& operator=(TTimestamp&& other) = default;
    virtual ~TTimestamp();

    /// The count, as to be saved; of any sign.
    std::int64_t Ticks() const { return count; }
    static TTimestamp FromTicks(std::int64_t ticks) { return TTimestamp(ticks); }

    friend bool operator==(const TTimestamp& a, const TTimestamp& b) { return a.count == b.count; }
    friend bool operator!=(const TTimestamp& a, const TTimestamp& b) { return a.count != b.count; }
    friend bool operator<(const TTimestamp& a, const TTimestamp& b) { return a.count < b.count; }
    friend bool operator<=(const TTimestamp& a, const TTimestamp& b) { return a.count <= b.count; }
    friend bool operator>(const TTimestamp& a, const TTimestamp& b) { return a.count > b.count; }
    friend bool operator>=(const TTimestamp& a, const TTimestamp& b) { return a.count >= b.count; }

    TTimestamp& operator+=(std::chrono::seconds d);
    TTimestamp& operator-=(std::chrono::seconds d);

    /// Positive when `other` is earlier; the largest or the smallest number when the difference exceeds it
    /// (292 years).
    long long DiferenceInNanoseconds(const TTimestamp& other) const;

    ZoString InUTCTime(const ZoString& format) const;
    /// In the machine's standard time: in summer an hour behind a clock that daylight saving put forward.
    ZoString InLocalTime(const ZoString& format) const;

    static bool IsValid(const ZoString& text, const ZoString& format);

    // By the clock on the wall, daylight saving included. Whole seconds count, truncated towards 1970.
    bool IsToday() const;
    bool IsYesterday() const;
    bool IsSameDayHourMinuteAndSeconds(const TTimestamp& other) const;

    /// The start of 1970 in UTC.
    static TTimestamp MinValue();

private:
    explicit TTimestamp(std::int64_t ticks) : count(ticks) {}

    std::int64_t count;
};

/// Minutes to add to the machine's local standard time to get UTC: 180 for Brasília. Daylight saving does not
/// count.
ZO_API long SystemTimeZoneOffSetMinutes();

} // namespace ZoPrimitives
