#pragma once

#include "ZoPrimitives/FileReading.h"
#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/TZoPath.h"
#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoClassField.h"
#include "ZoPrimitives/ZoProgress.h"
#include "ZoPrimitives/ZoReadReport.h"
#include "ZoPrimitives/dvector.h"

#include <typeinfo>

namespace ZoPrimitives {

class TZoMetaData;

/// How a model is opened.
struct TZoOpening {
    unsigned version = 0xFFFFFFFFu; ///< the newest version that the application reads
    /// How a file is shared while it is read. It is closed afterwards.
    TFileReading reading = TFileReading::Locking;
    bool severalRoots = false; ///< the data may hold more than one root, each of the type asked for
    /// `TZoStrictness` bits: what the data must not have. Without `strictDamage` what is left of damaged data
    /// is opened. The result's report tells of everything else.
    unsigned strict = strictDamage;
    pointer<TZoProgress> progress{}; ///< hears how far it is, and may cancel; null for none
    bool keepUnknown = false;        ///< what the application does not know is saved again (`KeepUnknown`)
};

/// All objects that one call has opened. Those that no other object owns live as long as the result.
class ZO_API TZoOpenedObjects {
public:
    TZoOpenedObjects();
    TZoOpenedObjects(const TZoOpenedObjects&);
    TZoOpenedObjects(TZoOpenedObjects&&) noexcept;
    TZoOpenedObjects& operator=(const TZoOpenedObjects&);
    TZoOpenedObjects& operator=(TZoOpenedObjects&&) noexcept;
    ~TZoOpenedObjects();

    /// In record order, the first root first. Objects that are members of others are not among them.
    const TIVector<ZoStreamableBase>& GetObjects() const { return objects; }
    unsigned GetVersion() const { return version; }
    unsigned GetRelease() const { return release; }
    /// What was found, and what of it did not come into the model.
    const TZoReadReport& Report() const { return report; }

private:
    friend class Opening;
    TIVector<ZoStreamableBase> objects;
    unsigned version = 0;
    unsigned release = 0;
    TZoReadReport report;
};

/// What the functions below ask of a root. The library calls `test` for the objects that it finds.
struct TZoRootType {
    const std::type_info& type;
    TZoTypeTest test;
};

/// Opened objects and their root of class `Root`.
template <class Root>
class TZoOpened : public TZoOpenedObjects {
public:
    /// Never null.
    const pointer<Root>& GetRoot() const { return roots[1]; }
    Root* operator->() const { return roots[1].get(); }
    Root& operator*() const { return *roots[1]; }
    /// All roots; one, unless more were asked for.
    const TIVector<Root>& GetRoots() const { return roots; }

    static TZoRootType RootType() {
        return {typeid(Root),
                [](const ZoStreamableBase* object) { return dynamic_cast<const Root*>(object) != nullptr; }};
    }
    void TakeRoots(const TDVector<ZoStreamableBase*>& found) {
        for (ZoStreamableBase* root : found) roots.Add(dynamic_cast<Root*>(root));
    }

private:
    TIVector<Root> roots;
};

// Each fills `opened`, which is empty, and returns the roots.
ZO_API TDVector<ZoStreamableBase*> ZoOpenObjects(TZoOpenedObjects& opened, const TZoRootType& rootType,
                                                 const TZoPath& path, TZoMetaData* schema,
                                                 const TZoOpening& how);
ZO_API TDVector<ZoStreamableBase*> ZoOpenObjects(TZoOpenedObjects& opened, const TZoRootType& rootType,
                                                 const void* block, unsigned long long size,
                                                 TZoMetaData* schema, const TZoOpening& how);
ZO_API TDVector<ZoStreamableBase*> ZoOpenClipboardObjects(TZoOpenedObjects& opened,
                                                          const TZoRootType& rootType, TZoMetaData* schema,
                                                          const TZoOpening& how);

/// Opens a file that `ZoSave` or a `TBinOutStreamer` wrote and returns its objects, the root as a `Root`.
///
/// Checks the schema as `ZoSave` does. Throws, with nothing leaked, what `TFileBinInStream` and
/// `TBinInStreamer` throw; `XRefusedData` when the file has faults that are not accepted, damaged or missing
/// parts unless told otherwise; and `XInvalidRoot` when the file holds no objects, a root of another class,
/// or more roots than the call asks for. A root is an object that no other object owns and no external
/// reference names; if some objects of the file could not be made, what they owned does not count.
template <class Root>
TZoOpened<Root> ZoOpen(const TZoPath& path, TZoMetaData* schema, const TZoOpening& how = {}) {
    TZoOpened<Root> opened;
    opened.TakeRoots(ZoOpenObjects(opened, opened.RootType(), path, schema, how));
    return opened;
}

/// The same from memory, where `ZoSaveInMemory` or a `TMemoryBinOutStream` left it. The block is not needed
/// any more afterwards.
template <class Root>
TZoOpened<Root> ZoOpenFromMemory(const void* block, unsigned long long size, TZoMetaData* schema,
                                 const TZoOpening& how = {}) {
    TZoOpened<Root> opened;
    opened.TakeRoots(ZoOpenObjects(opened, opened.RootType(), block, size, schema, how));
    return opened;
}
template <class Root>
TZoOpened<Root> ZoOpenFromMemory(const ZoBlob& block, TZoMetaData* schema, const TZoOpening& how = {}) {
    return ZoOpenFromMemory<Root>(block.Data(), block.Size(), schema, how);
}

/// The same from the clipboard.
template <class Root>
TZoOpened<Root> ZoOpenFromClipboard(TZoMetaData* schema, const TZoOpening& how = {}) {
    TZoOpened<Root> opened;
    opened.TakeRoots(ZoOpenClipboardObjects(opened, opened.RootType(), schema, how));
    return opened;
}

} // namespace ZoPrimitives
