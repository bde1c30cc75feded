#pragma once

#include "ZoPrimitives/FileReading.h"
#include "ZoPrimitives/InputStream.h"
#include "ZoPrimitives/TZoPath.h"
#include "ZoPrimitives/ZoString.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ZoPrimitives {

/// Reads tokens from a text file, one a line; lines end with LF or CR LF. The file is loaded when the stream
/// is created and stays open until it is destroyed, locked or viewed (`TFileReading`).
///
/// Numbers are read as C's `atol` and `atof` do in the C locale: blanks, a sign and as many characters as
/// form a number, otherwise 0. Integers out of range become the nearest `int` or `unsigned`; negative ones
/// wrap around for `unsigned`; a `short` takes the low 16 bits of the nearest `int`. A 0 byte ends its token;
/// the rest of the line is skipped.
///
/// After a line end that ends the file, reading throws `XEndOfStream`. A last line without a line end is
/// returned again and again; `GetRepeats` counts this.
class ZO_API FileInputStream : public InputStream {
public:
    /// `flag` has no effect here; `GetFlag` returns it. Throws `XReadStream` "Não foi possível ler o arquivo
    /// " followed by the name.
    explicit FileInputStream(const char* fileName, bool flag = false);
    FileInputStream(const char* fileName, TFileReading reading);
    explicit FileInputStream(const TZoPath& path, TFileReading reading = TFileReading::Locking);
    ~FileInputStream() override;

    InputStream& operator>>(ZoString& value) override;
    /// A buffer of the file's size plus one byte is always large enough.
    InputStream& operator>>(char* buffer) override;
    InputStream& operator>>(long double& value) override;
    InputStream& operator>>(double& value) override;
    InputStream& operator>>(float& value) override;
    InputStream& operator>>(unsigned int& value) override;
    InputStream& operator>>(int& value) override;
    InputStream& operator>>(unsigned short& value) override;
    InputStream& operator>>(short& value) override;
    InputStream& operator>>(bool& value) override;
    void SkipValue() override;
    bool GetLine(char* buffer) override;

    /// The stream keeps the handle.
    void* GetFile() const { return file; }
    bool GetFlag() const { return flag; }
    /// False when the device failed: the stream holds only what was read before.
    bool GetIsWhole() const { return whole; }

protected:
    void CheckRead() override;
    /// Loads the file again; reading restarts at its beginning. Throws `std::bad_alloc` when it does not fit
    /// into memory, and `XReadStream` when it is larger than 4 GiB.
    void LoadFromFile();

private:
    FileInputStream(const TZoPath& path, bool flag, TFileReading reading);
    void OpenFile(const TZoPath& path);
    void LoadOnce();
    /// The next token, valid until the file is loaded again.
    std::string_view GetNextLine();
    std::string_view Token();
    void Repeat(std::size_t length);

    bool flag;
    void* file = nullptr;
    char* buffer = nullptr;
    std::uint32_t position = 0;
    std::uint32_t size = 0;
    bool whole = false;
    bool atLastLine = false; // which has no line end and was returned
    TZoPath path;
    TFileReading reading;
};

} // namespace ZoPrimitives
