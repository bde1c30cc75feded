#include "support/EveryKind.h"

#include "Persistence/instances/InstanceTables.h"
#include "Persistence/schema/PointerResolver.h"
#include "Persistence/schema/WritePlan.h"

#include <algorithm>

using namespace ZoPrimitives;

namespace {

std::vector<Row> WrittenSchema(TZoMetaData& schema) {
    TMemoryBinOutStream stream;
    stream.Initialize();
    schema.SaveToStream(&stream);
    return RowsOf(BytesOf(stream));
}

/// A schema read from the bytes of its record.
struct LoadedSchema {
    explicit LoadedSchema(const std::string& payload, TZoMetaData* application = nullptr)
        : file(FileOf({Row{0, 0, payload}})), stream(file.data(), file.size(), 0) {
        stream.Initialize();
        int uid = 0;
        int classId = 0;
        EXPECT_TRUE(stream.LoadRecord(&uid, &classId));
        sound = schema.LoadFromStream(&stream, application);
    }
    std::string file;
    TMemoryBinInStream stream;
    TZoMetaData schema;
    bool sound = false;
};

class NoFields : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(NoFields)
    REGISTER_ZO_END
};

class OnlyMaps : public NoFields {
    REGISTER_ZO_BEGIN(OnlyMaps, NoFields)
    DECLARE_ZO_FIELD_CHILD_MAP(NoFields, NoFields, pairs)
    REGISTER_ZO_END
};

TEST(ZoMetaDataTests, HoldsEveryClassByteByByte) {
    const std::tuple<const char*, void (*)(TZoMetaData&), std::vector<ClassEntry>> cases[] = {
        {"all kinds, maps in a block of their own before the values", app::RegisterEveryKind,
         app::EveryKindEntries()},
        {"no field: five empty blocks; only maps: no value",
         [](TZoMetaData& schema) {
             NoFields::Register(&schema);
             OnlyMaps::Register(&schema);
         },
         {{.id = 1, .name = "NoFields"},
          {.id = 2, .name = "OnlyMaps", .parents = {1}, .maps = {{1, -19, "pairs"}}}}},
        {"no class", [](TZoMetaData&) {}, {}},
    };
    for (const auto& [name, registerClasses, entries] : cases) {
        SCOPED_TRACE(name);
        TZoMetaData schema;
        registerClasses(schema);
        const std::vector<Row> expected{{0, 0, SchemaOf(entries)}};
        EXPECT_EQ(WrittenSchema(schema), expected);
        LoadedSchema loaded(expected[0].payload);
        ASSERT_TRUE(loaded.sound);
        EXPECT_EQ(WrittenSchema(loaded.schema), expected) << "as read";
    }
}

TEST(ZoClassTests, IsWrittenAndReadByItself) {
    TZoMetaData schema;
    app::RegisterEveryKind(schema);
    TMemoryBinOutStream out;
    out.Initialize();
    schema.FindClass("EveryKind")->SaveMetaToStream(&out);
    out.FlushRecord(0, 0);
    const std::string file = BytesOf(out);
    EXPECT_EQ(RowsOf(file)[0].payload, std::string(app::EveryKindEntries()[1].Bytes()));
    TZoClass read(&schema, nullptr, "Before", nullptr, false, nullptr);
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    stream.Initialize();
    int uid = 0, classId = 0;
    EXPECT_TRUE(stream.LoadRecord(&uid, &classId));
    read.LoadMetaFromStream(&stream);
    EXPECT_EQ(Text(read.GetName()), "EveryKind");
    EXPECT_EQ(FieldNames(read).size(), app::EveryKindFields().size());
}

