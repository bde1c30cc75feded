#include "Persistence/objects/RecordSize.h"

#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/RecordOrder.h"

#include <cstring>

namespace ZoPrimitives {

namespace {

/// Counts the bytes that values take in a record.
struct SizeSink {
    TBinOutStream& stream; // which gave the uids
    unsigned long long& size;

    template <class T>
    void operator()(const T& value) const {
        if constexpr (std::is_same_v<T, ZoString>) {
            size += 4 + value.length();
        } else if constexpr (std::is_same_v<T, ZoBlob>) {
            size += 4 + value.Size();
        } else {
            size += sizeof value;
        }
    }
};

} // namespace

void AdviseOnSize(XZoAssertFailed& failure, TBinOutStream& stream, const TZoClass& objectClass,
                  ZoStreamableBase* object) {
    if (std::strstr(failure.Expression(), "is too big") == nullptr) return;
    const TZoClassField* largest = nullptr;
    unsigned long long most = 0;
    unsigned long long all = 0;
    RecordOrder::ForEachLevel(objectClass, [&](const TZoClass& level) {
        for (TZoClassField* field : RecordOrder::FieldsOf(level)) {
            unsigned long long size = 0;
            FieldCodec::SaveField(SizeSink{stream, size}, *field, object);
            all += size;
            if (size > most) {
                most = size;
                largest = field;
            }
        }
    });
    if (largest == nullptr) return;
    failure.Advise(
        ZoString::FormatString("an object of class %s takes %llu bytes of the %u that a record may have, "
                               "%llu of them its field %s: make parts of it objects of their own",
                               objectClass.GetName().c_str(), all, DEFAULT_BUFFER_SIZE, most,
                               largest->GetFieldName().c_str())
            .c_str());
}

} // namespace ZoPrimitives
