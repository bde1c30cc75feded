#pragma once

#include "Persistence/instances/KeptParts.h"
#include "Persistence/schema/MergedSchema.h"
#include "Persistence/schema/ValuePasser.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <algorithm>

namespace ZoPrimitives {

/// Stands for an object that was not made, in the references that are kept. Its part has all that its record
/// held.
class KeptObject final : public ZoStreamableBase {
public:
    /// A class without fields, for walks.
    static TZoClass& Class();
    ZoString StreamableClassName() const override;
    TZoClass* GetOriginalClass(TZoMetaData*) const override { return &Class(); }
};

/// The opened files of which the objects of a walk have kept parts, each once.
class FoundKeptFiles {
public:
    void Add(const ZoStreamableBase& object) {
        const KeptPart* part = KeptParts::Find(object);
        if (part != nullptr && std::find(files.begin(), files.end(), part->file) == files.end())
            files.push_back(part->file);
    }
    const MergedSchema::Files& All() const { return files; }

private:
    MergedSchema::Files files;
};

/// What the kept parts of objects refer to.
class KeptReferences {
public:
    /// Calls `action(field, uid)` for each uid other than 0 among the part's values and references; the field
    /// is the file's.
    template <class Action>
    static void ForEachUid(const KeptPart& part, const Action& action) {
        const unsigned char* at = part.bytes.data();
        for (const KeptPart::Value& value : part.values) {
            const unsigned char* end = part.bytes.data() + value.end;
            ForEachUid(part, value, at, action);
            at = end;
        }
        for (const KeptPart::Reference& reference : part.references) {
            for (const int uid : {reference.uid, reference.valueUid}) {
                if (uid != 0) action(*reference.field, uid);
            }
        }
    }
    /// Whether the field's objects get records because of it.
    static bool Saves(const TZoClassField& field) {
        return FieldKindOf(field.GetFieldType()).holds != FieldHold::Other;
    }
    /// Applies the action to the objects that are saved because the object's part refers to them.
    static void ForEachSaved(ZoStreamableBase& object, const TZoMetaData& application,
                             ZoStreamableBaseFunctor& action);
    /// Whether the application has set the reference itself meanwhile; it counts, then.
    static bool IsOverruled(const KeptPart::Reference& reference, ZoStreamableBase& object,
                            const TZoMetaData& application);

private:
    template <class Action>
    static void ForEachUid(const KeptPart& part, const KeptPart::Value& value, const unsigned char* at,
                           const Action& action) {
        const TZoClassFieldType kind = value.field->GetFieldType();
        if (FieldKindOf(kind).holds == FieldHold::Nothing) return;
        const auto each = [&](int, const unsigned char* uids, int count) {
            for (int i = 0; i < (count < 0 ? 1 : count); ++i) {
                const int uid = ValuePasser::IntAt(uids + 4 * i);
                if (uid != 0) action(*value.field, uid);
            }
        };
        ValuePasser(at, part.bytes.data() + value.end).Pass(kind, value.layout, each);
    }
};

} // namespace ZoPrimitives
