#include "filling.h"

#include "fields.h"
#include "text.h"
#include "values.h"
#include "words.h"

#include <algorithm>
#include <cmath>

namespace ZoTool {

using namespace ZoPrimitives;

/// Adds rows to one table.
class Filling::Rows {
public:
    Rows(Database& itsDatabase, const Tables::Table& table, const std::string* file)
        : database(itsDatabase), insert(itsDatabase, Text(table, file != nullptr)), fileName(file),
          first(file == nullptr ? 1 : 2) {}

    /// The column counts from 1, without `file`.
    void Set(int column, long long value) { insert.Bind(first + column - 1, value); }
    void SetText(int column, std::string_view utf8) { insert.BindText(first + column - 1, utf8); }
    void Set(int column, const Scalar& scalar) {
        const int at = first + column - 1;
        if (const auto* const is = std::get_if<bool>(&scalar)) insert.Bind(at, static_cast<long long>(*is));
        if (const auto* const integer = std::get_if<long long>(&scalar)) insert.Bind(at, *integer);
        if (const auto* const real = std::get_if<double>(&scalar)) insert.Bind(at, *real);
        if (const auto* const text = std::get_if<ZoTool::Text>(&scalar))
            insert.BindText(at, Utf8(text->windows1252));
        if (const auto* const blob = std::get_if<Blob>(&scalar)) insert.BindBlob(at, blob->bytes);
        if (const auto* const pointer = std::get_if<Pointer>(&scalar)) {
            if (pointer->uid != 0)
                insert.Bind(at, static_cast<long long>(pointer->uid)); // else it is null already
        }
    }
    /// Adds the row; false if its key is there already.
    bool Add() {
        if (fileName != nullptr) insert.BindText(1, *fileName);
        insert.Step();
        insert.Reset();
        return database.Changes() != 0;
    }

private:
    static std::string Text(const Tables::Table& table, bool hasFile) {
        std::string marks = hasFile ? "?" : "";
        for (std::size_t i = 0; i < table.columns.size(); ++i) marks += marks.empty() ? "?" : ", ?";
        return fmt::format("INSERT OR IGNORE INTO {} VALUES ({})", SqlName(table.name), marks);
    }

    Database& database;
    Statement insert;
    const std::string* fileName;
    int first;
};

/// Where the values of a class go.
struct Filling::Plan {
    Rows* rows = nullptr; // of the class's own table, if it is to be filled
    struct Step {
        std::string field;
        int column = 0;       // of that table; 0: none
        Rows* list = nullptr; // null: it is none, or is not to be filled
        bool links = false;
        bool integers = false;
    };
    std::vector<Step> steps; // by value

    bool IsNeeded() const {
        return rows != nullptr || std::any_of(steps.begin(), steps.end(), [](const Step& step) {
                   return step.list != nullptr || step.links || step.integers;
               });
    }
};

Filling::Filling(Tool& itsTool, Database& database, const Tables& itsTables, const Tables::Names& names,
                 const Input& input)
    : tool(itsTool), model(itsTool, input), tables(itsTables) {
    for (const auto& table : tables.All()) {
        if (table->kind == Tables::Kind::View || names.count(table->name) == 0) continue;
        rowsOf[table.get()] =
            std::make_unique<Rows>(database, *table, tables.HasFileColumn() ? &model.Name() : nullptr);
        if (table->kind == Tables::Kind::Objects) objects = RowsOf(table.get());
        if (table->kind == Tables::Kind::Links) links = RowsOf(table.get());
        if (table->kind == Tables::Kind::Integers) integers = RowsOf(table.get());
    }
    for (TZoClass* const type : ClassesOf(model.Schema())) {
        Plan plan = MakePlan(*type);
        if (plan.IsNeeded()) plans.emplace(type, std::move(plan));
    }
}

Filling::~Filling() = default;

Filling::Rows* Filling::RowsOf(const Tables::Table* table) {
    const auto found = rowsOf.find(table);
    return found == rowsOf.end() ? nullptr : found->second.get();
}

Filling::Plan Filling::MakePlan(TZoClass& type) {
    Plan plan;
    const Tables::Table* const table = tables.OfClass(ClassName(type));
    plan.rows = RowsOf(table);
    const std::vector<TZoClassField*> fields = AllFields(type);
    const std::vector<std::string> names = Tables::ColumnsOf(type);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        Plan::Step step;
        step.field = names[i];
        if (Tables::IsList(fields[i]->GetFieldType())) {
            step.list = RowsOf(tables.OfList(ClassName(*fields[i]->GetOwnerClass()), FieldName(*fields[i])));
            step.integers = integers != nullptr;
        } else if (plan.rows != nullptr) {
            const auto found =
                std::find_if(table->columns.begin(), table->columns.end(),
                             [&](const Tables::Column& column) { return column.name == names[i]; });
            step.column = static_cast<int>(found - table->columns.begin()) + 1;
        }
        step.links = links != nullptr && fields[i]->IsPointerKind();
        plan.steps.push_back(std::move(step));
    }
    return plan;
}

