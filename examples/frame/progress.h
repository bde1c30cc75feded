#pragma once

#include <chrono>

namespace Frame {

/// A bar on the terminal, shown once an operation has taken half a second and taken away at its end.
class ProgressBar {
public:
    ProgressBar() = default;
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar();

    /// `all` is 0 while it is not known.
    void Show(unsigned long long done, unsigned long long all);

private:
    std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
    int shown = -1; // of its parts; -1: none yet
};

} // namespace Frame
