#pragma once

#include <cstddef>

namespace ZoPrimitives {

/// Keeps the clipboard open on its thread while it lives.
class OpenedClipboard {
public:
    /// Opens the clipboard. Throws `XReadStream` with the reason and `location`.
    explicit OpenedClipboard(const char* location);
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;
    ~OpenedClipboard();

    /// Returns the block in the library's format, which zeros may follow; it is valid while this lives.
    /// Throws `XReadStream` "Invalid data handle" when there is none.
    const unsigned char* Data(std::size_t& size) const;

private:
    const char* location;
};

/// Replaces the clipboard's contents with a block in the library's format. Throws `XWriteStream`, or
/// `XWriteStreamOutOfSpace`, with `location`.
void PutOnClipboard(const void* data, std::size_t size, const char* location);

} // namespace ZoPrimitives
