#pragma once

#include <stdexcept>

namespace Frame {

/// What went wrong, as a sentence for the person at the terminal, in UTF-8.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Frame
