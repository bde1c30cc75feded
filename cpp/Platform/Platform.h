#pragma once

// The library's only access to the system. The build picks posix/ or windows/. Error numbers are those of
// Windows on every system.

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
    ErrorUserMappedFile = 1224,
    ErrorClipboardNotOpen = 1418,
    ErrorUnresolvedLink = 1921,
};

enum class Access { Read, ReadWrite };
enum class Share { None, Read, ReadWrite };
enum class Creation {
    OpenExisting,
    CreateAlways,
    /// The same for a file that `TemporaryFileName` has just made: outlasts those who opened it meanwhile.
    FillTemporary
};
enum class Origin { Begin, Current, End };

using FileHandle = void*; // null: no file

/// Calendar date and wall-clock time.
struct CalendarTime {
    long long year = 0;
    int month = 0; // 1 to 12
    int day = 0;   // 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// The services that can fail, wait or show something. Tests replace them (`Install`), usually with a class
/// that derives from `Services` and overrides one operation. An operation that returns false or a null handle
/// leaves the reason in `LastError()` of the calling thread; a successful one leaves `LastError()`
/// unspecified. Paths are UTF-8 on Windows and plain bytes elsewhere; a null path counts as empty. On
/// Windows, operations on whole files outlast those who open what was just written (`Wait`), some 1.3
/// seconds.
class Services {
public:
    virtual ~Services();

    /// Sharing is an access x share matrix between all users of the library, also within one process: the
    /// call succeeds when every other handle of the file shares the access asked for here, and `share` admits
    /// theirs. `CreateAlways` counts as writing and empties an existing file only after that check; it keeps
    /// the file's attributes. Opening a read-only file for writing, or any folder, is access denied.
    virtual FileHandle OpenFile(const char* path, Access access, Share share, Creation creation);
    /// Invalidates the handle in either case; false if something written before was lost.
    virtual bool CloseFile(FileHandle file);
    /// False when the device fails; at the end of the file true with `done` < `size`.
    virtual bool ReadFile(FileHandle file, void* data, std::size_t size, std::size_t& done);
    /// True only if all of `size` was written.
    virtual bool WriteFile(FileHandle file, const void* data, std::size_t size);
    /// `position`, in bytes from the beginning, may be beyond the end.
    virtual bool SeekFile(FileHandle file, long long offset, Origin origin, unsigned long long& position);
    /// In bytes; false for a device, which has no size.
    virtual bool FileSize(FileHandle file, unsigned long long& size);
    /// Truncates the file to `size` bytes, which must be fewer than it has. The file position is unchanged.
    virtual bool TruncateFile(FileHandle file, unsigned long long size);
    /// Returns when everything written, and the file's name, is on the device.
    virtual bool SynchroniseFile(FileHandle file);

    /// Copies a whole file, overwriting the target, and returns when the copy and its name are on the device.
    /// An existing target keeps its identity (links, permissions, attributes); a new one gets those of
    /// `from`, on Windows the permissions of its folder. A target that others have open without sharing for
    /// writing, or that is `from` itself, is a sharing violation; a read-only one is access denied. If there
    /// is no room for the copy the target is unchanged, where the file system can tell beforehand; after any
    /// other failure an existing target may hold part of the copy, and a new one is removed.
    virtual bool CopyWholeFile(const char* from, const char* to);
    /// A read-only file is access denied; an open file is a sharing violation.
    virtual bool DeleteWholeFile(const char* path);
    /// Renames a file within its folder atomically: `to` is always either the old file or the complete new
    /// one. Returns when the name is on the device. For `from`, and for an existing `to`, errors are as in
    /// `DeleteWholeFile`.
    virtual bool MoveWholeFile(const char* from, const char* to);
    /// Whether a file (not a folder) of that name exists; `readOnly` (may be null) tells whether it forbids
    /// writing. If there is none, `LastError()` is file or path not found; any other error means that it
    /// could not be determined.
    virtual bool FileExists(const char* path, bool* readOnly);
    /// Whether the path, or its folder if there is no such file, is on a network drive, links followed. Also
    /// if what it leads to does not answer.
    virtual bool NetworkFile(const char* path);
    /// The name of a new, empty file beside `target`, in the same folder. The file can be opened for writing
    /// even if `target` is read-only. Empty on failure.
    virtual std::string TemporaryFileName(const char* target);

