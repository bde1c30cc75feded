#pragma once

#include "Persistence/instances/KeptParts.h"
#include "Persistence/objects/KeptObject.h"
#include "ZoPrimitives/pointer.h"

#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace ZoPrimitives {

class TBinInStream;
struct TBinUnresolved;

/// Gathers what one reading does not know, and gives it to the objects that it belongs to.
class KeptReader {
public:
    /// The schema is the file's, linked to the application's.
    KeptReader(TBinInStream& stream, std::shared_ptr<const TZoMetaData> fileSchema, TZoMetaData& application);
    ~KeptReader();

    // For each record, in this order:
    /// Throws `XCannotKeep` if a reader would misunderstand the current record. `readAs`: the file's class as
    /// whose object it is read; null: no object is made.
    void Check(TZoClass& fileClass, TZoClass* readAs);
    /// No object was made of the record.
    void TakeObject(TZoClass& fileClass, int uid);
    /// An object was made, which has had its fields and hooks.
    void TakeFields(TZoClass& fileClass, TZoClass& readAs, int uid);

    /// Ends the records. Throws `XCannotKeep` if not all of it can be kept.
    void EndRecords();
    /// Takes the references of an object that its fields could not.
    void TakeReferences(const TBinUnresolved& waits, const std::int32_t* uids);
    /// Gives the parts to their objects, while the stream still knows these by uid.
    void Attach(int rootUid);
    /// Takes all parts back, while no object ends because it is let go of.
    void Discard() noexcept;

private:
    struct Plan;
    struct Pending {
        const TZoClass* application = nullptr; // the object's; null: none was made
        std::unique_ptr<KeptPart> part;
        pointer<KeptObject> object; // if none was made
    };
    struct List;
    using Uids = std::vector<int>;

    Plan& PlanOf(TZoClass& fileClass, TZoClass* readAs);
    std::unique_ptr<Plan> MakePlan(TZoClass& fileClass, TZoClass* readAs) const;
    void ForgetHandled();
    bool MayMean(const TZoClassField& field, int uid) const;
    Pending& Begin(int uid, const TZoClass* application, const TZoClass* recordClass);
    KeptPart& PartOf(int uid, const TZoClass* application, const TZoClass* recordClass);
    void TakeValues(Plan& plan, const TZoClass& fileClass, KeptPart& part);
    bool IsLost(const TZoClassFieldPointerBase& field, int uid) const;
    void TakeItems(const TBinUnresolved& waits, KeptPart::Reference reference, const List& keys,
                   const List* values);
    ZoStreamableBase* ObjectOf(int uid) const;
    KeptPart& RootPart(int rootUid, int unowned);
    void FillFile(Uids uids);
    void DropUnheld();
    void Hold(int uid, int owner, KeptPart& part);
    void HoldChildren(int owner, KeptPart& part);

    TBinInStream& stream;
    TZoMetaData& application;
    std::shared_ptr<KeptFile> file;
    std::map<std::pair<const TZoClass*, const TZoClass*>, std::unique_ptr<Plan>>
        plans; // by class and `readAs`
    std::pair<const TZoClass*, const TZoClass*> latest{};
    Plan* latestPlan = nullptr;
    std::map<int, Pending> pending; // by uid
    bool hasOpenLayouts;            // the file has fields whose layouts only records tell
    std::vector<std::pair<int, const TZoClass*>> recordClasses; // then: of all records, by uid at their end
};

} // namespace ZoPrimitives
