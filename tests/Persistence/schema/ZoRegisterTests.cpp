#include "support/EveryKind.h"

#include "Persistence/schema/WritePlan.h"
#include "ZoPrimitives/ZoStreamablePrimitives.h"

using namespace ZoPrimitives;

namespace {

class Target;

class Parent : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Parent)
    DECLARE_ZO_FIELD(int, inherited)
    DECLARE_ZO_FIELD_REFERENCE(Target, target)
    REGISTER_ZO_END
};

class Child : public Parent {
    REGISTER_ZO_BEGIN(Child, Parent)
    DECLARE_ZO_FIELD(int, own)
    DECLARE_ZO_FIELD_CHILD_LIST(Target, targets)
    DECLARE_ZO_FIELD_CHILD_MAP(app::Leaf, Target, map)
    REGISTER_ZO_END
};

class Target : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Target)
    DECLARE_ZO_FIELD(int, number)
    REGISTER_ZO_END
};

class Forgotten : public Child {};

class Abstract : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Abstract)
    REGISTER_ZO_END
    virtual void Draw() = 0;
};

namespace elsewhere {
class Target : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Target)
    DECLARE_ZO_FIELD(ZoString, text)
    REGISTER_ZO_END
};
class Holder : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Holder)
    DECLARE_ZO_FIELD_CHILD(elsewhere::Target, qualified)
    REGISTER_ZO_END
};
} // namespace elsewhere

TEST(ZoRegisterTests, TakesOnlyParentsThatAreThere) {
    TZoMetaData schema;
    TZoClass* child = Child::Register(&schema);
    EXPECT_TRUE(ParentNames(*child).empty());
    Parent::Register(&schema);
    EXPECT_TRUE(ParentNames(*child).empty()) << "registered too late";
    EXPECT_EQ(Child::Register(&schema), child) << "a second time changes nothing";
    Child::Unregister(&schema);
    child = Child::Register(&schema);
    EXPECT_EQ(ParentNames(*child), Names{"Parent"});
    Target::Register(&schema);
    app::Leaf::Register(&schema);
    Parent::Unregister(&schema);
    EXPECT_TRUE(ParentNames(*child).empty());
    ZoString report;
    EXPECT_FALSE(schema.Check(&report));
    EXPECT_EQ(Text(report), "[zoerror] parent class of Child not registered");
    Child written;
    written.inherited = 1;
    written.own = 2;
    Opened opened(Save(schema, &written), schema);
    EXPECT_TRUE(opened.Root<Child>().own == 2 && opened.Root<Child>().inherited == 0);
}

TEST(ZoRegisterTests, ResolvesFieldsWhenTheirClassComes) {
    TZoMetaData schema;
    TZoClass* parent = Parent::Register(&schema);
    TZoClass* child = Child::Register(&schema);
    auto* map = dynamic_cast<TZoClassFieldPointerMap*>(child->FindField("map"));
    const auto expect = [&](TZoClass* target, TZoClass* leaf, const char* told) {
        for (TZoClassField* field : {parent->FindField("target"), child->FindField("targets"),
                                     child->FindField("map"), map->GetValueField()})
            EXPECT_EQ(field->GetFieldClass(), target) << Text(field->GetFieldName());
        EXPECT_EQ(map->GetKeyField()->GetFieldClass(), leaf);
        EXPECT_EQ(Text(map->GetKeyField()->GetFieldName()), leaf == nullptr ? "<unresolve>" : "map");
        ZoString report;
        EXPECT_EQ(schema.Check(&report), told[0] == '\0');
        EXPECT_NE(Text(report).find(told), std::string::npos);
    };
    EXPECT_EQ(Text(map->GetFieldClassName()), "Target");
    expect(nullptr, nullptr, "[zoerror] class Target of reference field targets not registered");
    TZoClass* target = Target::Register(&schema);
    expect(target, nullptr, "[zoerror] class Leaf of reference field map not registered");
    EXPECT_EQ(Text(map->GetValueField()->GetFieldName()), "map");
    TZoClass* leaf = app::Leaf::Register(&schema);
    expect(target, leaf, "");
    Target::Unregister(&schema);
    expect(nullptr, leaf, "[zoerror] class Target of reference field map not registered");
    Child::Unregister(&schema); // its waiting fields go too
    target = Target::Register(&schema);
    EXPECT_EQ(parent->FindField("target")->GetFieldClass(), target);
    EXPECT_TRUE(schema.Check(nullptr));
}

