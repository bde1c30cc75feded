#pragma once

#include "bench.h"

#include <functional>

namespace bench {

inline constexpr int MOST_RUNS = 100;

enum Target { MEMORY, FILES };

/// What a child reports, as it travels through the pipe.
struct Result {
    bool done = false;
    bool overflowed = false; // known to the parent only
    int runs = 0;
    double fresh = 0; // the first run in its process
    double times[MOST_RUNS] = {};
    double drops[MOST_RUNS] = {};
    std::uint64_t bytes = 0;
    std::uint64_t peak = 0; // bytes
    Digest digest;

    double Time() const { return Median(std::vector<double>(times, times + runs)); }
    double LeastTime() const { return Least(std::vector<double>(times, times + runs)); }
    double Drop() const { return Median(std::vector<double>(drops, drops + runs)); }
};

/// Counts the process's time on the processor from here on, not time on the clock.
void CountProcessorTime();

/// Runs `work` in a child. What it leaves in its result comes back; `done` is false when the child died.
Result InChild(const std::function<void(Result&)>& work);
/// Runs `work` on a thread with a stack of `size` bytes.
void OnStack(std::size_t size, const std::function<void()>& work);

/// The first run in the process, then `runs` more.
void TimeSaves(Contender& contender, Target target, const std::string& path, int runs, Result& result);
void TimeOpens(Contender& contender, Target target, const std::string& path, int runs, Result& result);

} // namespace bench
