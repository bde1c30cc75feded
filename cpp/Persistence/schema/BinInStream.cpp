#include "ZoPrimitives/BinInStream.h"

#include "Persistence/records/RecordHunt.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <algorithm>

namespace ZoPrimitives {

bool TBinInStream::LoadFilteredRecord(TZoMetaData* schema, const int* ids, int* recordClassId, int* recordUid,
                                      int idCount) {
    class AskedFor final : public RecordFilter {
    public:
        AskedFor(const TZoMetaData* schema, const int* begin, const int* end)
            : schema(schema), begin(begin), end(end) {}
        bool Takes(int id) const override {
            return std::binary_search(begin, end, id) &&
                   (schema == nullptr || schema->FindClass(id) != nullptr);
        }

    private:
        const TZoMetaData* schema;
        const int* begin;
        const int* end;
    };
    static constexpr FailurePoints POINTS{
        "TBinInStream::LoadFilteredRecord #1", "TBinInStream::LoadFilteredRecord #2",
        "TBinInStream::LoadFilteredRecord #3", "TBinInStream::LoadFilteredRecord #4",
        "TBinInStream::LoadFilteredRecord #5", "TBinInStream::LoadFilteredRecord #7",
        "TBinInStream::LoadFilteredRecord #6"};
    const AskedFor filter(schema, ids, ids + std::max(idCount, 0));
    Found found = Found::OtherClass;
    while (found == Found::OtherClass) {
        if (TakesFromWindow()) {
            PassInWindow(filter);
            if (NextInWindow(recordUid, recordClassId)) return true;
        }
        found = Hunt(POINTS, &filter, recordUid, recordClassId);
    }
    if (found == Found::Record) return true;
    CheckDigest();
    return false;
}

} // namespace ZoPrimitives