TEST(ZoRegisterTests, NeverGivesAnIdTwice) {
    TZoMetaData schema;
    EXPECT_EQ(Target::Register(&schema)->GetClassId(), 1);
    EXPECT_EQ(Parent::Register(&schema)->GetClassId(), 2);
    EXPECT_EQ(Target::Register(&schema)->GetClassId(), 1);
    Parent::Unregister(&schema);
    EXPECT_EQ(schema.FindClass(2), nullptr);
    EXPECT_EQ(Parent::Register(&schema)->GetClassId(), 3);
    schema.Clear();
    EXPECT_EQ(schema.GetClassCount(), 0);
    EXPECT_EQ(schema.FindClass("Parent"), nullptr);
    EXPECT_EQ(Parent::Register(&schema)->GetClassId(), 4);
    TZoMetaData other;
    EXPECT_EQ(app::Leaf::Register(&other)->GetClassId(), 1);
    TZoMetaData third;
    third.AddClass(schema.FindClass("Parent"));
    EXPECT_EQ(third.AddClass(other.FindClass("Leaf"))->GetClassId(), 1) << "in any order";
    EXPECT_EQ(Child::Register(&third)->GetClassId(), 5);
    TZoMetaData fourth;
    Target::Register(&fourth); // 1
    EXPECT_EQ(AssertionOf([&] { fourth.AddClass(other.FindClass("Leaf")); }).message,
              "[zoerror] class Leaf has the id 1, as Target has in this schema. See TZoMetaData::AddClass");
    EXPECT_EQ(fourth.FindClass("Leaf"), nullptr);
    EXPECT_NE(other.FindClass("Leaf"), nullptr);
    // Nothing of a class that was refused waits for others.
    const std::string file = FileOf({Row{0, 0, ClassEntry{}.Bytes()}});
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    stream.Initialize();
    int uid = 0, classId = 0;
    stream.LoadRecord(&uid, &classId);
    const pointer<TZoClass> refused(new TZoClass(&fourth, nullptr, "", nullptr, false, nullptr));
    refused->LoadMetaFromStream(&stream); // which gives it the id 1
    auto* waiting = refused->AddFieldPointer("f", nullptr, nullptr, nullptr);
    waiting->SetFieldClassName("Leaf");
    fourth.AddToResolveCrossRefs(waiting);
    EXPECT_NE(AssertionOf([&] { fourth.AddClass(refused.get()); }).message, "");
    app::Leaf::Register(&fourth);
    EXPECT_EQ(waiting->GetFieldClass(), nullptr);
}

TEST(ZoRegisterTests, WhatABorrowerExcludesStaysInTheOwnersClasses) {
    TZoMetaData owner;
    TZoClass* target = Target::Register(&owner);
    app::Leaf::Register(&owner);
    Parent::Register(&owner);
    TZoClass* child = Child::Register(&owner);
    TZoMetaData borrower;
    for (int i = 1; i <= owner.GetClassCount(); ++i) borrower.AddClass(owner.GetClass(i));
    EXPECT_TRUE(borrower.Check(nullptr));
    Parent::Unregister(&borrower);
    Target::Unregister(&borrower);
    const auto untouched = [&] {
        EXPECT_EQ(ParentNames(*child), Names{"Parent"});
        EXPECT_EQ(child->FindField("targets")->GetFieldClass(), target);
        EXPECT_TRUE(owner.Check(nullptr));
        EXPECT_EQ(Target().GetOriginalClass(&owner), target);
        EXPECT_EQ(Target().GetClass(), target);
    };
    untouched();
    ZoString report;
    EXPECT_FALSE(borrower.Check(&report));
    EXPECT_EQ(Text(report), "[zoerror] parent class of Child not registered\n"
                            "[zoerror] class Target of reference field map not registered\n"
                            "[zoerror] class Target of reference field targets not registered");
    TMemoryBinOutStream stream;
    stream.Initialize();
    EXPECT_EQ(AssertionOf([&] { borrower.SaveToStream(&stream); }).message,
              "[zoerror] parent class of Child not registered");
    // A class of that name in the borrower is not what the owner's fields wait for.
    borrower.AddToResolveCrossRefs(child->FindField("targets"));
    borrower.AddClass(new TZoClass(&borrower, nullptr, "Target", nullptr, false, nullptr));
    borrower.ResolveCrossRefs();
    untouched();
    borrower.Clear();
    untouched();
}

