#pragma once

#include "ZoPrimitives/OutputStream.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/dvector.h"
#include "ZoPrimitives/pointer.h"

#include <cstdint>
#include <type_traits>

namespace ZoPrimitives {

/// Writes objects as tokens: group codes and values. A class takes part through `ZoStreamableBase::Write`.
/// docs/text-format.md describes the format.
///
/// The first time that the streamer meets an object through a pointer, it gives it a handle, from 1 upward,
/// and writes it in full; later it writes only the handle. One streamer writes one stream.
class ZO_API OutputStreamer : public ZoObject {
public:
    /// Holds the stream with a `pointer`: it must be on the heap. Without a stream every operation fails the
    /// assertion "object".
    explicit OutputStreamer(OutputStream* stream);
    ~OutputStreamer() override;
    OutputStreamer(const OutputStreamer&) = delete;
    OutputStreamer& operator=(const OutputStreamer&) = delete;

    OutputStreamer& operator<<(const ZoString& value);
    OutputStreamer& operator<<(const char* value);
    OutputStreamer& operator<<(long double value);
    OutputStreamer& operator<<(double value);
    OutputStreamer& operator<<(float value);
    OutputStreamer& operator<<(unsigned int value);
    OutputStreamer& operator<<(int value);
    /// Written as an int.
    OutputStreamer& operator<<(unsigned short value);
    OutputStreamer& operator<<(short value);
    OutputStreamer& operator<<(bool value);
    OutputStreamer& operator<<(char) = delete;
    /// Writes the object's own data: no code or class name before it, no end after it.
    OutputStreamer& operator<<(ZoStreamableBase& object);
    /// Writes 0 for null; 5 and the handle for an object already written; otherwise 0, the class's name and
    /// the object's data, whose end the caller writes. The object must outlive the stream's handles. Objects
    /// nested deeper than `MAX_TEXT_NESTING` throw `XWriteStream`; nothing of the refused object is written,
    /// and it gets no handle. An empty class name means that memory was short, and throws `std::bad_alloc`.
    OutputStreamer& operator<<(ZoStreamableBase* object);
    /// Other pointers must not pass as flags.
    template <class T, class = std::enable_if_t<!std::is_convertible_v<T*, const char*> &&
                                                !std::is_convertible_v<T*, ZoStreamableBase*>>>
    OutputStreamer& operator<<(T*) = delete;

    /// Writes each line of a text as a value of `code`; nothing for the empty text. A reader joins
    /// consecutive values of one code with line feeds.
    void MultiLineText(const ZoString& text, int code);

    /// The handle of an object that was written to the stream; 0 for other objects.
    int GetHandle(const ZoStreamableBase* object) const { return stream->GetHandle(object); }
    /// The objects that got a handle, in this order.
    const TDList<ZoStreamableBase*>& Objects() const { return written; }
    /// The file of a `FileOutputStream`; null for other streams.
    void* GetFile() const;

    using ZoObject::operator==;
    using ZoObject::operator!=;
    /// Whether both write to the same stream.
    bool operator==(const OutputStreamer& other) const { return stream == other.stream; }
    bool operator!=(const OutputStreamer& other) const { return stream != other.stream; }

private:
    class Level;
    void Number(ZoStreamableBase* object);

    pointer<OutputStream> stream;
    TDList<ZoStreamableBase*> written;
    std::int32_t nextHandle = 1;
    int depth = 0;
};

} // namespace ZoPrimitives