TEST(ZoMetaDataTests, StaysInStepWithOtherLayouts) {
    const Payload empty = Payload().Ints({0, 0, 0, 0});
    const auto head = [] { return Payload().Int(2).Text("C").Bool(false); };
    const auto block = [&](const std::vector<FieldEntry>& fields, const Payload& next = {}) {
        return head().Ints({-1, 0}).Add(ClassEntry::Block(fields)).Add(next).Add(empty);
    };
    // The schema entry of class 2 (class 1 is "P"), its parents, its fields.
    const std::tuple<const char*, Payload, Names, Names> cases[] = {
        {"one parent in place of the marker", head().Ints({1, 0}).Add(empty), {"P"}, {}},
        {"no parent in place of the marker", head().Ints({0, 0}).Add(empty), {}, {}},
        {"parents that are none", head().Ints({-1, 3, 0, 1, 0, 0}).Add(empty), {"P"}, {}},
        {"one parent twice", head().Ints({-1, 2, 1, 1, 0}).Add(empty), {"P", "P"}, {}},
        {"kinds that are none of ours make no field",
         block(
             {{0, 0, "zero"}, {0, -20, "below"}, {0, -1, "kept"}, {77, 1, "above"}, {0, -2147483647, "far"}}),
         {},
         {"kept"}},
        {"the last kind tells a block of maps, also behind unknown ones",
         block({{0, 5, "unknown"}, {0, -19, "map"}}, ClassEntry::Block({{0, -1, "value"}})),
         {},
         {"map", "value"}},
        {"a map that is not last leaves it a block of values",
         block({{0, -19, "map"}, {0, -1, "value"}}),
         {},
         {"map", "value"}},
        {"the kind as stored, whatever block it stands in",
         block({{0, -6, "child"}, {0, -1, "value"}}),
         {},
         {"value", "child"}},
    };
    for (const auto& [name, entry, parents, fields] : cases) {
        SCOPED_TRACE(name);
        LoadedSchema loaded(Payload()
                                .Int(3)
                                .Add(ClassEntry{.id = 1, .name = "P"}.Bytes())
                                .Add(entry)
                                .Add(ClassEntry{.id = 3, .name = "Last"}.Bytes()));
        ASSERT_TRUE(loaded.sound);
        TZoClass* read = loaded.schema.FindClass(2);
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(ParentNames(*read), parents);
        EXPECT_EQ(FieldNames(*read), fields);
        ASSERT_NE(loaded.schema.FindClass(3), nullptr) << "out of step";
        EXPECT_EQ(Text(loaded.schema.FindClass(3)->GetName()), "Last");
    }
}

