#include "ZoPrimitives/ZoRecords.h"

#include "Persistence/checksums/Crc32Kernel.h"
#include "Persistence/records/RecordFormat.h"
#include "Persistence/schema/RecordPlan.h"
#include "ZoPrimitives/MemoryBinInStream.h"
#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Persistence/ZoRecords";
constexpr const char* WHERE = "TZoRecordReader::TZoRecordReader";

/// Where the objects of a file are, by uid.
class ObjectIndex {
public:
    struct Entry {
        int uid;
        int classId;
        unsigned long long offset;
    };
    static_assert(sizeof(Entry) == 16);

    explicit ObjectIndex(TZoBytes& bytes) {
        TZoFrameReader frames(bytes);
        frames.SetHeadsOnly(true);
        constexpr unsigned long long SMALLEST = RecordFormat::HEAD_SIZE + 1;
        entries.reserve(static_cast<std::size_t>(
            std::min<unsigned long long>(frames.GetHeader().recordCount, bytes.GetSize() / SMALLEST)));
        for (TZoFrame frame; frames.Next(frame);) {
            if (frame.state == TZoFrameState::Whole && frame.uid != 0)
                entries.push_back({frame.uid, frame.classId, frame.offset});
        }
        const auto comesBefore = [](const Entry& a, const Entry& b) {
            return std::pair(a.uid, a.offset) < std::pair(b.uid, b.offset);
        };
        if (!std::is_sorted(entries.begin(), entries.end(), comesBefore))
            std::sort(entries.begin(), entries.end(), comesBefore);
    }
    /// The last one of that uid; null if there is none.
    const Entry* Find(int uid) const {
        if (entries.empty()) return nullptr;
        // Uids are usually dense.
        const long long guess = static_cast<long long>(uid) - entries.front().uid;
        const auto count = static_cast<long long>(entries.size());
        if (guess >= 0 && guess < count) {
            const Entry* guessed = &entries[static_cast<std::size_t>(guess)];
            if (guessed->uid == uid && (guess + 1 == count || guessed[1].uid != uid)) return guessed;
        }
        const auto behind =
            std::upper_bound(entries.begin(), entries.end(), uid,
                             [](int wanted, const Entry& entry) { return wanted < entry.uid; });
        if (behind == entries.begin() || std::prev(behind)->uid != uid) return nullptr;
        return &*std::prev(behind);
    }
    std::size_t Count() const { return entries.size(); }

private:
    std::vector<Entry> entries;
};

} // namespace

class ZO_HIDDEN TZoRecordReader::Body {
public:
    Body(std::unique_ptr<TZoBytes> own, TZoBytes& bytes, std::shared_ptr<TZoMetaData> itsSchema)
        : owned(std::move(own)), frames(bytes), apart(bytes), schema(std::move(itsSchema)) {
        if (schema == nullptr) ReadSchema();
        plans.reserve(static_cast<std::size_t>(schema->GetClassCount()));
        for (int i = 1; i <= schema->GetClassCount(); ++i) {
            TZoClass* listed = schema->GetClass(i);
            plans.push_back({listed->GetClassId(), listed, nullptr});
            for (const TZoClassField* field : RecordOrder::FieldsOf(*listed))
                isSettled = isSettled && AllLayouts(field->GetFieldType()).size() == 1;
        }
        std::sort(plans.begin(), plans.end(), [](const Place& a, const Place& b) { return a.id < b.id; });
    }

    bool Next(TZoRecord& record);
    bool Find(int uid, TZoRecord& record);
    bool Fill(const TZoFrame& frame, const unsigned char* payload, unsigned size, TZoRecord& record);
    TZoClass* ClassOf(int uid);
    const ObjectIndex& Index() {
        if (index == nullptr) index = std::make_unique<ObjectIndex>(frames.GetBytes());
        return *index;
    }
    /// Finds out how the file's lists and maps stand in its records.
    void Settle();

    std::unique_ptr<TZoBytes> owned; // null: the caller's
    TZoFrameReader frames;
    TZoFrameReader apart; // for records out of their order
    std::shared_ptr<TZoMetaData> schema;
    TZoFrame schemaFrame;
    TDVector<Undecided> undecided;

private:
    struct Place {
        int id;
        TZoClass* listed;
        std::unique_ptr<RecordPlan> plan; // made when a record needs it
    };

    void ReadSchema();
    bool IsSchema(const TZoFrame& frame) const;
    Place* PlaceOf(int classId);
    RecordPlan* PlanOf(int classId, unsigned size, TZoRecordState& state);
    bool MayMean(const TZoClassField& field, int uid);

    TZoFrame nextFrame;
    std::vector<Place> plans; // by class id
    Place* latest = nullptr;
    std::unique_ptr<ObjectIndex> index;
    bool isSettled = true;
};

// Schema

