#include "ZoPrimitives/ZoClassField.h"

#include "Persistence/objects/ObjectWriter.h"
#include "Persistence/schema/RecordOrder.h"
#include "ZoPrimitives/ZoMetaData.h"

// What a field does with the objects that it holds.

namespace ZoPrimitives {

void TZoClassField::GetUninstantiatedFieldMetaData(TZoMetaData* applicationSchema,
                                                   TDVector<ZoString>* names) const {
    if (fieldClass != nullptr) fieldClass->GetClassStaticMetaData(applicationSchema, names);
}

void TZoClassFieldPointer::SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer,
                                        ZoStreamableBase* object) {
    ObjectWriter::Of(*streamer).SaveOwned(*stream, object, *this);
}

void TZoClassFieldPointerList::SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer,
                                            ZoStreamableBase* object) {
    ObjectWriter::Of(*streamer).SaveOwned(*stream, object, *this);
}

void TZoClassFieldPointerMap::SaveToStream(TBinOutStream* stream, TBinOutStreamer* streamer,
                                           ZoStreamableBase* object) {
    RecordOrder::ForEachHalf(*this, [&](TZoClassFieldPointerBase& half) {
        if (half.HoldsChildren()) half.SaveToStream(stream, streamer, object);
    });
}

} // namespace ZoPrimitives