TEST(ZoMetaDataTests, RefusesWhatContradictsItself) {
    const auto chain = [](int length) {
        std::vector<ClassEntry> classes;
        for (int i = 1; i <= length; ++i) {
            classes.push_back({.id = i, .name = "C" + std::to_string(i), .parents = {}});
            if (i > 1) classes.back().parents = {i - 1};
        }
        return classes;
    };
    const auto doubled = [&](int length) {
        auto classes = chain(length);
        for (auto& entry : classes) {
            if (!entry.parents.empty()) entry.parents.push_back(entry.parents[0]);
        }
        return classes;
    };
    const auto reversed = [](std::vector<ClassEntry> classes) {
        std::reverse(classes.begin(), classes.end());
        return classes;
    };
    const std::tuple<const char*, std::vector<ClassEntry>, bool> cases[] = {
        {"unknown parent", {{.id = 1, .parents = {2}}}, false},
        {"unknown class of a child, below a parent",
         {{.id = 2, .name = "P"}, {.id = 1, .parents = {2}, .children = {{9, -6, "f"}}}},
         false},
        {"unknown class of a map", {{.id = 1, .maps = {{9, -19, "f"}}}}, false},
        {"unknown class of a reference list", {{.id = 1, .referenceLists = {{9, -9, "f"}}}}, false},
        {"a value's class is not looked up", {{.id = 1, .values = {{9, -1, "f"}}}}, true},
        {"nor that of a kind that makes no field", {{.id = 1, .children = {{9, -99, "f"}}}}, true},
        {"id 0", {{.id = 0}}, false},
        {"negative id", {{.id = -1}}, false},
        {"an id twice", {{.id = 4, .name = "A"}, {.id = 4, .name = "B"}}, false},
        {"a name twice", {{.id = 4, .name = "A"}, {.id = 5, .name = "A"}}, true},
        {"the greatest id", {{.id = 2147483647}}, true},
        {"a thousand parents that are none", {{.id = 1, .parents = std::vector<int>(1000)}}, true},
        {"its own parent", {{.id = 1, .parents = {1}}}, false},
        {"its own grandparent",
         {{.id = 1, .name = "A", .parents = {2}}, {.id = 2, .name = "B", .parents = {1}}},
         false},
        {"a diamond",
         {{.id = 1, .name = "D", .parents = {2, 3}},
          {.id = 2, .name = "B", .parents = {4}},
          {.id = 3, .name = "C", .parents = {4}},
          {.id = 4, .name = "A"}},
         true},
        {"1,000 levels, children first", reversed(chain(1000)), true},
        {"1,001 levels", chain(1001), false},
        {"100,000 levels, children first", reversed(chain(100'000)), false},
        {"levels that double: 511", doubled(9), true},
        {"levels that double: 1,023", doubled(10), false},
        {"levels that double: 2^30", doubled(30), false},
    };
    for (const auto& [name, classes, sound] : cases) {
        SCOPED_TRACE(name);
        LoadedSchema loaded(SchemaOf(classes));
        EXPECT_EQ(loaded.sound, sound);
        for (int i = 1; !sound && i <= loaded.schema.GetClassCount(); ++i)
            EXPECT_TRUE(loaded.schema.GetClass(i)->GetParentClasses()->NItems() == 0);
    }
    LoadedSchema loaded(SchemaOf({{.id = 7, .name = "A"}, {.id = 3, .name = "B"}}));
    EXPECT_EQ(NoFields::Register(&loaded.schema)->GetClassId(), 8) << "ids stay taken";
    LoadedSchema greatest(SchemaOf({{.id = 2147483647, .name = "A"}, {.id = 2, .name = "B"}}));
    EXPECT_EQ(NoFields::Register(&greatest.schema)->GetClassId(), 1) << "the first that is left";
    EXPECT_EQ(OnlyMaps::Register(&greatest.schema)->GetClassId(), 3);
}

namespace second {
class NoFields : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(NoFields)
    REGISTER_ZO_END
};
} // namespace second

class Unnamed : public NoFields {
    ZO_BEGIN_NAMES(Unnamed, "NULL", "NULL", "NULL")
    REGISTER_ZO_END
};

TEST(ZoMetaDataTests, CheckTellsWhatIsMissingAndWhatIsLostAlthoughAllIsThere) {
    const auto byHand = [](TZoMetaData* schema) {
        auto* made = new TZoClass(schema, nullptr, "ByHand", nullptr, false, nullptr);
        made->AddFieldPointer("nameless", nullptr, nullptr, nullptr);
        made->AddFieldPointer("generic", nullptr, nullptr, nullptr)->SetFieldClassName("ZoObjectStreamable");
        return schema->AddClass(made);
    };
    const auto none = NoFields::Register<NoFields>;
    const auto other = second::NoFields::Register<second::NoFields>;
    const auto untyped = [](TZoMetaData* schema) {
        return schema->AddClass(new TZoClass(schema, nullptr, "NoFields", nullptr, false, nullptr));
    };
    const auto typed = [](TZoMetaData* schema) {
        auto* made = new TZoClass(schema, nullptr, "NoFields", nullptr, false, nullptr);
        made->SetType(typeid(second::NoFields), 0);
        return schema->AddClass(made);
    };
    const std::tuple<const char*, std::vector<TZoClass* (*)(TZoMetaData*)>, std::string> rows[] = {
        {"nothing registered", {}, ""},
        {"neither parent nor target",
         {OnlyMaps::Register<OnlyMaps>},
         "[zoerror] parent class of OnlyMaps not registered\n"
         "[zoerror] class NoFields of reference field pairs not registered"},
        {"a field without a class, one of any class",
         {byHand},
         "[zoerror] class of reference field nameless not registered"},
        {"a class without fields",
         {none, OnlyMaps::Register<OnlyMaps>},
         "[zowarning] class NoFields of reference field pairs has no fields: its objects are not saved"},
        {"a base that is not named",
         {none, Unnamed::Register<Unnamed>},
         "[zowarning] class Unnamed derives from NoFields, which its registration does not name: the fields "
         "of NoFields are not saved. See REGISTER_ZO_BEGIN"},
        {"nor registered", {Unnamed::Register<Unnamed>}, ""},
        {"one name twice",
         {none, none, other, other, untyped},
         "[zowarning] two C++ classes are called NoFields: the second one is not registered"},
        {"and by hand",
         {none, typed},
         "[zowarning] two C++ classes are called NoFields: the second one is not registered"},
    };
    for (const auto& [name, registered, told] : rows) {
        SCOPED_TRACE(name);
        TZoMetaData schema;
        for (const auto registers : registered) registers(&schema);
        ZoString missing, warnings;
        const bool sound = told.rfind("[zoerror]", 0) != 0;
        EXPECT_TRUE(schema.Check(&missing, &warnings) == sound && schema.Check(nullptr) == sound);
        EXPECT_EQ(Text(sound ? warnings : missing), told);
        EXPECT_EQ(Text(sound ? missing : warnings), "");
        EXPECT_EQ(FailureOf([&] { schema.CheckOrThrow(); }),
                  told.empty() ? "" : told + " @ TZoMetaData::CheckOrThrow");
        schema.Clear();
        EXPECT_NO_THROW(schema.CheckOrThrow());
    }
}

struct Top : virtual ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Top)
    DECLARE_ZO_FIELD(int, shared)
    DECLARE_ZO_FIELD_CHILD(NoFields, topChild)
    REGISTER_ZO_END
};
struct Left : virtual Top {
    REGISTER_ZO_BEGIN(Left, Top)
    DECLARE_ZO_FIELD_CHILD_MAP(NoFields, NoFields, leftMap)
    DECLARE_ZO_FIELD(int, leftValue)
    REGISTER_ZO_END
};
struct Right : virtual Top {
    REGISTER_ZO_BEGIN(Right, Top)
    DECLARE_ZO_FIELD_REFERENCE_LIST(NoFields, rightList)
    REGISTER_ZO_END
};
struct Both : Left, Right {
    REGISTER_ZO_BEGIN(Both, Left, Right)
    DECLARE_ZO_FIELD_REFERENCE(NoFields, last)
    DECLARE_ZO_FIELD(double, leftValue)
    DECLARE_ZO_FIELD_CHILD_LIST(NoFields, first)
    REGISTER_ZO_END
};

