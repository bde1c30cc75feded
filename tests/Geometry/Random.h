#pragma once

#include <random>

/// The same numbers on every platform.
class Random {
public:
    explicit Random(unsigned seed) : engine(seed) {}
    /// 0 to count - 1.
    int Pick(int count) { return static_cast<int>(engine() % static_cast<unsigned>(count)); }
    double Uniform(double low, double high) {
        return low + (high - low) * (static_cast<double>(engine() & 0xFFFFFFFF) / 4294967296.0);
    }

private:
    std::mt19937 engine;
};
