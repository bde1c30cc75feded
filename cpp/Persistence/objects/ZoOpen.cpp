#include "ZoPrimitives/ZoOpen.h"

#include "Persistence/instances/ClassNames.h"
#include "Persistence/instances/InstanceTables.h"
#include "Persistence/objects/GraphWalk.h"
#include "Persistence/objects/KeptObject.h"
#include "Persistence/records/NamingFile.h"
#include "Persistence/schema/RecordOrder.h"
#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/ClipboardBinInStream.h"
#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/MemoryBinInStream.h"
#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/XStream.h"

#include <unordered_set>

namespace ZoPrimitives {

namespace {

constexpr const char* OPEN = "ZoOpen";

/// Takes out of `candidates` what an object among `objects` owns or names as external, or a member of one.
void LeaveUnowned(std::unordered_set<const ZoStreamableBase*>& candidates,
                  const TDVector<ZoStreamableBase*>& objects, TZoMetaData* schema) {
    TDVector<ZoStreamableBase*> owners = objects;
    std::unordered_set<const ZoStreamableBase*> known(objects.begin(), objects.end());
    ZoItemAction own([&](ZoStreamableBase* item) {
        candidates.erase(item);
        if (item != nullptr && known.insert(item).second) owners.Add(item);
    });
    ZoItemAction name([&](ZoStreamableBase* item) { candidates.erase(item); });
    for (unsigned long long i = 1; i <= owners.NItems() && !candidates.empty(); ++i) {
        TZoClass* ownerClass = owners[i]->GetOriginalClass(schema);
        if (ownerClass == nullptr) continue;
        ownerClass->ChildsReferences(owners[i], own);
        KeptReferences::ForEachSaved(*owners[i], *schema, own);
        RecordOrder::ForEachLevel(*ownerClass,
                                  [&](const TZoClass& level) { ForEachExternal(level, owners[i], name); });
    }
}

[[noreturn]] void ThrowInvalid(const ZoString& message) { throw XInvalidRoot(message, OPEN); }

} // namespace

/// Reads one stream for one call.
class Opening {
public:
    Opening(TBinInStream& openStream, TZoMetaData* applicationSchema, const TZoRootType& wantedType,
            const TZoOpening& options)
        : stream(openStream), schema(applicationSchema), rootType(wantedType), how(options),
          streamer(&stream, schema) {
        streamer.SetProgress(how.progress);
        streamer.acceptsDamage = true; // until the report is looked at
        streamer.KeepUnknown(how.keepUnknown);
    }

    TDVector<ZoStreamableBase*> Run(TZoOpenedObjects& opened) {
        try {
            NamingFile(stream, [&] {
                streamer.ReadObjects();
                opened.report = streamer.Report();
                if ((opened.report.Faults() & how.strict) != 0) throw XRefusedData(opened.report, OPEN);
                FindRoots();
            });
            opened.version = stream.GetVersion();
            opened.release = stream.GetRelease();
            stream.TakeObjects(&opened.objects);
        } catch (...) {
            streamer.ReleaseObjects();
            throw;
        }
        return roots;
    }

private:
    void FindRoots() {
        if (streamer.GetRootUid() == 0) ThrowInvalid(Translated("O arquivo não contém objetos"));
        ZoStreamableBase* first = stream.GetInstance(streamer.GetRootUid());
        if (first == nullptr) ThrowInvalid(Translated("O objeto principal do arquivo não pôde ser lido"));
        roots.Add(first);
        // What belonged to an object that was dropped, or read as an ancestor's, cannot be told from a root.
        const bool whole = streamer.GetDropped() == 0 && streamer.unknown.NItems() == 0;
        if (how.severalRoots || whole) AddFurtherRoots(first, whole);
        if (roots.NItems() != 1 && !how.severalRoots)
            ThrowInvalid(Translated("O arquivo contém mais de um objeto principal"));
        for (const ZoStreamableBase* root : roots) CheckType(*root);
    }

    /// Most objects are held by their owners' `pointer`s: only the others are looked for.
    void AddFurtherRoots(const ZoStreamableBase* first, bool ofAnyType) {
        std::unordered_set<const ZoStreamableBase*> candidates;
        for (const ZoStreamableBase* object : stream.Objects()) {
            if (ZoReferenceCount::Count(object) == 0 && object != first) candidates.insert(object);
        }
        // What a field owns or refers to that the application's class does not have is no root.
        for (const int uid : InstanceTables::Of(stream).passedUids) {
            if (candidates.empty()) return;
            candidates.erase(stream.GetInstance(uid));
        }
        if (candidates.empty()) return;
        LeaveUnowned(candidates, stream.Objects(), schema);
        for (ZoStreamableBase* object : stream.Objects()) {
            if (candidates.count(object) != 0 && (ofAnyType || rootType.test(object))) roots.Add(object);
        }
    }

    void CheckType(const ZoStreamableBase& root) const {
        if (rootType.test(&root)) return;
        const ZoString found = PlainClassName(ClassText(typeid(root)));
        const ZoString wanted = PlainClassName(ClassText(rootType.type));
        ThrowInvalid(Translated("O objeto principal do arquivo é de outra classe") +
                     ZoString::FormatString(": %s (%s)", found.c_str(), wanted.c_str()));
    }

    TBinInStream& stream;
    TZoMetaData* schema;
    const TZoRootType& rootType;
    const TZoOpening& how;
    TBinInStreamer streamer;
    TDVector<ZoStreamableBase*> roots;
};

TZoOpenedObjects::TZoOpenedObjects() = default;
TZoOpenedObjects::TZoOpenedObjects(const TZoOpenedObjects&) = default;
TZoOpenedObjects::TZoOpenedObjects(TZoOpenedObjects&&) noexcept = default;
TZoOpenedObjects& TZoOpenedObjects::operator=(const TZoOpenedObjects&) = default;
TZoOpenedObjects& TZoOpenedObjects::operator=(TZoOpenedObjects&&) noexcept = default;
TZoOpenedObjects::~TZoOpenedObjects() = default;

TDVector<ZoStreamableBase*> ZoOpenObjects(TZoOpenedObjects& opened, const TZoRootType& rootType,
                                          const TZoPath& path, TZoMetaData* schema, const TZoOpening& how) {
    schema->CheckChangesOrThrow();
    TFileBinInStream file(path, how.reading, how.version);
    file.SetChecksDigest(true);
    file.Initialize();
    return Opening(file, schema, rootType, how).Run(opened);
}

TDVector<ZoStreamableBase*> ZoOpenObjects(TZoOpenedObjects& opened, const TZoRootType& rootType,
                                          const void* block, unsigned long long size, TZoMetaData* schema,
                                          const TZoOpening& how) {
    schema->CheckChangesOrThrow();
    TMemoryBinInStream memory(block, size, how.version);
    memory.SetChecksDigest(true);
    memory.Initialize();
    return Opening(memory, schema, rootType, how).Run(opened);
}

TDVector<ZoStreamableBase*> ZoOpenClipboardObjects(TZoOpenedObjects& opened, const TZoRootType& rootType,
                                                   TZoMetaData* schema, const TZoOpening& how) {
    schema->CheckChangesOrThrow();
    TClipboardBinInStream clipboard(how.version);
    clipboard.SetChecksDigest(true);
    clipboard.Initialize();
    return Opening(clipboard, schema, rootType, how).Run(opened);
}

} // namespace ZoPrimitives