TEST(ZoRegisterTests, AnObjectKnowsItsClassInEachSchema) {
    const auto first = std::make_unique<TZoMetaData>();
    auto second = std::make_unique<TZoMetaData>();
    const Target object;
    EXPECT_EQ(object.GetOriginalClass(first.get()), nullptr);
    TZoClass* inFirst = Target::Register(first.get());
    Parent::Register(second.get());
    TZoClass* inSecond = Target::Register(second.get());
    EXPECT_NE(inFirst, inSecond);
    EXPECT_EQ(object.GetOriginalClass(first.get()), inFirst);
    EXPECT_EQ(object.GetOriginalClass(second.get()), inSecond);
    EXPECT_EQ(object.GetClass(), inSecond);
    const pointer<ZoStreamableBase> made(inFirst->CreateInstance(nullptr, first.get()));
    EXPECT_EQ(made->GetClass(), inFirst) << "the one that it was made for";
    EXPECT_EQ(Target(dynamic_cast<Target&>(*made)).GetClass(), inFirst) << "copies too";
    WritePlans plans; // of classes with the same id too
    const WritePlan &one = plans.Of(*inFirst), &two = plans.Of(*second->FindClass("Parent"));
    EXPECT_TRUE(one.steps.size() == 1 && two.steps.size() == 2);
    EXPECT_TRUE(&plans.Of(*inFirst) == &one && &plans.Of(*second->FindClass("Parent")) == &two);
    const pointer<TZoClass> held(inSecond);
    second.reset();
    EXPECT_EQ(held->GetMetaData(), nullptr);
    EXPECT_EQ(object.GetOriginalClass(first.get()), inFirst);
    EXPECT_EQ(object.GetClass(), inFirst) << "the one registered last of those that are left";
    Target::Unregister(first.get());
    EXPECT_EQ(made->GetClass(), nullptr);
    EXPECT_EQ(object.GetOriginalClass(first.get()), nullptr);
    EXPECT_EQ(object.GetClass(), nullptr);
    Target::Unregister(first.get()); // nothing there
    const unsigned slot = ZoNewClassSlot();
    for (const char* name : {"One", "Two"}) {
        auto* ofOneType = new TZoClass(first.get(), nullptr, name, nullptr, false, nullptr);
        ofOneType->SetType(typeid(Forgotten), slot);
        first->AddClass(ofOneType);
    }
    first->Clear();
    EXPECT_EQ(TZoMetaData::FindLatestClass(slot), nullptr);
}

TEST(ZoRegisterTests, TellsTypesOfOneNameOrOneBaseApart) {
    TZoMetaData schema, own;
    Parent::Register(&schema);
    TZoClass* child = Child::Register(&schema);
    EXPECT_EQ(Forgotten().GetOriginalClass(&schema), child) << "as what was registered";
    EXPECT_EQ(Text(Child().StreamableClassName()), "class (anonymous namespace)::Child");
    EXPECT_EQ(Text(Forgotten().StreamableClassName()), "class (anonymous namespace)::Forgotten");
    EXPECT_EQ(Text(ZoBoolean().StreamableClassName()), "class ZoBoolean");
    TZoClass* target = Target::Register(&schema);
    EXPECT_EQ(elsewhere::Target::Register(&schema), target) << "the name is taken";
    EXPECT_EQ(elsewhere::Target().GetOriginalClass(&schema), nullptr) << "whose accessors are not for it";
    EXPECT_EQ(Target().GetOriginalClass(&schema), target);
    TZoClass* other = elsewhere::Target::Register(&own);
    EXPECT_EQ(elsewhere::Target().GetOriginalClass(&own), other);
    EXPECT_EQ(elsewhere::Holder::Register(&own)->FindField("qualified")->GetFieldClass(), other);
}

