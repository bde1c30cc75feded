#include "Persistence/objects/GraphWalk.h"
#include "Persistence/objects/ObjectReader.h"
#include "Persistence/objects/ObjectWriter.h"
#include "Persistence/objects/SchemaWalk.h"
#include "ZoPrimitives/ZoMetaData.h"

// What a class does with objects.

namespace ZoPrimitives {

namespace {

void AddUsedNames(const TZoMetaData& schema, const UsedClasses& classes, TDVector<ZoString>& names) {
    for (int i = 1; i <= schema.GetClassCount(); ++i) {
        const TZoClass* candidate = schema.GetClass(i);
        if (classes.Uses(candidate)) names.AddUnique(candidate->GetName());
    }
}

} // namespace

void TZoClass::GetClassMetaData(TZoMetaData* applicationSchema, ZoStreamableBase* root,
                                TDVector<ZoString>* names) {
    SchemaWalk walk(applicationSchema);
    walk.Run(root, *this);
    AddUsedNames(*applicationSchema, walk.Classes(), *names);
}

void TZoClass::GetClassStaticMetaData(TZoMetaData* applicationSchema, TDVector<ZoString>* names) {
    UsedClasses classes(UsedClasses::Children::Asked);
    classes.UseDeclared(this);
    AddUsedNames(*applicationSchema, classes, *names);
}

void TZoClass::AllocateHandles(TBinOutStream* stream, ZoStreamableBase* object,
                               TDList<ZoStreamableBase*>* externals) {
    WritePlans plans;
    GraphWalk(*stream, schema, plans, *externals).Run(object, this);
}

void TZoClass::SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object) {
    ObjectWriter::Of(*streamer).Save(*stream, object, this);
}

void TZoClass::SaveToStreamPre(TBinOutStream* stream, TBinOutStreamer*, ZoStreamableBase* object) {
    ObjectWriter::WriteFields(*stream, object, *this);
}

void TZoClass::SaveToStreamPos(TBinOutStream* stream, TBinOutStreamer* streamer, ZoStreamableBase* object) {
    ObjectWriter::Of(*streamer).SaveOwned(*stream, object, *this);
}

void TZoClass::LoadFromStream(TBinInStream* stream, ZoStreamableBase* object) {
    ObjectReader(*stream, ObjectReader::Entries::All, nullptr).Read(*this, object);
}

void TZoClass::LoadFromStreamPre(TBinInStream* stream, ZoStreamableBase* object) {
    ObjectReader::ReadFields(*stream, *this, object);
}

void TZoClass::LoadResolvePointers(TZoPointerResolver& resolver, ZoStreamableBase* object) {
    ObjectReader::Resolve(*this, resolver, object);
}

} // namespace ZoPrimitives
