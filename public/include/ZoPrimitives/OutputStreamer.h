#pragma once

#include "ZoPrimitives/OutputStream.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/dvector.h"
#include "ZoPrimitives/pointer.h"

#include <cstdint>
#include <type_traits>

namespace ZoPrimitives {

/// Writes objects as tokens: group codes and values. An object takes part through
/// `ZoStreamableBase::Write`. docs/text-format.md has the format.
///
/// The first time that an object is met through a pointer it gets a handle, from 1 upward, and is written in
/// full; from then on it is referred to by its handle. One streamer writes one stream.
class ZO_API OutputStreamer : public ZoObject {
public:
    /// Holds the stream with a `pointer`: it must be on the heap. Without one every operation fails the
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
    /// The object's own data, without a code or its class before and without an end.
    OutputStreamer& operator<<(ZoStreamableBase& object);
    /// 0 for null; 5 and the handle for an object that was written before; otherwise 0, the class's name and
    /// the object's data, whose end is the caller's to write. The object must outlive the stream's handles.
    /// Objects deeper than `MAX_TEXT_NESTING` inside each other throw `XWriteStream`: of the one that is
    /// refused nothing is written, and it has no handle. A class's name is not empty: one that is was lost,
    /// and throws `std::bad_alloc`.
    OutputStreamer& operator<<(ZoStreamableBase* object);
    /// Other pointers are no flags.
    template <class T, class = std::enable_if_t<!std::is_convertible_v<T*, const char*> &&
                                                !std::is_convertible_v<T*, ZoStreamableBase*>>>
    OutputStreamer& operator<<(T*) = delete;

    /// Writes each line of a text as a value of `code`; nothing for the empty text. A reader joins values of
    /// one code that follow each other with line feeds.
    void MultiLineText(const ZoString& text, int code);

    /// The handle of an object that was written to the stream; 0 for others.
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
