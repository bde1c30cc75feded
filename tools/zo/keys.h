#pragma once

#include "model.h"

#include <cstdint>

#include <string>
#include <unordered_map>
#include <vector>

namespace ZoTool {

/// What the objects of two files are matched by: numbers that are the same for objects that stand for each
/// other.
///
/// By uid, it is the uid. By a field, it is made of the class and the field's value; the second of two equal
/// ones is another object. An object without that field is told by its owner: by who owns it, in which field
/// and place.
class Keys {
public:
    using Key = std::uint64_t;

    /// An empty field: by uid. Reads the file if there is one.
    Keys(Model& model, const std::string& field);

    Key Of(int uid) const;
    /// 0: no object has it.
    int Find(Key key) const;
    /// Whether a class has the field.
    bool HasField() const { return hasField; }

private:
    void Add(Model& model, const std::string& field, const ZoPrimitives::TZoRecord& record);
    void Sort();
    void AddOwned(Key owner, Model& model, const ZoPrimitives::TZoRecord& record);

    bool byUid;
    bool hasField = false;
    Model* model;
    struct Entry {
        int uid;
        Key key;
    };
    std::vector<Entry> entries;     // by uid
    std::vector<std::size_t> byKey; // their places
    // While the file is read: the objects that are yet to come, by their owners, and how often a key was had.
    std::unordered_map<int, Key> owned;
    std::unordered_map<Key, unsigned> counts;
};

/// Whether a field owns the objects that it points to.
bool Owns(ZoPrimitives::TZoClassFieldType kind);

} // namespace ZoTool
