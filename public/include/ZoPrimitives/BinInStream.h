#pragma once

#include "ZoPrimitives/BinHeader.h"
#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/ZoObject.h"
#include "ZoPrimitives/ZoString.h"
#include "ZoPrimitives/dvector.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>

namespace ZoPrimitives {

class InstanceTables;
struct TBinUnresolved;
class ZoBlob;
class ZoStreamableBase;
class TZoClass;
class TZoClassField;
class TZoMetaData;
namespace RecordFormat {
struct RecordHead;
}

/// Abstract reader of the binary record format: delivers one verified record at a time, from which values are
/// taken with `operator>>`, and hunts over damaged bytes for the next record.
///
/// A source of one's own supplies `Read`. A stream belongs to one thread.
class ZO_API TBinInStream : public ZoObject {
public:
    /// Data written by a version above `supportedVersion` is refused. `ownsSource` tells whether what the
    /// stream was given (a file handle, a block) goes with it; a source that opens its own data always closes
    /// it.
    TBinInStream(unsigned supportedVersion, bool ownsSource);
    /// Copies the header's values and the current record, not the objects' tables and not the source.
    TBinInStream(const TBinInStream& other);
    TBinInStream& operator=(const TBinInStream& other);
    ~TBinInStream() override;

    using ZoObject::operator==;
    using ZoObject::operator!=;
    /// Whether header values and the current record are the same.
    bool operator==(const TBinInStream& other) const;
    bool operator!=(const TBinInStream& other) const { return !(*this == other); }

    // Values come from the current record. A string or blob that reaches past the record's end throws
    // `XReadStream` "Tamanho de registro corrompido". A value of fixed size past the end is defined but
    // unspecified, and throws the same past `DEFAULT_BUFFER_SIZE`.
    virtual TBinInStream& operator>>(ZoBlob& value);
    virtual TBinInStream& operator>>(ZoString& value);
    /// The caller's storage must hold the string's bytes and a terminator: nothing here knows its size.
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
    /// Checks the header, whose bytes are the current record. False when it is none of this format's; throws
    /// `XNewerVersion` when it is above the supported version.
    virtual bool LoadHeader();
    /// Reads raw bytes. `done` tells how many came; true when all of `size` were read, or for some sources
    /// when any were.
    virtual bool Read(void* data, unsigned size, unsigned& done) = 0;

public:
    /// Loads the next good record; false at the end of the data. Bytes that are no record, and records whose
    /// sum is wrong, are passed over; 65,535 rounds of that without a good record throw `XReadStream`
    /// "Arquivo corrompido". A record that ends before its head says throws `XReadStream` with the error's
    /// text: "No error" when the data just ended, "Input/output error" when the device failed.
    bool LoadRecord(int* uid, int* classId);
    /// Loads the next good record of the classes asked for: `ids`, `idCount` of them, rising. Records of
    /// other classes, and of classes that `schema` does not hold (null: any), are passed over by their heads
    /// alone, whatever their contents and sums. Otherwise as `LoadRecord`; of the failure points #6 is a
    /// record passed over that is not whole, #7 one asked for.
    bool LoadFilteredRecord(TZoMetaData* schema, const int* ids, int* classId, int* uid, int idCount);

    /// The handle of the file that the stream reads; null where there is none.
    virtual void* GetFile() const;

    unsigned GetVersion() const { return header.version; }
    unsigned GetRelease() const { return header.release; }
    /// The record count that the header holds.
    unsigned GetNInstances() const { return header.recordCount; }
    /// The uid of the current record.
    int GetCurrentUID() const { return currentUid; }
    /// Bytes passed over so far while looking for records.
    unsigned long long GetSkipped() const { return skipped; }
    bool GetOwnsSource() const { return ownsSource; }

    /// Bytes of the current record, and how many of them are not yet read.
    unsigned GetRecordSize() const { return recordSize; }
    unsigned GetRemaining() const { return position < recordSize ? recordSize - position : 0; }
    unsigned GetRecordPosition() const { return position; }
    void SetRecordPosition(unsigned newPosition);

    // The objects read from this stream, in the order of their records. They are not owned here.
    void AddInstance(ZoStreamableBase* object);
    /// The object read under a uid; null for none.
    ZoStreamableBase* GetInstance(int uid) const;
    const TDVector<ZoStreamableBase*>& Objects() const;
    /// The object read first, which is the root of what was saved; null when nothing was read.
    ZoStreamableBase* FirstObject() const;
    /// The first object of the class of that name; null for none.
    ZoStreamableBase* FindFirstObject(const ZoString& className) const;
    /// Appends all objects read.
    void FillObjects(TDVector<ZoStreamableBase*>* list) const;
    /// Gives all objects read to `list`, which holds them from then on, also those that hang from nothing;
    /// the stream forgets them.
    void TakeObjects(TIVector<ZoStreamableBase>* list);
    /// Takes objects out of the list of those read, without deleting them.
    void RemoveInstances(const TDVector<ZoStreamableBase*>& list);

