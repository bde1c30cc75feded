#include "ZoPrimitives/Chrono.h"

#include "Platform/Platform.h"

namespace ZoPrimitives {

namespace {

unsigned short Ticks() { return static_cast<unsigned short>(Platform::Current().Ticks()); }

// The operands are promoted to int; the cast reduces the difference to 16 bits.
unsigned short Difference(unsigned short a, unsigned short b) { return static_cast<unsigned short>(a - b); }

} // namespace

Chrono::Chrono() { Reset(); }

Chrono::~Chrono() = default;

bool Chrono::operator==(const Chrono& other) const {
    return start == other.start && elapsed == other.elapsed && running == other.running;
}

void Chrono::Reset() {
    start = Ticks();
    elapsed = 0;
}

void Chrono::Start() {
    if (running) return;
    start = Difference(Ticks(), elapsed);
    running = true;
}

void Chrono::Stop() {
    if (!running) return;
    elapsed = Difference(Ticks(), start);
    running = false;
}

void Chrono::GetTime(unsigned short& h, unsigned char& m, unsigned char& s, unsigned char& c) {
    if (running) elapsed = Difference(Ticks(), start);
    const double hours = elapsed / 3'600'000.0;
    h = static_cast<unsigned short>(hours);
    const double minutes = (hours - h) * 60;
    m = static_cast<unsigned char>(minutes);
    const double seconds = (minutes - m) * 60;
    s = static_cast<unsigned char>(seconds);
    c = static_cast<unsigned char>((seconds - s) * 100);
}

unsigned short Chrono::Hours() {
    unsigned short h;
    unsigned char m, s, c;
    GetTime(h, m, s, c);
    return h;
}

unsigned char Chrono::Minutes() {
    unsigned short h;
    unsigned char m, s, c;
    GetTime(h, m, s, c);
    return m;
}

unsigned char Chrono::Seconds() {
    unsigned short h;
    unsigned char m, s, c;
    GetTime(h, m, s, c);
    return s;
}

unsigned char Chrono::Hundredths() {
    unsigned short h;
    unsigned char m, s, c;
    GetTime(h, m, s, c);
    return c;
}

} // namespace ZoPrimitives
