#include "model.h"

#include "fields.h"
#include "text.h"
#include "words.h"

namespace ZoTool {

using namespace ZoPrimitives;

Model::Model(Tool& tool, const Input& input) : tool(tool), input(input), reader(input.Bytes()) {}

std::unordered_set<int> Model::Family(const std::string& className) const {
    const std::vector<TZoClass*> classes = ClassesOf(Schema());
    const TZoClass* wanted = nullptr;
    for (const TZoClass* const type : classes) {
        if (Utf8(type->GetName()) == className) wanted = type;
    }
    if (wanted == nullptr)
        throw Trouble(Words("it has no class \"{}\"; \"zo schema\" lists them", className));
    std::unordered_set<int> family;
    for (const TZoClass* const type : classes) {
        if (type->IsInherited(wanted)) family.insert(type->GetClassId());
    }
    return family;
}

void Model::Begin(bool headsOnly) {
    damaged = strayed = 0;
    stopped = false;
    reader.GetFrames().Restart();
    reader.GetFrames().SetHeadsOnly(headsOnly);
}

bool Model::NextFrame(TZoFrame& frame) {
    if (stopped) return false;
    const bool found = reader.GetFrames().Next(frame);
    strayed += frame.gap;
    return found;
}

void Model::EachHead(const std::function<void(const TZoFrame&)>& visit) {
    Begin(true);
    for (TZoFrame frame; NextFrame(frame);) {
        if (frame.state != TZoFrameState::Whole) {
            ++damaged;
        } else if (frame.offset != reader.GetSchemaFrame().offset) {
            visit(frame);
        }
    }
}

void Model::Each(const Visit& visit, const std::unordered_set<int>* classes) {
    reader.GetUndecided(); // it looks through the file itself
    Begin(classes != nullptr);
    unknown = misshapen = 0;
    decoded = true;
    TZoFrameReader& frames = reader.GetFrames();
    Progress progress(tool, Words("reading {}", Name()), input.Bytes().GetSize());
    TZoRecord record;
    for (TZoFrame frame; NextFrame(frame);) {
        progress.Show(frame.offset);
        if (frame.offset == reader.GetSchemaFrame().offset) continue;
        const bool passesBy = classes != nullptr && classes->count(frame.classId) == 0;
        if (passesBy && frame.state == TZoFrameState::Whole) continue;
        const unsigned long long number = frame.number;
        if (classes != nullptr && !passesBy) frames.ReadAt(frame.offset, frame);
        frame.number = number;
        if (passesBy || !reader.Read(frame, frames.GetPayload(), frames.GetPayloadSize(), record)) {
            ++damaged;
            continue;
        }
        Count(record);
        visit(record);
    }
}

bool Model::Find(int uid, TZoRecord& record) {
    const bool found = reader.Find(uid, record);
    if (found) Count(record);
    return found;
}

void Model::Count(const TZoRecord& record) {
    switch (record.GetState()) {
    case TZoRecordState::Whole:
        break;
    case TZoRecordState::UnknownClass:
        ++unknown;
        break;
    case TZoRecordState::UnknownKind:
    case TZoRecordState::NotConsumed:
    case TZoRecordState::PastEnd:
        ++misshapen;
        break;
    }
}

const char* Model::StateOf(const TZoRecord& record) {
    switch (record.GetState()) {
    case TZoRecordState::Whole:
        return "";
    case TZoRecordState::UnknownClass:
        return Marked("of a class that the schema does not have");
    case TZoRecordState::UnknownKind:
        return Marked("of a class with fields of unknown kinds");
    case TZoRecordState::NotConsumed:
        return Marked("with bytes behind its last value");
    case TZoRecordState::PastEnd:
        return Marked("ending before its last value");
    }
    return "";
}

Exit Model::TellLosses() {
    Exit end = Exit::Good;
    const auto tell = [&](unsigned long long count, std::string_view what, const char* how) {
        if (count == 0) return;
        tool.Warn(Name(), Words("{} {}; \"zo verify\" tells where", Counted(count, what), Translation(how)));
        end = Exit::Trouble;
    };
    tell(damaged, "record", "damaged and left out");
    tell(strayed, "byte", "between records, which belong to none, passed over");
    tell(unknown, "object", "of classes that the schema does not have");
    tell(misshapen, "object", "not as the class says: the values are those that could be read");
    if (!decoded) return end;
    for (const TZoRecordReader::Undecided& field : reader.GetUndecided()) {
        tool.Warn(Name(),
                  Words("the records of {} do not tell whether {} stands with integers of the application's; "
                        "it is read in the plainest way",
                        ClassName(*field.recordClass), FieldName(*field.field)));
    }
    return end;
}

const std::vector<std::string>& Model::NamesOf(TZoClass& type) {
    const auto [entry, isNew] = names.try_emplace(&type);
    if (isNew) entry->second = UniqueNames(AllFields(type));
    return entry->second;
}

} // namespace ZoTool
