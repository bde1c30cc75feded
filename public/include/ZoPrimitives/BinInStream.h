#pragma once

#include "ZoPrimitives/BinHeader.h"
#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/ZoObject.h"
#include "ZoPrimitives/ZoReadReport.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/ZoString.h"
#include "ZoPrimitives/dvector.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>

namespace ZoPrimitives {

class HeadDigest;
class InstanceTables;
class RecordFilter;
struct TBinUnresolved;
class ZoBlob;
class TZoClass;
class TZoClassField;
class TZoMetaData;
namespace RecordFormat {
struct RecordHead;
}

/// Abstract reader of the binary record format: delivers one verified record at a time, from which
/// `operator>>` takes values, and searches damaged bytes for the next record.
///
/// A derived class supplies `Read`. A stream belongs to one thread.
class ZO_API TBinInStream : public ZoObject {
public:
    /// Data written by a version above `supportedVersion` is refused. `ownsSource`: the stream closes or
    /// frees the source that it was given (a file handle, a block). It always closes a source of its own.
    TBinInStream(unsigned supportedVersion, bool ownsSource);
    /// Copies the header's values and the current record, but neither the source nor the tables of objects.
    TBinInStream(const TBinInStream& other);
    TBinInStream& operator=(const TBinInStream& other);
    ~TBinInStream() override;

    using ZoObject::operator==;
    using ZoObject::operator!=;
    /// Whether the header values and the current record are equal.
    bool operator==(const TBinInStream& other) const;
    bool operator!=(const TBinInStream& other) const { return !(*this == other); }

    // Values come from the current record. A string or blob that reaches past the record's end throws
    // `XReadStream` "Tamanho de registro corrompido". A value of fixed size past the end is unspecified; past
    // `DEFAULT_BUFFER_SIZE` it throws the same exception.
    virtual TBinInStream& operator>>(ZoBlob& value);
    virtual TBinInStream& operator>>(ZoString& value);
    /// The caller's storage must hold the string's bytes and a terminator; its size is not checked.
    virtual TBinInStream& operator>>(char* value);
    virtual TBinInStream& operator>>(short& value);
    virtual TBinInStream& operator>>(unsigned short& value);
    virtual TBinInStream& operator>>(int& value);
    virtual TBinInStream& operator>>(unsigned& value);
    virtual TBinInStream& operator>>(float& value);
    virtual TBinInStream& operator>>(double& value);
    virtual TBinInStream& operator>>(long double& value);
    virtual TBinInStream& operator>>(bool& value);

protected:
    /// Checks the header, whose bytes are the current record. False when it is not a header of this format;
    /// throws `XNewerVersion` when its version is above the supported one.
    virtual bool LoadHeader();
    /// Reads raw bytes. `done` receives the number of bytes read. True when all of `size` were read; some
    /// sources also return true when only a part was.
    virtual bool Read(void* data, unsigned size, unsigned& done) = 0;

public:
    /// Loads the next good record; false at the end of the data. Skips bytes that belong to no record and
    /// records with a wrong checksum; after 65,535 such rounds without a good record throws `XReadStream`
    /// "Arquivo corrompido". A truncated record throws `XReadStream` with the error's text: "No error" when
    /// the data just ended, "Input/output error" when the device failed.
    bool LoadRecord(int* uid, int* classId);
    /// Loads the next good record of a class in `ids`: `idCount` class ids in ascending order. Records of
    /// other classes, and of classes that `schema` (null: any) does not hold, are skipped by their heads
    /// alone, whatever their contents and checksums. Otherwise as `LoadRecord`; failure point #6 reports a
    /// truncated record that was to be skipped, #7 one that was asked for.
    bool LoadFilteredRecord(TZoMetaData* schema, const int* ids, int* classId, int* uid, int idCount);

    /// Before the header is read: whether the digest of the data, where there is one, is checked. At the end
    /// of the data `LoadRecord` and `LoadFilteredRecord` then throw `XWrongDigest` if a record is missing,
    /// comes twice or in another place, if the class, uid or key of one or the header has changed, or if
    /// anything was skipped. False by default. A streamer that accepts no damage (`SetStrict`) throws
    /// `XRefusedData` instead, whose report tells all that was found.
    void SetChecksDigest(bool checks) { checksDigest = checks; }
    bool GetChecksDigest() const { return checksDigest; }

    /// The handle of the file that the stream reads; null if there is none.
    virtual void* GetFile() const;

    /// The bytes that were passed over while looking for records; the last stretch stands for all that follow
    /// when there are very many.
    const TDVector<TZoPassedOver>& GetPassedOver() const { return passedOver; }
    /// The file's name; empty if the stream reads something else, or a handle.
    const ZoString& GetPath() const { return path.Text(); }
    const TZoPath& GetFilePath() const { return path; }

