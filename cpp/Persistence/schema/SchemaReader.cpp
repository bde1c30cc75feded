#include "Persistence/schema/SchemaReader.h"

#include "Persistence/records/RecordChecks.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/WholeText.h"

#include <algorithm>
#include <climits>
#include <cstdint>

namespace ZoPrimitives {

namespace {

// The smallest entry of a class: id, name, flag, its one parent, five empty blocks.
constexpr unsigned SMALLEST_CLASS = 4 + 4 + 1 + 4 + 5 * 4;
// The smallest entry of a field: class id, kind, name.
constexpr unsigned SMALLEST_FIELD = 4 + 4 + 4;

constexpr const char* SCHEMA = "TZoMetaData::LoadFromStream";
constexpr const char* CLASS = "TZoClass::LoadMetaFromStream";

} // namespace

bool SchemaReader::Read(TBinInStream& stream) {
    if (!ReadClasses(stream) || !FindParents() || !LevelsAreSound()) return false;
    // Parents are counted references: only now is it certain that no class would hold itself.
    LinkParents();
    if (LinkFields()) return true;
    for (const auto& read : schema.classes) read->parents.RemoveAll();
    return false;
}

bool SchemaReader::ReadClasses(TBinInStream& stream) {
    int count = 0;
    stream >> count;
    CheckCount(stream.GetRemaining(), count, SMALLEST_CLASS, SCHEMA);
    schema.classes.Reserve(static_cast<unsigned long long>(count));
    byId.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const pointer<TZoClass> read(new TZoClass(&schema, nullptr, "", nullptr, false, nullptr));
        ReadClass(stream, *read);
        if (read->classId <= 0) return false;
        schema.NoteId(read->classId);
        schema.classes.Add(read.get());
        byId.emplace_back(read->classId, static_cast<Position>(i));
    }
    if (stream.GetRecordPosition() > stream.GetRecordSize()) return false;
    std::sort(byId.begin(), byId.end());
    const auto sameId = [](const auto& a, const auto& b) { return a.first == b.first; };
    if (std::adjacent_find(byId.begin(), byId.end(), sameId) != byId.end()) return false;
    schema.IndexClasses();
    return true;
}

void SchemaReader::ReadClass(TBinInStream& stream, TZoClass& read) {
    int marker = 0;
    stream >> read.classId >> read.name >> read.abstract >> marker;
    read.storedParentIds.clear();
    read.loading = true;
    if (marker == PARENTS_FOLLOW) {
        int count = 0;
        stream >> count;
        CheckCount(stream.GetRemaining(), count, sizeof(std::int32_t), CLASS);
        read.storedParentIds.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            int id = 0;
            stream >> id;
            read.storedParentIds.push_back(id);
        }
    } else if (marker != 0) {
        read.storedParentIds.push_back(marker);
    }
    if (ReadBlock(stream, read) == ftChildPointerMap) ReadBlock(stream, read);
    for (int block = 0; block < 4; ++block) ReadBlock(stream, read);
    read.loading = false;
    read.PutInOrder();
}

/// Reads a block of fields. Returns the kind of its last entry as stored, even if no field was made of it; 0
/// for a block without entries.
int SchemaReader::ReadBlock(TBinInStream& stream, TZoClass& read) {
    int count = 0;
    stream >> count;
    CheckCount(stream.GetRemaining(), count, SMALLEST_FIELD, CLASS);
    int kind = 0;
    for (int i = 0; i < count; ++i) {
        const TZoClassField::Entry entry = TZoClassField::LoadMetaFromStream(&stream);
        kind = entry.kind;
        TZoClassField* field = read.AddField(entry.classId, static_cast<TZoClassFieldType>(kind), entry.name);
        read.hasUnknownKind = read.hasUnknownKind || field == nullptr;
        if (i == 0 && field != nullptr) read.ReserveLike(*field, static_cast<std::size_t>(count));
    }
    return kind;
}

const std::pair<int, SchemaReader::Position>* SchemaReader::Find(int id) const {
    const auto found = std::lower_bound(byId.begin(), byId.end(), std::pair(id, Position{0}));
    return found == byId.end() || found->first != id ? nullptr : &*found;
}

/// Returns false if a class names a parent that is not there, or more parents than an object may walk.
bool SchemaReader::FindParents() {
    firstParent.reserve(byId.size() + 1);
    for (const auto& read : schema.classes) {
        firstParent.push_back(static_cast<Position>(parents.size()));
        const std::vector<int>& ids = read->storedParentIds;
        if (ids.size() - static_cast<std::size_t>(std::count(ids.begin(), ids.end(), 0)) >= MAX_LEVELS)
            return false;
        for (const int id : ids) {
            if (id == 0) continue;
            const auto* parent = Find(id);
            if (parent == nullptr) return false;
            parents.push_back(parent->second);
        }
    }
    firstParent.push_back(static_cast<Position>(parents.size()));
    return true;
}

/// Whether no class is its own ancestor and the levels of each are few enough.
bool SchemaReader::LevelsAreSound() const {
    enum : unsigned { Unknown = 0, Open = UINT_MAX };
    std::vector<unsigned> levels(byId.size(), Unknown);
    std::vector<std::pair<Position, Position>> open; // a class, and the next of its parents to look at
    for (Position root = 0; root < levels.size(); ++root) {
        if (levels[root] == Unknown) open.emplace_back(root, firstParent[root]);
        while (!open.empty()) {
            auto& [top, next] = open.back();
            levels[top] = Open;
            while (next < firstParent[top + 1] && levels[parents[next]] != Unknown &&
                   levels[parents[next]] != Open)
                ++next;
            if (next < firstParent[top + 1]) {
                const Position parent = parents[next];
                if (levels[parent] == Open) return false;
                open.emplace_back(parent, firstParent[parent]);
                continue;
            }
            unsigned sum = 1;
            for (Position i = firstParent[top]; i < next; ++i) sum += levels[parents[i]];
            if (sum > MAX_LEVELS) return false;
            levels[top] = sum;
            open.pop_back();
        }
    }
    return true;
}

void SchemaReader::LinkParents() {
    for (Position i = 0; i < byId.size(); ++i) {
        TZoClass::Parents& linked = ClassAt(i)->parents;
        linked.RemoveAll();
        linked.Reserve(firstParent[i + 1] - firstParent[i]);
        for (Position at = firstParent[i]; at < firstParent[i + 1]; ++at) linked.Add(ClassAt(parents[at]));
    }
}

TZoClass* SchemaReader::ApplicationsClass(const TZoMetaData& application, const ZoString& name) {
    TZoClass* present = application.FindClass(name);
    return present != nullptr ? present : application.FindFormerClass(name);
}

/// Returns false if a field names a class that is not there.
bool SchemaReader::LinkFields() {
    bool known = true;
    for (const auto& linked : schema.classes) {
        linked->SetOriginal(application == nullptr ? nullptr
                                                   : ApplicationsClass(*application, linked->GetName()));
        linked->ForEachPointerField([&](TZoClassField& field) {
            if (field.fieldClassId == 0) return;
            const auto* found = Find(field.fieldClassId);
            if (found == nullptr) {
                known = false;
            } else {
                field.fieldClass = ClassAt(found->second);
            }
        });
        if (!known) return false;
    }
    return true;
}

} // namespace ZoPrimitives