    // Handles: uid to object, while pointers wait to be resolved.
    void SetHandle(ZoStreamableBase* object, int uid);
    /// Null for a uid without object.
    ZoStreamableBase* GetHandle(int uid) const;
    void ResetHandles();

    // Pointers that wait to be resolved: one entry for each object read.
    /// Opens an entry; `fileClass` is the file's class under which the record is read.
    void AddUnresolved(ZoStreamableBase* object, int uid, TZoClass* fileClass);
    /// The entry of the object read under a uid; null for none.
    const TBinUnresolved* GetUnresolved(int uid) const;

    // Fields of the current record that its class does not have, each with its place in the record.
    void AddExcludedField(TZoClassField* field, unsigned recordPosition);
    void RemoveExcludedField(TZoClassField* field);
    /// The first one left, with the stream at its value; null when none is left.
    TZoClassField* GetFirstExcludedField();
    void ClearExcludedFields();

    /// Takes a value of fixed size; as `operator>>`, without the virtual call.
    template <class T>
    void Take(T& value) {
        if (position <= recordSize && recordSize - position >= sizeof(T)) {
            std::memcpy(&value, record + position, sizeof(T));
            position += static_cast<unsigned>(sizeof(T));
        } else {
            TakePastEnd(&value, sizeof(T));
        }
    }
    // What the `operator>>`s of this class do, without the virtual call.
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
    /// Whether `operator>>` is this library's own for all types, so that `Get` may stand for it.
    virtual bool GetsDirectly() const;
    /// Takes the bytes of a string or blob without copying them: valid until the next record. The same checks
    /// as `operator>>`; `location` names the operation in the exception.
    const unsigned char* TakeBlock(unsigned& size, const char* location);
    /// A string to read into whose buffer is kept.
    ZoString& ScratchString() { return scratch; }
    /// Makes room for as many objects as the header counts, where the data that is left could hold them.
    void ReserveInstances();
    /// Forgets all objects read and everything about them, without deleting any.
    void ForgetInstances() noexcept;

protected:
    static unsigned GetSecurityKey(unsigned stored);
    static void ApplySecurityKey(unsigned key, unsigned char* data, unsigned size);

    /// Data that lies in memory as a whole: records are then used where they lie, without `Read`. Null for
    /// none.
    void SetWindow(const unsigned char* begin, const unsigned char* end);
    bool HasWindow() const { return windowBegin != nullptr; }
    /// Has records read with `Read` although there is a window: for a class whose `Read` may be overridden.
    void SetAsksRead(bool asks) { asksRead = asks; }
    unsigned long long WindowPosition() const {
        return static_cast<unsigned long long>(windowCursor - windowBegin);
    }
    unsigned long long WindowSize() const { return static_cast<unsigned long long>(windowEnd - windowBegin); }
    void SetWindowPosition(unsigned long long offset) { windowCursor = windowBegin + offset; }
    /// `Read` from the window.
    bool ReadWindow(void* data, unsigned size, unsigned& done);

    /// Reads the header's bytes and checks them. Throws `XReadStream` with the error's text and `location`
    /// when they cannot be read, "Header de arquivo inválido" when they are none, and `XNewerVersion`.
    void ReadHeader(const char* location);
    /// The device's error behind a `Read` that fails, from within it; not called: the data ended.
    void SetReadError(unsigned long error) { readError = error; }

private:
    friend class ReadCursor;
    friend class InstanceTables;
    struct EndInstances {
        void operator()(InstanceTables* ended) const noexcept;
    };
    static InstanceTables* NewInstances();

    bool TakesFromWindow() const { return HasWindow() && !asksRead; }
    bool ReadAll(void* data, unsigned size);
    struct FailurePoints;
    class ClassFilter;
    enum class Found { Nothing, Record, OtherClass };

    bool HeadInWindow(RecordFormat::RecordHead& head) const;
    bool NextInWindow(int* uid, int* classId);
    void PassInWindow(const ClassFilter& filter);
    bool PassOver(unsigned size);
    Found Hunt(const FailurePoints& points, const ClassFilter* filter, int* uid, int* classId);
    void ReadOrThrow(void* data, unsigned size, const char* location);
    void TakePastEnd(void* value, unsigned size);
    [[noreturn]] void ThrowReadError(const char* location) const;
    unsigned char* Buffer();
    void UseBuffer(unsigned size);

    TBinHeader header;
    unsigned supportedVersion;
    bool ownsSource;

    unsigned crc = 0;
    int classId = 0;
    int uid = 0;
    unsigned key = 0;
    int currentUid = 0;
    unsigned long long skipped = 0;
    unsigned long readError = 0;

    const unsigned char* record = nullptr; // in `buffer` or in the window
    unsigned recordSize = 0;
    unsigned position = 0;
    unsigned char* buffer = nullptr; // DEFAULT_BUFFER_SIZE bytes, from the first record that needs it

    const unsigned char* windowBegin = nullptr;
    const unsigned char* windowCursor = nullptr;
    const unsigned char* windowEnd = nullptr;
    bool asksRead = false;

    ZoString scratch;
    std::unique_ptr<InstanceTables, EndInstances> instances;
};

} // namespace ZoPrimitives