    /// The number of a clipboard format, valid in this process only. The name, in which case does not matter,
    /// is registered on first use. 0 on failure: the name is empty or too long for the system.
    virtual unsigned ClipboardFormat(const char* name);
    /// Opens the clipboard for the calling thread, excluding all other threads and processes of the user.
    /// Waits up to a second (`Wait`) while another has it open (Windows: or it cannot be opened for any other
    /// reason), then fails with a sharing violation; fails at once if the calling thread has it open itself.
    /// A store that other users could reach (POSIX: not the user's own folder, open permissions, a link in
    /// its place) is an invalid owner.
    virtual bool OpenClipboard();
    /// Does nothing on a thread that has not opened it. The end of a thread closes its clipboard.
    virtual void CloseClipboard();
    /// The data in a format, valid until the clipboard is closed, read or written again; null if there is
    /// none. The system may round `size` up: zeros then follow the data. An empty block has no bytes, or a
    /// few zeros.
    virtual const void* ClipboardData(unsigned format, std::size_t& size);
    /// Empties the clipboard, all formats, and puts a copy of the data there; `data` may be null when `size`
    /// is 0. The data outlives the process. After a failure the clipboard holds its old contents or nothing.
    virtual bool SetClipboardData(unsigned format, const void* data, std::size_t size);

    /// Sleeps. All waits of the library use this.
    virtual void Wait(unsigned milliseconds);

    /// Shows an error box with an OK button, without owner and caption, and returns when it is closed; the
    /// calling thread's windows are disabled meanwhile. The text is Windows-1252.
    /// POSIX: writes the text to standard error instead, where developers look.
    virtual void ShowMessageBox(const char* text);

    /// Milliseconds since the system started, modulo 2^32.
    virtual std::uint32_t Ticks();
    /// 100-nanosecond ticks since 1970-01-01 00:00 UTC.
    virtual std::int64_t SystemTime();
    /// The local time, daylight saving included as the zone's rules of that year say, of `seconds` since
    /// 1970-01-01 00:00 UTC. False if the system does not know it (Windows: before 1601 and after 30827).
    virtual bool LocalTime(std::int64_t seconds, CalendarTime& time);
    /// Minutes to add to the local standard time to get UTC. For a country whose zone defines summer time as
    /// standard, uses the winter time, as Windows does.
    virtual int StandardTimeBias();

    /// Opens the trace file, to be closed with `fclose`; null on failure. Windows: c:\\temp\\Trace.txt.
    /// Elsewhere Trace.txt in the folder named by the environment variable ZO_TRACE_FOLDER, otherwise in
    /// TMPDIR, otherwise in /tmp; only a regular file of this user with a single link, never through a
    /// symbolic link.
    virtual std::FILE* OpenTraceFile(bool truncate);
};

/// The services in use.
Services& Current();
/// Installs `services` (not owned; null for the system's) and returns those in use before, null for the
/// system's. For tests; no operation may be under way.
Services* Install(Services* services);

/// Whether an operation failed because the file or path does not exist.
inline bool NotFound(unsigned long error) { return error == ErrorFileNotFound || error == ErrorPathNotFound; }

/// A path for the services from a text of the process's code page, and back, with '?' for characters that the
/// code page lacks. Where paths are bytes, both are the same.
std::string PathFromText(const char* text);
std::string TextOfPath(const char* path);

/// The folder of the process's program as a path for the services, with a separator at its end; empty if the
/// system does not tell.
std::string ApplicationFolder();

/// These belong to the calling thread.
unsigned long LastError();
void SetLastError(unsigned long error);

/// The system's own words for an error, in the user's language where the system has it; Windows-1252, without
/// a line's end. Empty if it has none.
std::string DescribeError(unsigned long error);

/// ANSI case mapping in place, by the table of Windows-1252.
void UppercaseAnsi(char* text, std::size_t size);
void LowercaseAnsi(char* text, std::size_t size);

/// `vsnprintf` in the C locale, independent of the process's locale.
int FormatText(char* buffer, std::size_t size, const char* format, std::va_list arguments);

/// Makes the C runtime's functions use the C locale on this thread during its lifetime. Destroy it on the
/// thread that created it.
class ClassicLocale {
public:
    ClassicLocale();
    ClassicLocale(const ClassicLocale&) = delete;
    ClassicLocale& operator=(const ClassicLocale&) = delete;
    ~ClassicLocale();

private:
    [[maybe_unused]] void* previous;
};

struct Stack {
    std::size_t size = 0; // bytes; 0 if the caller's stack is unknown to the system
    std::size_t left = 0;
};
/// The stack of the calling thread.
Stack CallersStack();

/// The readable name of a type, without "class " or "struct ": "ZoPrimitives::ZoBoolean".
std::string TypeName(const std::type_info& type);

} // namespace ZoPrimitives::Platform
