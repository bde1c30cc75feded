#pragma once

#include "support/TemporaryFolder.h"

#include <cstdlib>
#include <string>

namespace ZoPrimitives::Testing {

/// Has this process, and those that it starts, use a clipboard of their own while it lives, where the
/// system's can be chosen; the session's on Windows.
class PrivateClipboard {
public:
    PrivateClipboard() { Choose(folder.Path()); }
    PrivateClipboard(const PrivateClipboard&) = delete;
    PrivateClipboard& operator=(const PrivateClipboard&) = delete;
    ~PrivateClipboard() { Choose(previous); }

    const TemporaryFolder& Folder() const { return folder; }

private:
    static std::string Chosen() {
        const char* path = std::getenv("XDG_RUNTIME_DIR");
        return path != nullptr ? path : "";
    }
    static void Choose([[maybe_unused]] const std::string& path) {
#ifndef _WIN32
        setenv("XDG_RUNTIME_DIR", path.c_str(), 1); // an empty one counts as none
#endif
    }

    std::string previous = Chosen();
    TemporaryFolder folder;
};

} // namespace ZoPrimitives::Testing
