#pragma once

#include "ZoPrimitives/ZoFrames.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

namespace ZoPrimitives {

/// Shows stretches of `TZoBytes` in memory: the bytes themselves where they are there, otherwise a buffer
/// that moves along. It grows to the longest stretch that was asked for.
class BytesWindow {
public:
    struct Stretch {
        const unsigned char* begin;
        std::size_t size;
    };

    explicit BytesWindow(TZoBytes& shown) : bytes(shown), memory(shown.GetMemory()), end(shown.GetSize()) {}

    unsigned long long End() const { return end; }
    TZoBytes& Bytes() const { return bytes; }
    /// The next `wanted` bytes from `offset` on, fewer at the end; until the next call.
    Stretch At(unsigned long long offset, std::size_t wanted) {
        const unsigned long long left = offset < end ? end - offset : 0;
        if (left < wanted) wanted = static_cast<std::size_t>(left);
        if (memory != nullptr) return {memory + offset, wanted};
        if (offset < first || offset + wanted > first + count) wanted = Refill(offset, wanted);
        return {buffer.get() + (offset - first), wanted};
    }

    /// The same with as many bytes behind those wanted as need not be read.
    Stretch From(unsigned long long offset, std::size_t wanted) {
        const Stretch asked = At(offset, wanted);
        if (memory != nullptr) return {asked.begin, static_cast<std::size_t>(end - std::min(offset, end))};
        return {asked.begin, std::max(asked.size, static_cast<std::size_t>(first + count - offset))};
    }
    /// Copies a few bytes, which need not be near. Returns how many are there.
    std::size_t Peek(unsigned long long offset, void* data, unsigned wanted) {
        if (memory == nullptr && (offset < first || offset + wanted > first + count))
            return bytes.Read(offset, data, wanted);
        const Stretch near = At(offset, wanted);
        std::memcpy(data, near.begin, near.size);
        return near.size;
    }

private:
    static constexpr std::size_t CHUNK = 256 * 1024;    // that is read at least
    static constexpr std::size_t FAR_CHUNK = 16 * 1024; // the same, elsewhere than where the buffer ends

    /// Makes the buffer begin at `offset`. Returns how many of the wanted bytes are there: all, unless the
    /// file has become shorter.
    std::size_t Refill(unsigned long long offset, std::size_t wanted) {
        std::size_t kept = 0;
        if (offset >= first && offset < first + count)
            kept = static_cast<std::size_t>(first + count - offset);
        const std::size_t room = std::max(wanted, kept != 0 || offset == first + count ? CHUNK : FAR_CHUNK);
        const unsigned char* from = buffer.get() + (count - kept);
        if (capacity < room) {
            std::unique_ptr<unsigned char[]> larger(new unsigned char[room]);
            if (kept != 0) std::memcpy(larger.get(), from, kept);
            buffer = std::move(larger);
            capacity = room;
        } else if (kept != 0) {
            std::memmove(buffer.get(), from, kept);
        }
        first = offset;
        count = kept;
        const unsigned long long left = std::min<unsigned long long>(room - kept, end - offset - kept);
        count += bytes.Read(offset + kept, buffer.get() + kept, static_cast<unsigned>(left));
        return std::min(wanted, count);
    }

    TZoBytes& bytes;
    const unsigned char* memory;
    unsigned long long end;
    std::unique_ptr<unsigned char[]> buffer;
    std::size_t capacity = 0;
    unsigned long long first = 0; // offset of the buffer's first byte
    std::size_t count = 0;        // bytes in the buffer
};

} // namespace ZoPrimitives
