#include "ZoPrimitives/TTimestamp.h"

#include "support/CommaLocale.h"
#include "support/FakeClock.h"

#include <gtest/gtest.h>

using namespace ZoPrimitives;
using namespace std::chrono_literals;
using Testing::FakeClock;

namespace {

constexpr std::int64_t LAST = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t FIRST = std::numeric_limits<std::int64_t>::min();
constexpr const char* FORMAT = "%d/%m/%Y %H:%M:%S";

TTimestamp At(const char* utc) { return TTimestamp(utc, FORMAT); }

struct TTimestampTests : testing::Test {
    TTimestampTests() { clock.now = 17'000'000'001'234'567; }
    FakeClock clock;
};

TEST_F(TTimestampTests, ReadsText) {
    const CommaLocale locale;
    const std::tuple<const char*, const char*, const char*, bool, std::int64_t> rows[] = {
        {"start", "01/01/1970 00:00:00", FORMAT, true, 0},
        {"before 1970", "31/12/1969 23:59:59", FORMAT, true, -10'000'000},
        {"parts of a tick are cut", "1.99999999", "%E*S", true, 19'999'999},
        {"parts before 1970", "1969-12-31 23:59:59.5", "%Y-%m-%d %H:%M:%E*S", true, -5'000'000},
        {"zone", "01:00 -03:00", "%H:%M %Ez", true, 144'000'000'000},
        {"English names", "3 Feb 1970", "%d %b %Y", true, 28'512'000'000'000},
        {"beyond the last tick", "292277026596", "%Y", true, LAST},
        {"beyond the first tick", "-29250", "%Y", true, FIRST},
        {"beyond all seconds", "292277026597", "%Y", false, 0},
        {"no such day", "30/02/2024 00:00:00", FORMAT, false, 0},
        {"something left over", "01/01/1970 00:00:00x", FORMAT, false, 0},
        {"empty", "", FORMAT, false, 0},
        {"absurd width", "1", "%E999999999999S", false, 0},
    };
    for (const auto& [name, text, format, valid, ticks] : rows) {
        EXPECT_EQ(TTimestamp::IsValid(text, format), valid) << name;
        const std::int64_t expected = valid ? ticks : clock.now; // silently the present time
        EXPECT_EQ(TTimestamp(text, format).Ticks(), expected) << name;
    }
    EXPECT_EQ(TTimestamp().Ticks(), clock.now);
    EXPECT_EQ(TTimestamp::MinValue().Ticks(), 0);
}

TEST_F(TTimestampTests, WritesText) {
    const CommaLocale locale;
    constexpr std::int64_t Monday = 17'040'672'001'234'567; // the 1st of January 2024
    const std::tuple<const char*, std::int64_t, const char*, const char*> rows[] = {
        {"start", 0, FORMAT, "01/01/1970 00:00:00"},
        {"parts of a second", 12'345'678, "%E*S %E3S %E*f %E2f %E09S",
         "01.2345678 01.234 2345678 23 01.234567800"},
        {"parts before 1970", -5'000'000, "%F %H:%M:%E1S", "1969-12-31 23:59:59.5"},
        {"parts after a name", 15'000'000, "%a %b %E1S", "Thu Jan 01.5"},
        {"zone", 0, "%z %Ez %:z %E*z", "+0000 +00:00 +00:00 +00:00:00"},
        {"four digits of a year", -624'511'296'000'000'000, "%E4Y", "-009"},
        {"names", Monday, "%a %A %b %B %p", "Mon Monday Jan January AM"},
        {"composites", Monday, "%c|%D|%x|%F|%r|%R|%T|%X",
         "Mon Jan  1 00:00:00 2024|01/01/24|01/01/24|2024-01-01|12:00:00 AM|00:00|00:00:00|00:00:00"},
        {"weeks", Monday - 864'000'000'000, "%G %g %V %U %W %u %w %j", "2023 23 52 53 52 7 0 365"},
        {"percent signs", 0, "100%% %%d %", "100% %d %"},
        {"accents", 0, "%d de mar\xE7o", "01 de mar\xE7o"},
        {"modified", 5'025'000'000, "%Ec|%EC|%Ex|%EX|%Ey|%EY|%Od|%Oe|%OH|%OI|%Om|%OM|%OS",
         "Thu Jan  1 00:08:22 1970|19|01/01/70|00:08:22|70|1970|01| 1|00|12|01|08|22"},
        {"modified weeks", Monday, "%Ou|%OU|%OV|%Ow|%OW|%Oy", "1|00|01|1|01|24"},
        {"negative years", -624'511'296'000'000'000, "%G|%Y|%g|%y|%C", "-9|-9|91|91|-1"},
        {"no directives", 0, "%Q %-d %5d %Ed %OY %E %O %: %:d %E99999S %+ %EE",
         "%Q %-d %5d %Ed %OY %E %O %: %:d %E99999S %+ %EE"},
        {"last tick", LAST, "%F %T %c", "31197-09-14 02:48:05 Sun Sep 14 02:48:05 31197"},
        {"first tick", FIRST, "%C %y %F %E*S", "-273 42 -27258-04-19 54.5224192"},
    };
    for (const auto& [name, ticks, format, text] : rows)
        EXPECT_STREQ(TTimestamp::FromTicks(ticks).InUTCTime(format).c_str(), text) << name;
}

TEST_F(TTimestampTests, LocalTimeIsStandardTime) {
    clock.daylight = [](std::int64_t) { return 60; };
    const std::tuple<int, const char*> rows[] = {
        {300, "07:00 -0500"}, {-330, "17:30 +0530"}, {1441, "12:00 +0000"}}; // the last is no zone
    for (const auto& [bias, text] : rows) {
        clock.bias = bias;
        EXPECT_STREQ(At("15/07/2024 12:00:00").InLocalTime("%H:%M %z").c_str(), text);
        EXPECT_EQ(SystemTimeZoneOffSetMinutes(), bias);
    }
}

TEST_F(TTimestampTests, Shifts) {
    const std::tuple<const char*, std::int64_t, std::chrono::seconds, std::int64_t, std::int64_t> rows[] = {
        {"a second", 5, 1s, 10'000'005, -9'999'995},
        {"beyond both ends", 5, std::chrono::seconds::max(), LAST, FIRST},
        {"beyond both ends, backwards", 5, std::chrono::seconds::min(), FIRST, LAST},
        {"by nearly all", FIRST, 1'800'000'000'000s, 8'776'627'963'145'224'192, FIRST},
    };
    for (const auto& [name, ticks, shift, expectedLater, expectedEarlier] : rows) {
        TTimestamp later = TTimestamp::FromTicks(ticks), earlier = later;
        EXPECT_EQ((later += shift).Ticks(), expectedLater) << name;
        EXPECT_EQ((earlier -= shift).Ticks(), expectedEarlier) << name;
    }
}

TEST_F(TTimestampTests, DiffersByNanosecondsAsFarAsTheyCanBeTold) {
    __extension__ using Wide = __int128;
    const std::int64_t edges[] = {FIRST, FIRST + 3,  FIRST / 100,    -3,       -1,  0, 1,
                                  5,     LAST / 100, LAST / 100 + 1, LAST - 1, LAST};
    for (const std::int64_t first : edges) {
        for (const std::int64_t second : edges) {
            const TTimestamp a = TTimestamp::FromTicks(first), b = TTimestamp::FromTicks(second);
            const Wide difference = (Wide{first} - second) * 100;
            EXPECT_EQ(a.DiferenceInNanoseconds(b), std::clamp<Wide>(difference, FIRST, LAST))
                << first << " - " << second;
            EXPECT_TRUE((a < b) == (first < second) && (a <= b) == (first <= second));
            EXPECT_TRUE((a > b) == (first > second) && (a >= b) == (first >= second));
            EXPECT_TRUE((a == b) == (first == second) && (a != b) == (first != second));
        }
    }
}

TEST_F(TTimestampTests, TodayAndYesterday) {
    const auto none = [](std::int64_t) { return 0; };
    const auto hour = [](std::int64_t) { return 60; };
    // An hour is put back at the midnight that starts the 18th of February 2018, 02:00 UTC.
    const auto until18 = [](std::int64_t seconds) { return seconds < 1'518'919'200 ? 60 : 0; };
    const std::tuple<const char*, int (*)(std::int64_t), int, const char*, const char*, bool, bool> rows[] = {
        {"other end of the day", none, 0, "10/05/2023 00:00:00", "10/05/2023 23:59:59", true, false},
        {"a second before today", none, 0, "10/05/2023 23:59:59", "09/05/2023 23:59:59", false, true},
        {"tomorrow", none, 0, "10/05/2023 12:00:00", "11/05/2023 12:00:00", false, false},
        {"same day of another year", none, 0, "10/05/2023 12:00:00", "10/05/2022 12:00:00", false, false},
        {"1st of March", none, 0, "01/03/2023 08:00:00", "28/02/2023 20:00:00", false, true},
        {"1st of March of a leap year", none, 0, "01/03/2024 08:00:00", "29/02/2024 20:00:00", false, true},
        {"local day, west", none, 180, "11/05/2023 02:00:00", "10/05/2023 03:00:00", true, false},
        {"daylight saving counts", hour, 180, "11/05/2023 02:30:00", "11/05/2023 01:59:00", false, true},
        {"after a day of 25 hours", until18, 180, "19/02/2018 02:30:00", "18/02/2018 01:59:00", false, true},
        {"a day of 25 hours", until18, 180, "18/02/2018 02:30:00", "17/02/2018 02:00:00", true, false},
    };
    for (const auto& [name, daylight, bias, now, then, today, yesterday] : rows) {
        clock.daylight = daylight;
        clock.bias = bias;
        clock.now = At(now).Ticks();
        EXPECT_EQ(At(then).IsToday(), today) << name;
        EXPECT_EQ(At(then).IsYesterday(), yesterday) << name;
    }
}

TEST_F(TTimestampTests, SameSecond) {
    const auto same = [](std::int64_t a, std::int64_t b) {
        return TTimestamp::FromTicks(a).IsSameDayHourMinuteAndSeconds(TTimestamp::FromTicks(b));
    };
    constexpr std::int64_t Second = 10'000'000;
    EXPECT_TRUE(same(0, Second - 1));
    EXPECT_FALSE(same(0, Second));
    EXPECT_TRUE(same(-Second + 1, Second - 1)) << "seconds are truncated towards 1970";
    for (const std::int64_t period : {60 * Second, 3600 * Second, 86'400 * Second, 365 * 86'400 * Second})
        EXPECT_FALSE(same(0, period)) << period;

    // The hour that a clock shows twice.
    clock.daylight = [](std::int64_t seconds) { return seconds < 7200 ? 60 : 0; };
    EXPECT_TRUE(same(5400 * Second, 9000 * Second));
    clock.tellsLocalTime = false;
    EXPECT_FALSE(same(5400 * Second, 9000 * Second)) << "by the standard time";
}

} // namespace
