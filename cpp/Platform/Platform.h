#pragma once

// The only thing that the library sees of the system. The build picks posix/ or windows/.
// Error numbers are Windows' on every system.

#include <cstddef>
#include <string>
#include <typeinfo>

namespace ZoPrimitives::Platform {

enum Error : unsigned long {
    ErrorNone = 0,
    ErrorFileNotFound = 2,
    ErrorPathNotFound = 3,
    ErrorTooManyOpenFiles = 4,
    ErrorAccessDenied = 5,
    ErrorInvalidHandle = 6,
    ErrorNotEnoughMemory = 8,
    ErrorWriteProtect = 19,
    ErrorGeneralFailure = 31,
    ErrorSharingViolation = 32,
    ErrorHandleDiskFull = 39,
    ErrorFileExists = 80,
    ErrorInvalidParameter = 87,
    ErrorDiskFull = 112,
    ErrorInvalidName = 123,
    ErrorAlreadyExists = 183,
    ErrorFilenameTooLong = 206,
};

enum class Access { Read, ReadWrite };
enum class Share { None, Read, ReadWrite };
enum class Creation { OpenExisting, CreateAlways };
enum class Origin { Begin, Current, End };

using FileHandle = void*; // null: none

/// The services that can fail, wait or show something. A test replaces them by a class of its own (`Install`),
/// usually one that derives from `Services` as the system provides it and overrides one operation.
/// An operation that returns false, or a null handle, leaves its reason in `LastError()` of the calling thread.
/// Paths are bytes of the ANSI code page on Windows and plain bytes elsewhere.
class Services {
public:
    virtual ~Services();

    /// Sharing is an access x share matrix between all users of the library, within one process too.
    virtual FileHandle OpenFile(const char* path, Access access, Share share, Creation creation);
    virtual bool CloseFile(FileHandle file);
    /// False on a failure of the device; at the end of the file true with `done` < `size`.
    virtual bool ReadFile(FileHandle file, void* data, std::size_t size, std::size_t& done);
    /// True only when all of `size` was written.
    virtual bool WriteFile(FileHandle file, const void* data, std::size_t size);
    virtual bool SeekFile(FileHandle file, long long offset, Origin origin, unsigned long long& position);
    virtual bool FileSize(FileHandle file, unsigned long long& size);
    /// Returns when what was written is on the device.
    virtual bool SynchroniseFile(FileHandle file);

    /// Copies a whole file, overwriting, and returns when the copy is on the device. The target keeps its identity
    /// (links, permissions); a target that others have open without sharing for writing is a sharing violation.
    virtual bool CopyWholeFile(const char* from, const char* to);
    virtual bool DeleteWholeFile(const char* path);
    /// Whether a file of that name exists; `readOnly` (may be null) tells whether its attributes forbid writing.
    virtual bool FileExists(const char* path, bool* readOnly);
    /// Whether the path lies on a network drive.
    virtual bool NetworkFile(const char* path);
    /// A fresh name for a file beside `target`, in the same folder; the file has been created, empty.
    /// Empty when none could be made.
    virtual std::string TemporaryFileName(const char* target);

    /// An error box with an OK button, without owner and caption; returns when it was closed.
    virtual void ShowMessageBox(const char* text);
};

/// The services in use.
Services& Current();
/// Puts `services` (not owned; null for the system's) in place and returns what was in use, null for the system's.
/// For tests; unguarded.
Services* Install(Services* services);

unsigned long LastError();
void SetLastError(unsigned long error);

/// ANSI case mapping, in place, by the table of Windows-1252.
void UppercaseAnsi(char* text, std::size_t size);
void LowercaseAnsi(char* text, std::size_t size);

/// The readable name of a type, without "class " or "struct ": "ZoPrimitives::ZoBoolean".
std::string TypeName(const std::type_info& type);

} // namespace ZoPrimitives::Platform
