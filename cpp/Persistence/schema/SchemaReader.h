#pragma once

#include "ZoPrimitives/ZoMetaData.h"

#include <utility>
#include <vector>

namespace ZoPrimitives {

/// Reads a schema record into an empty schema, checks it and links its classes to the application's.
class SchemaReader {
public:
    /// Stands in a class's entry where older files have their one parent.
    static constexpr int PARENTS_FOLLOW = -1;
    /// The most class levels that one object may walk; a repeated parent counts each time.
    static constexpr unsigned MAX_LEVELS = 1000;
    /// `application` may be null.
    SchemaReader(TZoMetaData& schema, const TZoMetaData* application)
        : schema(schema), application(application) {}

    /// Returns false when the schema contradicts itself; no class has parents then.
    bool Read(TBinInStream& stream);
    /// Reads the entry of one class.
    static void ReadClass(TBinInStream& stream, TZoClass& read);
    /// The application's class for a file's class of that name; null if there is none.
    static TZoClass* ApplicationsClass(const TZoMetaData& application, const ZoString& name);

private:
    using Position = unsigned; // of a class in the schema, from 0

    bool ReadClasses(TBinInStream& stream);
    bool FindParents();
    static int ReadBlock(TBinInStream& stream, TZoClass& read);
    bool LevelsAreSound() const;
    void LinkParents();
    bool LinkFields();
    TZoClass* ClassAt(Position position) const { return schema.classes[position + 1ULL].get(); }
    const std::pair<int, Position>* Find(int id) const;

    TZoMetaData& schema;
    const TZoMetaData* application;
    std::vector<std::pair<int, Position>> byId; // in ascending order
    // The parents of all classes, class by class, and where those of each class begin.
    std::vector<Position> parents;
    std::vector<Position> firstParent;
};

} // namespace ZoPrimitives
