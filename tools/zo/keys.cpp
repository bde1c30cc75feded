#include "keys.h"

#include "fields.h"
#include "text.h"
#include "values.h"

#include <algorithm>
#include <numeric>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

// FNV-1a, finished so that each bit counts everywhere.
class Hash {
public:
    Hash& Add(std::string_view bytes) {
        for (const char c : bytes) state = (state ^ static_cast<unsigned char>(c)) * 0x100000001B3;
        return Add(bytes.size());
    }
    Hash& Add(std::uint64_t number) {
        state ^= number + 0x9E3779B97F4A7C15;
        state = (state ^ state >> 30) * 0xBF58476D1CE4E5B9;
        state = (state ^ state >> 27) * 0x94D049BB133111EB;
        state ^= state >> 31;
        return *this;
    }
    Keys::Key Value() const { return state; }

private:
    std::uint64_t state = 0xCBF29CE484222325;
};

} // namespace

bool Owns(TZoClassFieldType kind) {
    return kind == ftChildPointer || kind == ftChildPointerList || kind == ftChildValue ||
           kind == ftChildPointerMap;
}

Keys::Keys(Model& itsModel, const std::string& field) : byUid(field.empty()), model(&itsModel) {
    if (byUid) return;
    for (TZoClass* const type : ClassesOf(itsModel.Schema())) {
        const std::vector<std::string>& names = itsModel.NamesOf(*type);
        hasField = hasField || std::find(names.begin(), names.end(), field) != names.end();
    }
    itsModel.Each([&](const TZoRecord& record) { Add(itsModel, field, record); });
    owned = {};
    counts = {};
    Sort();
}

/// Of several objects with one uid the last is that of the uid; of several with one key, too.
void Keys::Sort() {
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& one, const Entry& other) { return one.uid < other.uid; });
    byKey.resize(entries.size());
    std::iota(byKey.begin(), byKey.end(), std::size_t{0});
    std::sort(byKey.begin(), byKey.end(), [this](std::size_t one, std::size_t other) {
        return std::pair(entries[one].key, one) < std::pair(entries[other].key, other);
    });
}

void Keys::Add(Model& from, const std::string& field, const TZoRecord& record) {
    TZoClass* const type = record.GetClass();
    if (type == nullptr) return;
    const std::vector<std::string>& names = from.NamesOf(*type);
    const auto index = std::find(names.begin(), names.end(), field) - names.begin();
    Hash hash;
    const auto owner = owned.find(record.GetUid());
    if (index < record.NValues()) {
        hash.Add(1)
            .Add(ClassName(*type))
            .Add(ValueText(record.Value(static_cast<int>(index) + 1), from.Reader()));
    } else if (owner != owned.end()) {
        hash.Add(2).Add(owner->second);
    } else {
        hash.Add(3).Add(static_cast<unsigned>(record.GetUid()));
    }
    const Key base = hash.Value();
    const Key key = hash.Add(counts[base]++).Value();
    entries.push_back({record.GetUid(), key});
    if (owner != owned.end()) owned.erase(owner);
    AddOwned(key, from, record);
}

void Keys::AddOwned(Key owner, Model& from, const TZoRecord& record) {
    for (int i = 1; i <= record.NValues(); ++i) {
        const TZoValue value = record.Value(i);
        if (!Owns(value.GetKind())) continue;
        const std::string& name = from.NamesOf(*record.GetClass())[static_cast<std::size_t>(i) - 1];
        for (int half = 1; half <= Halves(value); ++half) {
            for (int item = 1; item <= value.NItems(half); ++item) {
                const auto place = static_cast<std::uint64_t>(item) << 1 | static_cast<unsigned>(half - 1);
                owned.try_emplace(value.Uid(item, half), Hash().Add(owner).Add(name).Add(place).Value());
            }
        }
    }
}

Keys::Key Keys::Of(int uid) const {
    if (byUid || uid == 0) return static_cast<Key>(static_cast<unsigned>(uid));
    const auto behind = std::upper_bound(entries.begin(), entries.end(), uid,
                                         [](int wanted, const Entry& entry) { return wanted < entry.uid; });
    const bool isThere = behind != entries.begin() && behind[-1].uid == uid;
    return isThere ? behind[-1].key : Hash().Add(4).Add(static_cast<unsigned>(uid)).Value();
}

int Keys::Find(Key key) const {
    if (byUid) return model->Reader().ClassOf(static_cast<int>(key)) == nullptr ? 0 : static_cast<int>(key);
    const auto behind =
        std::upper_bound(byKey.begin(), byKey.end(), key,
                         [this](Key wanted, std::size_t place) { return wanted < entries[place].key; });
    const bool isThere = behind != byKey.begin() && entries[behind[-1]].key == key;
    return isThere ? entries[behind[-1]].uid : 0;
}

} // namespace ZoTool