void TZoRecordReader::Body::ReadSchema() {
    const auto fail = [this](const ZoString& message, TStreamFailure why) {
        XReadStream failure(message, WHERE, why);
        if (const auto* file = dynamic_cast<const TZoFileBytes*>(&frames.GetBytes()))
            failure.SetPath(file->GetFilePath());
        throw failure;
    };
    if (frames.GetHeaderState() != TZoHeaderState::Right) {
        const bool isShort = frames.GetHeaderState() == TZoHeaderState::Short;
        fail(Translated("Header de arquivo inválido"),
             isShort ? TStreamFailure::Truncated : TStreamFailure::WrongFile);
    }
    bool found = false;
    while (!found && frames.Next(schemaFrame)) found = frames.GetPayload() != nullptr;
    if (!found) fail(Translated("Metadado corrompido"), TStreamFailure::Damaged);
    schema = TZoRecordReader::ReadSchema(frames.GetPayload(), frames.GetPayloadSize());
    if (schema == nullptr) fail(Translated("Metadado inválido"), TStreamFailure::Damaged);
    frames.Restart();
}

std::shared_ptr<TZoMetaData> TZoRecordReader::ReadSchema(const void* payload, unsigned size) {
    // The schema is read from a stream: a file of this one record.
    std::vector<unsigned char> file(RecordFormat::HEADER_SIZE + RecordFormat::HEAD_SIZE + std::size_t{size});
    unsigned char* head = file.data() + RecordFormat::HEADER_SIZE;
    unsigned char* copy = head + RecordFormat::HEAD_SIZE;
    if (size != 0) std::memcpy(copy, payload, size);
    RecordFormat::WriteHead(head,
                            {RecordFormat::MARKER, size, ~Crc32Update(0xFFFFFFFFu, copy, size), 0, 0, 0});
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    auto schema = std::make_shared<TZoMetaData>();
    try {
        int uid = 0;
        int classId = 0;
        stream.Initialize();
        if (stream.LoadRecord(&uid, &classId) && schema->LoadFromStream(&stream, nullptr)) return schema;
    } catch (const XReadStream&) { // counts or texts that exceed the record
    }
    return nullptr;
}

// Layouts

bool TZoRecordReader::Body::MayMean(const TZoClassField& field, int uid) {
    const TZoClass* target = ClassOf(uid);
    return target != nullptr && LayoutChoices::MayRefer(field, *target);
}

void TZoRecordReader::Body::Settle() {
    if (isSettled) return;
    isSettled = true;
    TZoFrameReader heads(frames.GetBytes());
    TZoFrameReader whole(frames.GetBytes());
    heads.SetHeadsOnly(true);
    TZoRecordState state{};
    for (TZoFrame frame; heads.Next(frame);) {
        if (frame.state != TZoFrameState::Whole || IsSchema(frame)) continue;
        RecordPlan* plan = PlanOf(frame.classId, frame.size, state);
        if (plan == nullptr || plan->hasUnknownKind || plan->search.HasEnded()) continue;
        whole.ReadAt(frame.offset, frame);
        const unsigned char* payload = whole.GetPayload();
        if (payload != nullptr) plan->search.Take(payload, payload + whole.GetPayloadSize());
    }
    const auto mayMean = [this](const TZoClassField& field, int uid) { return MayMean(field, uid); };
    for (Place& place : plans) {
        if (place.plan != nullptr) place.plan->Settle(mayMean, undecided);
    }
}

// Records

bool TZoRecordReader::Body::IsSchema(const TZoFrame& frame) const {
    if (schemaFrame.number != 0) return frame.offset == schemaFrame.offset;
    return frame.number == 1 && frame.classId == 0 && frame.uid == 0;
}

TZoRecordReader::Body::Place* TZoRecordReader::Body::PlaceOf(int classId) {
    if (latest != nullptr && latest->id == classId) return latest;
    const auto found = std::lower_bound(plans.begin(), plans.end(), classId,
                                        [](const Place& place, int id) { return place.id < id; });
    if (found == plans.end() || found->id != classId) return nullptr;
    return latest = &*found;
}

/// Null, and the state tells why, if the class is unknown or its records need more than `size` bytes: so a
/// plan is never much larger than a record that it was made for.
RecordPlan* TZoRecordReader::Body::PlanOf(int classId, unsigned size, TZoRecordState& state) {
    Place* place = PlaceOf(classId);
    state = TZoRecordState::UnknownClass;
    if (place == nullptr) return nullptr;
    if (place->plan == nullptr) {
        state = KnowsAllKinds(*place->listed) ? TZoRecordState::PastEnd : TZoRecordState::UnknownKind;
        if (RecordOrder::LeastBytes(*place->listed) > size) return nullptr;
        place->plan = std::make_unique<RecordPlan>(*place->listed);
    }
    state = place->plan->hasUnknownKind ? TZoRecordState::UnknownKind : TZoRecordState::Whole;
    return place->plan.get();
}

