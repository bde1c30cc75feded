#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace ZoTool {

// What differs between the systems; the folders posix and windows have the bodies. All texts are UTF-8.

/// The words of the command line, the program's own name first.
std::vector<std::string> Arguments(int count, char** given);

/// While the result lives, the standard streams carry bytes as they are, and a terminal shows them as UTF-8
/// and obeys escape sequences.
std::shared_ptr<void> PrepareStreams();

/// Whether the stream is a terminal that shows colours.
bool IsTerminal(std::FILE* stream);

/// A new file, by its path in UTF-8; null if it cannot be made.
std::FILE* OpenForWriting(const std::string& path);

/// An environment variable; empty if there is none.
std::string Environment(const char* name);

} // namespace ZoTool
