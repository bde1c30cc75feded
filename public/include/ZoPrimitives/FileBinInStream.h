#pragma once

#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/FileReading.h"
#include "ZoPrimitives/ZoString.h"

#include <type_traits>

namespace ZoPrimitives {

/// Reads records from a file, which is loaded into memory as a whole; where that fails, from the device, much
/// slower. It is locked against everybody who would write it, or viewed (`TFileReading`).
class ZO_API TFileBinInStream : public TBinInStream {
public:
    static constexpr unsigned ANY_VERSION = 0xFFFFFFFFu;

    // A file by its name, opened by `Initialize` and closed with the stream whatever `ownsSource` says.
    explicit TFileBinInStream(const char* fileName, bool ownsSource = true);
    TFileBinInStream(const char* fileName, unsigned supportedVersion, bool ownsSource = true);
    TFileBinInStream(const char* fileName, int supportedVersion, bool ownsSource = true);
    TFileBinInStream(const char* fileName, TFileReading reading, unsigned supportedVersion = ANY_VERSION);
    /// A file that is open for reading. `ownsSource`: it is closed with the stream.
    TFileBinInStream(void* file, bool ownsSource, unsigned supportedVersion = ANY_VERSION);
    ~TFileBinInStream() override;
    TFileBinInStream(const TFileBinInStream&) = delete;
    TFileBinInStream& operator=(const TFileBinInStream&) = delete;

    /// Opens the file, anew if it is open, and reads its header. Throws `XReadStream` or `XNewerVersion`;
    /// the file is then closed, unless it is the caller's.
    void Initialize();
    /// Reads the file anew, from its start, without letting go of it; one that is not open yet is opened.
    /// Throws as `Initialize`; the file stays open.
    void InitializeKeepingLocked();
    /// Opens and loads the file without reading its header. Throws `XReadStream` "Não foi possível ler o
    /// arquivo " and the name.
    void OpenFile();

    /// Raw bytes. True when all came; without the file in memory when at least one did, or none were asked
    /// for. A derived class that overrides it is asked for every byte, header included.
    bool Read(void* data, unsigned size, unsigned& done) override;
    /// The whole file as it lies in memory, `size` in bytes, until the stream is initialised anew or
    /// destroyed. Null, and 0, when it could not be loaded or is not open.
    const unsigned char* ReadFileBuffer(unsigned long long& size) const;

    /// Goes to `offset` bytes from the beginning (origin 0), the current place (1) or the end (2) of the file
    /// and returns the place reached. Beyond the end there is nothing to read. A place before the beginning
    /// throws `XReadStream` "Invalid seek".
    unsigned long long Seek(unsigned offset, int origin) { return SeekFar(offset, origin); }
    /// Offsets of any width and sign.
    template <class Offset, class = std::enable_if_t<std::is_integral_v<Offset>>>
    unsigned long long Seek(Offset offset, int origin) {
        return SeekFar(static_cast<long long>(offset), origin);
    }

    /// Null when the file is not open.
    void* GetFile() const override { return file; }
    bool GetsDirectly() const override;
    /// Empty for a stream over an open file.
    const ZoString& GetFileName() const { return fileName; }

private:
    void OpenFile(const char* name);
    unsigned long long SeekFar(long long offset, int origin);
    void Load();
    void LoadOnce();
    void Unload();
    void Close();

    ZoString fileName;
    void* file = nullptr;
    bool named;
    TFileReading asked = TFileReading::Locking;
    TFileReading reading = TFileReading::Locking; // viewing for a read-only file too
    unsigned char* copy = nullptr;
};

} // namespace ZoPrimitives
