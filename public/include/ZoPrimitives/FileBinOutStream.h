#pragma once

#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/ZoString.h"

#include <memory>

namespace ZoPrimitives {

class FileReplacement;

/// Writes records to a file, and keeps the version that the file held before until the new one is whole.
///
/// With the backup flag, or on a network drive, writing goes to a temporary file beside the target.
/// `Finalize` renames it to the target's name with "-new" behind it, copies it over the target and deletes
/// it: at every instant one whole version exists as the target, as its "-bak" copy (backup flag only), as the
/// temporary or as the "-new" file. When that was stopped by a crash, a target that is torn is made whole
/// from the "-new" file before it is kept as the backup of the next save. Otherwise the target is written in
/// place; it is then left to the system when it reaches the device.
///
/// A stream writes one file: `Initialize`, records, `Finalize`. Whole records are gathered and written in
/// blocks of 256 KiB or more; a failure surfaces in the call that meets it, at the latest in `Finalize`, as
/// `XWriteStreamOutOfSpace` when the device is full and as `XWriteStream` otherwise. The file is then closed,
/// what was written stays where `GetWrittenPath` says, further records throw, and `Finalize` does nothing.
class ZO_API TFileBinOutStream : public TBinOutStream {
public:
    /// A new stream, on the heap and the caller's; a `pointer` may hold it. Nothing is opened yet. `backup`
    /// keeps the target's previous version as its full name followed by "-bak".
    static TFileBinOutStream* Create(const char* fileName, bool backup);
    static TFileBinOutStream* Create(const char* fileName, unsigned version, unsigned release, bool backup);
    /// As `FreeResourses`.
    ~TFileBinOutStream() override;
    TFileBinOutStream(const TFileBinOutStream&) = delete;
    TFileBinOutStream& operator=(const TFileBinOutStream&) = delete;

    /// Opens the file, others may read it meanwhile, and writes the header; one that the caller has already
    /// put into the open record, with `SaveHeader`, is taken. When the opening fails it may be tried again.
    void Initialize() override;
    /// Ends the file: writes what is left, puts the record count into the header, closes, makes the backup
    /// and replaces the target. A second call does nothing. When the temporary file cannot be deleted at the
    /// very end the data is safe, and nothing is thrown.
    void Finalize();
    void FlushRecord(int uid, int classId) override;
    /// Writes everything gathered, and the open record's bytes as they are.
    void FlushBuffer() override;
    /// Gives up without `Finalize`: writes what is gathered, closes, and throws nothing. The target is not
    /// replaced; a temporary file stays behind.
    void FreeResourses() override;
    /// Returns to the place after it; an open record stays.
    void RewriteHeader() override;
    bool PutsDirectly() const override;

    /// Where in the file, in bytes, the next ones are written. Writes what is gathered first.
    unsigned long long GetPosition();
    /// Writes what is gathered and goes back to where the header stands: the next bytes go there.
    void Reset();

    /// The open file, with everything gathered written to it; null for none. The handle stays the stream's.
    void* GetFile() const override;
    /// Before `Initialize`: has the stream write to a file that the caller has opened for writing, from where
    /// it stands. That file stays the caller's: it is not closed, and there is no temporary file and no
    /// backup. Where the stream began at its very beginning, `Finalize` ends it behind what was written. Null
    /// goes back to the file name.
    void SetFile(void* file) override;

    const ZoString& GetFileName() const;
    /// The file that holds what was written: the temporary one, or the "-new" one, until `Finalize` has put
    /// it in the target's place, the target otherwise.
    const ZoString& GetWrittenPath() const { return *writtenPath; }

protected:
    TFileBinOutStream(const char* fileName, bool backup);
    TFileBinOutStream(const char* fileName, unsigned version, unsigned release, bool backup);

    /// Writes everything gathered, and then the bytes, at once; the open record stays.
    void WriteToFile(const unsigned char* data, unsigned size);

private:
    enum class State { New, Writing, Ended };

    void MakeTemporary();
    void OpenFile(const char* path);
    void CheckWriting() const;
    void WriteGathered();
    void WriteBytes(const unsigned char* data, unsigned size);
    void NoteEnd();
    void EndFile();
    void SeekTo(unsigned long long offset, const char* location);
    void Abandon();
    void CloseWritten();
    void ReplaceTarget();

    std::unique_ptr<const FileReplacement> names;
    ZoString temporary;
    const ZoString* writtenPath;
    void* file = nullptr;
    bool ownsFile = false;
    bool backup;
    bool throughTemporary = false;
    bool plainHeader = false;           // written by `SaveHeader`, and nothing else with it
    unsigned headerCount = 0;           // the record count that it holds
    unsigned long long headerStart = 0; // where in the file it stands
    unsigned long long writtenEnd = 0;  // of a caller's file that begins with the header: the furthest place
    bool isWhole = false;               // it is such a file
    State state = State::New;
};

} // namespace ZoPrimitives
