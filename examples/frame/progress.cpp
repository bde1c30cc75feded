#include "progress.h"

#include <iostream>
#include <string>

namespace Frame {

namespace {

constexpr int PARTS = 40;

} // namespace

ProgressBar::~ProgressBar() {
    if (shown >= 0) std::cerr << '\r' << std::string(PARTS + 4, ' ') << '\r' << std::flush;
}

void ProgressBar::Show(unsigned long long done, unsigned long long all) {
    if (all == 0 || std::chrono::steady_clock::now() - begin < std::chrono::milliseconds(500)) return;
    const int parts = static_cast<int>(static_cast<double>(done) / static_cast<double>(all) * PARTS);
    if (parts == shown) return;
    shown = parts;
    std::cerr << "\r  [" << std::string(static_cast<std::size_t>(parts), '#')
              << std::string(static_cast<std::size_t>(PARTS - parts), ' ') << ']' << std::flush;
}

} // namespace Frame
