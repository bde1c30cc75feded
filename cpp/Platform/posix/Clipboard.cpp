#include "Platform/ClipboardWait.h"
#include "Platform/posix/Errors.h"
#include "Platform/posix/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <unistd.h>
#include <utility>
#include <vector>

// The clipboard is a private folder of the user with one file for each format. An open clipboard is a lock on
// the folder, which ends with the process. A file is replaced by renaming a complete new one, so that even a
// reader that ignores the lock sees a complete block.

namespace ZoPrimitives::Platform {

namespace {

constexpr std::string_view FolderName = "zoprimitives-clipboard";
constexpr const char* NewFile = "+new"; // never the name of a format's file
constexpr unsigned FirstFormat = 0xC000;
constexpr unsigned FormatLimit = 0x4000;
constexpr std::size_t LongestName = 80; // in bytes: each may take three of a file name's 255

struct HeapDeleter {
    void operator()(void* bytes) const { std::free(bytes); }
};

struct Opened {
    Descriptor folder;
    pid_t process = getpid();
    std::unique_ptr<void, HeapDeleter> data;

    explicit Opened(Descriptor locked) : folder(std::move(locked)) {}
    ~Opened() {
        // A child must not release its parent's lock when it ends.
        if (getpid() == process) flock(folder.Get(), LOCK_UN);
    }
};

thread_local std::unique_ptr<Opened> opened;

Opened* OpenedHere() {
    if (opened != nullptr && opened->process == getpid()) return opened.get();
    SetLastError(ErrorClipboardNotOpen);
    return nullptr;
}

// Formats

std::mutex formatsMutex;

std::vector<std::string>& Formats() {
    static std::vector<std::string> names;
    return names;
}

/// Letters, digits and '-' remain, other bytes become "%XX".
std::string FileOfFormat(const char* name) {
    std::string folded = name;
    LowercaseAnsi(folded.data(), folded.size());
    std::string file;
    for (const char letter : folded) {
        const bool plain =
            (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') || letter == '-';
        char escaped[4];
        std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned char>(letter));
        file += plain ? std::string(1, letter) : escaped;
    }
    return file;
}

/// Empty, with the last error set, for an unknown format.
std::string FileOfFormat(unsigned format) {
    const std::lock_guard lock(formatsMutex);
    if (format >= FirstFormat && format - FirstFormat < Formats().size())
        return Formats()[format - FirstFormat];
    SetLastError(ErrorInvalidParameter);
    return {};
}

// The folder

int Uninterrupted(int folder, const char* name, int flags, mode_t permissions = 0) {
    int descriptor;
    do descriptor = openat(folder, name, flags | O_NOFOLLOW | O_CLOEXEC, permissions);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// The user's run-time folder. None if there is none, or if it belongs to another user, as after a change of
/// users that kept the environment.
Descriptor OpenRunTimeFolder() {
    const char* path = secure_getenv("XDG_RUNTIME_DIR");
    if (path == nullptr || *path != '/') return Descriptor();
    Descriptor folder(open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat status;
    if (!folder || fstat(folder.Get(), &status) != 0 || status.st_uid != geteuid()) return Descriptor();
    return folder;
}

bool Private(const struct stat& status) {
    return status.st_uid == geteuid() && (status.st_mode & 0777) == 0700;
}

/// Opens the clipboard's folder in `parent` (a descriptor, or AT_FDCWD for a path), creating it if it is
/// missing. Fails, setting the last error, unless it is private to this user.
Descriptor OpenPrivateFolder(int parent, const char* name) {
    if (mkdirat(parent, name, 0700) != 0 && errno != EEXIST) {
        SetErrorFromErrno();
        return Descriptor();
    }
    Descriptor folder(Uninterrupted(parent, name, O_RDONLY | O_DIRECTORY));
    struct stat status;
    if (folder && fstat(folder.Get(), &status) == 0 && Private(status)) return folder;
    // Something else in its place, or a link to it, may be an attack too.
    if (folder || errno == ELOOP || errno == ENOTDIR || errno == EACCES)
        SetLastError(ErrorInvalidOwner);
    else
        SetErrorFromErrno();
    return Descriptor();
}

Descriptor OpenFolder() {
    if (const Descriptor runTime = OpenRunTimeFolder())
        return OpenPrivateFolder(runTime.Get(), std::string(FolderName).c_str());
    const char* temporary = secure_getenv("TMPDIR");
    if (temporary == nullptr || *temporary != '/') temporary = "/tmp";
    const std::string path =
        std::string(temporary) + "/" + std::string(FolderName) + "-" + std::to_string(geteuid());
    return OpenPrivateFolder(AT_FDCWD, path.c_str());
}

bool TryToOpen() {
    Descriptor folder = OpenFolder();
    if (!folder) return false;
    struct stat status;
    if (flock(folder.Get(), LOCK_EX | LOCK_NB) == 0 && fstat(folder.Get(), &status) == 0) {
        if (status.st_nlink != 0) {
            opened = std::make_unique<Opened>(std::move(folder));
            return true;
        }
        errno = EWOULDBLOCK; // the folder was deleted meanwhile: try again
    }
    if (errno == EWOULDBLOCK || errno == EINTR)
        SetLastError(ErrorSharingViolation);
    else
        SetErrorFromErrno();
    return false;
}

// The data

/// Opens the file of a format if this store made it. On failure sets the last error.
Descriptor OpenData(int folder, const char* name, struct stat& status) {
    // Do not wait for the other end of a pipe.
    Descriptor file(Uninterrupted(folder, name, O_RDONLY | O_NONBLOCK | O_NOCTTY));
    if (!file || fstat(file.Get(), &status) != 0) {
        SetErrorFromErrno();
        return Descriptor();
    }
    if (S_ISREG(status.st_mode) && status.st_uid == geteuid()) return file;
    SetLastError(ErrorAccessDenied);
    return Descriptor();
}

/// On failure sets errno.
bool WriteNewFile(int folder, const void* data, std::size_t size) {
    unlinkat(folder, NewFile, 0);
    const Descriptor file(Uninterrupted(folder, NewFile, O_WRONLY | O_CREAT | O_EXCL, 0600));
    return file && WriteAll(file.Get(), data, size);
}

void DeleteOthers(int folder, const std::string& kept) {
    const int copy = Uninterrupted(folder, ".", O_RDONLY | O_DIRECTORY);
    if (copy < 0) return;
    DIR* list = fdopendir(copy);
    if (list == nullptr) {
        close(copy);
        return;
    }
    while (const dirent* entry = readdir(list))
        if (kept != entry->d_name) unlinkat(folder, entry->d_name, 0);
    closedir(list);
}

} // namespace

unsigned Services::ClipboardFormat(const char* name) {
    const std::size_t size = name == nullptr ? 0 : std::strlen(name);
    if (size == 0 || size > LongestName) {
        SetLastError(ErrorInvalidParameter);
        return 0;
    }
    const std::string file = FileOfFormat(name);
    const std::lock_guard lock(formatsMutex);
    const auto found = std::find(Formats().begin(), Formats().end(), file);
    const auto index = static_cast<unsigned>(found - Formats().begin());
    if (index == FormatLimit) {
        SetLastError(ErrorNotEnoughMemory);
        return 0;
    }
    if (found == Formats().end()) Formats().push_back(file);
    return FirstFormat + index;
}

bool Services::OpenClipboard() {
    if (opened != nullptr && opened->process == getpid()) {
        SetLastError(ErrorSharingViolation);
        return false;
    }
    return AwaitClipboard(*this, TryToOpen);
}

void Services::CloseClipboard() { opened.reset(); }

const void* Services::ClipboardData(unsigned format, std::size_t& size) {
    size = 0;
    Opened* const clipboard = OpenedHere();
    const std::string name = clipboard != nullptr ? FileOfFormat(format) : std::string();
    if (name.empty()) return nullptr;
    struct stat status;
    const Descriptor file = OpenData(clipboard->folder.Get(), name.c_str(), status);
    if (!file) return nullptr;
    const auto wanted = static_cast<std::size_t>(status.st_size);
    clipboard->data.reset(std::malloc(wanted != 0 ? wanted : 1));
    if (clipboard->data == nullptr) {
        SetLastError(ErrorNotEnoughMemory);
        return nullptr;
    }
    if (!ReadAll(file.Get(), clipboard->data.get(), wanted, size)) {
        SetErrorFromErrno();
        clipboard->data.reset();
        size = 0;
    }
    return clipboard->data.get();
}

bool Services::SetClipboardData(unsigned format, const void* data, std::size_t size) {
    const Opened* const clipboard = OpenedHere();
    const std::string name = clipboard != nullptr ? FileOfFormat(format) : std::string();
    if (name.empty()) return false;
    const int folder = clipboard->folder.Get();
    if (WriteNewFile(folder, data, size) && renameat(folder, NewFile, folder, name.c_str()) == 0) {
        DeleteOthers(folder, name);
        return true;
    }
    SetErrorFromErrno();
    unlinkat(folder, NewFile, 0);
    return false;
}

} // namespace ZoPrimitives::Platform
