#pragma once

#include "Persistence/schema/FieldOffset.h"
#include "Persistence/schema/PointerResolver.h"
#include "ZoPrimitives/ZoMetaData.h"

#include <cstddef>
#include <cstdint>
#include <typeinfo>
#include <vector>

namespace ZoPrimitives {

/// How the records of one class of a file are read: the fields of the class and of its ancestors in the order
/// of the record, each with the application's field that takes it.
///
/// Every field takes at least one byte of a record, and no plan is made for a record that is too short for
/// all of them: plans stay within a multiple of the file, however often it repeats a class among ancestors.
struct ReadPlan {
    /// What becomes of a value.
    enum class Use : unsigned char {
        PassedOver,
        Set,    ///< it goes to the application's field
        Awaited ///< the same for a member that is an object and may be read where it stands
    };
    struct Step {
        TZoClassField* field; // the application's, or the file's where the value is passed over
        std::int32_t offset;  // of the member, in objects of `exactType`
        std::int8_t kind;     // `TZoClassFieldType`
        Use use;
        FlatRun run;
    };
    static_assert(sizeof(Step) == 16, "a byte of a record may bring one");
    struct Pointer {
        TZoClassFieldPointerBase* application;
        TZoPointerResolver::TypesTaken taken;
        bool single; // one object that is no member of its owner
        bool last;   // false: the application's field comes again, and its last value counts
    };

    /// The plan of the class of the stream's current record. Throws `XReadStream` when the record is too
    /// short for the class's fields.
    static ReadPlan& For(TZoClass& fileClass, TBinInStream& stream);
    /// Whether the accessors of a level's application class may be used on objects of `objectClass`'s: a file
    /// may give a class parents that it does not have in the application.
    static bool Applies(const TZoClass& level, const TZoClass& objectClass);

    /// Measures where the members lie in objects of the given one's type.
    void Measure(ZoStreamableBase* object);

    unsigned excluded = 0;      // number of fields that the application does not know
    bool hasSteps = false;      // false: there are too many fields, and readers walk the levels
    bool hasMembers = false;    // some members are objects
    bool awaitsMembers = false; // all of them may be read where they stand
    bool onlyRefers = false;    // all pointers are plain references, and nobody hears when they are set
    bool resolves = false;      // some pointer is no member, and is set after all records are read
    const std::type_info* exactType = nullptr;
    std::vector<Step> steps;
    std::vector<Pointer> pointers; // those that the application knows

private:
    void AddLevel(TZoClass& level, const TZoClass& objectClass);
    void AwaitMembers();
    bool OnlyRefers(const TZoClass* application) const;
};

} // namespace ZoPrimitives
