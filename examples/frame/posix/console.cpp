#include "console.h"

#include <cstdlib>

namespace Frame {

std::vector<std::string> Arguments(int count, char** given) { return {given, given + count}; }

bool RunCommand(const std::string& command) { return std::system(command.c_str()) == 0; }

std::shared_ptr<void> ShowUtf8() { return nullptr; } // it does so already

} // namespace Frame
