#pragma once

#include "ZoPrimitives/Export.h"

namespace ZoPrimitives {

/// A stopwatch for short times: it counts milliseconds modulo 65,536, and after 70 s reads about 4.5 s.
class ZO_API Chrono {
public:
    /// Stopped, at zero.
    Chrono();
    Chrono(const Chrono& other) = default;
    Chrono& operator=(const Chrono& other) = default;
    virtual ~Chrono();

    bool operator==(const Chrono& other) const;
    bool operator!=(const Chrono& other) const { return !(*this == other); }

    /// To zero; a running watch runs on.
    void Reset();
    /// Goes on from what has elapsed; nothing for a watch that runs.
    void Start();
    void Stop();

    // Cut off, in binary fractions: at times a hundredth less than the milliseconds would have it, so that
    // after 13 s the watch reads 12.99.

    /// Always 0: the watch does not count that far.
    unsigned short Hours();
    unsigned char Minutes();
    unsigned char Seconds();
    unsigned char Hundredths();

private:
    void GetTime(unsigned short& h, unsigned char& m, unsigned char& s, unsigned char& c);

    unsigned short start = 0;   // when it would have begun without the stops; ms
    unsigned short elapsed = 0; // when last stopped or read; ms
    bool running = false;
};

} // namespace ZoPrimitives
