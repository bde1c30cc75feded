#include "system.h"

#include <cstdlib>
#include <unistd.h>

namespace ZoTool {

std::vector<std::string> Arguments(int count, char** given) { return {given, given + count}; }

std::shared_ptr<void> PrepareStreams() { return nullptr; }

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0 && Environment("TERM") != "dumb"; }

std::FILE* OpenForWriting(const std::string& path) { return std::fopen(path.c_str(), "wb"); }

std::string Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace ZoTool
