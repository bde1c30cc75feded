#pragma once

#include "ZoPrimitives/ZoHandleTable.h"
#include "ZoPrimitives/ZoObject.h"

namespace ZoPrimitives {

class ZoStreamableBase;
class ZoString;

/// Abstract reader of the tokens that an `OutputStream` wrote; read them in the same order and as the same
/// types. `InputStreamer` reads objects through it.
///
/// Reading throws `XEndOfStream` when no token is left.
class ZO_API InputStream : public ZoObject {
public:
    InputStream();
    ~InputStream() override;
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;

    virtual InputStream& operator>>(ZoString& value) = 0;
    /// Copies the next token and a terminating 0 into the caller's buffer without checking its size: it must
    /// hold the longest token of the stream. Read a `ZoString` unless the token's length is known.
    virtual InputStream& operator>>(char* buffer) = 0;
    /// Read as a double.
    virtual InputStream& operator>>(long double& value) = 0;
    virtual InputStream& operator>>(double& value) = 0;
    virtual InputStream& operator>>(float& value) = 0;
    virtual InputStream& operator>>(unsigned int& value) = 0;
    virtual InputStream& operator>>(int& value) = 0;
    virtual InputStream& operator>>(unsigned short& value) = 0;
    virtual InputStream& operator>>(short& value) = 0;
    virtual InputStream& operator>>(bool& value) = 0;
    /// Skips one token.
    virtual void SkipValue() = 0;
    /// As `operator>>(char*)`, with the same demand on the buffer. False, with the buffer unchanged, when no
    /// token is left or none can be read.
    virtual bool GetLine(char* buffer) = 0;
    /// Throws `XEndOfStream` when no token is left.
    virtual void CheckRead() = 0;

    /// The handle of an object that was read from this stream; 0 for other objects.
    int GetHandle(const ZoStreamableBase* object) const { return handles.Get(object); }
    /// The object must live until `ResetHandles` or until the stream is destroyed.
    void SetHandle(const ZoStreamableBase* object, int handle) { handles.Set(object, handle); }
    void ResetHandles() { handles.Reset(); }

    /// How often the stream returned its last token again instead of reporting its end; a long token counts
    /// as several. Readers stop at a limit. Always 0 for a stream that reports its end.
    unsigned GetRepeats() const { return repeats; }

    using ZoObject::operator==;
    using ZoObject::operator!=;
    /// A stream is equal to itself only.
    bool operator==(const InputStream& other) const { return this == &other; }
    bool operator!=(const InputStream& other) const { return this != &other; }

protected:
    void SetRepeats(unsigned count) { repeats = count; }

private:
    ZoHandleTable handles;
    unsigned repeats = 0;
};

} // namespace ZoPrimitives
