#include "Persistence/objects/KeptWriter.h"

#include "Persistence/schema/FieldCodec.h"
#include "Persistence/schema/RecordOrder.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <unordered_map>

namespace ZoPrimitives {

/// One record under way.
class KeptWriter::Record {
public:
    /// `itsPart` may be null. `itsApplication`: the object's class; null for one that was not made.
    Record(const MergedSchema& merged, TBinOutStream& outStream, ZoStreamableBase* itsObject,
           const KeptPart* itsPart, const TZoClass* itsApplication)
        : stream(outStream), object(itsObject), part(itsPart), application(itsApplication) {
        if (part == nullptr) return;
        for (std::size_t i = 0; i < part->values.size(); ++i) values[merged.Find(*part->values[i].field)] = i;
        for (const KeptPart::Reference& reference : part->references)
            references[merged.Find(*reference.field)].push_back(&reference);
    }

    void Put(const TZoClass& level) const {
        const TZoClass* known = level.GetOriginal();
        const bool applies = application != nullptr && known != nullptr && application->IsInherited(known);
        if (applies) object->WillWrite();
        for (const TZoClassField* field : RecordOrder::FieldsOf(level)) {
            if (applies && field->GetOriginal() != nullptr) {
                PutKnown(*field, *field->GetOriginal());
            } else {
                PutKept(*field);
            }
        }
    }

private:
    using References = std::vector<const KeptPart::Reference*>;
    using Items = std::vector<ZoStreamableBase*>;
    static constexpr int ENDED = -1; // instead of a uid: the object is not saved

    /// The new uid for one of the opened file.
    int Renumber(int uid) const {
        if (uid == 0) return 0;
        const ZoStreamableBase* target = part->file->Find(uid);
        const int now = target == nullptr ? 0 : HandleAccess::Get(stream, target);
        return now == 0 ? ENDED : now;
    }
    void PutInt(int value) const { stream.Append(&value, sizeof value); }
    void PutUid(int uid) const { PutInt(std::max(Renumber(uid), 0)); }

    // The application's fields

    void PutKnown(const TZoClassField& field, TZoClassField& known) const {
        const auto kept = references.find(&field);
        if (kept == references.end()) return FieldCodec::SaveField(VirtualSink{stream}, known, object);
        if (known.GetFieldType() != ftChildPointerMap)
            return PutHalf(static_cast<TZoClassFieldPointerBase&>(known), kept->second, 0);
        const auto halves = RecordOrder::HalvesOf(static_cast<TZoClassFieldPointerMap&>(known));
        TZoClassFieldPointerList* keys = FieldCodec::AsList(halves[0]);
        TZoClassFieldPointerList* items = FieldCodec::AsList(halves[1]);
        if (keys != nullptr && items != nullptr) {
            PutList(*keys, kept->second, FieldCodec::ItemsOf(*keys, object), &KeptPart::Reference::uid);
            PutList(*items, kept->second, FieldCodec::ItemsOf(*keys, object), &KeptPart::Reference::valueUid);
        } else {
            PutHalf(*halves[0], kept->second, 0);
            PutHalf(*halves[1], kept->second, 1);
        }
    }

    void PutHalf(TZoClassFieldPointerBase& field, const References& all, int half) const {
        References kept;
        std::copy_if(all.begin(), all.end(), std::back_inserter(kept),
                     [half](const KeptPart::Reference* reference) { return reference->half == half; });
        if (IsKindOf<TZoClassFieldPointerList>(field.GetFieldType())) {
            auto& list = static_cast<TZoClassFieldPointerList&>(field);
            return PutList(list, kept, FieldCodec::ItemsOf(list, object), &KeptPart::Reference::uid);
        }
        auto& single = static_cast<TZoClassFieldPointer&>(field);
        if (kept.empty() || single.Get(object) != nullptr) // what the application has set counts
            return FieldCodec::SaveUids(VirtualSink{stream}, single, object);
        PutUid(kept.front()->uid);
    }

    /// Behind how many of the items a kept one goes back: the one that it followed, or else all.
    static std::size_t PlaceOf(const KeptPart::Reference& reference, const Items& items) {
        const std::size_t place = reference.place;
        if (place == 0 || (place <= items.size() && items[place - 1] == reference.behind)) return place;
        const auto found = std::find(items.begin(), items.end(), reference.behind);
        return static_cast<std::size_t>(found - items.begin()) + 1;
    }