    unsigned GetVersion() const { return header.version; }
    unsigned GetRelease() const { return header.release; }
    /// Whether a header was read: `Initialize` does it.
    bool HasHeader() const { return hasHeader; }
    /// The record count that the header holds.
    unsigned GetNInstances() const { return header.recordCount; }
    /// The uid of the current record.
    int GetCurrentUID() const { return currentUid; }
    /// Bytes skipped so far while looking for records.
    unsigned long long GetSkipped() const { return skipped; }
    /// At the end of the data: how many bytes, 0 to 3, are left that are too few to look at.
    unsigned GetTrailing() const { return trailing; }
    /// How far the data is read: `done` of `all`, bytes if the data is in memory, else records.
    void GetProgress(unsigned long long& done, unsigned long long& all) const;
    /// Records loaded so far.
    unsigned long long GetLoaded() const { return loaded; }
    bool GetOwnsSource() const { return ownsSource; }

    /// Size of the current record in bytes, and how many of them are unread.
    unsigned GetRecordSize() const { return recordSize; }
    unsigned GetRemaining() const { return position < recordSize ? recordSize - position : 0; }
    unsigned GetRecordPosition() const { return position; }
    void SetRecordPosition(unsigned newPosition);

    // The objects read from this stream, in record order. The stream does not own them.
    void AddInstance(ZoStreamableBase* object);
    /// The object read under a uid; null if there is none.
    ZoStreamableBase* GetInstance(int uid) const;
    const TDVector<ZoStreamableBase*>& Objects() const;
    /// The first object read, which is the root of the saved graph; null when nothing was read.
    ZoStreamableBase* FirstObject() const;
    /// The first object of the named class; null if there is none.
    ZoStreamableBase* FindFirstObject(const ZoString& className) const;
    /// Appends all objects read.
    void FillObjects(TDVector<ZoStreamableBase*>* list) const;
    /// Moves all objects read into `list`, which holds them from then on, including those that no other
    /// object owns. The stream forgets them.
    void TakeObjects(TIVector<ZoStreamableBase>* list);
    /// Removes objects from the list of objects read, without deleting them.
    void RemoveInstances(const TDVector<ZoStreamableBase*>& list);

    // Handles map uids to objects until pointers are resolved.
    void SetHandle(ZoStreamableBase* object, int uid);
    /// Null if no object has the uid.
    ZoStreamableBase* GetHandle(int uid) const;
    void ResetHandles();

    // Pointers to be resolved: one entry for each object that has some.
    /// Opens an entry; `fileClass` is the file's class of the record.
    void AddUnresolved(ZoStreamableBase* object, int uid, TZoClass* fileClass);
    /// The entry of the object read under a uid; null if there is none, or all its
    /// pointers are set already.
    const TBinUnresolved* GetUnresolved(int uid) const;

    // Fields of the current record that the application's class lacks, with their positions in the record.
    void AddExcludedField(TZoClassField* field, unsigned recordPosition);
    void RemoveExcludedField(TZoClassField* field);
    /// The first one left, with the stream positioned at its value; null when none is left.
    TZoClassField* GetFirstExcludedField();
    void ClearExcludedFields();
    /// For `HandleExcludedField`, which meets only uids: has `action` called with the object of the uid, null
    /// if there is none, when a streamer has read all objects and set their references. Objects that call
    /// themselves invalid are removed afterwards. A reading that fails before does not call it.
    template <class Callable>
    void WhenRead(int awaited, Callable action) {
        AddAwaited(awaited, std::make_unique<ZoItemAction<Callable>>(std::move(action)));
    }
    void AddAwaited(int uid, std::unique_ptr<ZoStreamableBaseFunctor> action);

    /// Reads a value of fixed size as `operator>>` does, without the virtual call.
    template <class T>
    void Take(T& value) {
        if (position <= recordSize && recordSize - position >= sizeof(T)) {
            std::memcpy(&value, record + position, sizeof(T));
            position += static_cast<unsigned>(sizeof(T));
        } else {
            TakePastEnd(&value, sizeof(T));
        }
    }
    // These do what the `operator>>`s of this class do, without the virtual call.
    template <class T, class = std::enable_if_t<std::is_arithmetic_v<T> && !std::is_same_v<T, long double>>>
    void Get(T& value) {
        Take(value);
    }
    void Get(bool& value) {
        unsigned char byte = 0;
        Take(byte);
        value = byte != 0;
    }
    void Get(ZoString& value);
    void Get(ZoBlob& value);
    /// Whether every `operator>>` is this library's own, so that callers may use `Get` instead.
    virtual bool GetsDirectly() const;
    /// Returns the bytes of a string or blob without copying them; they are valid until the next record.
    /// Checks as `operator>>` does; `location` names the operation in the exception.
    const unsigned char* TakeBlock(unsigned& size, const char* location);
    /// A string to read into; it keeps its buffer from one use to the next.
    ZoString& ScratchString() { return scratch; }
    /// Reserves room for the number of objects in the header, or for as many as the remaining data can hold.
    void ReserveInstances();
    /// Forgets all objects read and their tables, without deleting any object.
    void ForgetInstances() noexcept;

protected:
    static unsigned GetSecurityKey(unsigned stored);
    static void ApplySecurityKey(unsigned key, unsigned char* data, unsigned size);

