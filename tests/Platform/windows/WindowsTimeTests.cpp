#include "Platform/windows/Time.h"

#include <chrono>
#include <cstdlib>
#include <cwchar>
#include <gtest/gtest.h>

namespace {

using namespace ZoPrimitives::Platform;

std::int64_t Utc(int year, int month, int day, int hour, int minute) {
    using namespace std::chrono;
    const sys_days date = std::chrono::year(year) / month / day;
    return (date.time_since_epoch() + hours(hour) + minutes(minute)) / seconds(1);
}

long long Digits(const CalendarTime& time) {
    return ((time.year * 100 + time.month) * 100 + time.day) * 10000 + time.hour * 100 + time.minute;
}

// Brazil gave summer time up in 2019.
TEST(WindowsTimeTests, GoesByTheRulesOfItsYear) {
    DYNAMIC_TIME_ZONE_INFORMATION brazil;
    for (DWORD i = 0;; ++i) {
        if (EnumDynamicTimeZoneInformation(i, &brazil) != ERROR_SUCCESS) GTEST_SKIP() << "no such zone";
        if (std::wcscmp(brazil.TimeZoneKeyName, L"E. South America Standard Time") == 0) break;
    }
    const struct {
        const char* name;
        std::int64_t utc;
        long long local;
    } rows[] = {
        {"a summer before", Utc(2018, 1, 15, 12, 0), 2018'01'15'10'00},
        {"a winter before", Utc(2018, 7, 15, 12, 0), 2018'07'15'09'00},
        {"before a summer begins", Utc(2018, 11, 4, 2, 59), 2018'11'03'23'59},
        {"a summer begins", Utc(2018, 11, 4, 3, 0), 2018'11'04'01'00},
        {"New Year's Eve in summer", Utc(2018, 1, 1, 1, 30), 2017'12'31'23'30},
        {"before the last summer ends", Utc(2019, 2, 17, 1, 59), 2019'02'16'23'59},
        {"the last summer ends", Utc(2019, 2, 17, 2, 0), 2019'02'16'23'00},
        {"New Year's Eve after", Utc(2020, 1, 1, 2, 30), 2019'12'31'23'30},
        {"a summer after", Utc(2020, 1, 15, 12, 0), 2020'01'15'09'00},
        {"before 1970", Utc(1900, 7, 1, 12, 0), 1900'07'01'09'00},
    };
    for (const auto& row : rows) {
        CalendarTime time;
        EXPECT_TRUE(LocalTimeIn(&brazil, row.utc, time)) << row.name;
        EXPECT_EQ(Digits(time), row.local) << row.name;
    }
    CalendarTime none;
    for (const std::int64_t seconds : {INT64_MIN, -11'644'473'601LL, 1'000'000'000'000LL, INT64_MAX})
        EXPECT_FALSE(LocalTimeIn(&brazil, seconds, none)) << seconds;
}

TEST(WindowsTimeTests, AVariableOfTheCRuntimesChangesNothing) {
    CalendarTime before, after;
    EXPECT_TRUE(Current().LocalTime(1'720'000'800, before));
    _putenv_s("TZ", "XYZ-9");
    _tzset();
    EXPECT_TRUE(Current().LocalTime(1'720'000'800, after));
    _putenv_s("TZ", "");
    _tzset();
    EXPECT_EQ(Digits(after), Digits(before));
}

} // namespace