Exit Filling::Run() {
    if (objects != nullptr) FillObjects(*objects);
    if (!plans.empty()) {
        std::unordered_set<int> ids;
        for (const auto& [type, plan] : plans) ids.insert(type->GetClassId());
        const bool all = static_cast<int>(ids.size()) == model.Schema().GetClassCount();
        model.Each([&](const TZoRecord& record) { Add(record); }, all ? nullptr : &ids);
    }
    const Exit end = model.TellLosses();
    if (repeated == 0) return end;
    tool.Warn(model.Name(),
              Words("{} with a uid that an object before has: not in the tables; \"zo verify\" tells which",
                    Counted(repeated, "object")));
    return Exit::Trouble;
}

void Filling::FillObjects(Rows& rows) {
    model.EachHead([&](const TZoFrame& frame) {
        rows.Set(1, static_cast<long long>(frame.uid));
        const TZoClass* const type = model.Schema().FindClass(frame.classId);
        if (type != nullptr) rows.SetText(2, ClassName(*type));
        rows.Set(3, static_cast<long long>(frame.number));
        rows.Set(4, static_cast<long long>(frame.offset));
        rows.Set(5, static_cast<long long>(frame.size));
        if (!rows.Add()) ++repeated;
    });
}

void Filling::Add(const TZoRecord& record) {
    const auto found = plans.find(record.GetClass());
    if (found == plans.end()) return;
    const Plan& plan = found->second;
    const int uid = record.GetUid();
    if (plan.rows != nullptr) plan.rows->Set(1, static_cast<long long>(uid));
    for (int i = 1; i <= record.NValues(); ++i) {
        const Plan::Step& step = plan.steps[static_cast<std::size_t>(i) - 1];
        if (step.column == 0 && step.list == nullptr && !step.links && !step.integers) continue;
        const TZoValue value = record.Value(i);
        if (step.column != 0) plan.rows->Set(step.column, Scalars(value)[1]);
        if (step.list != nullptr) AddList(*step.list, uid, value);
        if (step.links) AddLinks(uid, step.field, value);
        if (step.integers) AddIntegers(uid, step.field, value);
    }
    if (plan.rows != nullptr && !plan.rows->Add() && objects == nullptr) ++repeated;
}

void Filling::AddList(Rows& rows, int uid, const TZoValue& value) {
    const Scalars first(value);
    const Scalars second(value, Halves(value));
    const int count = std::max(first.Count(), second.Count());
    for (int i = 1; i <= count; ++i) {
        rows.Set(1, static_cast<long long>(uid));
        rows.Set(2, static_cast<long long>(i));
        if (i <= first.Count()) rows.Set(3, first[i]);
        if (second.half == 2 && i <= second.Count()) rows.Set(4, second[i]);
        rows.Add();
    }
}

void Filling::AddLinks(int uid, const std::string& field, const TZoValue& value) {
    const TZoClassFieldType kind = value.GetKind();
    const bool owned = kind == ftChildPointer || kind == ftChildPointerList || kind == ftChildValue ||
                       kind == ftChildPointerMap;
    for (int half = 1; half <= Halves(value); ++half) {
        const Scalars scalars(value, half);
        for (int i = 1; i <= scalars.Count(); ++i) {
            const int target = value.Uid(i, half);
            if (target == 0) continue;
            links->Set(1, static_cast<long long>(uid));
            links->SetText(2, field);
            if (scalars.IsList()) links->Set(3, static_cast<long long>(i));
            links->Set(4, static_cast<long long>(target));
            links->Set(5, static_cast<long long>(owned));
            links->Add();
        }
    }
}

void Filling::AddIntegers(int uid, const std::string& field, const TZoValue& value) {
    for (int half = 1; half <= Halves(value); ++half) {
        const Scalars scalars(value, half);
        for (int i = 1; i <= scalars.Integers(); ++i) {
            integers->Set(1, static_cast<long long>(uid));
            integers->SetText(2, field);
            integers->Set(3, static_cast<long long>(i + 2 * (half - 1)));
            integers->Set(4, static_cast<long long>(scalars.Integer(i)));
            integers->Add();
        }
    }
}

} // namespace ZoTool
