#pragma once

#include "ZoPrimitives/ZoString.h"

#include <chrono>
#include <cstdint>

namespace ZoPrimitives {

/// A point in time: ticks of 100 nanoseconds since 1970-01-01 00:00:00 UTC.
///
/// Times beyond the first or the last tick (about 29,000 years from 1970) become that tick. Nothing here
/// throws or reports an error.
///
/// Formats are those of cctz: the directives of C's `strftime` with the modifiers E and O, "%E3S", "%E*S" and
/// "%E*f" for fractions of a second, "%Ez" and "%E*z" for the offset from UTC, "%E4Y" for four-digit years.
/// Names are English in every locale. Unknown directives are printed unchanged and match no text.
class ZO_API TTimestamp {
public:
    /// The current time.
    TTimestamp();
    /// Reads `text` by `format`, in UTC unless the text gives an offset ("%z"). Parts that it does not give
    /// are those of 1970-01-01 00:00:00. A text that does not match silently gives the current time: ask
    /// `IsValid` first.
    TTimestamp(const ZoString& text, const ZoString& format);
    TTimestamp(const TTimestamp& other) = default;
    TTimestamp(TTimestamp&& other) = default;
    TTimestamp& operator=(const TTimestamp& other) = default;
    TTimestamp& operator=(TTimestamp&& other) = default;
    virtual ~TTimestamp();

    /// The number of ticks, for saving; it may be negative.
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

    /// Positive when `other` is earlier. Differences beyond 292 years give the largest or the smallest
    /// number.
    long long DiferenceInNanoseconds(const TTimestamp& other) const;

    ZoString InUTCTime(const ZoString& format) const;
    /// In the machine's standard time: in summer an hour behind a clock on daylight saving time.
    ZoString InLocalTime(const ZoString& format) const;

    static bool IsValid(const ZoString& text, const ZoString& format);

    // By local wall-clock time, daylight saving included, in whole seconds truncated towards 1970.
    bool IsToday() const;
    bool IsYesterday() const;
    bool IsSameDayHourMinuteAndSeconds(const TTimestamp& other) const;

    /// The start of 1970 in UTC.
    static TTimestamp MinValue();

private:
    explicit TTimestamp(std::int64_t ticks) : count(ticks) {}

    std::int64_t count;
};

/// Minutes to add to the machine's local standard time to get UTC: 180 for Brasília. Ignores daylight saving.
ZO_API long SystemTimeZoneOffSetMinutes();

} // namespace ZoPrimitives