TEST(ZoRegisterTests, FindsCadastresAndAbstractClasses) {
    TZoMetaData schema;
    auto* cadastre = new TZoCadastre("Target");
    schema.AddCadastre(cadastre);
    EXPECT_EQ(schema.FindCadastre("Parent"), nullptr);
    EXPECT_EQ(Target::Register(&schema)->GetCadastre(), cadastre);
    EXPECT_EQ(Parent::Register(&schema)->GetCadastre(), nullptr);
    TZoClass* abstract = Abstract::Register(&schema);
    EXPECT_TRUE(abstract->GetAbstract() && !schema.FindClass("Target")->GetAbstract());
    EXPECT_EQ(abstract->CreateInstance(nullptr, &schema), nullptr);
    schema.Clear();
    EXPECT_EQ(schema.FindCadastre("Target"), nullptr);
}

TEST(ZoRegisterTests, EachFieldTellsItsTypeNameAndKind) {
    using E = app::EveryKind;
    TZoMetaData schema;
    TZoClass* leaf = app::Leaf::Register(&schema);
    const std::tuple<ZoString (*)(TZoMetaData*, TZoClass**, TZoClassFieldType*), const char*,
                     TZoClassFieldType>
        fields[] = {{E::Getfieldclassfor_anUnsigned, "unsigned", ftUnsigned},
                    {E::Getfieldclassfor_aString, "ZoString", ftString},
                    {E::Getfieldclassfor_ints, "list<int>", ftListInt},
                    {E::Getfieldclassfor_member, "Leaf", ftChildValue},
                    {E::Getfieldclassfor_externals, "Leaf", ftPointerListEx},
                    {E::Getfieldclassfor_map, "Leaf", ftChildPointerMap},
                    {StreamableList::Getfieldclassfor_list, "ZoObjectStreamable", ftChildPointerList}};
    for (const auto& [field, name, kind] : fields) {
        TZoClass* found = nullptr;
        TZoClassFieldType told{};
        EXPECT_EQ(Text(field(&schema, &found, &told)), name);
        EXPECT_EQ(told, kind) << name;
        EXPECT_EQ(found, name == std::string("Leaf") ? leaf : nullptr) << name;
    }
}

// Without macros

/// Registers itself by hand, with lists that have one or two integers.
class ByHand : public ZoObjectStreamable {
public:
    ByHand() = default;

    static TZoClass* Register(TZoMetaData* schema) {
        static const unsigned slot = ZoNewClassSlot();
        auto* made = new TZoClass(schema, nullptr, "ByHand", Make, false, nullptr);
        made->SetType(typeid(ByHand), slot);
        made->AddFieldListFloat("floats", List<float, &ByHand::floats>(First, nullptr));
        made->AddFieldListDouble("doubles", List<double, &ByHand::doubles>(nullptr, Second));
        made->AddFieldListString("strings", List<ZoString, &ByHand::strings>(First, Second));
        Await(schema, made->AddFieldChildPointer("child", nullptr, Put<0>, Take<0>));
        Await(schema, made->AddFieldChildValue("value", nullptr, Copy, Member));
        Await(schema, made->AddFieldPointer("reference", nullptr, Put<2>, Take<2>));
        Await(schema, made->AddFieldPointerEx("external", nullptr, Put<3>, Take<3>));
        Await(schema, made->AddFieldChildPointerList("children", nullptr, Pointers<0>(First, Second)));
        Await(schema, made->AddFieldPointerList("references", nullptr, Pointers<1>(nullptr, Second)));
        Await(schema, made->AddFieldPointerListEx("externals", nullptr, Pointers<2>(First, nullptr)));
        auto* key = new TZoClassFieldPointer("key", ftPointer, Put<5>, Take<5>);
        key->SetFieldClassName("Leaf");
        Await(schema,
              made->AddFieldChildPointerMap(
                  "map", nullptr, key, new TZoClassFieldPointer("keyed", ftChildPointer, Put<4>, Take<4>)));
        TZoClass* added = schema->AddClass(made);
        schema->ResolveCrossRefs();
        return added;
    }
    TZoClass* GetOriginalClass(TZoMetaData* schema) const override { return schema->FindClass("ByHand"); }
    ZoString StreamableClassName() const override { return "class ByHand"; }