    /// `placing`: the items that tell the places of kept ones; of a map the keys.
    void PutList(TZoClassFieldPointerList& list, const References& kept, const Items& placing,
                 int KeptPart::Reference::*uidOf) const {
        std::vector<std::pair<std::size_t, int>> added; // place and uid
        for (const KeptPart::Reference* reference : kept) {
            if (Renumber(reference->uid) != ENDED && Renumber(reference->valueUid) != ENDED)
                added.emplace_back(PlaceOf(*reference, placing), Renumber(reference->*uidOf));
        }
        std::stable_sort(added.begin(), added.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        std::vector<int> uids;
        auto next = added.begin();
        const Items items = FieldCodec::ItemsOf(list, object);
        for (std::size_t i = 0; i <= items.size(); ++i) {
            for (; next != added.end() && (next->first <= i || i == items.size()); ++next)
                uids.push_back(next->second);
            if (i < items.size()) uids.push_back(FieldCodec::UidOf(stream, list, items[i]));
        }
        FieldCodec::SaveUids(VirtualSink{stream}, list, object, uids);
    }

    // Kept fields

    void PutKept(const TZoClassField& field) const {
        const auto found = values.find(&field);
        if (found == values.end()) return PutZero(field);
        const KeptPart::Value& value = part->values[found->second];
        const unsigned begin = found->second == 0 ? 0 : part->values[found->second - 1].end;
        const unsigned char* bytes = part->bytes.data() + begin;
        if (FieldKindOf(field.GetFieldType()).holds == FieldHold::Nothing) {
            stream.Append(bytes, value.end - begin);
        } else {
            PutUids(value, bytes, part->bytes.data() + value.end);
        }
    }

    /// The uids of a pointer field, renumbered. Lists leave out what is not saved, maps both halves of it.
    void PutUids(const KeptPart::Value& value, const unsigned char* begin, const unsigned char* end) const {
        struct Half {
            const unsigned char* uids = nullptr;
            int count = 0; // -1: a single one
            bool HasEnded(const Record& record, int i) const {
                return i < count && record.Renumber(ValuePasser::IntAt(uids + 4 * i)) == ENDED;
            }
        };
        std::array<Half, 2> halves;
        ValuePasser(begin, end)
            .Pass(value.field->GetFieldType(), value.layout,
                  [&](int half, const unsigned char* uids, int count) {
                      halves[static_cast<std::size_t>(half)] = {uids, count};
                  });
        for (std::size_t i = 0; i < halves.size(); ++i) {
            const Half& half = halves[i];
            if (half.uids == nullptr) continue;
            if (half.count < 0) {
                PutUid(ValuePasser::IntAt(half.uids));
                continue;
            }
            std::vector<int> uids;
            for (int item = 0; item < half.count; ++item) {
                if (!halves[0].HasEnded(*this, item) && !halves[1].HasEnded(*this, item))
                    uids.push_back(Renumber(ValuePasser::IntAt(half.uids + 4 * item)));
            }
            PutInt(static_cast<int>(uids.size()));
            const std::size_t integers = 4 * static_cast<std::size_t>(value.layout.integers[i]);
            stream.Append(half.uids - integers, integers);
            stream.Append(uids.data(), 4 * uids.size());
        }
    }

    /// For an object that has nothing in the field: 0, an empty text, an empty list.
    void PutZero(const TZoClassField& field) const {
        std::size_t size = FieldKindOf(field.GetFieldType()).smallest;
        if (field.GetOriginal() != nullptr) {
            for (const signed char integers : FieldCodec::LayoutOf(*field.GetOriginal()).integers)
                size += integers > 0 ? 4 * static_cast<std::size_t>(integers) : 0;
        }
        static constexpr unsigned char ZEROS[32] = {};
        stream.Append(ZEROS, size);
    }

    TBinOutStream& stream;
    ZoStreamableBase* object;
    const KeptPart* part;
    const TZoClass* application;
    std::unordered_map<const TZoClassField*, std::size_t> values; // of the part, by the schema's field
    std::unordered_map<const TZoClassField*, References> references;
};

bool KeptWriter::Covers(const MergedSchema::Files& others) const {
    return std::all_of(others.begin(), others.end(), [&](const auto& other) {
        return std::find(files.begin(), files.end(), other) != files.end();
    });
}

const TZoClass* KeptWriter::Put(TBinOutStream& stream, ZoStreamableBase* object,
                                const TZoClass& objectClass) const {
    const KeptPart* part = KeptParts::Find(*object);
    if (part == nullptr && merged.IsPlain(objectClass)) return nullptr;
    const TZoClass* known = &objectClass == &KeptObject::Class() ? nullptr : &objectClass;
    const TZoClass* recordClass = known == nullptr ? nullptr : merged.Find(objectClass);
    if (part != nullptr && part->recordClass != nullptr) {
        const TZoClass* kept = merged.Find(*part->recordClass);
        if (recordClass == nullptr || kept->IsInherited(recordClass)) recordClass = kept;
    }
    const Record record(merged, stream, object, part, known);
    RecordOrder::ForEachLevel(*recordClass, [&](const TZoClass& level) { record.Put(level); });
    return recordClass;
}

} // namespace ZoPrimitives
