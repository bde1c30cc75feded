#pragma once

#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoFrames.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/ZoString.h"
#include "ZoPrimitives/dvector.h"

#include <memory>
#include <optional>
#include <string_view>

namespace ZoPrimitives {

struct RecordPlan;

/// A field's value in a record: a view, valid as long as its record.
///
/// Each reading fits some kinds of field; on others it fails an assertion, as an index out of range does.
/// Items count from 1. A map has two halves: 1 for its keys, 2 for its values.
class ZO_API TZoValue {
public:
    /// Of the file's schema.
    const TZoClassField& GetField() const { return *field; }
    TZoClassFieldType GetKind() const { return field->GetFieldType(); }
    /// The bytes of the value as they stand in the record.
    const unsigned char* GetBytes() const { return begin; }
    unsigned GetSize() const { return static_cast<unsigned>(end - begin); }

    int AsInt() const;
    unsigned AsUnsigned() const;
    bool AsBool() const;
    float AsFloat() const;
    double AsDouble() const;
    ZoString AsString() const;
    ZoBlob AsBlob() const;
    /// The bytes of a string (Windows-1252) or blob, not copied.
    std::string_view AsBytes() const;

    /// The items of a list, or of half a map; 1 for a single object.
    int NItems(int half = 1) const;
    int IntItem(int index) const;
    float FloatItem(int index) const;
    double DoubleItem(int index) const;
    ZoString StringItem(int index) const;
    /// The same, not copied. Taking strings in their order costs the same for each.
    std::string_view StringItemBytes(int index) const;
    /// The uid of the object that the field, or the item, refers to; 0: null.
    int Uid(int index = 1, int half = 1) const;
    /// Where that uid stands in the record: 4 bytes, not aligned.
    const unsigned char* UidBytes(int index = 1, int half = 1) const;
    /// Whether the field, or half the map, is a list; otherwise it holds one object or value.
    bool IsList(int half = 1) const;
    /// The application's integers that stand with a list, 0 to 2 of them.
    int NIntegers(int half = 1) const;
    int Integer(int index, int half = 1) const;

private:
    friend class TZoRecord;
    TZoValue(const TZoClassField& itsField, const signed char* integersOfHalves, const unsigned char* first,
             const unsigned char* last)
        : field(&itsField), integers{integersOfHalves[0], integersOfHalves[1]}, begin(first), end(last) {}
    const unsigned char* Half(int half) const;
    const unsigned char* Items(int half) const;
    const unsigned char* Item(int index, int half, unsigned size) const;

    const TZoClassField* field;
    signed char integers[2]; // of a list or of a map's halves; -1: a single object
    const unsigned char* begin;
    const unsigned char* end;
    mutable int latest = 0; // the string that was asked for last, and where it stands
    mutable const unsigned char* latestAt = nullptr;
};

enum class TZoRecordState {
    Whole,
    UnknownClass, ///< the schema has no class of that id
    UnknownKind,  ///< the class has fields of kinds that this library does not know
    NotConsumed,  ///< bytes are left behind the last value
    PastEnd       ///< a value reaches beyond the end; it and those behind it are not there
};

/// One object of a file: a view, valid until its reader's next `Next`, `Find` or `Read`.
class ZO_API TZoRecord {
public:
    int GetUid() const { return frame.uid; }
    int GetClassId() const { return frame.classId; }
    /// Of the file's schema; null if it has no such class.
    TZoClass* GetClass() const { return recordClass; }
    TZoRecordState GetState() const { return state; }
    /// Of the frame in the file; see `TZoFrame`.
    unsigned long long GetOffset() const { return frame.offset; }
    unsigned long long GetNumber() const { return frame.number; }
    const TZoFrame& GetFrame() const { return frame; }
    /// Of the payload.
    unsigned GetSize() const { return size; }
    const unsigned char* GetPayload() const { return payload; }

