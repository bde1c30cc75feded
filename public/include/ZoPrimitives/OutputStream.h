#pragma once

#include "ZoPrimitives/ZoHandleTable.h"
#include "ZoPrimitives/ZoObject.h"

#include <type_traits>

namespace ZoPrimitives {

class ZoStreamableBase;
class ZoString;

/// Abstract writer of tokens, one for each value. `OutputStreamer` writes objects through it.
///
/// Texts are written byte for byte up to the first 0 byte. A text with line feeds is several tokens to a
/// reader of lines (see `OutputStreamer::MultiLineText`).
class ZO_API OutputStream : public ZoObject {
public:
    OutputStream();
    ~OutputStream() override;
    OutputStream(const OutputStream&) = delete;
    OutputStream& operator=(const OutputStream&) = delete;

    virtual OutputStream& operator<<(const ZoString& value) = 0;
    /// Null is written as the empty text.
    virtual OutputStream& operator<<(const char* value) = 0;
    /// Written as a double.
    virtual OutputStream& operator<<(long double value) = 0;
    virtual OutputStream& operator<<(double value) = 0;
    virtual OutputStream& operator<<(float value) = 0;
    virtual OutputStream& operator<<(unsigned int value) = 0;
    virtual OutputStream& operator<<(int value) = 0;
    virtual OutputStream& operator<<(unsigned short value) = 0;
    virtual OutputStream& operator<<(short value) = 0;
    virtual OutputStream& operator<<(bool value) = 0;

    // Characters and pointers must not pass as numbers or flags.
    OutputStream& operator<<(char) = delete;
    template <class T, class = std::enable_if_t<!std::is_same_v<std::remove_cv_t<T>, char>>>
    OutputStream& operator<<(T*) = delete;

    /// The handle of an object that was written to this stream; 0 for other objects.
    int GetHandle(const ZoStreamableBase* object) const { return handles.Get(object); }
    /// The object must live until `ResetHandles` or until the stream is destroyed.
    void SetHandle(const ZoStreamableBase* object, int handle) { handles.Set(object, handle); }
    void ResetHandles() { handles.Reset(); }

    using ZoObject::operator==;
    using ZoObject::operator!=;
    /// A stream is equal to itself only.
    bool operator==(const OutputStream& other) const { return this == &other; }
    bool operator!=(const OutputStream& other) const { return this != &other; }

private:
    ZoHandleTable handles;
};

} // namespace ZoPrimitives
