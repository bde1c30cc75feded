#pragma once

#include "Persistence/schema/FieldOffset.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

namespace ZoPrimitives {

/// What is written of the objects of one class that are of its own C++ type, in the order of the record.
struct WritePlan {
    struct Step {
        TZoClassField* field; // null: the object hears `WillWrite`
        TZoClassFieldType kind{};
        FlatRun run{};
        std::ptrdiff_t offset = FieldOffset::NONE; // of the member; `NONE` where accessors are used
    };
    /// Where a walk goes from an object.
    struct Target {
        TZoClassFieldPointerBase* field; // one object or a list, never a map; null: the externals of a level
        const TZoClass* externalsOf;
        bool nullTold = false; // a walk has met a field that held nothing
    };

    explicit WritePlan(const TZoClass& objectClass);
    /// Finds the members in such an object.
    void Measure(ZoStreamableBase* object);

    bool measured = false;
    bool steady; // no code of the application runs while such an object is written
    std::vector<Step> steps;
    std::vector<Target> targets;
    std::vector<const Step*> buffered; // the first texts and lists, which keep their values in a buffer
};

/// The plans of one streamer or walk.
class WritePlans {
public:
    WritePlan& Of(const TZoClass& objectClass) {
        const auto id = static_cast<std::size_t>(objectClass.GetClassId());
        if (id < byId.size() && byId[id].objectClass == &objectClass) return *byId[id].plan;
        return Make(objectClass);
    }
    void Clear() {
        byId.clear();
        others.clear();
    }

private:
    struct Entry {
        const TZoClass* objectClass = nullptr;
        std::unique_ptr<WritePlan> plan;
    };
    WritePlan& Make(const TZoClass& objectClass);

    std::vector<Entry> byId;                                                // by class id
    std::unordered_map<const TZoClass*, std::unique_ptr<WritePlan>> others; // whose id another schema's has
};

} // namespace ZoPrimitives
