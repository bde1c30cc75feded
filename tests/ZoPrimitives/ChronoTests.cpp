#include "ZoPrimitives/Chrono.h"

#include "support/FakeClock.h"

#include <gtest/gtest.h>

using namespace ZoPrimitives;

namespace {

/// "h:m:s.c"
std::string Reading(Chrono& watch) {
    return std::to_string(watch.Hours()) + ":" + std::to_string(watch.Minutes()) + ":" +
           std::to_string(watch.Seconds()) + "." + std::to_string(watch.Hundredths());
}

TEST(ChronoTests, Reads) {
    const std::tuple<const char*, std::uint32_t, std::uint32_t, const char*> rows[] = {
        {"less than a hundredth", 7, 9, "0:0:0.0"},
        {"a minute and more", 7, 65'504, "0:1:5.50"},
        {"70 s wrap", 7, 70'000, "0:0:4.46"},
        {"ticks pass 16 bits", 65'000, 1'500, "0:0:1.50"},
        {"ticks pass 32 bits", 0xFFFF'FF00u, 1'500, "0:0:1.50"},
        {"cut in binary fractions", 0, 270, "0:0:0.26"},
        {"whole seconds too", 0, 13'000, "0:0:12.99"},
    };
    for (const auto& [name, from, passed, reading] : rows) {
        Testing::FakeClock clock;
        clock.ticks = from;
        Chrono watch;
        watch.Start();
        clock.ticks += passed;
        EXPECT_EQ(Reading(watch), reading) << name;
    }
}

TEST(ChronoTests, StopsAndGoesOn) {
    Testing::FakeClock clock;
    Chrono watch;
    // What passes after the operation, and what the watch shows then.
    const std::tuple<std::string, void (Chrono::*)(), std::uint32_t, const char*> steps[] = {
        {"stopped while new", &Chrono::Stop, 60'000, "0:0:0.0"},
        {"started", &Chrono::Start, 1'500, "0:0:1.50"},
        {"stopped", &Chrono::Stop, 30'000, "0:0:1.50"},
        {"stopped while stopped", &Chrono::Stop, 30'000, "0:0:1.50"},
        {"started again", &Chrono::Start, 304, "0:0:1.80"},
        {"started while running", &Chrono::Start, 196, "0:0:2.0"},
        {"reset while running", &Chrono::Reset, 1'000, "0:0:1.0"},
        {"stopped again", &Chrono::Stop, 5, "0:0:1.0"},
        {"reset", &Chrono::Reset, 5, "0:0:0.0"},
    };
    for (const auto& [name, operation, passed, reading] : steps) {
        const Chrono before = watch;
        (watch.*operation)();
        clock.ticks += passed;
        EXPECT_EQ(Reading(watch), reading) << name;
        EXPECT_EQ(watch == before, name.starts_with("stopped while")) << name;
    }
}

} // namespace
