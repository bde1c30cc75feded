#pragma once

#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// Root of data and input/output failures. The location names the operation, often with a numbered failure
/// point ("TBinInStream::LoadRecord #3"). Texts are Windows-1252.
class ZO_API XStream {
public:
    XStream(const ZoString& message, const ZoString& location);
    XStream(const XStream&);
    XStream& operator=(const XStream&);
    virtual ~XStream();

    const ZoString& Message() const { return message; }
    const ZoString& Location() const { return location; }

private:
    ZoString message;
    ZoString location;
};

/// Reading failed: a device failed or the data is damaged.
class ZO_API XReadStream : public XStream {
public:
    XReadStream(const ZoString& message, const ZoString& location);
    ~XReadStream() override;
};

/// Writing failed.
class ZO_API XWriteStream : public XStream {
public:
    XWriteStream(const ZoString& message, const ZoString& location);
    ~XWriteStream() override;
};

/// The device is full. The message is translated; the location is the caller's.
class ZO_API XWriteStreamOutOfSpace : public XWriteStream {
public:
    explicit XWriteStreamOutOfSpace(const ZoString& location);
    ~XWriteStreamOutOfSpace() override;
};

/// The new version of a file is complete and on the device but could not take the old one's place, which is
/// as it was, unless copying over it was begun. Message and location are those of the failure.
class ZO_API XNotReplaced : public XWriteStream {
public:
    XNotReplaced(const XWriteStream& reason, const ZoString& writtenPath);
    XNotReplaced(const XNotReplaced&);
    XNotReplaced& operator=(const XNotReplaced&);
    ~XNotReplaced() override;

    /// The file that holds the new version.
    const ZoString& WrittenPath() const { return writtenPath; }

private:
    ZoString writtenPath;
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
    XNewerVersion();
    ~XNewerVersion() override;
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

// For the applications, which throw them. Both texts are empty.

class ZO_API XInvalidFileType : public XReadStream {
public:
    XInvalidFileType();
    ~XInvalidFileType() override;
};

class ZO_API XInvalidLanguage : public XReadStream {
public:
    XInvalidLanguage();
    ~XInvalidLanguage() override;
};

class ZO_API XInvalidVersion : public XReadStream {
public:
    XInvalidVersion();
    ~XInvalidVersion() override;
};

} // namespace ZoPrimitives
