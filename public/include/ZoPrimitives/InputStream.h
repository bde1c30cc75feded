#pragma once

#include "ZoPrimitives/ZoHandleTable.h"
#include "ZoPrimitives/ZoObject.h"

namespace ZoPrimitives {

class ZoStreamableBase;
class ZoString;

/// Abstract reader of the tokens that an `OutputStream` wrote, in the same order and as the same types.
/// `InputStreamer` reads objects through it.
///
/// Where no token is left `XEndOfStream` is thrown.
class ZO_API InputStream : public ZoObject {
public:
    InputStream();
    ~InputStream() override;
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;

    virtual InputStream& operator>>(ZoString& value) = 0;
    /// Copies the next token and a terminating 0 into the caller's buffer, whose room nobody checks: it must
    /// hold whatever the stream holds. Read a `ZoString` unless the token's length is known.
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
    /// Passes over one token.
    virtual void SkipValue() = 0;
    /// As `operator>>(char*)`, and with the same demand on the buffer. False when no token is left or none
    /// can be read; the buffer is untouched then.
    virtual bool GetLine(char* buffer) = 0;
    /// Throws `XEndOfStream` when no token is left.
    virtual void CheckRead() = 0;

    /// The handle of an object that was read from this stream; 0 for others.
    int GetHandle(const ZoStreamableBase* object) const { return handles.Get(object); }
    /// The object must live until `ResetHandles` or the end of the stream.
    void SetHandle(const ZoStreamableBase* object, int handle) { handles.Set(object, handle); }
    void ResetHandles() { handles.Reset(); }

    /// How often the last token was given again instead of an end of the stream, for those who must come to
    /// an end; a long one counts for more. 0 for a stream that has an end.
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
