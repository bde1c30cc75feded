#pragma once

#include "ZoPrimitives/Export.h"

namespace ZoPrimitives {

/// A stopwatch for short times. It counts milliseconds modulo 65,536: after 70 s it reads about 4.5 s.
class ZO_API Chrono {
public:
    /// Starts stopped, at zero.
    Chrono();
    Chrono(const Chrono& other) = default;
    Chrono& operator=(const Chrono& other) = default;
    virtual ~Chrono();

    bool operator==(const Chrono& other) const;
    bool operator!=(const Chrono& other) const { return !(*this == other); }

    /// Sets the time to zero; a running watch keeps running.
    void Reset();
    /// Continues from the elapsed time. Does nothing if the watch is running.
    void Start();
    void Stop();

    // The parts are truncated in binary floating point, so the watch may read a hundredth too little: 12.99
    // after 13 s.

    /// Always 0: the watch wraps before a minute and six seconds.
    unsigned short Hours();
    unsigned char Minutes();
    unsigned char Seconds();
    unsigned char Hundredths();

private:
    void GetTime(unsigned short& h, unsigned char& m, unsigned char& s, unsigned char& c);

    unsigned short start = 0;   // ms, as if the watch had never been stopped
    unsigned short elapsed = 0; // ms, when last stopped or read
    bool running = false;
};

} // namespace ZoPrimitives