    /// The values that could be read, in the order of the record: those of inherited fields first. `index`
    /// counts from 1.
    int NValues() const { return count; }
    TZoValue Value(int index) const;
    /// The value of the field of that name; of several, that of the class itself comes before its parents'.
    std::optional<TZoValue> FindValue(std::string_view name) const;

private:
    friend class TZoRecordReader;
    TZoFrame frame;
    TZoClass* recordClass = nullptr;
    const RecordPlan* plan = nullptr;
    const unsigned char* payload = nullptr;
    unsigned size = 0;
    TZoRecordState state = TZoRecordState::UnknownClass;
    int count = 0;
};

/// Reads the objects of any file by the file's own schema: no class of an application is needed.
///
/// A file does not tell whether a list stands with integers of the application's, nor whether the halves of a
/// map are lists. If the schema has such fields, the reader first looks through the file and finds, for each
/// class, the reading under which its records are consumed exactly, that refers to objects that exist, and
/// that is the plainest. Records of the class that do not fit it say so (`TZoRecord::GetState`).
///
/// The file is never loaded as a whole; a pass allocates nothing for a record.
class ZO_API TZoRecordReader {
public:
    /// A field of which the records do not tell how it stands in them; it is read in the plainest way.
    struct Undecided {
        const TZoClass* recordClass; ///< of the records
        const TZoClassField* field;  ///< its own, or inherited

        bool operator==(const Undecided& other) const {
            return recordClass == other.recordClass && field == other.field;
        }
    };

    /// The bytes must outlive the reader. Throws `XReadStream` "Header de arquivo inválido" when they do not
    /// begin as a file of this format does, and "Metadado corrompido" or "Metadado inválido" when no schema
    /// can be read.
    explicit TZoRecordReader(TZoBytes& bytes);
    explicit TZoRecordReader(const TZoPath& path);
    /// Reads with the schema of another file, whatever the header and the schema of this one are.
    TZoRecordReader(TZoBytes& bytes, std::shared_ptr<TZoMetaData> schema);
    ~TZoRecordReader();
    TZoRecordReader(const TZoRecordReader&) = delete;
    TZoRecordReader& operator=(const TZoRecordReader&) = delete;

    /// The schema in the payload of a schema record; null if it contradicts itself.
    static std::shared_ptr<TZoMetaData> ReadSchema(const void* payload, unsigned size);
    /// Whether the class and its ancestors have fields of known kinds alone; others hide how the rest of a
    /// record stands.
    static bool KnowsAllKinds(const TZoClass& of);
    const TZoMetaData& GetSchema() const;
    std::shared_ptr<TZoMetaData> ShareSchema() const;
    /// The frame that holds the schema; its number is 0 if the schema is another file's.
    const TZoFrame& GetSchemaFrame() const;
    /// What the records do not tell; looks through the file if that has not been done.
    const TDVector<Undecided>& GetUndecided();

    /// The next object, in file order; false at the end. Frames whose payload is not whole are passed over,
    /// as is the schema. Throws `XReadStream` when the device fails.
    bool Next(TZoRecord& record);
    /// Begins anew.
    void Restart();
    /// The object of that uid, wherever the pass is; the last one in the file if there are several. Keeps an
    /// index of 16 bytes an object, built at first use from the heads of the records.
    bool Find(int uid, TZoRecord& record);
    /// Takes the frame for an object: for those who read frames themselves. False if its payload is not
    /// whole.
    bool Read(const TZoFrame& frame, const unsigned char* payload, unsigned size, TZoRecord& record);
    /// The class of the object of that uid; null if there is no such object, or its class is unknown. Uses
    /// the index.
    TZoClass* ClassOf(int uid);
    /// Objects in the index: frames that are whole as far as their heads tell.
    unsigned long long NObjects();

    /// What is between the records and of those that are damaged. Moving it moves the pass.
    TZoFrameReader& GetFrames();

private:
    class Body;
    std::unique_ptr<Body> body;
};

} // namespace ZoPrimitives
