#pragma once

#include "Platform/Platform.h"

#include <cstdint>
#include <sys/stat.h>
#include <sys/types.h>
#include <utility>

namespace ZoPrimitives::Platform {

/// Closes the descriptor when destroyed, keeping the last error.
class Descriptor {
public:
    explicit Descriptor(int opened = -1) : number(opened) {}
    Descriptor(Descriptor&& other) noexcept : number(other.Release()) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }
    ~Descriptor();

    explicit operator bool() const { return number >= 0; }
    int Get() const { return number; }
    int Release() {
        const int released = number;
        number = -1;
        return released;
    }

private:
    int number;
};

struct Opening {
    Access access = Access::Read;
    Share share = Share::ReadWrite;
    bool create = false;       // if it does not exist; an existing file is not emptied
    mode_t permissions = 0666; // of a newly created file, less the umask
    bool created = false;      // set by OpenShared
    struct stat status = {};   // set by OpenShared
};

/// Opens a file or a device under the sharing rules. On failure sets the last error, returns none, and
/// removes the file if it created it, unless others have opened it.
Descriptor OpenShared(const char* path, Opening& opening);

/// Both repeat interrupted and partial calls until all is done. On failure they return false and set errno.
bool ReadAll(int descriptor, void* data, std::size_t size, std::size_t& done);
bool WriteAll(int descriptor, const void* data, std::size_t size);

/// As `open` and `ftruncate`, but repeat interrupted calls. (`close` is never repeated: it always invalidates
/// the descriptor.)
int OpenUninterrupted(const char* path, int flags, mode_t permissions = 0);
int TruncateUninterrupted(int descriptor, off_t size);

/// Writes a file's data to the device; true for a device that buffers nothing. On failure sets errno.
bool Synchronise(int descriptor);
/// Writes a folder's entries to the device, as far as the file system and permissions allow.
void SynchroniseFolder(const char* folder);

/// Whether the permission bits forbid everyone to write; they bind the superuser here too.
inline bool ReadOnly(const struct stat& status) { return (status.st_mode & 0222) == 0; }

/// Whether `type` (as in statfs) is a network file system. FUSE counts as local, because its type does not
/// tell.
bool NetworkFileSystem(std::uint32_t type);

} // namespace ZoPrimitives::Platform
