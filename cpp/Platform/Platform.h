#pragma once

// The only thing that the library sees of the system. The build picks posix/ or windows/.
// Error numbers are Windows' on every system.

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <typeinfo>

namespace ZoPrimitives::Platform {

enum Error : unsigned long {
    ErrorNone = 0,
    ErrorInvalidFunction = 1,
    ErrorFileNotFound = 2,
    ErrorPathNotFound = 3,
    ErrorTooManyOpenFiles = 4,
    ErrorAccessDenied = 5,
    ErrorInvalidHandle = 6,
    ErrorNotEnoughMemory = 8,
    ErrorWriteProtect = 19,
    ErrorGeneralFailure = 31,
    ErrorSharingViolation = 32,
    ErrorLockViolation = 33,
    ErrorHandleDiskFull = 39,
    ErrorNotSupported = 50,
    ErrorDeviceGone = 55,
    ErrorNetwork = 59,
    ErrorFileExists = 80,
    ErrorInvalidParameter = 87,
    ErrorBrokenPipe = 109,
    ErrorDiskFull = 112,
    ErrorInvalidName = 123,
    ErrorNegativeSeek = 131,
    ErrorAlreadyExists = 183,
    ErrorFilenameTooLong = 206,
    ErrorOperationAborted = 995,
    ErrorInvalidAddress = 998,
    ErrorDevice = 1117,
    ErrorInvalidOwner = 1307,
    ErrorClipboardNotOpen = 1418,
    ErrorUnresolvedLink = 1921,
};

enum class Access { Read, ReadWrite };
enum class Share { None, Read, ReadWrite };
enum class Creation { OpenExisting, CreateAlways };
enum class Origin { Begin, Current, End };

using FileHandle = void*; // null: none

/// As a calendar and a clock on the wall show it.
struct CalendarTime {
    long long year = 0;
    int month = 0; // 1 to 12
    int day = 0;   // 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// The services that can fail, wait or show something. A test replaces them by a class of its own
/// (`Install`), usually one that derives from `Services` as the system provides it and overrides one
/// operation. An operation that returns false, or a null handle, leaves its reason in `LastError()` of the
/// calling thread; one that succeeds leaves `LastError()` unspecified. Paths are bytes of the ANSI code page
/// on Windows and plain bytes elsewhere; a null path is an empty one.
class Services {
public:
    virtual ~Services();

    /// Sharing is an access x share matrix between all users of the library, within one process too: an
    /// opening succeeds when every other opening of the file shares what this one accesses, and this one
    /// shares what they access. `CreateAlways` counts as writing and empties an existing file only once that
    /// has been settled. A read-only file is never opened for writing, whoever asks: access denied. Nor is a
    /// folder opened.
    virtual FileHandle OpenFile(const char* path, Access access, Share share, Creation creation);
    /// The handle is gone in either case; false tells that something written before was lost.
    virtual bool CloseFile(FileHandle file);
    /// False on a failure of the device; at the end of the file true with `done` < `size`.
    virtual bool ReadFile(FileHandle file, void* data, std::size_t size, std::size_t& done);
    /// True only when all of `size` was written.
    virtual bool WriteFile(FileHandle file, const void* data, std::size_t size);
    /// `position`, in bytes from the beginning, may lie beyond the end.
    virtual bool SeekFile(FileHandle file, long long offset, Origin origin, unsigned long long& position);
    /// In bytes; false for a device, which has none.
    virtual bool FileSize(FileHandle file, unsigned long long& size);
    /// Ends the file at `size` bytes, fewer than it has. The place of the handle stays.
    virtual bool TruncateFile(FileHandle file, unsigned long long size);
    /// Returns when what was written is on the device, the file's name included.
    virtual bool SynchroniseFile(FileHandle file);

    /// Copies a whole file, overwriting, and returns when the copy is on the device, its name included. An
    /// existing target keeps its identity (links, permissions); a new one gets the permissions of `from`,
    /// on Windows those of its folder. A target that others have open without sharing for writing, or that is
    /// `from` itself, is a sharing violation; a read-only one is access denied. A target without room for the
    /// copy is left as it was where the file system can tell beforehand; after any other failure an existing
    /// target may hold part of the copy, and a new one is removed.
    virtual bool CopyWholeFile(const char* from, const char* to);
    /// A read-only file is access denied; a file that is open is a sharing violation.
    virtual bool DeleteWholeFile(const char* path);
    /// Renames a file within its folder, in one step: whatever happens, `to` is the file that it was or the
    /// whole new one. Returns when the name is on the device. Of an existing `to`, as of `from`, what
    /// `DeleteWholeFile` says.
    virtual bool MoveWholeFile(const char* from, const char* to);
    /// Whether a file (not a folder) of that name exists; `readOnly` (may be null) tells whether it forbids
    /// writing. When there is none, `LastError()` is file or path not found: after any other error it could
    /// not be told.
    virtual bool FileExists(const char* path, bool* readOnly);
    /// Whether the path, or its folder when there is no such file, lies on a network drive. (POSIX: also when
    /// the file system does not answer.)
    virtual bool NetworkFile(const char* path);
    /// A fresh name for a file beside `target`, in the same folder; the file has been created, empty, and can
    /// be opened for writing even where `target` is read-only. Empty when none could be made.
    virtual std::string TemporaryFileName(const char* target);

