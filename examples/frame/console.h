#pragma once

#include <memory>
#include <string>
#include <vector>

namespace Frame {

// What differs between the systems; the folders posix and windows have the bodies. All texts are UTF-8.

/// The words of the command line, the program's own name first.
std::vector<std::string> Arguments(int count, char** given);

/// Runs a command of the system's shell; true if it ends well.
bool RunCommand(const std::string& command);

/// While the result lives, the terminal shows what is printed as UTF-8.
std::shared_ptr<void> ShowUtf8();

} // namespace Frame
