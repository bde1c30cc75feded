#include "console.h"

#include <cstdlib>

namespace Frame {

std::vector<std::string> Arguments(int count, char** given) { return {given, given + count}; }

bool RunCommand(const std::string& command) { return std::system(command.c_str()) == 0; }

// It does so already.
Utf8Terminal::Utf8Terminal() = default;
Utf8Terminal::~Utf8Terminal() = default;

} // namespace Frame
