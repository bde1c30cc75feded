#pragma once

#include "support/FaultyServices.h"

#include <chrono>
#include <cstdint>

namespace ZoPrimitives::Testing {

/// A clock and a time zone of the test's own; installed while it lives.
class FakeClock : public Platform::Services {
public:
    std::uint32_t ticks = 0;
    std::int64_t now = 0; // ticks of 100 ns
    int bias = 0;         // minutes
    /// Minutes of daylight saving at a time in seconds since 1970; null for none.
    int (*daylight)(std::int64_t seconds) = nullptr;
    bool tellsLocalTime = true;

    std::uint32_t Ticks() override { return ticks; }
    std::int64_t SystemTime() override { return now; }
    bool LocalTime(std::int64_t seconds, Platform::CalendarTime& time) override {
        using namespace std::chrono;
        if (!tellsLocalTime) return false;
        const int saved = daylight != nullptr ? daylight(seconds) : 0;
        const sys_seconds local{std::chrono::seconds(seconds) + minutes(saved - bias)};
        const sys_days day = floor<days>(local);
        const year_month_day date(day);
        const hh_mm_ss clock(local - day);
        time = {int{date.year()},
                static_cast<int>(unsigned{date.month()}),
                static_cast<int>(unsigned{date.day()}),
                static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count())};
        return true;
    }
    int StandardTimeBias() override { return bias; }

private:
    InstalledServices installed{*this};
};

} // namespace ZoPrimitives::Testing
