#pragma once

#include "Persistence/records/RecordChecks.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoString.h"

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace ZoPrimitives {

/// Writes values straight into a stream's open record. The loop keeps the position in a local variable, and
/// so in a register; `Commit` tells it to the stream, and a record without `Commit` is abandoned.
class WriteCursor {
public:
    explicit WriteCursor(TBinOutStream& target) : stream(target), records(target.records) { Renew(); }

    template <class T, class = std::enable_if_t<std::is_arithmetic_v<T>>>
    void operator()(const T& value) const {
        std::memcpy(Take(sizeof value), &value, sizeof value);
    }
    void operator()(const ZoString& value) const {
        const char* text = value.c_str();
        const std::size_t size = std::strlen(text);
        if (static_cast<std::size_t>(limit - at) < size + 4) MakeRoom(size + 4);
        const auto length = static_cast<std::uint32_t>(size);
        std::memcpy(at, &length, 4);
        std::memcpy(at + 4, text, size);
        at += size + 4;
    }
    void operator()(const ZoBlob& value) const {
        Commit();
        stream.Put(value);
        Renew();
    }
    /// Returns the place of the next `size` bytes, which the caller fills.
    unsigned char* Take(std::size_t size) const {
        if (static_cast<std::size_t>(limit - at) < size) MakeRoom(size);
        return std::exchange(at, at + size);
    }
    void Commit() const { records.position = at; }

    TBinOutStream& stream;

private:
    void MakeRoom(std::size_t size) const {
        Commit();
        records.MakeRoom(size);
        Renew();
    }
    void Renew() const {
        at = records.position;
        limit = records.limit;
    }

    RecordBuffer& records;
    mutable unsigned char* at;
    mutable unsigned char* limit;
};

/// Reads values straight from a stream's current record in the same way. Throws past the record's end.
class ReadCursor {
public:
    explicit ReadCursor(TBinInStream& source)
        : stream(source), begin(source.record), at(begin + source.position), end(begin + source.recordSize) {}

    template <class T, class = std::enable_if_t<std::is_arithmetic_v<T>>>
    void operator()(T& value) const {
        if (Remaining() < sizeof value) ThrowRecordEnds();
        std::memcpy(&value, at, sizeof value);
        at += sizeof value;
    }
    void operator()(bool& value) const {
        unsigned char byte = 0;
        (*this)(byte);
        value = byte != 0;
    }
    void operator()(ZoString& value) const {
        Commit();
        stream.Get(value);
        at = begin + stream.position;
    }
    void operator()(ZoBlob& value) const {
        Commit();
        stream.Get(value);
        at = begin + stream.position;
    }
    unsigned Position() const { return static_cast<unsigned>(at - begin); }
    unsigned Remaining() const { return static_cast<unsigned>(end - at); }
    void Skip(unsigned size) const { at += size; }
    /// Returns the next `size` bytes; the caller has checked that they are there.
    const unsigned char* Take(unsigned size) const { return std::exchange(at, at + size); }
    void Commit() const { stream.position = Position(); }

    TBinInStream& stream;

private:
    const unsigned char* begin;
    mutable const unsigned char* at;
    const unsigned char* end;
};

} // namespace ZoPrimitives
