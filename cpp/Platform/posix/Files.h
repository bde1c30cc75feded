#pragma once

#include "Platform/Platform.h"

#include <cstdint>
#include <sys/stat.h>
#include <sys/types.h>
#include <utility>

namespace ZoPrimitives::Platform {

/// Closes on leaving; the last error is kept.
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
    bool create = false;       // when it does not exist; an existing file is not emptied
    mode_t permissions = 0666; // of a file that is created, less the umask
    bool created = false;      // set by OpenShared
    struct stat status = {};   // set by OpenShared
};

/// Opens a file or a device under the sharing rules. On failure sets the last error and returns none; what it
/// created is gone then, unless others have opened it.
Descriptor OpenShared(const char* path, Opening& opening);

/// Both go on until all is done: interrupted and partial calls are repeated. On failure false, reason in
/// errno.
bool ReadAll(int descriptor, void* data, std::size_t size, std::size_t& done);
bool WriteAll(int descriptor, const void* data, std::size_t size);

/// As `open` and `ftruncate`, but repeated when they are interrupted. (`close` is never repeated: the
/// descriptor is gone in any case.)
int OpenUninterrupted(const char* path, int flags, mode_t permissions = 0);
int TruncateUninterrupted(int descriptor, off_t size);

/// Brings a file's data to the device; true for a device that has nothing to bring. On failure reason in
/// errno.
bool Synchronise(int descriptor);
/// Brings the names in a folder to the device, as far as the file system and permissions let us.
void SynchroniseFolder(const char* folder);

/// Whether no one may write, by the permission bits: they hold for the superuser too.
inline bool ReadOnly(const struct stat& status) { return (status.st_mode & 0222) == 0; }

/// Whether `type` (as in statfs) is a file system of another machine. FUSE counts as local: its type does not
/// tell.
bool NetworkFileSystem(std::uint32_t type);

} // namespace ZoPrimitives::Platform