    TDVector<float> floats;
    TDVector<double> doubles;
    TDVector<ZoString> strings;
    pointer<ZoStreamableBase> owned[6]; // 2, 3 and 5 belong to the tests
    app::Leaf member;
    TIVector<ZoStreamableBase, pointer<ZoStreamableBase>> lists[3];
    std::vector<int> created; // what the list creators were told, -18 for a member that is set

private:
    static ByHand& Self(ZoStreamableBase* object) { return dynamic_cast<ByHand&>(*object); }
    static ZoStreamableBase* Make(TZoMetaData*, TZoMetaData*, TZoClass*) { return new ByHand; }
    static void Await(TZoMetaData* schema, TZoClassField* field) {
        field->SetFieldClassName("Leaf");
        schema->AddToResolveCrossRefs(field);
    }
    template <class T, TDVector<T> ByHand::*Member>
    static TZoListAccessors<T> List(TZoListInteger first, TZoListInteger second) {
        return {[](ZoStreamableBase* object, TZoClassField*, TZoParameter<T> value) {
                    (Self(object).*Member).Add(value);
                },
                [](ZoStreamableBase* object, TZoClassField*, int index) -> TZoParameter<T> {
                    return (Self(object).*Member)[static_cast<unsigned long long>(index)];
                },
                [](ZoStreamableBase* object, TZoClassField*) { return (Self(object).*Member).NItems(); },
                Created,
                first,
                second};
    }
    template <int I>
    static void Put(ZoStreamableBase* object, TZoClassField*, ZoStreamableBase* target) {
        Self(object).owned[I] = target;
    }
    template <int I>
    static ZoStreamableBase* Take(ZoStreamableBase* object, TZoClassField*) {
        return Self(object).owned[I].get();
    }
    static void Copy(ZoStreamableBase* object, TZoClassField*, ZoStreamableBase* value) {
        Self(object).member = dynamic_cast<app::Leaf&>(*value);
        Self(object).created.push_back(-18);
    }
    static ZoStreamableBase* Member(ZoStreamableBase* object, TZoClassField*) { return &Self(object).member; }
    template <int I>
    static TZoPointerListAccessors Pointers(TZoListInteger first, TZoListInteger second) {
        return {[](ZoStreamableBase* object, TZoClassField*, ZoStreamableBase* target) {
                    Self(object).lists[I].Add(target);
                },
                [](ZoStreamableBase* object, TZoClassField*, int index) -> ZoStreamableBase* {
                    return Self(object).lists[I][static_cast<unsigned long long>(index)].get();
                },
                [](ZoStreamableBase* object, TZoClassField*) { return Self(object).lists[I].NItems(); },
                nullptr, // walked by index
                [](ZoStreamableBase* object, int count, int one, int two) {
                    Self(object).lists[I].RemoveAll();
                    Created(object, count, one, two);
                },
                first,
                second};
    }
    static int First(ZoStreamableBase*, TZoClassField*) { return 101; }
    static int Second(ZoStreamableBase*, TZoClassField*) { return 202; }
    static void Created(ZoStreamableBase* object, int count, int first, int second) {
        for (const int told : {count, first, second}) Self(object).created.push_back(told);
    }
};

bool IsThat(const void* that, const ZoStreamableBase* item) { return item == that; }

