#pragma once

#include "faults.h"

#include "ZoPrimitives/BinOutStream.h"
#include "ZoPrimitives/ZoRecords.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ZoTool {

/// Takes from a damaged file what can be had, for a new one: the records whose checksum is right and that
/// agree with the schema and with each other. Its memory is some 40 bytes an object.
class Salvage {
public:
    /// Each loss is told, and what is mended: a `Fault` whose place is that in the source.
    using Tell = std::function<void(const Fault&)>;
    /// `good`: a file whose schema is used; null: the source's own.
    Salvage(ZoPrimitives::TZoBytes& itsSource, ZoPrimitives::TZoBytes* itsGood, Tell teller)
        : source(itsSource), good(itsGood), tell(std::move(teller)) {}

    /// Finds what can be had. Returns the number of objects. Throws `Trouble` if there is no schema.
    std::size_t Choose();
    /// Writes it to a stream that has been initialized, and tells of references that become null. Returns
    /// their number.
    unsigned long long Write(ZoPrimitives::TBinOutStream& target);

    /// What the new file's header has to say.
    unsigned Version() const { return version; }
    unsigned Release() const { return release; }
    /// Whether records of the source are scrambled.
    bool IsScrambled() const { return isScrambled; }
    std::size_t Losses() const { return losses; }

private:
    enum Flag : unsigned char {
        Lost = 1,
        Referred = 2,    ///< to by others
        Fitting = 4,     ///< to by one at least whose field wants such objects
        BesideLast = 8,  ///< its uid follows that of the record before
        BesideNext = 16, ///< the uid of the record behind follows its own
        AboveLast = 32,  ///< its uid is above that of the last one before that is beside another
        BelowNext = 64   ///< and below that of the next one
    };
    /// A record whose payload is whole.
    struct Found {
        unsigned long long offset;
        unsigned long long number;
        int uid;
        int classId;
        unsigned char flags;
        bool Has(Flag flag) const { return (flags & flag) != 0; }
        bool IsBeside() const { return Has(BesideLast) || Has(BesideNext); }
        bool IsInOrder() const { return Has(AboveLast) && Has(BelowNext); }
        void Set(Flag flag) { flags = static_cast<unsigned char>(flags | flag); }
    };

    void Lose(Fault loss);
    void Lose(Found& found, FaultKind kind, std::string text);
    void TakeHeader(ZoPrimitives::TZoFrameReader& frames);
    void TakeFrames();
    bool TakeSchema(const ZoPrimitives::TZoFrame& frame, const unsigned char* payload, unsigned size);
    void BorrowSchema();
    void LoseInnerFile(std::size_t first);
    void LoseInnerFiles();
    void PutInOrder();
    void Index();
    void CheckRecords();
    void CheckReferences(const ZoPrimitives::TZoRecord& record);
    void ChooseAmongSameUids();
    void LoseStrangers();
    std::vector<std::uint32_t>::const_iterator FirstOf(int uid) const;
    const Found* Kept(int uid) const;
    std::string WhyNull(const ZoPrimitives::TZoClassField& field, int uid) const;
    template <class Action>
    void ForEachRecord(const Action& action);
    template <class Action>
    void ForEachReference(const ZoPrimitives::TZoRecord& record, const Action& action) const;
    std::string NameOf(int classId) const;

    ZoPrimitives::TZoBytes& source;
    ZoPrimitives::TZoBytes* good;
    Tell tell;
    std::size_t losses = 0;
    unsigned version = 0;
    unsigned release = 0;
    bool isScrambled = false;
    bool isAsWritten = false; // the digest is right: all heads are
    std::vector<unsigned char> schemaPayload;
    std::shared_ptr<ZoPrimitives::TZoMetaData> schema;
    unsigned long long schemaOffset = 0; // 0: of another file
    std::unique_ptr<ZoPrimitives::TZoRecordReader> records;
    std::vector<Found> found;         // in file order
    std::vector<std::uint32_t> byUid; // of those not lost
    std::set<std::pair<const ZoPrimitives::TZoClass*, const ZoPrimitives::TZoClassField*>> undecided;
};

} // namespace ZoTool
