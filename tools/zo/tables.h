#pragma once

#include "database.h"
#include "model.h"
#include "tool.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ZoTool {

/// The objects of files as tables of a database, which are filled as far as they are asked for:
///
/// - a table for each class that is not abstract, inherited fields in it: `uid`, and a column for each value
/// and pointer (a
///   uid, or null). Lists are in tables of their own;
/// - a view for each abstract class, and "Class_all" for others that have subclasses: `uid`, `class` and the
/// class's
///   columns, of all objects that derive from it;
/// - a table "Class_field" for each list, of the class that declares it: `uid`, `position` (from 1) and
/// `item`; for a map
///   `key` and `value`;
/// - `objects` (uid, class, record, offset, bytes), `links` (source, field, position, target, owned) and
/// `list_integers`
///   (uid, field, position, value): what the application stores with lists.
///
/// Several files have a column `file` before these in all of them.
class Tables {
public:
    struct Column {
        std::string name;
        std::string type; ///< "" where files differ
    };
    using Columns = std::vector<Column>;
    enum class Kind { Class, View, List, Objects, Links, Integers };
    struct Table {
        Kind kind;
        std::string name;
        Columns columns; ///< without `file`
        std::string about;
        std::string select = {}; ///< of a view
    };
    using Names = std::set<std::string, std::less<>>;

    Tables(Tool& tool, Database& database, const std::vector<std::string>& files);

    const std::vector<std::unique_ptr<Table>>& All() const { return tables; }
    bool HasFileColumn() const { return files.size() > 1; }
    /// `Exit::Trouble` if a file could not be read as a whole, which has been told.
    Exit GetEnd() const { return end; }

    /// Whether no file could be read.
    bool HasNothing() const { return classes.empty(); }
    /// Fills those of the tables that are named; once.
    void Fill(const Names& names);

    /// The table of a class, or of a list that a class declares; null if there is none.
    const Table* OfClass(const std::string& name) const;
    const Table* OfList(const std::string& className, const std::string& field) const;

    /// An object's columns beside `uid`, by the fields of its class; lists have one, too, which no table has.
    static std::vector<std::string> ColumnsOf(ZoPrimitives::TZoClass& type);
    static bool IsList(ZoPrimitives::TZoClassFieldType kind);

private:
    struct File {
        std::string word;
        std::unique_ptr<Input> standardInput = nullptr; // which is read once
    };

    /// A class as all files together have it.
    struct Declared {
        bool isMade = false; // not abstract, in one of the files
        Columns columns;
        std::map<std::string, Columns> lists; // by field
        /// The classes that are it or derive from it and are not abstract, and where each has its columns.
        std::map<std::string, std::map<std::string, std::string>> made;
    };

    void Collect(const Model& model);
    void CollectMade(Declared& base, ZoPrimitives::TZoClass& type, ZoPrimitives::TZoClass& derived);
    void AddTables();
    void AddView(const std::string& name, const Declared& type);
    const Table* Add(Table table);
    std::string FreeName(const std::string& wanted);

    Tool& tool;
    Database& database;
    std::vector<File> files;
    std::vector<std::unique_ptr<Table>> tables;
    Names taken;                                                            // in small letters
    std::map<std::string, Declared> classes;                                // by name
    std::map<std::string, const Table*> classTables;                        // by class
    std::map<std::pair<std::string, std::string>, const Table*> listTables; // by class and field
    Exit end = Exit::Good;
};

} // namespace ZoTool
