#pragma once

#include "ZoPrimitives/FileReading.h"
#include "ZoPrimitives/InputStream.h"
#include "ZoPrimitives/ZoString.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ZoPrimitives {

/// Reads tokens from a text file, one in a line; lines end with LF or CR LF. The file is loaded as a whole
/// when the stream is made, and stays open until the stream goes, locked or viewed (`TFileReading`).
///
/// Numbers are read as C's `atol` and `atof` do in the C locale: blanks, a sign and as much as is a number,
/// otherwise 0; integers beyond their type become the nearest one, of an unsigned type the negative ones wrap
/// around; of a short the low 16 bits of the nearest int are taken. A 0 byte ends its token; the rest of the
/// line is passed over.
///
/// At a line end that ends the file, reading throws `XEndOfStream`. A last line without an end is given again
/// and again, and `GetRepeats` counts.
class ZO_API FileInputStream : public InputStream {
public:
    /// `flag` is kept for whoever asks and has no effect here. Throws `XReadStream` "Não foi possível ler o
    /// arquivo " and the name.
    explicit FileInputStream(const char* fileName, bool flag = false);
    FileInputStream(const char* fileName, TFileReading reading);
    ~FileInputStream() override;

    InputStream& operator>>(ZoString& value) override;
    /// The file's size in bytes and one more is always enough room.
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

    /// The handle stays the stream's.
    void* GetFile() const { return file; }
    bool GetFlag() const { return flag; }
    /// False when the device failed: what it gave before is all that is read.
    bool GetIsWhole() const { return whole; }

protected:
    void CheckRead() override;
    /// Loads the whole file anew; reading begins at its start. Throws `std::bad_alloc` when it does not
    /// fit into memory, and `XReadStream` when it is larger than 4 GiB.
    void LoadFromFile();

private:
    FileInputStream(const char* fileName, bool flag, TFileReading reading);
    void OpenFile(const char* name);
    void LoadOnce();
    /// The next token, good until the file is loaded anew.
    std::string_view GetNextLine();
    std::string_view Token();
    void Repeat(std::size_t length);

    bool flag;
    void* file = nullptr;
    char* buffer = nullptr;
    std::uint32_t position = 0;
    std::uint32_t size = 0;
    bool whole = false;
    bool atLastLine = false; // which has no end, and was given
    ZoString fileName;
    TFileReading reading;
};

} // namespace ZoPrimitives
