#include "Platform/Platform.h"
#include "Platform/posix/Errors.h"

#include <unistd.h>

namespace ZoPrimitives::Platform {

std::string PathFromText(const char* text) { return text; }
std::string TextOfPath(const char* path) { return path; }

std::string ApplicationFolder() {
    constexpr const char* PROGRAM = "/proc/self/exe";
    std::string path(256, '\0');
    for (;;) {
        const ssize_t size = ::readlink(PROGRAM, path.data(), path.size());
        if (size < 0) {
            SetErrorFromErrno(PROGRAM);
            return {};
        }
        if (static_cast<std::size_t>(size) < path.size()) {
            path.resize(static_cast<std::size_t>(size));
            return path.substr(0, path.rfind('/') + 1);
        }
        path.resize(2 * path.size());
    }
}

} // namespace ZoPrimitives::Platform