TEST(ZoRegisterTests, HandWrittenAccessorsServeTheListsIntegers) {
    TZoMetaData schema;
    TZoClass* first = ByHand::Register(&schema);
    EXPECT_EQ(ByHand::Register(&schema), first);
    const pointer<TZoClass> rival(new TZoClass(&schema, nullptr, "ByHand", nullptr, false, nullptr));
    auto* waiting = rival->AddFieldPointer("f", nullptr, nullptr, nullptr);
    waiting->SetFieldClassName("Leaf");
    schema.AddToResolveCrossRefs(waiting);
    EXPECT_EQ(schema.AddClass(rival.get()), first);
    TZoClass* leaf = app::Leaf::Register(&schema); // resolves what waits: of the first only
    for (const char* field :
         {"child", "value", "reference", "external", "children", "references", "externals", "map"}) {
        EXPECT_EQ(first->FindField(field)->GetFieldClass(), leaf) << field;
    }
    EXPECT_EQ(waiting->GetFieldClass(), nullptr);

    ByHand written;
    written.floats.Add(9);
    written.doubles.Add(10);
    written.strings.Add("eleven");
    written.owned[0] = new app::Leaf(13);
    written.owned[5] = written.owned[0];
    written.member.number = 14;
    written.owned[2] = written.owned[0];
    written.owned[3] = new app::Leaf(15);
    written.owned[4] = new app::Leaf(16);
    written.lists[0].Add(new app::Leaf(17));
    written.lists[0].Add(nullptr);
    written.lists[1].Add(written.owned[4].get());
    written.lists[2].Add(written.owned[3].get());
    written.lists[2].Add(new app::Leaf(18));

    const std::string file = Save(schema, &written);
    Payload expected;
    expected.Int(3).Int(2); // the map: a key, an object
    expected.Ints({1, 101}).Float(9).Ints({1, 202}).Double(10);
    expected.Ints({1, 101, 202}).Text("eleven");
    expected.Ints({3, 4}).Ints({2, 101, 202, 5, 0});              // child, value, children
    expected.Ints({3, 6}).Ints({1, 202, 2}).Ints({2, 101, 6, 7}); // references and external ones
    EXPECT_EQ(RowsOf(file)[1], (Row{1, first->GetClassId(), expected}));

    pointer<ZoStreamableBase> removed; // ends behind the file
    Opened opened(file, schema);
    auto& read = opened.Root<ByHand>();
    EXPECT_EQ(read.created,
              (std::vector<int>{1, 101, 0, 1, 0, 202, 1, 101, 202, 2, 101, 202, 1, 0, 202, 2, 101, 0, -18}));
    EXPECT_EQ(read.owned[5], read.owned[0]);
    EXPECT_EQ(read.member.number, 14);
    EXPECT_EQ(read.lists[0].NItems(), 2U);
    EXPECT_EQ(read.lists[1][1], read.owned[4]);
    EXPECT_EQ(Save(schema, &read), file);
    std::vector<const ZoStreamableBase*> owned;
    ZoItemAction note([&](ZoStreamableBase* item) { owned.push_back(item); });
    first->FindField("map")->GetFieldMetaData(&read, note);
    EXPECT_EQ(owned, std::vector<const ZoStreamableBase*>{read.owned[4].get()}) << "not the key";
    read.created.clear();
    removed = read.owned[4];
    first->DeleteReferences(&read, IsThat, removed.get());
    EXPECT_TRUE(read.owned[4].get() == nullptr && read.lists[1].NItems() == 0);
    EXPECT_EQ(read.created, (std::vector<int>{0, 0, 202}));
}

TEST(ZoRegisterTests, HandWrittenAccessorsGetOnlyWhatTheirDeclaredClassCovers) {
    const struct {
        const char* declared;
        bool takesLeaf, takesTarget;
    } cases[] = {{"Leaf", true, false},
                 {"Nowhere", false, false}, // not registered
                 {"ZoStreamableBase", true, true},
                 {"ZoObjectStreamable", true, true},
                 {"", true, true}};
    for (const auto& tested : cases) {
        SCOPED_TRACE(tested.declared);
        TZoMetaData schema;
        app::Leaf::Register(&schema);
        Target::Register(&schema);
        TZoClass owner(&schema, nullptr, "Owner", nullptr, false, nullptr);
        auto* field = owner.AddFieldPointer("f", schema.FindClass(tested.declared), nullptr, nullptr);
        if (field->GetFieldClass() == nullptr) field->SetFieldClassName(tested.declared);
        EXPECT_EQ(Text(field->GetFieldClassName()), tested.declared);
        const app::Leaf leaf;
        const Target target;
        EXPECT_EQ(field->Accepts(&leaf), tested.takesLeaf);
        EXPECT_EQ(field->Accepts(&target), tested.takesTarget);
    }
}

// Registration put off

class GrandChild : public Forgotten { // a base may be left out
    REGISTER_ZO_BEGIN(GrandChild, Child)
    DECLARE_ZO_FIELD(int, youngest)
    REGISTER_ZO_END
};

