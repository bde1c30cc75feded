#pragma once

#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/FileReading.h"
#include "ZoPrimitives/TZoPath.h"
#include "ZoPrimitives/ZoString.h"

#include <type_traits>

namespace ZoPrimitives {

/// Reads records from a file, which is loaded into memory; if that fails, from the device, much more slowly.
/// The file is locked against writers or only viewed (`TFileReading`).
class ZO_API TFileBinInStream : public TBinInStream {
public:
    static constexpr unsigned ANY_VERSION = 0xFFFFFFFFu;

    // The file of that name, opened by `Initialize` and closed with the stream whatever `ownsSource` says.
    explicit TFileBinInStream(const char* fileName, bool ownsSource = true);
    TFileBinInStream(const char* fileName, unsigned supportedVersion, bool ownsSource = true);
    TFileBinInStream(const char* fileName, int supportedVersion, bool ownsSource = true);
    TFileBinInStream(const char* fileName, TFileReading reading, unsigned supportedVersion = ANY_VERSION);
    explicit TFileBinInStream(const TZoPath& path, TFileReading reading = TFileReading::Locking,
                              unsigned supportedVersion = ANY_VERSION);
    /// A file that is open for reading. `ownsSource`: the stream closes it.
    TFileBinInStream(void* file, bool ownsSource, unsigned supportedVersion = ANY_VERSION);
    ~TFileBinInStream() override;
    TFileBinInStream(const TFileBinInStream&) = delete;
    TFileBinInStream& operator=(const TFileBinInStream&) = delete;

    /// Opens the file, again if it is open, and reads its header. Throws `XReadStream` or `XNewerVersion`;
    /// the file is then closed, unless it is the caller's.
    void Initialize();
    /// Reads the file again from its start without closing it, or opens it. Throws as `Initialize` does, but
    /// the file stays open.
    void InitializeKeepingLocked();
    /// Opens and loads the file without reading its header. Throws `XReadStream` "Não foi possível ler o
    /// arquivo " followed by the name.
    void OpenFile();

    /// Reads raw bytes. True when all were read; if the file is not in memory, when at least one was, or none
    /// was asked for. An override in a derived class is called for every byte, the header's included.
    bool Read(void* data, unsigned size, unsigned& done) override;
    /// The file's contents in memory, `size` bytes, valid until the stream is initialised again or destroyed.
    /// Null, and 0, if the file could not be loaded or is not open.
    const unsigned char* ReadFileBuffer(unsigned long long& size) const;

    /// Moves to `offset` bytes from the beginning (origin 0), the current position (1) or the end (2) of the
    /// file and returns the new position. Positions beyond the end are allowed; nothing can be read there.
    /// One before the beginning throws `XReadStream` "Invalid seek".
    unsigned long long Seek(unsigned offset, int origin) { return SeekFar(offset, origin); }
    /// Takes offsets of any width and sign.
    template <class Offset, class = std::enable_if_t<std::is_integral_v<Offset>>>
    unsigned long long Seek(Offset offset, int origin) {
        return SeekFar(static_cast<long long>(offset), origin);
    }

    /// Null when the file is not open.
    void* GetFile() const override { return file; }
    bool GetsDirectly() const override;
    /// Empty for a stream over an open file.
    const ZoString& GetFileName() const { return GetPath(); }

private:
    void OpenFile(const TZoPath& path);
    unsigned long long SeekFar(long long offset, int origin);
    void Load();
    void LoadOnce();
    void Unload();
    void Close();

    void* file = nullptr;
    bool named;
    TFileReading asked = TFileReading::Locking;
    TFileReading reading = TFileReading::Locking; // also viewing for a read-only file
    unsigned char* copy = nullptr;
};

} // namespace ZoPrimitives
