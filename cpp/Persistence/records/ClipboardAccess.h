#pragma once

#include <cstddef>

namespace ZoPrimitives {

/// The clipboard, open for as long as this lives, on one thread.
class OpenedClipboard {
public:
    /// Throws `XReadStream` with the reason and `location`.
    explicit OpenedClipboard(const char* location);
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;
    ~OpenedClipboard();

    /// The block in the library's format, which may be followed by zeros, for as long as this lives. Throws
    /// `XReadStream` "Invalid data handle" when there is none.
    const unsigned char* Data(std::size_t& size) const;

private:
    const char* location;
};

/// Replaces what the clipboard holds by a block in the library's format. Throws `XWriteStream`, or
/// `XWriteStreamOutOfSpace`, with `location`.
void PutOnClipboard(const void* data, std::size_t size, const char* location);

} // namespace ZoPrimitives