TEST(ZoMetaDataTests, QueriesFollowParentsInOrder) {
    TZoMetaData schema;
    NoFields::Register(&schema);
    TZoClass* top = Top::Register(&schema);
    TZoClass* left = Left::Register(&schema);
    TZoClass* right = Right::Register(&schema);
    TZoClass* both = Both::Register(&schema);

    EXPECT_EQ(both->GetParentClass(), left);
    EXPECT_EQ(top->GetParentClass(), nullptr);
    EXPECT_TRUE(both->IsInherited(top) && both->IsInherited(both));
    EXPECT_FALSE(top->IsInherited(both) || left->IsInherited(right));
    EXPECT_TRUE(schema.IsClassInherited("Both", "Top"));
    EXPECT_FALSE(schema.IsClassInherited("Top", "Both") || schema.IsClassInherited("Nowhere", "Top"));
    EXPECT_EQ(schema.FindInherited("Top"), left);
    EXPECT_EQ(schema.FindInherited("Both"), nullptr);
    EXPECT_FALSE(schema.DoesClassExist("right"));

    // Own fields first, then the parents', first parent first.
    EXPECT_EQ(both->FindField("leftValue")->GetFieldType(), ftDouble);
    EXPECT_EQ(both->FindField("shared")->GetOwnerClass(), top);
    EXPECT_EQ(both->FindField("rightList")->GetOwnerClass(), right);
    EXPECT_EQ(top->FindField("leftValue"), nullptr);
    EXPECT_EQ(FieldNames(*both), (Names{"leftValue", "first", "last"}));
    EXPECT_EQ(AssertionOf([&] { both->GetField(0); }).source, "cpp/Persistence/ZoMetaData");
    EXPECT_EQ(AssertionOf([&] { both->GetField(4); }).source, "cpp/Persistence/ZoMetaData");
    TIList<TZoClassField> all;
    both->FillAllClassFields(&all);
    Names names;
    for (const auto& field : all) names.push_back(Text(field->GetFieldName()));
    EXPECT_EQ(names, (Names{"shared", "topChild", "leftMap", "leftValue", "shared", "topChild", "rightList",
                            "leftValue", "first", "last"}));
    // A map takes two places, a grandparent reached twice counts twice.
    EXPECT_EQ(top->GetFieldPointerCount(), 1U);
    EXPECT_EQ(left->GetFieldPointerCount(), 3U);
    EXPECT_EQ(both->GetFieldPointerCount(), 3U + 2U + 2U);
}

