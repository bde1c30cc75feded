#pragma once

#include "ZoPrimitives/OutputStream.h"
#include "ZoPrimitives/TZoPath.h"
#include "ZoPrimitives/ZoString.h"
#include "ZoPrimitives/dvector.h"
#include "ZoPrimitives/pointer.h"

#include <string_view>

namespace ZoPrimitives {

/// Writes tokens to a text file, one a line, with CR LF between them and nothing after the last one.
///
/// Integers are decimal, flags 1 and 0; real numbers have 15 significant digits and always a point ("100.",
/// "1.e+020"). Tokens are collected in memory and written at once, by `Finalize`, which reports failures, or
/// by the destructor, which cannot. A token that finds no memory throws `std::bad_alloc`.
class ZO_API FileOutputStream : public OutputStream {
public:
    /// Creates or empties the file; others may read it meanwhile. `keepOpen`: the stream does not close the
    /// file; take its handle with `GetFile`. Throws `XWriteStream` or `XWriteStreamOutOfSpace`.
    FileOutputStream(const char* fileName, bool keepOpen);
    FileOutputStream(const TZoPath& path, bool keepOpen);
    /// Writes to a file that is open for writing, from its current position, and does not close it.
    explicit FileOutputStream(void* file);
    /// Writes the tokens unless `Finalize` has; does not report failures.
    ~FileOutputStream() override;

    using OutputStream::operator<<;
    OutputStream& operator<<(const ZoString& value) override;
    OutputStream& operator<<(const char* value) override;
    OutputStream& operator<<(long double value) override;
    OutputStream& operator<<(double value) override;
    OutputStream& operator<<(float value) override;
    OutputStream& operator<<(unsigned int value) override;
    OutputStream& operator<<(int value) override;
    OutputStream& operator<<(unsigned short value) override;
    OutputStream& operator<<(short value) override;
    OutputStream& operator<<(bool value) override;

    /// Writes the file and closes it, unless it is to be kept open. Throws `XWriteStreamOutOfSpace` when the
    /// device is full and `XWriteStream` otherwise; the file may then be incomplete. The stream takes no more
    /// tokens afterwards, and neither a second call nor the destructor writes anything.
    void Finalize();

    /// The open file; null once it is closed.
    void* GetFile() const { return file; }
    /// Whether one of the unwritten tokens is "EOF".
    bool GetHasEOF() const;

protected:
    /// Writes the tokens collected so far at the file's current position, all at once unless memory is short,
    /// and forgets them. False on failure.
    bool SaveToFile();

private:
    OutputStream& Add(std::string_view token);
    bool Close();

    TZoPath path; // empty for a handle
    void* file;
    pointer<TDList<ZoString>> tokens;
    bool keepsOpen;
    bool finalized = false;
    bool begun = false; // something was written
};

} // namespace ZoPrimitives
