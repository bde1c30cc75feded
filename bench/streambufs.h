#pragma once

#include "bench.h"

#include <cstring>
#include <streambuf>

namespace bench {

// The peers need stream buffers. These copy directly between the archive and a block, so that the peers pay
// as little as possible for standard streams.

class OutBuf : public std::streambuf {
public:
    explicit OutBuf(Sink& sink) : sink(sink) {}

protected:
    std::streamsize xsputn(const char* data, std::streamsize count) override {
        const auto size = static_cast<std::size_t>(count);
        std::memcpy(sink.Room(size), data, size);
        sink.Advance(size);
        if (sink.IsDue()) sink.Flush();
        return count;
    }
    int_type overflow(int_type c) override {
        const char byte = traits_type::to_char_type(c);
        xsputn(&byte, 1);
        return c;
    }

private:
    Sink& sink;
};

class InBuf : public std::streambuf {
public:
    explicit InBuf(const Bytes& bytes) {
        auto* data = reinterpret_cast<char*>(const_cast<unsigned char*>(bytes.data()));
        setg(data, data, data + bytes.size());
    }

protected:
    std::streamsize xsgetn(char* data, std::streamsize count) override {
        if (count > egptr() - gptr()) count = egptr() - gptr();
        std::memcpy(data, gptr(), static_cast<std::size_t>(count));
        setg(eback(), gptr() + count, egptr());
        return count;
    }
};

} // namespace bench