/// What the registers below registered, in order.
Names calls;

template <class T>
TZoClass* Registered(TZoMetaData* schema) {
    TZoClass* made = T::Register(schema);
    calls.push_back(Text(made->GetName()));
    return made;
}

TEST(ZoStreamableRegisterTests, RegistersWhatBecomesReady) {
    const auto never = [](TZoMetaData*) { return false; };
    const auto afterParent = [](TZoMetaData* m) { return m->DoesClassExist("Parent"); };
    const auto afterChild = [](TZoMetaData* m) { return m->DoesClassExist("Child"); };
    calls.clear();
    TZoMetaData schema;
    schema.Register(new ZoStreamableRegister("GrandChild", Registered<GrandChild>, afterChild));
    schema.Register(new ZoStreamableRegister("Child", Registered<Child>, afterParent));
    schema.Register(new ZoStreamableRegister("Parent", Registered<Parent>, nullptr));
    schema.Register(new ZoStreamableRegister("Holder", Registered<elsewhere::Holder>, never));
    ZoString report;
    EXPECT_FALSE(schema.Check(&report));
    schema.ClassesRegister();
    EXPECT_EQ(calls, (Names{"Parent", "Child", "GrandChild"}));
    EXPECT_EQ(ParentNames(*schema.FindClass("GrandChild")), Names{"Child"});
    Target::Register(&schema);
    app::Leaf::Register(&schema);
    report = "";
    EXPECT_FALSE(schema.Check(&report));
    EXPECT_EQ(report, "[zoerror] class Holder not registered. See ZoStreamableRegister::ReadyToRegister");

    calls.clear();
    schema.ClassesRegister();
    EXPECT_TRUE(calls.empty()) << "what is registered is not asked again";
    GrandChild::Unregister(&schema);
    schema.ClassesRegister();
    EXPECT_EQ(calls, Names{"GrandChild"}) << "what was excluded comes back";
}

TEST(ZoStreamableRegisterTests, KeepsTheFirstRegisterOfAClass) {
    TZoMetaData schema;
    const pointer<ZoStreamableRegister> first = new ZoStreamableRegister("Target", Target::Register, nullptr);
    const pointer<ZoStreamableRegister> second =
        new ZoStreamableRegister("Target", elsewhere::Target::Register, nullptr);
    schema.Register(first.get());
    schema.Register(first.get());
    schema.Register(second.get());
    EXPECT_EQ(ZoReferenceCount::Count(first.get()), 2U) << "here and in the schema";
    EXPECT_EQ(ZoReferenceCount::Count(second.get()), 1U);
    schema.ClassesRegister();
    EXPECT_NE(schema.FindClass("Target")->FindField("number"), nullptr);
    EXPECT_TRUE(second->ReadyToRegister(&schema));
    EXPECT_EQ(second->Register(&schema), schema.FindClass("Target")) << "which stays";
    schema.Clear();
    EXPECT_EQ(ZoReferenceCount::Count(first.get()), 1U);
}

TEST(ZoStreamableRegisterTests, EndsWhateverTheRegistersDo) {
    TZoMetaData schema;
    calls.clear();
    // One registers another class than it says, one registers through the schema itself, one keeps a new one.
    schema.Register(new ZoStreamableRegister("Wrong", Registered<Parent>, nullptr));
    schema.Register(new ZoStreamableRegister(
        "Target",
        [](TZoMetaData* m) {
            m->ClassesRegister();
            m->Register(new ZoStreamableRegister("Leaf", Registered<app::Leaf>, nullptr));
            return Registered<Target>(m);
        },
        nullptr));
    schema.Register(new ZoStreamableRegister("Nothing", nullptr, nullptr));
    schema.ClassesRegister();
    EXPECT_EQ(calls, (Names{"Parent", "Target", "Leaf"}));
    ZoString report;
    EXPECT_FALSE(schema.Check(&report));
    EXPECT_EQ(report, "[zoerror] class Wrong not registered. See ZoStreamableRegister::ReadyToRegister\n"
                      "[zoerror] class Nothing not registered. See ZoStreamableRegister::ReadyToRegister");
}

} // namespace
