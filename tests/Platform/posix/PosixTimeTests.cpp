#include "Platform/Platform.h"
#include "ZoPrimitives/TTimestamp.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

using namespace ZoPrimitives;
using Testing::TemporaryFolder;

namespace {

/// An environment variable for as long as it lives; it was not set before, or does not matter afterwards.
struct Variable {
    Variable(const char* variable, const std::string& value) : name(variable) {
        setenv(name, value.c_str(), 1);
        tzset();
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() {
        unsetenv(name);
        tzset();
    }
    const char* name;
};

struct FixedTime : Platform::Services {
    std::int64_t SystemTime() override { return seconds * 10'000'000; }
    std::int64_t seconds = 0;
};

TEST(PosixTimeTests, StandardBiasWhateverTheSeason) {
    const std::tuple<const char*, const char*, int> rows[] = {
        {"UTC", "UTC0", 0},
        {"south", "BRT3BRST,M10.3.0/0,M2.3.0/0", 180},
        {"half an hour of daylight saving", "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", -630},
        {"summer called the standard", "IST-1GMT0,M10.5.0,M3.5.0/1", 0},
        {"daylight saving all the year", "XXX3YYY2,0/0,J365/25", 180},
        {"ended, of the zone's history", "America/Sao_Paulo", 180},
    };
    for (const auto& [name, zone, bias] : rows) {
        if (zone[0] == 'A' && !std::filesystem::exists(std::string("/usr/share/zoneinfo/") + zone)) continue;
        const Variable variable("TZ", zone);
        FixedTime clock;
        for (int month = 0; month < 12; ++month) {
            clock.seconds = 1'700'000'000 + month * 2'630'000;
            EXPECT_EQ(clock.StandardTimeBias(), bias) << name << ", month " << month;
        }
    }
}

TEST(PosixTimeTests, LocalTimeHasDaylightSaving) {
    const Variable zone("TZ", "EST5EDT,M3.2.0,M11.1.0");
    Platform::Services system;
    Platform::CalendarTime time;
    // 12:00 UTC on 2024-01-01 and 2024-07-15, 23:00 UTC on 1969-12-31.
    for (const auto& [seconds, hour] : {std::pair(1'704'110'400, 7), {1'721'044'800, 8}, {-3'600, 18}}) {
        ASSERT_TRUE(system.LocalTime(seconds, time));
        EXPECT_EQ(time.hour, hour) << seconds;
    }
    EXPECT_FALSE(system.LocalTime(INT64_MAX, time));
}

TEST(PosixTimeTests, DirectivesOfTheCLibrary) {
    // From before 1970 to past 2038, in steps that meet every day of the week, month and hour.
    for (std::int64_t seconds = -1'000'000'000; seconds < 3'000'000'000; seconds += 7'777'777) {
        const time_t time = seconds;
        tm utc;
        gmtime_r(&time, &utc);
        for (const char c : std::string("aAbBcCdDeFgGhHIjmMnprRStTuUVwWxXyY%")) {
            const char format[] = {'[', '%', c, ']', '\0'};
            char expected[100];
            ASSERT_GT(strftime(expected, sizeof expected, format, &utc), 0u);
            ASSERT_STREQ(TTimestamp::FromTicks(seconds * 10'000'000).InUTCTime(format).c_str(), expected)
                << format << " at " << seconds;
        }
    }
}

/// Writes a text; whether there was a file.
bool Trace(bool truncate, const char* text) {
    std::FILE* file = Platform::Services().OpenTraceFile(truncate);
    if (file == nullptr) return false;
    std::fputs(text, file);
    std::fclose(file);
    return true;
}

TEST(PosixTraceTests, FileLiesInTheFolderThatTheEnvironmentNames) {
    const TemporaryFolder own;
    const Variable folder("ZO_TRACE_FOLDER", own.Path());
    for (const char* text : {"old", "1"}) EXPECT_TRUE(Trace(true, text));
    EXPECT_TRUE(Trace(false, "2"));
    EXPECT_EQ(own.Read("Trace.txt"), "12");
    EXPECT_EQ(own.Permissions("Trace.txt"), 0600u);

    const TemporaryFolder systems;
    const Variable temporary("TMPDIR", systems.Path());
    const Variable none("ZO_TRACE_FOLDER", "");
    EXPECT_TRUE(Trace(true, "3"));
    EXPECT_EQ(systems.Read("Trace.txt"), "3");
    const Variable missing("ZO_TRACE_FOLDER", own.Path("missing"));
    EXPECT_FALSE(Trace(true, "4"));
}

TEST(PosixTraceTests, NothingButAFileOfTheUsersOwnIsTouched) {
    using Path = const std::filesystem::path&;
    const std::tuple<const char*, void (*)(Path folder, Path trace)> rows[] = {
        {"link", [](Path folder, Path trace) { create_symlink(folder / "precious", trace); }},
        {"link to nothing", [](Path folder, Path trace) { create_symlink(folder / "new", trace); }},
        {"second name of a file",
         [](Path folder, Path trace) { create_hard_link(folder / "precious", trace); }},
        {"pipe", [](Path, Path trace) { mkfifo(trace.c_str(), 0600); }},
        {"folder", [](Path, Path trace) { create_directory(trace); }},
        {"another user's file", // that only root can make
         [](Path folder, Path trace) {
             copy_file(folder / "precious", trace);
             if (chown(trace.c_str(), 4321, 4321) != 0 && remove(trace)) create_directory(trace);
         }},
    };
    for (const auto& [name, make] : rows) {
        const TemporaryFolder folder;
        const Variable place("ZO_TRACE_FOLDER", folder.Path());
        folder.Write("precious", "data");
        make(folder.Path(), folder.Path("Trace.txt"));
        for (const bool truncate : {true, false}) EXPECT_FALSE(Trace(truncate, "x")) << name;
        EXPECT_EQ(folder.Read("precious"), "data") << name;
        EXPECT_FALSE(folder.Has("new")) << name;
    }
}

} // namespace
