#pragma once

#include <string>
#include <vector>

namespace Frame {

// What differs between the systems; the folders posix and windows have the bodies. All texts are UTF-8.

/// The words of the command line, the program's own name first.
std::vector<std::string> Arguments(int count, char** given);

/// Runs a command of the system's shell; true if it ends well.
bool RunCommand(const std::string& command);

/// While it lives, the terminal shows what is printed as UTF-8.
class Utf8Terminal {
public:
    Utf8Terminal();
    Utf8Terminal(const Utf8Terminal&) = delete;
    Utf8Terminal& operator=(const Utf8Terminal&) = delete;
    ~Utf8Terminal();

private:
    unsigned before = 0;
};

} // namespace Frame
