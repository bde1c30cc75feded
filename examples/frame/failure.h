#pragma once

#include <stdexcept>

namespace Frame {

/// An error as a UTF-8 sentence for the user at the terminal.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Frame
