#pragma once

#include "bench.h"

#include <functional>

namespace bench {

inline constexpr int MOST_RUNS = 100;

enum Target { MEMORY, FILES };

/// A child's report, sent through the pipe as raw bytes.
struct Result {
    bool done = false;
    bool overflowed = false; // set by the parent only
    int runs = 0;
    double fresh = 0; // the first run of the process
    double times[MOST_RUNS] = {};
    double drops[MOST_RUNS] = {};
    std::uint64_t bytes = 0;
    std::uint64_t peak = 0; // bytes
    Digest digest;

    double Time() const { return Median(std::vector<double>(times, times + runs)); }
    double LeastTime() const { return Least(std::vector<double>(times, times + runs)); }
    double Drop() const { return Median(std::vector<double>(drops, drops + runs)); }
};

/// Touches most of the memory that is free: a virtual machine is given a page by its host when it first
/// touches it, which takes many times as long as what is measured.
void TouchFreeMemory();
/// From here on measures the process's processor time instead of wall-clock time.
void CountProcessorTime();
/// In nanoseconds.
double Clock();

/// Runs `work` in a child process and returns the result that it fills; `done` is false if the child died.
Result InChild(const std::function<void(Result&)>& work);
/// Runs `work` on a thread with a stack of `size` bytes.
void OnStack(std::size_t size, const std::function<void()>& work);

/// One fresh run, then `runs` warm ones.
void TimeSaves(Contender& contender, Target target, const std::string& path, int runs, Result& result);
void TimeOpens(Contender& contender, Target target, const std::string& path, int runs, Result& result);

} // namespace bench
