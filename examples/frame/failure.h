#pragma once

#include "ZoPrimitives/XStream.h"

#include <stdexcept>
#include <string>

namespace Frame {

/// An error as a UTF-8 sentence for the user at the terminal.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Details for support.
std::string Detail(const ZoPrimitives::XStream& error);

/// What helps against a failure of the system's on a file that is opened or written.
std::string Remedy(const ZoPrimitives::XStream& error);

} // namespace Frame
