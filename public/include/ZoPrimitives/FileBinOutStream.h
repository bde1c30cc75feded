#pragma once

#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/TZoPath.h"

#include <memory>

namespace ZoPrimitives {

class FileReplacement;

/// Writes records to a file and keeps its previous version until the new one is complete.
///
/// With the backup flag, or on a network drive, the stream writes to a temporary file beside the target.
/// `Finalize` renames it to the target's name with "-new" appended, copies it over the target and deletes it:
/// at every moment one complete version exists as the target, its "-bak" copy (backup flag only), the
/// temporary or the "-new" file. If a crash interrupts the copy, the next save first restores the torn target
/// from the "-new" file, then keeps it as its backup. Otherwise the target is written in place, and the
/// system decides when it reaches the device.
///
/// A stream writes one file: `Initialize`, records, `Finalize`. It gathers complete records and writes blocks
/// of 256 KiB or more. A failure surfaces in the call that meets it, at the latest in `Finalize`: as
/// `XWriteStreamOutOfSpace` when the device is full, as `XWriteStream` otherwise. The file is then closed,
/// `GetWrittenPath` tells where the data is, further records throw, and `Finalize` does nothing.
class ZO_API TFileBinOutStream : public TBinOutStream {
public:
    /// Makes a new stream on the heap, owned by the caller; a `pointer` may hold it. Opens nothing yet.
    /// `backup` keeps the target's previous version under its full name followed by "-bak".
    static TFileBinOutStream* Create(const char* fileName, bool backup);
    static TFileBinOutStream* Create(const char* fileName, unsigned version, unsigned release, bool backup);
    static TFileBinOutStream* Create(const TZoPath& path, bool backup);
    static TFileBinOutStream* Create(const TZoPath& path, unsigned version, unsigned release, bool backup);
    /// As `FreeResourses`.
    ~TFileBinOutStream() override;
    TFileBinOutStream(const TFileBinOutStream&) = delete;
    TFileBinOutStream& operator=(const TFileBinOutStream&) = delete;

    /// Before `Initialize`: writes through a temporary file even where neither a backup nor a network drive
    /// asks for it.
    void SetThroughTemporary(bool through) { asksTemporary = through; }
    /// Opens the file, which others may read meanwhile, and writes the header; one that the caller has
    /// already put into the open record with `SaveHeader` is used instead. May be called again if the file
    /// cannot be opened.
    void Initialize() override;
    /// Completes the file: writes what is left, puts the record count into the header, closes the file, makes
    /// the backup and replaces the target. A second call does nothing. Does not throw if only the deletion of
    /// the temporary file fails at the very end: the data is safe.
    void Finalize();
    void FlushRecord(int uid, int classId) override;
    /// Writes everything gathered, then the open record's bytes without a frame.
    void FlushBuffer() override;
    /// Gives up without `Finalize`: writes what is gathered and closes the file, without throwing. The target
    /// is not replaced; a temporary file remains.
    void FreeResourses() override;
    /// The same without writing, and deletes the temporary file.
    void Discard();
    /// Returns to the current position afterwards; the open record is unchanged.
    void RewriteHeader() override;
    bool PutsDirectly() const override;

    /// The offset of the next write in the file, in bytes. Writes what is gathered first.
    unsigned long long GetPosition();
    /// Writes what is gathered and returns to the header's position: the next bytes go there.
    void Reset();

    /// The open file, with everything gathered written to it; null if none is open. The stream owns it.
    void* GetFile() const override;
    /// Before `Initialize`: makes the stream write to a file that the caller has opened for writing, from its
    /// current position. The caller keeps the file: it is not closed and gets neither a temporary file nor a
    /// backup. If the stream began at the file's very beginning, `Finalize` truncates the file after the
    /// data. Null returns to the file name.
    void SetFile(void* file) override;

    const ZoString& GetFileName() const;
    const TZoPath& GetFilePath() const;
    /// The file that holds the data: until `Finalize` has replaced the target, the temporary or the "-new"
    /// file; otherwise the target.
    const ZoString& GetWrittenPath() const { return writtenPath->Text(); }
    const TZoPath& GetWrittenFilePath() const { return *writtenPath; }
    /// Whether that file is complete and closed and, through a temporary file, on the device.
    bool IsComplete() const { return complete; }

protected:
    TFileBinOutStream(const char* fileName, bool backup);
    TFileBinOutStream(const char* fileName, unsigned version, unsigned release, bool backup);
    TFileBinOutStream(const TZoPath& path, unsigned version, unsigned release, bool backup);

    /// Writes everything gathered, then the bytes, at once; the open record is unchanged.
    void WriteToFile(const unsigned char* data, unsigned size);

private:
    enum class State { New, Writing, Ended };

    void MakeTemporary();
    void OpenFile(const TZoPath& path);
    void CheckWriting() const;
    void WriteGathered();
    void WriteBytes(const unsigned char* data, unsigned size);
    void NoteEnd();
    void InvalidateDigest();
    void EndFile();
    void SeekTo(unsigned long long offset, const char* location);
    void Abandon();
    void CloseWritten();
    void ReplaceTarget();

    std::unique_ptr<const FileReplacement> names;
    TZoPath temporary;
    const TZoPath* writtenPath;
    void* file = nullptr;
    bool ownsFile = false;
    bool backup;
    bool asksTemporary = false;
    bool throughTemporary = false;
    bool complete = false;
    bool plainHeader = false;           // written by `SaveHeader`, with nothing after it
    unsigned headerCount = 0;           // the record count in the header
    unsigned long long headerStart = 0; // the header's offset in the file
    unsigned long long writtenEnd = 0;  // the furthest offset written, if `isWhole`
    bool isWhole = false;               // the file is the caller's and begins with the header
    State state = State::New;
};

} // namespace ZoPrimitives
