#include "Platform/Platform.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace ZoPrimitives::Platform;

namespace {

TEST(SystemTimeTests, GoesWithTheClocksOfTheStandardLibrary) {
    using namespace std::chrono;
    using Ticks = duration<std::int64_t, std::ratio<1, 10'000'000>>;
    const auto now = Ticks(Current().SystemTime()) - system_clock::now().time_since_epoch();
    EXPECT_LT(abs(duration_cast<milliseconds>(now).count()), 5'000);

    const steady_clock::time_point begin = steady_clock::now();
    const std::uint32_t first = Current().Ticks();
    while (steady_clock::now() - begin < milliseconds(60)) {
    }
    EXPECT_GE(Current().Ticks() - first, 60u - 17) << "a tick counter may step by 16 ms";
    EXPECT_LE(Current().Ticks() - first, 5'000u);
}

// Whatever the zone is: local time is the standard time or up to two hours beside it.
TEST(SystemTimeTests, LocalTimeGoesWithTheBias) {
    CalendarTime local;
    ASSERT_TRUE(Current().LocalTime(1'720'000'800, local)); // 10:00 UTC on 2024-07-03
    EXPECT_EQ(local.year * 100 + local.month, 202'407);
    EXPECT_EQ(local.second, 0);
    const int minutes = (local.day - 3) * 1440 + (local.hour - 10) * 60 + local.minute;
    EXPECT_NEAR(minutes, -Current().StandardTimeBias(), 120);
}

} // namespace
