#pragma once

/// The memory of the test program: how much its code holds, and, on demand, none left.
class Memory {
public:
    /// False where the library takes the C heap for all, for a sanitizer: nothing is counted or refused then.
    static bool Watched();
    /// Bytes that `new`, `malloc` and the library's own heap gave and that were not given back.
    static long long InUse();
    /// The most bytes in use since the last `ResetPeak`.
    static long long Peak();
    static void ResetPeak();

    /// While it lives allocations are refused: the one with that number, from 1, and all later ones if it is
    /// `forGood`.
    class Shortage {
    public:
        Shortage(long long number, bool forGood);
        ~Shortage();
        Shortage(const Shortage&) = delete;
        Shortage& operator=(const Shortage&) = delete;
        /// Whether an allocation was refused.
        static bool Met();
    };
};
