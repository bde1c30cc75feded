#include "ZoPrimitives/TTimestamp.h"

#include "Platform/Platform.h"

#include <algorithm>
#include <cctz/civil_time.h>
#include <cctz/time_zone.h>
#include <limits>
#include <ratio>
#include <string>
#include <string_view>

namespace ZoPrimitives {

namespace {

using TickCount = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

constexpr std::int64_t TICKS_PER_SECOND = 10'000'000;
constexpr std::int64_t FIRST = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t LAST = std::numeric_limits<std::int64_t>::max();

// Results out of range become the nearest limit.

std::int64_t Sum(std::int64_t a, std::int64_t b) {
    return a + std::clamp(b, FIRST - std::min<std::int64_t>(a, 0), LAST - std::max<std::int64_t>(a, 0));
}

std::int64_t Difference(std::int64_t a, std::int64_t b) {
    return a - std::clamp(b, std::max<std::int64_t>(a, -1) - LAST, std::min<std::int64_t>(a, -1) - FIRST);
}

std::int64_t Times(std::int64_t value, std::int64_t factor) {
    if (value > LAST / factor) return LAST;
    if (value < FIRST / factor) return FIRST;
    return value * factor;
}

/// `ticks` moved by `seconds`, in two steps because a shift may span the whole range of ticks twice.
std::int64_t Shifted(std::int64_t ticks, std::int64_t seconds) {
    const std::int64_t half = seconds / 2;
    return Sum(Sum(ticks, Times(half, TICKS_PER_SECOND)), Times(seconds - half, TICKS_PER_SECOND));
}

bool Parsed(const ZoString& text, const ZoString& format, std::int64_t& ticks) {
    cctz::time_point<cctz::seconds> seconds;
    cctz::detail::femtoseconds part;
    const Platform::ClassicLocale classic;
    if (!cctz::detail::parse(format.c_str(), text.c_str(), cctz::utc_time_zone(), &seconds, &part))
        return false;
    ticks = Shifted(part.count() / 100'000'000, seconds.time_since_epoch().count());
    return true;
}

/// Decimal digits, padded with zeros to `width`.
std::string Digits(std::int64_t value, std::size_t width) {
    std::string digits = std::to_string(value);
    if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
    return digits;
}

std::int64_t Modulo(std::int64_t value, std::int64_t divisor) {
    const std::int64_t rest = value % divisor;
    return rest < 0 ? rest + divisor : rest;
}

/// The length of the directive that cctz itself implements at the start of `directive`, which follows a
/// percent sign; 0 if none.
std::size_t CctzDirective(std::string_view directive) {
    constexpr std::string_view Plain = "YmdeHMSzZs%";
    if (directive.empty()) return 0;
    if (Plain.find(directive[0]) != Plain.npos) return 1;
    std::size_t i = 1;
    if (directive[0] == ':') {
        while (i < 3 && i < directive.size() && directive[i] == ':') ++i;
        return i < directive.size() && directive[i] == 'z' ? i + 1 : 0;
    }
    if (directive[0] != 'E') return 0;
    std::string_view endings = "z";
    if (i < directive.size() && directive[i] == '*') {
        endings = "zSf";
        ++i;
    } else if (directive.substr(i, 2) == "4Y") {
        return 3;
    } else {
        while (i < directive.size() && i < 4 && directive[i] >= '0' && directive[i] <= '9') {
            endings = "Sf";
            ++i;
        }
    }
    return i < directive.size() && endings.find(directive[i]) != endings.npos ? i + 1 : 0;
}

/// The length of an E or O modifier that C allows before the directive's letter. It asks for an alternative
/// notation, which English lacks.
std::size_t Modifier(std::string_view directive) {
    if (directive.size() < 2) return 0;
    const std::string_view letters = directive[0] == 'E'   ? "cCxXyY"
                                     : directive[0] == 'O' ? "deHImMSuUVwWy"
                                                           : "";
    return letters.find(directive[1]) != letters.npos ? 1 : 0;
}

/// The expansion of a composite directive; empty for others.
std::string_view Composite(char directive) {
    switch (directive) {
    case 'c':
        return "%a %b %e %H:%M:%S %Y";
    case 'D':
    case 'x':
        return "%m/%d/%y";
    case 'F':
        return "%Y-%m-%d";
    case 'r':
        return "%I:%M:%S %p";
    case 'R':
        return "%H:%M";
    case 'T':
    case 'X':
        return "%H:%M:%S";
    default:
        return {};
    }
}

/// The output of a single directive that cctz would pass to the C runtime; empty for an unknown directive.
std::string Written(char directive, const cctz::civil_second& time) {
    constexpr const char* Months[] = {"January", "February", "March",     "April",   "May",      "June",
                                      "July",    "August",   "September", "October", "November", "December"};
    constexpr const char* Days[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                    "Friday", "Saturday", "Sunday"};
    const cctz::civil_day day(time);
    const int yearDay = cctz::get_yearday(day);                   // from 1
    const int weekDay = static_cast<int>(cctz::get_weekday(day)); // from 0, which is Monday
    // An ISO 8601 week belongs to the year of its Thursday.
    const cctz::civil_day thursday = day - weekDay + 3;
    const std::string month = Months[time.month() - 1];
    const std::string dayName = Days[weekDay];

    switch (directive) {
    case 'a':
        return dayName.substr(0, 3);
    case 'A':
        return dayName;
    case 'b':
    case 'h':
        return month.substr(0, 3);
    case 'B':
        return month;
    case 'C':
        return Digits((time.year() - Modulo(time.year(), 100)) / 100, 2);
    case 'g':
        return Digits(Modulo(thursday.year(), 100), 2);
    case 'G':
        return std::to_string(thursday.year());
    case 'I':
        return Digits((time.hour() + 11) % 12 + 1, 2);
    case 'j':
        return Digits(yearDay, 3);
    case 'n':
        return "\n";
    case 'p':
        return time.hour() < 12 ? "AM" : "PM";
    case 't':
        return "\t";
    case 'u':
        return std::to_string(weekDay + 1);
    case 'U':
        return Digits((yearDay + 6 - (weekDay + 1) % 7) / 7, 2);
    case 'V':
        return Digits((cctz::get_yearday(thursday) + 6) / 7, 2);
    case 'w':
        return std::to_string((weekDay + 1) % 7);
    case 'W':
        return Digits((yearDay + 6 - weekDay) / 7, 2);
    case 'y':
        return Digits(Modulo(time.year(), 100), 2);
    default:
        return {};
    }
}

/// Appends `format` after expanding the directives that cctz would pass to the C runtime, which depends on
/// the locale, knows different directives on each system, and ends the process for some.
void AppendFormat(std::string& text, std::string_view format, const cctz::civil_second& time) {
    for (std::size_t percent; (percent = format.find('%')) != format.npos;) {
        text += format.substr(0, percent);
        format.remove_prefix(percent + 1);
        const std::string_view directive = format.substr(Modifier(format));
        const char letter = directive.empty() ? '\0' : directive[0];
        if (const std::size_t size = CctzDirective(directive); size > 0) {
            text += '%';
            text += directive.substr(0, size);
            format = directive.substr(size);
        } else if (const std::string_view parts = Composite(letter); !parts.empty()) {
            AppendFormat(text, parts, time);
            format = directive.substr(1);
        } else if (const std::string written = Written(letter, time); !written.empty()) {
            text += written;
            format = directive.substr(1);
        } else {
            text += "%%"; // print the rest as plain text
        }
    }
    text += format;
}

ZoString Formatted(std::int64_t ticks, const ZoString& format, const cctz::time_zone& zone) {
    const cctz::time_point<TickCount> time{TickCount(ticks)};
    std::string expanded;
    AppendFormat(expanded, format.c_str(), cctz::convert(time, zone));
    return ZoString(cctz::format(expanded, time, zone).c_str());
}

cctz::time_zone StandardZone() {
    return cctz::fixed_time_zone(-std::chrono::minutes(Platform::Current().StandardTimeBias()));
}

/// The local wall-clock time; standard time if the system does not know it.
cctz::civil_second LocalTime(std::int64_t ticks) {
    const std::int64_t seconds = ticks / TICKS_PER_SECOND;
    Platform::CalendarTime time;
    if (Platform::Current().LocalTime(seconds, time))
        return cctz::civil_second(time.year, time.month, time.day, time.hour, time.minute, time.second);
    return cctz::convert(cctz::time_point<cctz::seconds>{cctz::seconds(seconds)}, StandardZone());
}

} // namespace

TTimestamp::TTimestamp() : count(Platform::Current().SystemTime()) {}

TTimestamp::TTimestamp(const ZoString& text, const ZoString& format) {
    if (!Parsed(text, format, count)) count = Platform::Current().SystemTime();
}

TTimestamp::~TTimestamp() = default;

TTimestamp& TTimestamp::operator+=(std::chrono::seconds d) {
    count = Shifted(count, d.count());
    return *this;
}

TTimestamp& TTimestamp::operator-=(std::chrono::seconds d) {
    // The smallest number cannot be negated; shifts of that size are all equivalent.
    count = Shifted(count, -std::max<std::int64_t>(d.count(), -LAST));
    return *this;
}

long long TTimestamp::DiferenceInNanoseconds(const TTimestamp& other) const {
    return Times(Difference(count, other.count), 100);
}

ZoString TTimestamp::InUTCTime(const ZoString& format) const {
    return Formatted(count, format, cctz::utc_time_zone());
}

ZoString TTimestamp::InLocalTime(const ZoString& format) const {
    return Formatted(count, format, StandardZone());
}

bool TTimestamp::IsValid(const ZoString& text, const ZoString& format) {
    std::int64_t ticks;
    return Parsed(text, format, ticks);
}

bool TTimestamp::IsToday() const {
    return cctz::civil_day(LocalTime(count)) == cctz::civil_day(LocalTime(Platform::Current().SystemTime()));
}

bool TTimestamp::IsYesterday() const {
    return cctz::civil_day(LocalTime(count)) ==
           cctz::civil_day(LocalTime(Platform::Current().SystemTime())) - 1;
}

bool TTimestamp::IsSameDayHourMinuteAndSeconds(const TTimestamp& other) const {
    return LocalTime(count) == LocalTime(other.count);
}

TTimestamp TTimestamp::MinValue() { return TTimestamp(std::int64_t{0}); }

long SystemTimeZoneOffSetMinutes() { return Platform::Current().StandardTimeBias(); }

} // namespace ZoPrimitives
