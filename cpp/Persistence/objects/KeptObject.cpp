#include "Persistence/objects/KeptObject.h"

#include "Persistence/instances/ClassNames.h"
#include "Persistence/schema/RecordOrder.h"

namespace ZoPrimitives {

TZoClass& KeptObject::Class() {
    static TZoClass* none = [] { // outlives every object
        auto* made = new TZoClass(nullptr, nullptr, "KeptObject", nullptr, false, nullptr);
        made->SetType(typeid(KeptObject), 0);
        made->SetHooks(0);
        return made;
    }();
    return *none;
}

ZoString KeptObject::StreamableClassName() const { return ClassText(typeid(*this)); }

bool KeptReferences::IsOverruled(const KeptPart::Reference& reference, ZoStreamableBase& object,
                                 const TZoMetaData& application) {
    TZoClassField* field = MergedSchema::ApplicationsField(application, *reference.field);
    if (field != nullptr && field->GetFieldType() == ftChildPointerMap)
        field = RecordOrder::HalvesOf(
            static_cast<TZoClassFieldPointerMap&>(*field))[static_cast<std::size_t>(reference.half)];
    return field != nullptr && IsKindOf<TZoClassFieldPointer>(field->GetFieldType()) &&
           static_cast<TZoClassFieldPointer*>(field)->Get(&object) != nullptr;
}

void KeptReferences::ForEachSaved(ZoStreamableBase& object, const TZoMetaData& application,
                                  ZoStreamableBaseFunctor& action) {
    const KeptPart* part = KeptParts::Find(object);
    if (part == nullptr) return;
    const auto apply = [&](int uid) {
        if (ZoStreamableBase* target = part->file->Find(uid)) action(target);
    };
    const unsigned char* at = part->bytes.data();
    for (const KeptPart::Value& value : part->values) {
        if (Saves(*value.field))
            ForEachUid(*part, value, at, [&](const TZoClassField&, int uid) { apply(uid); });
        at = part->bytes.data() + value.end;
    }
    for (const KeptPart::Reference& reference : part->references) {
        if (!Saves(*reference.field) || IsOverruled(reference, object, application)) continue;
        apply(reference.uid);
        if (reference.valueUid != 0) apply(reference.valueUid);
    }
    for (const int uid : part->roots) apply(uid);
}

} // namespace ZoPrimitives
