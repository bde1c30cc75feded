#pragma once

#include "ZoPrimitives/TZoPath.h"
#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// What went wrong, for a program that decides what to do next.
enum class TStreamFailure {
    Other,
    NotFound, ///< there is no such file or folder
    Denied,   ///< the file is read-only, or its user may not touch it
    InUse,    ///< somebody else has the file or the clipboard open
    DiskFull,
    Device,    ///< the system could not do it for another reason
    Truncated, ///< the data ends too soon
    Damaged,
    WrongFile, ///< the data is of another format
    TooNew,    ///< a newer version wrote the data
    TooOld,    ///< the data's version is not read any longer
    Cancelled
};

/// Why a stream failed. Converts from the kind alone.
struct TStreamCause {
    TStreamCause(TStreamFailure failure = TStreamFailure::Other, unsigned code = 0)
        : kind(failure), systemCode(code) {}

    TStreamFailure kind;
    unsigned systemCode; ///< Windows' number of the error, on every system; 0: none
};

/// Root of data and input/output failures. The location names the operation, often with a numbered failure
/// point ("TBinInStream::LoadRecord #3"). Texts are Windows-1252. `ZoExplain` makes a sentence of it for the
/// user.
class ZO_API XStream {
public:
    XStream(const ZoString& message, const ZoString& location, TStreamCause cause = {});
    XStream(const XStream&);
    XStream& operator=(const XStream&);
    virtual ~XStream();

    const ZoString& Message() const { return message; }
    const ZoString& Location() const { return location; }
    TStreamFailure Kind() const { return cause.kind; }
    /// Windows' number of the system's error, on every system; 0: none.
    unsigned SystemCode() const { return cause.systemCode; }
    /// The file; empty if there is none or its name is not known.
    const ZoString& Path() const { return path.Text(); }
    const TZoPath& FilePath() const { return path; }

    /// For who throws, or catches and throws again: names the file, unless it is named.
    XStream& SetPath(const TZoPath& file);

private:
    ZoString message;
    ZoString location;
    TStreamCause cause;
    TZoPath path;
};

/// Reading failed: a device failed or the data is damaged.
class ZO_API XReadStream : public XStream {
public:
    XReadStream(const ZoString& message, const ZoString& location, TStreamCause cause = {});
    ~XReadStream() override;
};

/// Writing failed.
class ZO_API XWriteStream : public XStream {
public:
    XWriteStream(const ZoString& message, const ZoString& location, TStreamCause cause = {});
    ~XWriteStream() override;
};

/// The device is full. The message is translated; the location is the caller's.
class ZO_API XWriteStreamOutOfSpace : public XWriteStream {
public:
    explicit XWriteStreamOutOfSpace(const ZoString& location, unsigned systemCode = 0);
    ~XWriteStreamOutOfSpace() override;
};

/// The new version of a file is complete and on the device but could not take the old one's place, which is
/// as it was, unless copying over it was begun. Message and location are those of the failure.
class ZO_API XNotReplaced : public XWriteStream {
public:
    XNotReplaced(const XWriteStream& reason, const TZoPath& writtenPath);
    XNotReplaced(const XNotReplaced&);
    XNotReplaced& operator=(const XNotReplaced&);
    ~XNotReplaced() override;

    /// The file that holds the new version.
    const ZoString& WrittenPath() const { return writtenPath.Text(); }
    const TZoPath& WrittenFilePath() const { return writtenPath; }

private:
    TZoPath writtenPath;
};

/// The digest of the data is not that of its records. The message is "Arquivo corrompido".
class ZO_API XWrongDigest : public XReadStream {
public:
    explicit XWrongDigest(const ZoString& location);
    ~XWrongDigest() override;
};

/// A `TZoProgress` has cancelled the operation. The message is translated.
class ZO_API XCancelled : public XStream {
public:
    explicit XCancelled(const ZoString& location);
    ~XCancelled() override;
};

/// Nothing is left to read. The message is "End-of-file", the location empty.
class ZO_API XEndOfStream : public XStream {
public:
    XEndOfStream();
    ~XEndOfStream() override;
};

/// The message is "Invalid object : data still incomplete after read.", the location empty.
class ZO_API XInvalidObject : public XReadStream {
public:
    XInvalidObject();
    ~XInvalidObject() override;
};

/// The data was written by a newer version than the reader supports. Both texts are empty.
class ZO_API XNewerVersion : public XReadStream {
public:
    explicit XNewerVersion(unsigned fileVersion = 0, unsigned supportedVersion = 0);
    ~XNewerVersion() override;

    /// The version that the data names, and the newest one that the reader takes; both 0: not known.
    unsigned FileVersion() const { return fileVersion; }
    unsigned SupportedVersion() const { return supportedVersion; }

private:
    unsigned fileVersion;
    unsigned supportedVersion;
};

/// The data has parts of a newer version that cannot be kept (`TBinInStreamer::KeepUnknown`).
class ZO_API XCannotKeep : public XReadStream {
public:
    /// `field` is empty if it is the class as a whole.
    XCannotKeep(const ZoString& className, const ZoString& field, const ZoString& location);
    XCannotKeep(const XCannotKeep&);
    XCannotKeep& operator=(const XCannotKeep&);
    ~XCannotKeep() override;

    const ZoString& ClassName() const { return className; }
    const ZoString& Field() const { return field; }

private:
    ZoString className;
    ZoString field;
};

/// The data's version cannot be converted to the reader's. Both texts are empty.
class ZO_API XUnversionableVersion : public XReadStream {
public:
    XUnversionableVersion();
    ~XUnversionableVersion() override;
};

/// The data's root is not what was asked for: an object of another class, none, or one of several.
class ZO_API XInvalidRoot : public XReadStream {
public:
    XInvalidRoot(const ZoString& message, const ZoString& location);
    ~XInvalidRoot() override;
};

/// The library has no language of that name. The message is translated, and empty if no name was given.
class ZO_API XInvalidLanguage : public XReadStream {
public:
    XInvalidLanguage();
    XInvalidLanguage(const ZoString& name, const ZoString& location);
    ~XInvalidLanguage() override;
};

// For the applications, which throw them. Both texts are empty.

class ZO_API XInvalidFileType : public XReadStream {
public:
    XInvalidFileType();
    ~XInvalidFileType() override;
};

class ZO_API XInvalidVersion : public XReadStream {
public:
    XInvalidVersion();
    ~XInvalidVersion() override;
};

} // namespace ZoPrimitives
