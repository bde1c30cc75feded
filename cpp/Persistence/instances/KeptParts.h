#pragma once

#include "Persistence/instances/FieldLayout.h"
#include "ZoPrimitives/ZoStreamable.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace ZoPrimitives {

/// The pair of that uid in a list of pairs whose uids rise; null if there is none.
template <class Pairs>
const typename Pairs::value_type* AtUid(const Pairs& pairs, int uid) {
    const auto found = std::lower_bound(pairs.begin(), pairs.end(), uid,
                                        [](const auto& pair, int wanted) { return pair.first < wanted; });
    return found == pairs.end() || found->first != uid ? nullptr : &*found;
}

/// Where an object is that kept parts refer to; null once it has ended.
struct KeptAnchor {
    ZoStreamableBase* object;
};

/// Owns an object as a `pointer` does, but does not mind if it is deleted all the same.
class KeptHold {
public:
    explicit KeptHold(std::shared_ptr<const KeptAnchor> held) noexcept : anchor(std::move(held)) {
        ZoReferenceCount::Add(anchor->object);
    }
    ~KeptHold() {
        if (anchor != nullptr) ZoReferenceCount::Release(anchor->object);
    }
    KeptHold(KeptHold&&) noexcept = default;
    KeptHold& operator=(KeptHold&&) = delete;
    KeptHold(const KeptHold&) = delete;

private:
    std::shared_ptr<const KeptAnchor> anchor;
};

/// What the kept parts of one opened file have in common.
struct KeptFile {
    std::shared_ptr<const TZoMetaData> schema;
    /// Fields that hooks of the application have taken in all objects.
    std::set<const TZoClassField*> handled;
    /// The objects that kept parts refer to, by uid, which rises.
    std::vector<std::pair<int, std::shared_ptr<const KeptAnchor>>> objects;

    /// Null if the file has no such object, or it was not made, or has ended.
    ZoStreamableBase* Find(int uid) const;
};

/// What an opened file has of one object and the application does not know. Fields are the file's.
struct KeptPart {
    /// The value of a field, with uids as they stand in the file.
    struct Value {
        const TZoClassField* field;
        unsigned end; // in `bytes`, where the next one begins
        FieldLayout layout;
    };
    /// A reference that a known field cannot take.
    struct Reference {
        const TZoClassField* field;
        int half;           // of a map, from 0
        int uid;            // of a map of lists: the key's
        int valueUid;       // of a map of lists; otherwise 0
        unsigned place;     // in a list: how many items that the field took stand before
        const void* behind; // the last of those, or its key; compared, never followed
    };

    std::shared_ptr<const KeptFile> file;
    const TZoClass* recordClass;
    std::vector<unsigned char> bytes;
    std::vector<Value> values; // in the order of the record
    std::vector<Reference> references;
    std::vector<KeptHold> holds; // what the part owns
    std::vector<int> roots;      // uids of the file's further roots; the part is that of the first
};

/// The kept parts of objects. They belong to an object's address and end with it.
class KeptParts {
public:
    /// Whether the object has a part or is referred to by one.
    static bool Has(const ZoStreamableBase& object) noexcept { return object.kept != 0; }
    /// Null if the object has none.
    static const KeptPart* Find(const ZoStreamableBase& object);
    static void Set(ZoStreamableBase& object, std::unique_ptr<const KeptPart> part);
    /// Ends the object's part.
    static void Drop(const ZoStreamableBase& object) noexcept;
    static std::shared_ptr<const KeptAnchor> AnchorOf(ZoStreamableBase& object);

private:
    friend class ZoStreamableBase;
    struct Entry;
    class Table;
    static void End(const ZoStreamableBase& object) noexcept;
};

} // namespace ZoPrimitives
