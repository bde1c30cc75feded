#pragma once

#include "ZoPrimitives/ZoProgress.h"

#include <cstdint>

namespace ZoPrimitives {

/// Calls a progress at most every few milliseconds. The clock is read once in many steps.
class ProgressMeter {
public:
    static constexpr unsigned STEPS = 64;   // between two readings of the clock
    static constexpr unsigned INTERVAL = 5; // ms

    ProgressMeter() = default;
    /// `called` may be null; it hears first when an interval has passed. `location` goes into the exception.
    ProgressMeter(const pointer<TZoProgress>& called, const char* location);

    bool IsUsed() const { return static_cast<bool>(progress); }
    /// Counts a step; `where` is called with nothing and returns `done` and `all` as a pair.
    template <class Where>
    void Step(const Where& where) {
        if (--left != 0) return;
        left = STEPS;
        if (!progress || !IsDue()) return;
        const auto [done, all] = where();
        Tell(done, all);
    }

private:
    bool IsDue();
    /// Throws `XCancelled`.
    void Tell(unsigned long long done, unsigned long long all);

    pointer<TZoProgress> progress; // stays while it is called, whatever it does
    const char* location = "";
    unsigned left = STEPS;
    std::uint32_t last = 0; // ms
};

} // namespace ZoPrimitives
