#pragma once

#include "ZoPrimitives/Export.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoString.h"
#include "ZoPrimitives/dvector.h"

namespace ZoPrimitives {

/// Why a reference to an object is null, or its entry is missing from a list.
enum class TReferenceLoss {
    Dropped,   ///< the file has the object, but it was not made
    Missing,   ///< the file has no object of that uid
    WrongType, ///< the object is none that the field takes
    NotRead    ///< only some classes were read, and the object is perhaps of another
};

/// What a field is in a file and in the application's class of the same name.
enum class TFieldFault {
    NotInClass, ///< the class has no such field: the file's values were passed over
    NotInFile,  ///< the file has no such field: what the constructor gave it stays
    OtherKind   ///< the kinds have different encodings: the file's values were passed over
};

/// Faults that an application does not accept, a bit each, for `SetStrict`.
enum TZoStrictness : unsigned {
    strictNothing = 0,
    strictDamage = 1,     ///< bytes passed over, records damaged or missing
    strictClasses = 2,    ///< objects that were not made, or as an ancestor's
    strictFields = 4,     ///< fields of the file that were passed over
    strictReferences = 8, ///< references and list entries that were lost; those to objects not read are not
    strictInvalid = 16,   ///< objects removed because they called themselves invalid
    strictEverything = 31
};

/// Bytes of a stream that were passed over.
struct TZoPassedOver {
    unsigned long long offset; ///< in the stream, from 0
    unsigned long long size;
    unsigned records; ///< among them, those that began as a record and did not verify

    bool operator==(const TZoPassedOver& other) const {
        return offset == other.offset && size == other.size && records == other.records;
    }
};

/// What a reader found in its data, and what of it did not come into the model.
class ZO_API TZoReadReport {
public:
    /// A class of the file whose objects did not all come in as they were: the application does not know it,
    /// or made none for them.
    struct LostClass {
        ZoString name;
        bool known;
        ZoString readAs;         ///< the ancestor that stands for an unknown one; empty: none
        unsigned long long read; ///< objects, as that ancestor's
        unsigned long long lost; ///< objects that were not made
        /// Objects that are saved again as they were (`TBinInStreamer::KeepUnknown`), made or not.
        unsigned long long kept = 0;

        bool operator==(const LostClass& other) const {
            return name == other.name && known == other.known && readAs == other.readAs &&
                   read == other.read && lost == other.lost && kept == other.kept;
        }
    };
    struct Field {
        ZoString className;
        ZoString name;
        TFieldFault fault;
        int fileKind;      ///< `TZoClassFieldType`; 0: none
        int classKind;     ///< the same
        bool kept = false; ///< the values passed over are saved again

        bool operator==(const Field& other) const {
            return className == other.className && name == other.name && fault == other.fault &&
                   fileKind == other.fileKind && classKind == other.classKind && kept == other.kept;
        }
    };
    /// The references of one field that were lost for one reason.
    struct Reference {
        ZoString className;
        ZoString field;
        TReferenceLoss why;
        unsigned long long count;

        bool operator==(const Reference& other) const {
            return className == other.className && field == other.field && why == other.why &&
                   count == other.count;
        }
    };
    /// Objects of one class that were removed again.
    struct Removed {
        ZoString className;
        unsigned long long invalid; ///< called themselves invalid
        unsigned long long owned;   ///< were owned by those alone

        bool operator==(const Removed& other) const {
            return className == other.className && invalid == other.invalid && owned == other.owned;
        }
    };

    TZoReadReport();
    TZoReadReport(const TZoReadReport&);
    TZoReadReport(TZoReadReport&&) noexcept;
    TZoReadReport& operator=(const TZoReadReport&);
    TZoReadReport& operator=(TZoReadReport&&) noexcept;
    ~TZoReadReport();

    /// What there is to tell, as `TZoStrictness` bits; fields that the file lacks are no fault, nor is what
    /// is kept.
    unsigned Faults() const;
    /// Nothing at all to tell.
    bool IsClean() const;
    /// One line for each thing told, in the current language, Windows-1252; empty when it is clean.
    ZoString Text() const;
    /// The same as one JSON object, in UTF-8.
    ZoString Json() const;

    unsigned long long expected = 0; ///< records, the schema's included, by the header; 0: not told
    unsigned long long read = 0;     ///< records, likewise
    bool partial = false;            ///< only some classes were asked for
    bool wrongDigest = false;        ///< the digest was checked, and the data is not what was written
    TDVector<TZoPassedOver> passedOver;
    TDVector<LostClass> lostClasses;
    TDVector<Field> fields;
    TDVector<Reference> references;
    TDVector<Removed> removed;
};

/// What was read has faults that the application does not accept; all of it was released. The message is the
/// report's text.
class ZO_API XRefusedData : public XReadStream {
public:
    XRefusedData(const TZoReadReport& report, const ZoString& location);
    XRefusedData(const XRefusedData&);
    XRefusedData& operator=(const XRefusedData&);
    ~XRefusedData() override;

    const TZoReadReport& Report() const { return report; }

private:
    TZoReadReport report;
};

} // namespace ZoPrimitives
