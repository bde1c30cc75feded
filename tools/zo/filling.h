#pragma once

#include "tables.h"

#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace ZoTool {

/// Puts the objects of one file into some of the tables.
class Filling {
public:
    Filling(Tool& tool, Database& database, const Tables& tables, const Tables::Names& names,
            const Input& input);
    ~Filling();

    Exit Run();

private:
    class Rows;
    struct Plan;

    Rows* RowsOf(const Tables::Table* table);
    Plan MakePlan(ZoPrimitives::TZoClass& type);
    void FillObjects(Rows& rows);
    void Add(const ZoPrimitives::TZoRecord& record);
    void AddList(Rows& rows, int uid, const ZoPrimitives::TZoValue& value);
    void AddLinks(int uid, const std::string& field, const ZoPrimitives::TZoValue& value);
    void AddIntegers(int uid, const std::string& field, const ZoPrimitives::TZoValue& value);

    Tool& tool;
    Model model;
    const Tables& tables;
    std::unordered_map<const Tables::Table*, std::unique_ptr<Rows>> rowsOf; // of the tables to fill
    Rows* objects = nullptr;
    Rows* links = nullptr;
    Rows* integers = nullptr;
    std::unordered_map<const ZoPrimitives::TZoClass*, Plan> plans; // of the classes that are needed
    unsigned long long repeated = 0;                               // uids that came before
};

} // namespace ZoTool