    /// Sets the memory that holds all the data: records are then used in place, without `Read`. May be null.
    void SetWindow(const unsigned char* begin, const unsigned char* end);
    bool HasWindow() const { return windowBegin != nullptr; }
    /// Reads records through `Read` despite the window, because a derived class may override it.
    void SetAsksRead(bool asks) { asksRead = asks; }
    unsigned long long WindowPosition() const {
        return static_cast<unsigned long long>(windowCursor - windowBegin);
    }
    unsigned long long WindowSize() const { return static_cast<unsigned long long>(windowEnd - windowBegin); }
    void SetWindowPosition(unsigned long long offset) { windowCursor = windowBegin + offset; }
    /// `Read` from the window.
    bool ReadWindow(void* data, unsigned size, unsigned& done);

    /// Reads the header's bytes and checks them. Throws `XReadStream` with `location` and the error's text
    /// when they cannot be read, `XReadStream` "Header de arquivo inválido" when they are not a header, and
    /// `XNewerVersion`.
    void ReadHeader(const char* location);
    /// A `Read` that fails reports the device's error here; without this call the data has ended. `error` is
    /// the C runtime's number, which has the text; `systemCode` is Windows', see `XStream::SystemCode`.
    void SetReadError(unsigned long error, unsigned systemCode = 0) {
        readError = error;
        systemError = systemCode;
    }
    /// The file's name, for exceptions.
    void SetPath(const TZoPath& file);

private:
    void ReadUnnamedHeader(const char* location);

    friend class ReadCursor;
    friend class InstanceTables;
    struct EndInstances {
        void operator()(InstanceTables* ended) const noexcept;
    };
    static InstanceTables* NewInstances();

    bool TakesFromWindow() const { return HasWindow() && !asksRead; }
    /// `count` (may be null) receives the number of bytes read.
    bool ReadAll(void* data, unsigned size, unsigned* count = nullptr);
    struct FailurePoints;
    enum class Found { Nothing, Record, OtherClass };

    bool HeadInWindow(RecordFormat::RecordHead& head) const;
    bool NextInWindow(int* uid, int* classId);
    void PassInWindow(const RecordFilter& filter);
    bool PassOver(unsigned size);
    Found Hunt(const FailurePoints& points, const RecordFilter* filter, int* uid, int* classId);
    Found Search(const FailurePoints& points, const RecordFilter* filter, int* uid, int* classId,
                 unsigned& frame, unsigned& damaged);
    unsigned long long StreamPosition() const;
    void NotePassedOver(const TZoPassedOver& stretch);
    void ReadOrThrow(void* data, unsigned size, const char* location);
    void TakePastEnd(void* value, unsigned size);
    [[noreturn]] void ThrowReadError(const char* location) const;
    bool ReadExtraBlock();
    void AddToDigest(std::uint32_t marker, unsigned size);
    void CheckDigest();
    unsigned char* Buffer();
    void UseBuffer(unsigned size);

    TBinHeader header;
    unsigned supportedVersion;
    bool ownsSource;
    bool hasHeader = false;

    unsigned crc = 0;
    int classId = 0;
    int uid = 0;
    unsigned key = 0;
    int currentUid = 0;
    unsigned long long skipped = 0;
    unsigned long long loaded = 0;
    unsigned trailing = 0;
    unsigned long long readSoFar = 0; // without a window
    TDVector<TZoPassedOver> passedOver;
    unsigned long readError = 0;
    unsigned systemError = 0;
    TZoPath path;

    const unsigned char* record = nullptr; // in `buffer` or in the window
    unsigned recordSize = 0;
    unsigned position = 0;
    unsigned char* buffer = nullptr; // DEFAULT_BUFFER_SIZE bytes, allocated on first use

    const unsigned char* windowBegin = nullptr;
    const unsigned char* windowCursor = nullptr;
    const unsigned char* windowEnd = nullptr;
    bool asksRead = false;
    bool checksDigest = false;
    std::uint32_t wantedDigest = 0;
    unsigned long long skippedBefore = 0; // the data of that digest
    std::unique_ptr<HeadDigest> digest;   // while one is checked

    ZoString scratch;
    std::unique_ptr<InstanceTables, EndInstances> instances;
};

} // namespace ZoPrimitives