bool TZoRecordReader::Body::Fill(const TZoFrame& frame, const unsigned char* payload, unsigned size,
                                 TZoRecord& record) {
    if (payload == nullptr) return false;
    RecordPlan* plan = PlanOf(frame.classId, size, record.state);
    const Place* place = plan == nullptr ? PlaceOf(frame.classId) : latest;
    record.frame = frame;
    record.recordClass = place == nullptr ? nullptr : place->listed;
    record.plan = plan;
    record.payload = payload;
    record.size = size;
    record.count = 0;
    if (record.state != TZoRecordState::Whole) return true;
    ValuePasser value(payload, payload + size);
    unsigned* end = plan->ends.data();
    for (const RecordStep& step : plan->steps) {
        if (!value.Pass(step.field->GetFieldType(), step.layout)) {
            record.state = TZoRecordState::PastEnd;
            break;
        }
        *end++ = static_cast<unsigned>(value.At() - payload);
    }
    record.count = static_cast<int>(end - plan->ends.data());
    if (record.state == TZoRecordState::Whole && value.Left() != 0)
        record.state = TZoRecordState::NotConsumed;
    return true;
}

bool TZoRecordReader::Body::Next(TZoRecord& record) {
    Settle();
    while (frames.Next(nextFrame)) {
        if (!IsSchema(nextFrame) && Fill(nextFrame, frames.GetPayload(), frames.GetPayloadSize(), record))
            return true;
    }
    return false;
}

bool TZoRecordReader::Body::Find(int uid, TZoRecord& record) {
    Settle();
    const ObjectIndex::Entry* entry = Index().Find(uid);
    TZoFrame frame;
    return entry != nullptr && apart.ReadAt(entry->offset, frame) &&
           Fill(frame, apart.GetPayload(), apart.GetPayloadSize(), record);
}

TZoClass* TZoRecordReader::Body::ClassOf(int uid) {
    const ObjectIndex::Entry* entry = Index().Find(uid);
    const Place* place = entry == nullptr ? nullptr : PlaceOf(entry->classId);
    return place == nullptr ? nullptr : place->listed;
}

TZoValue TZoRecord::Value(int index) const {
    ZO_ASSERT(index >= 1 && index <= NValues(), "index >= 1 && index <= NValues()", SOURCE);
    const auto i = static_cast<std::size_t>(index) - 1;
    const RecordStep& step = plan->steps[i];
    return {*step.field, step.layout.integers.data(), payload + (i == 0 ? 0 : plan->ends[i - 1]),
            payload + plan->ends[i]};
}

std::optional<TZoValue> TZoRecord::FindValue(std::string_view name) const {
    for (int i = count; i >= 1; --i) {
        const ZoString& other = plan->steps[static_cast<std::size_t>(i) - 1].field->GetFieldName();
        if (std::string_view(other.c_str(), other.length()) == name) return Value(i);
    }
    return std::nullopt;
}

// The reader

TZoRecordReader::TZoRecordReader(TZoBytes& bytes) : body(std::make_unique<Body>(nullptr, bytes, nullptr)) {}

TZoRecordReader::TZoRecordReader(const TZoPath& path) {
    auto file = std::make_unique<TZoFileBytes>(path);
    TZoBytes& bytes = *file;
    body = std::make_unique<Body>(std::move(file), bytes, nullptr);
}

TZoRecordReader::TZoRecordReader(TZoBytes& bytes, std::shared_ptr<TZoMetaData> schema)
    : body(std::make_unique<Body>(nullptr, bytes, std::move(schema))) {}

TZoRecordReader::~TZoRecordReader() = default;

bool TZoRecordReader::KnowsAllKinds(const TZoClass& of) {
    bool knows = true;
    RecordOrder::ForEachLevel(
        of, [&](const TZoClass& level) { knows = knows && !RecordOrder::HasUnknownKind(level); });
    return knows;
}

const TZoMetaData& TZoRecordReader::GetSchema() const { return *body->schema; }
std::shared_ptr<TZoMetaData> TZoRecordReader::ShareSchema() const { return body->schema; }
const TZoFrame& TZoRecordReader::GetSchemaFrame() const { return body->schemaFrame; }

const TDVector<TZoRecordReader::Undecided>& TZoRecordReader::GetUndecided() {
    body->Settle();
    return body->undecided;
}

bool TZoRecordReader::Next(TZoRecord& record) { return body->Next(record); }
void TZoRecordReader::Restart() { body->frames.Restart(); }
bool TZoRecordReader::Find(int uid, TZoRecord& record) { return body->Find(uid, record); }

bool TZoRecordReader::Read(const TZoFrame& frame, const unsigned char* payload, unsigned size,
                           TZoRecord& record) {
    body->Settle();
    return body->Fill(frame, payload, size, record);
}

TZoClass* TZoRecordReader::ClassOf(int uid) { return body->ClassOf(uid); }
unsigned long long TZoRecordReader::NObjects() { return body->Index().Count(); }
TZoFrameReader& TZoRecordReader::GetFrames() { return body->frames; }

} // namespace ZoPrimitives