    /// The number of a registered format, by its name (no difference is made between capital and small
    /// letters), which is registered on first use; it holds in this process only. 0 on failure: the name is
    /// empty or longer than the system takes.
    virtual unsigned ClipboardFormat(const char* name);
    /// Opens the clipboard for the calling thread, alone among the threads and processes of the user. While
    /// another has it, waits a second at most (`Wait`), then it is a sharing violation; a thread that has it
    /// open itself is refused at once. A store that others than the user could reach (POSIX: not the user's
    /// own folder, open permissions, a link in its place) is an invalid owner.
    virtual bool OpenClipboard();
    /// Does nothing on a thread that has not opened it. What is left open is closed when the thread ends.
    virtual void CloseClipboard();
    /// The data in a format, valid until the clipboard is closed or asked or written again; null when there
    /// is none. The system may have rounded `size` up: zeros follow the data then. An empty block is one
    /// without bytes or with a few zeros.
    virtual const void* ClipboardData(unsigned format, std::size_t& size);
    /// Empties the clipboard, all formats, and puts a copy of the data there; `data` may be null when `size`
    /// is 0. It stays when the process ends. After a failure the clipboard holds what it held, or nothing.
    virtual bool SetClipboardData(unsigned format, const void* data, std::size_t size);

    /// Sleeps. What waits for others waits by this.
    virtual void Wait(unsigned milliseconds);

    /// An error box with an OK button, without owner and caption; returns when it was closed.
    /// Without a display (POSIX) it does nothing: an application there says it by an assertion functor of its
    /// own.
    virtual void ShowMessageBox(const char* text);

    /// Milliseconds that the system has been running, modulo 2^32.
    virtual std::uint32_t Ticks();
    /// 100-nanosecond ticks since 1970-01-01 00:00 UTC.
    virtual std::int64_t SystemTime();
    /// The local time, daylight saving included, of `seconds` since 1970-01-01 00:00 UTC. False where the
    /// system cannot tell (Windows: before 1970 and after 3000).
    virtual bool LocalTime(std::int64_t seconds, CalendarTime& time);
    /// Minutes to add to the local standard time to get UTC. Where a country calls its summer time the
    /// standard, the winter's, as Windows sees it.
    virtual int StandardTimeBias();

    /// Opens the trace file, to be closed with `fclose`; null when it cannot be. Windows:
    /// c:\\temp\\Trace.txt. Elsewhere Trace.txt in the folder that the environment variable ZO_TRACE_FOLDER
    /// names, or in TMPDIR, or in /tmp; only a regular file of this user's with a single name, never through
    /// a symbolic link.
    virtual std::FILE* OpenTraceFile(bool truncate);
};

/// The services in use.
Services& Current();
/// Puts `services` (not owned; null for the system's) in place and returns what was in use, null for the
/// system's. For tests; whoever installs sees to it that no operation is under way.
Services* Install(Services* services);

/// Whether an operation failed because there is no such file.
inline bool NotFound(unsigned long error) { return error == ErrorFileNotFound || error == ErrorPathNotFound; }

/// Of the calling thread.
unsigned long LastError();
void SetLastError(unsigned long error);

/// ANSI case mapping, in place, by the table of Windows-1252.
void UppercaseAnsi(char* text, std::size_t size);
void LowercaseAnsi(char* text, std::size_t size);

/// `vsnprintf` in the C locale, whatever the process's locale is.
int FormatText(char* buffer, std::size_t size, const char* format, std::va_list arguments);

/// While it lives, the C runtime's functions go by the C locale in this thread. It must end in the thread in
/// which it began.
class ClassicLocale {
public:
    ClassicLocale();
    ClassicLocale(const ClassicLocale&) = delete;
    ClassicLocale& operator=(const ClassicLocale&) = delete;
    ~ClassicLocale();

private:
    void* previous;
};

struct Stack {
    std::size_t size = 0; // bytes; 0 when the caller runs on none that the system knows
    std::size_t left = 0;
};
/// Of the calling thread.
Stack CallersStack();

/// The readable name of a type, without "class " or "struct ": "ZoPrimitives::ZoBoolean".
std::string TypeName(const std::type_info& type);

} // namespace ZoPrimitives::Platform