/// Calls for each field of `EveryKind` the operation for its C++ class.
template <class Action>
void ForEachField(TZoClass& every, Action action) {
    for (const app::FieldBytes& bytes : app::EveryKindFields()) action(*every.FindField(bytes.name.c_str()));
}

TEST(ZoClassFieldTests, AreWrittenAndReadOneByOneAndByTheirClass) {
    TZoMetaData schema;
    app::RegisterEveryKind(schema);
    TZoClass& every = *schema.FindClass("EveryKind");
    app::Leaf outside(99);
    app::EveryKind written;
    written.Fill(outside);
    std::vector<Row> expected = app::EveryKindRows();
    expected.pop_back(); // the external leaf
    for (const bool byClass : {false, true}) {
        TMemoryBinOutStream out;
        out.Initialize();
        TBinOutStreamer streamer(&out, &schema);
        TDList<ZoStreamableBase*> externals;
        every.AllocateHandles(&out, &written, &externals);
        streamer.AlocateExternalInstancesHandles(nullptr, &externals);
        if (byClass)
            every.SaveToStreamPre(&out, &streamer, &written);
        else
            ForEachField(every, [&](TZoClassField& field) {
                if (auto* single = dynamic_cast<TZoClassFieldPointer*>(&field))
                    single->SavePointer(&out, &streamer, &written);
                else if (auto* list = dynamic_cast<TZoClassFieldPointerList*>(&field))
                    list->SavePointers(&out, &streamer, &written);
                else if (auto* map = dynamic_cast<TZoClassFieldPointerMap*>(&field))
                    map->SavePair(&out, &streamer, &written);
                else
                    field.SaveToStream(&out, &streamer, &written);
            });
        out.FlushRecord(1, 2);
        if (byClass)
            every.SaveToStreamPos(&out, &streamer, &written);
        else
            for (const char* owning : {"map", "child", "member", "children"}) // writes what it owns
                every.FindField(owning)->SaveToStream(&out, &streamer, &written);
        EXPECT_EQ(RowsOf(BytesOf(out)), expected);

        const std::string file = FileOf(expected);
        TMemoryBinInStream in(file.data(), file.size(), 0);
        in.Initialize();
        int uid = 0, classId = 0;
        in.LoadRecord(&uid, &classId);
        app::EveryKind read;
        LoadedSchema loaded(SchemaOf(app::EveryKindEntries()), &schema);
        TZoClass& fileClass = *loaded.schema.FindClass("EveryKind");
        if (byClass)
            fileClass.LoadFromStreamPre(&in, &read);
        else
            ForEachField(fileClass, [&](TZoClassField& field) { field.LoadFromStream(&in, &read); });
        EXPECT_EQ(read.anUnsigned, 4'000'000'000U);
        EXPECT_TRUE(read.ints == written.ints && read.strings == written.strings &&
                    read.aBlob == written.aBlob);

        in.SetRecordPosition(0);
        fileClass.LoadFromStream(&in, &read);
        in.SetHandle(&outside, 4);
        auto& unresolved = InstanceTables::Of(in).unresolved;
        TZoPointerResolver resolver(in, nullptr, nullptr);
        resolver.Begin(unresolved.Uids() + in.GetUnresolved(1)->firstUid, false);
        fileClass.LoadResolvePointers(resolver, &read);
        EXPECT_EQ(read.child.get(), &outside);
        ZoReferenceCount::Add(&outside);
    }
}

TEST(ZoClassFieldTests, NamesAMapsSubFieldsByItsClass) {
    TZoMetaData schema;
    TZoClass target(&schema, nullptr, "Target", nullptr, false, nullptr);
    TZoClass owner(&schema, nullptr, "Owner", nullptr, false, nullptr);
    for (TZoClass* known : {&target, static_cast<TZoClass*>(nullptr)}) {
        const char* subName = known != nullptr ? "Target" : "<unresolve>";
        auto* map = owner.AddFieldChildPointerMap("m", known, nullptr, nullptr);
        map->AddFields(ftChildPointer, ftChildPointerList);
        for (TZoClassField* half : {map->GetKeyField(), map->GetValueField()}) {
            EXPECT_EQ(Text(half->GetFieldName()), subName);
            EXPECT_EQ(half->GetFieldClass(), known);
        }
        EXPECT_EQ(map->GetKeyField()->GetFieldType(), ftChildPointer);
        EXPECT_EQ(map->GetValueField()->GetFieldType(), ftChildPointerList);
        if (known != nullptr) continue;
        map->SetFieldClassName("NoFields");
        schema.AddToResolveCrossRefs(map);
        TZoClass* late = NoFields::Register(&schema);
        EXPECT_EQ(map->GetKeyField()->GetFieldClass(), late);
        EXPECT_EQ(Text(map->GetValueField()->GetFieldName()), "NoFields");
    }
}

TEST(ZoClassFieldTests, RefusesAMapsSubFieldsThatAreNoPointersToOneOrOwned) {
    TZoMetaData schema;
    TZoClass owner(&schema, nullptr, "Owner", nullptr, false, nullptr);
    auto* map = owner.AddFieldChildPointerMap("m", nullptr, nullptr, nullptr);
    const std::string refusal =
        "[zoerror] a sub-field of map m is neither a list of owned objects nor a single pointer. See "
        "TZoClassFieldPointerMap::AddFields";
    const auto refused = [&](const auto& operation) { return AssertionOf(operation).message == refusal; };
    for (int number = -20; number <= 1; ++number) {
        const auto kind = static_cast<TZoClassFieldType>(number);
        const bool allowed = kind == ftChildPointer || kind == ftPointer || kind == ftPointerEx ||
                             kind == ftChildValue || kind == ftChildPointerList;
        EXPECT_NE(refused([&] { map->AddFields(kind, ftChildPointer); }), allowed) << number;
        EXPECT_NE(refused([&] { map->AddFields(ftChildPointer, kind); }), allowed) << number;
    }
    const auto other = [] { return new TZoClassFieldPointer("", ftPointer, nullptr, nullptr); };
    EXPECT_TRUE(refused([&] { map->AddFields(new TZoClassFieldInt("", nullptr, nullptr), other()); }));
    EXPECT_TRUE(
        refused([&] { map->AddFields(other(), new TZoClassFieldPointerList("", ftPointerList, {})); }));
    EXPECT_TRUE(refused([&] { map->AddFields(other(), nullptr); }));
    map->AddFields(ftPointer, ftChildValue);
    EXPECT_EQ(map->GetKeyField()->GetFieldType(), ftPointer);
    owner.SetType(typeid(NoFields), ZoNewClassSlot());
    owner.SetHooks(0);
    for (TZoClassField* half : {map->GetKeyField(), map->GetValueField()}) {
        EXPECT_FALSE(WritePlan(owner).steady) << "the accessors may change what is written";
        half->SetPlain();
    }
    EXPECT_TRUE(WritePlan(owner).steady);
    // A field's kind is one of its C++ class.
    EXPECT_EQ(AssertionOf([] { TZoClassFieldPointer("f", ftChildPointerList, nullptr, nullptr); }).message,
              "[zoerror] field f cannot be of kind -7. See TZoClass::AddField");
    EXPECT_NE(AssertionOf([] { TZoClassFieldPointerList("f", ftPointer, {}); }).message, "");
}

} // namespace
