#include "support/EveryKind.h"

#include "Persistence/instances/ItemAction.h"
#include "ZoPrimitives/ZoStreamablePrimitives.h"

#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

using namespace ZoPrimitives;

namespace {

/// What happened while a file was read.
std::vector<std::string> events;

class Inner : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Inner)
    DECLARE_ZO_FIELD(int, number)
    DECLARE_ZO_FIELD(bool, refusesRead)
    DECLARE_ZO_FIELD(bool, invalid)
    DECLARE_ZO_FIELD_CHILD(Inner, child)
    DECLARE_ZO_FIELD_CHILD_LIST(Inner, children)
    DECLARE_ZO_FIELD_REFERENCE(Inner, reference)
    REGISTER_ZO_END
    bool OnRead(TBinInStream*, bool) override {
        read.push_back(this);
        return !refusesRead;
    }
    bool GetIsValid() const override { return !invalid; }
    static inline std::vector<const Inner*> read;
    Alive alive;
};

class Wide : public Inner {
    REGISTER_ZO_BEGIN(Wide, Inner)
    DECLARE_ZO_FIELD_CHILD_VALUE(Inner, base)
    DECLARE_ZO_FIELD_REFERENCE(Inner, other)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Inner, others)
    REGISTER_ZO_END
};

class Middle : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Middle)
    DECLARE_ZO_FIELD(int, number)
    DECLARE_ZO_FIELD_CHILD_VALUE(Inner, inner)
    DECLARE_ZO_FIELD_REFERENCE(Inner, back)
    REGISTER_ZO_END
    Alive alive;
};

class Outer : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Outer)
    DECLARE_ZO_FIELD_CHILD_VALUE(Middle, middle)
    DECLARE_ZO_FIELD_CHILD_VALUE(Inner, direct)
    DECLARE_ZO_FIELD_CHILD_LIST(ZoObjectStreamable, children)
    DECLARE_ZO_FIELD_CHILD(Inner, child)
    DECLARE_ZO_FIELD_CHILD_MAP(Inner, Inner, map)
    DECLARE_ZO_FIELD_REFERENCE(ZoObjectStreamable, reference)
    DECLARE_ZO_FIELD_REFERENCE_LIST(ZoObjectStreamable, references)
    REGISTER_ZO_END
    void OnReadPointer(TZoClassField* field, ZoStreamableBase* target, unsigned uid) override {
        events.push_back(Text(field->GetFieldName()) + " " + std::to_string(uid) +
                         (target == nullptr ? " null" : ""));
        if (throwsAt == Text(field->GetFieldName())) throw std::runtime_error("setter");
    }
    static inline std::string throwsAt;
    Alive alive;
};

class ReaderTest : public testing::Test {
protected:
    ReaderTest() {
        Inner::Register(&schema);
        Wide::Register(&schema);
        Middle::Register(&schema);
        Outer::Register(&schema);
        events.clear();
        Outer::throwsAt = "";
        before = Alive::Count();
    }
    ~ReaderTest() override { EXPECT_EQ(Alive::Count(), before); }

    // The application's schema as a file holds it: ids 1 to 4.
    std::string File(const std::vector<Row>& rows) {
        TMemoryBinOutStream stream;
        stream.Initialize();
        TBinOutStreamer(&stream, &schema).WriteMetaData();
        std::vector<Row> all = RowsOf(BytesOf(stream));
        all.insert(all.end(), rows.begin(), rows.end());
        return FileOf(all);
    }
    // What was read of members where they stand is what factories of an application's own would bring about.
    Opened Open(const std::vector<Row>& rows) {
        Answer(~0u);
        const std::string copied = GraphOf(rows);
        Answer(hookOnRead | hookOnReadPointer | hookGetIsValid);
        EXPECT_EQ(GraphOf(rows), copied);
        events.clear();
        Inner::read.clear();
        return {File(rows), schema};
    }
    void Answer(unsigned hooks) {
        for (int i = 1; i <= schema.GetClassCount(); ++i) schema.GetClass(i)->SetHooks(hooks);
    }
    std::string GraphOf(const std::vector<Row>& rows) {
        events.clear();
        Opened opened(File(rows), schema);
        TDVector<ZoStreamableBase*> all = opened.stream.Objects();
        std::map<const ZoStreamableBase*, unsigned long long> places;
        for (unsigned long long i = 1; i <= all.NItems(); ++i) {
            places[all[i]] = i;
            all.Append(opened.streamer.ChildsByValueOfInstance(all[i]));
        }
        std::ostringstream graph;
        ItemAction tell(
            [&](ZoStreamableBase* item) { graph << ' ' << (item == nullptr ? 0 : places.at(item)); });
        for (ZoStreamableBase* object : all) {
            TZoClass* objectClass = object->GetOriginalClass(&schema);
            graph << '\n' << objectClass->GetName().c_str();
            if (const auto* inner = dynamic_cast<Inner*>(object)) graph << ' ' << inner->number;
            if (const auto* middle = dynamic_cast<Middle*>(object)) graph << ' ' << middle->number;
            TIList<TZoClassField> fields;
            objectClass->FillAllClassFields(&fields);
            for (const auto& field : fields) {
                graph << ',';
                field->GetFieldMetaData(object, tell);
            }
        }
        for (const std::string& event : events) graph << '\n' << event;
        return graph.str();
    }
    struct InnerRow {
        int number = 0;
        bool refusesRead = false;
        bool invalid = false;
        int child = 0;
        std::vector<int> children{};
        int reference = 0;
    };
    static Payload InnerPart(const InnerRow& row) {
        Payload bytes;
        bytes.Int(row.number).Bool(row.refusesRead).Bool(row.invalid).Int(row.child);
        return bytes.Add(List(row.children)).Int(row.reference);
    }
    static Payload List(const std::vector<int>& uids) {
        Payload bytes;
        bytes.Int(static_cast<long long>(uids.size()));
        for (const int uid : uids) bytes.Int(uid);
        return bytes;
    }
    static Row InnerAt(int uid, const InnerRow& row) { return {uid, 1, InnerPart(row)}; }
    static Row WideAt(int uid, const InnerRow& row, int base, int other = 0, std::vector<int> others = {}) {
        return {uid, 2, InnerPart(row).Int(base).Int(other).Add(List(others))};
    }
    static Row MiddleAt(int uid, int number, int inner, int back = 0) {
        return {uid, 3, Payload().Ints({number, inner, back})};
    }
    struct OuterRow {
        int middle = 0;
        int direct = 0;
        int child = 0;
        std::vector<int> children{};
        int reference = 0;
        std::vector<int> references{};
        std::vector<int> keys{};
        std::vector<int> values{};
    };
    static Row OuterAt(int uid, const OuterRow& row) {
        Payload bytes;
        bytes.Add(List(row.keys)).Add(List(row.values)).Ints({row.middle, row.direct, row.child});
        return {uid, 4, bytes.Add(List(row.children)).Int(row.reference).Add(List(row.references))};
    }

    TZoMetaData schema;
    int before = 0;
};

} // namespace

// Members that are objects

TEST_F(ReaderTest, NestedMembersTakeTheirObjects) {
    const std::vector<Row> rows{
        OuterAt(1, {.middle = 2, .direct = 4, .children = {6}, .reference = 3, .references = {2, 3, 4}}),
        MiddleAt(2, 20, 3, 4),
        InnerAt(3, {.number = 30, .reference = 3}),
        InnerAt(4, {.number = 40, .child = 5}),
        InnerAt(5, {.number = 60}),
        InnerAt(6, {.number = 50, .reference = 3})};
    Opened opened = Open(rows);
    auto& outer = opened.Root<Outer>();
    Inner& nested = outer.middle.inner;
    EXPECT_EQ(outer.middle.number, 20);
    EXPECT_EQ(nested.number, 30);
    EXPECT_EQ(outer.direct.number, 40);
    ASSERT_NE(outer.direct.child.get(), nullptr);
    EXPECT_EQ(outer.direct.child->number, 60);
    EXPECT_EQ(Inner::read, (std::vector<const Inner*>{&nested, &outer.direct, outer.direct.child.get(),
                                                      &opened.At<Inner>(6)}))
        << "where they stand";
    // References lead to the members.
    EXPECT_EQ(outer.reference, &nested);
    EXPECT_EQ(outer.references[1], &outer.middle);
    EXPECT_EQ(outer.references[2], &nested);
    EXPECT_EQ(outer.references[3], &outer.direct);
    EXPECT_EQ(outer.middle.back, &outer.direct);
    EXPECT_EQ(nested.reference, &nested);
    EXPECT_EQ(opened.At<Inner>(6).reference, &nested);
    EXPECT_EQ(opened.Count(), 3U) << "the outer one and two children: what was read for members has ended";
    EXPECT_EQ(Alive::Count() - before, 3 + 3);
    std::vector<Row> saved = RowsOf(Save(schema, &outer));
    saved.erase(saved.begin());
    EXPECT_EQ(saved, rows) << "and they are written as they were";
}

TEST_F(ReaderTest, HostileClaimsOfMembersEndWell) {
    const struct {
        const char* name;
        std::vector<Row> rows;
        std::size_t objects;
    } cases[] = {
        {"an object that claims itself", {WideAt(1, {}, 1)}, 1},
        {"two that claim each other", {WideAt(1, {}, 2), WideAt(2, {}, 1)}, 2},
        {"three in a circle", {WideAt(1, {}, 2), WideAt(2, {}, 3), WideAt(3, {}, 1)}, 3},
        {"a member of another type is copied in part",
         {WideAt(1, {}, 2), WideAt(2, {}, 3), InnerAt(3, {})},
         2},
        {"claimed twice by one owner",
         {OuterAt(1, {.middle = 2, .direct = 3}), MiddleAt(2, 0, 3), InnerAt(3, {})},
         1},
        {"claimed by two owners", {WideAt(1, {}, 3), WideAt(2, {}, 3), InnerAt(3, {})}, 2},
        {"a type that the member is not", {OuterAt(1, {.middle = 2}), InnerAt(2, {})}, 2},
        {"owned and a member",
         {OuterAt(1, {.direct = 2, .child = 2, .children = {2}, .keys = {2}, .values = {2}}), InnerAt(2, {})},
         1},
        {"a member that owns its owner", {WideAt(1, {}, 2), InnerAt(2, {.child = 1, .children = {1, 1}})}, 1},
        {"a member that owns itself", {WideAt(1, {}, 2), InnerAt(2, {.child = 2, .children = {2}})}, 1},
        {"a uid twice, claimed", {WideAt(1, {}, 2), InnerAt(2, {}), InnerAt(2, {})}, 2},
        {"the owner's uid twice", {WideAt(1, {}, 2), WideAt(1, {}, 2), InnerAt(2, {})}, 2},
        {"the owner has the uid that it claims", {WideAt(1, {}, 1), InnerAt(1, {}), WideAt(1, {}, 1)}, 3},
        {"a uid that nobody has", {WideAt(1, {}, 77), WideAt(2, {}, -1)}, 2},
        {"read before its owner, with a member that another claims too",
         {MiddleAt(1, 10, 2), InnerAt(2, {.number = 20, .child = 4, .reference = 2}),
          OuterAt(3, {.middle = 1}), InnerAt(4, {.reference = 2}), WideAt(5, {}, 2, 2)},
         3},
        {"members named in another order than their records'",
         {OuterAt(1, {.middle = 5, .direct = 3, .reference = 4}), InnerAt(3, {.number = 30}),
          InnerAt(4, {.number = 40, .child = 3}), MiddleAt(5, 50, 4), InnerAt(6, {.child = 4})},
         2},
        {"two records between an owner and its member",
         {OuterAt(1, {.middle = 2, .direct = 9}), InnerAt(8, {.reference = 9}), MiddleAt(2, 20, 8),
          InnerAt(9, {.number = 90})},
         1},
    };
    for (const auto& tested : cases) {
        SCOPED_TRACE(tested.name);
        Opened opened = Open(tested.rows);
        EXPECT_EQ(opened.Count(), tested.objects);
    }
}

TEST_F(ReaderTest, AMemberOfAnotherTypeGetsNothingOfTheRecordsOwnClass) {
    // The member is an `Inner`; the record's `Wide` has fields beyond it.
    Opened opened = Open({WideAt(1, {}, 2), WideAt(2, {.number = 7}, 0, 3, {3, 3}), InnerAt(3, {})});
    EXPECT_EQ(opened.Root<Wide>().base.number, 7);
    EXPECT_EQ(opened.At<Wide>(2).other, &opened.At<Inner>(3)) << "the object goes on as itself";
}

TEST_F(ReaderTest, AnOwningPointerToAMemberCountsAsDropped) {
    Opened opened = Open(
        {OuterAt(
             1,
             {.direct = 2, .child = 2, .children = {2, 3}, .reference = 2, .keys = {2, 3}, .values = {3, 3}}),
         InnerAt(2, {}), InnerAt(3, {})});
    auto& outer = opened.Root<Outer>();
    EXPECT_EQ(outer.child.get(), nullptr);
    ASSERT_EQ(outer.children.NItems(), 1U);
    EXPECT_EQ(outer.children[1].get(), &opened.At<Inner>(3));
    EXPECT_EQ(outer.map.NItems(), 1U);
    EXPECT_EQ(outer.reference, &outer.direct);
}

TEST_F(ReaderTest, CountsOnlyTheFirstOwnersMember) {
    Opened opened = Open(
        {WideAt(1, {}, 3, 3), WideAt(2, {}, 3, 3), InnerAt(3, {.number = 5, .child = 4}), InnerAt(4, {})});
    auto& first = opened.At<Wide>(1);
    auto& second = opened.At<Wide>(2);
    EXPECT_EQ(first.base.number, 5);
    EXPECT_EQ(second.base.number, 5);
    EXPECT_EQ(first.other, &first.base);
    EXPECT_EQ(second.other, &first.base);
    EXPECT_NE(first.base.child.get(), nullptr);
    EXPECT_EQ(second.base.child.get(), nullptr);
}

// Resolving

TEST_F(ReaderTest, TellsOfEachPointerSetInTheRecordsOrder) {
    Opened opened = Open({OuterAt(1, {.middle = 2,
                                      .child = 4,
                                      .children = {4, 0, 99, 5},
                                      .references = {3},
                                      .keys = {4, 99},
                                      .values = {5, 4}}),
                          MiddleAt(2, 0, 3), InnerAt(3, {}), InnerAt(4, {}), InnerAt(5, {})});
    const std::vector<std::string> expected{
        "map 4",           "map 5",      "middle 2",         "child 4",     "children 4",
        "children 0 null", "children 5", "reference 0 null", "references 3"};
    EXPECT_EQ(events, expected);
}

TEST_F(ReaderTest, TargetsThatAreNoneOrOfAnotherTypeAreDropped) {
    const int wrong = 2; // a `Middle`
    const int none = 99;
    for (const int uid : {wrong, none, -1, 2'147'483'647}) {
        SCOPED_TRACE(uid);
        Opened opened =
            Open({OuterAt(1, {.child = uid, .keys = {uid, 3, 3, 0}, .values = {3, uid, 3, 0}}),
                  MiddleAt(2, 0, 0), InnerAt(3, {.child = uid, .children = {uid, 3, 0}, .reference = uid})});
        auto& outer = opened.Root<Outer>();
        EXPECT_EQ(outer.child.get(), nullptr);
        ASSERT_EQ(outer.map.NItems(), 2U) << "pairs with both halves, a null pair among them";
        EXPECT_EQ(outer.map.ValueAt(1).get(), &opened.At<Inner>(3));
        EXPECT_EQ(outer.map.ValueAt(2).get(), nullptr);
        auto& inner = opened.At<Inner>(3);
        EXPECT_EQ(inner.reference, nullptr);
        ASSERT_EQ(inner.children.NItems(), 2U) << "itself, and the null that was written";
        EXPECT_EQ(inner.children[1].get(), &inner);
        EXPECT_EQ(inner.children[2].get(), nullptr);
    }
}

TEST_F(ReaderTest, MapsOfUnequalListsKeepWholePairs) {
    Opened opened = Open({OuterAt(1, {.keys = {2, 3}, .values = {3}}), InnerAt(2, {}), InnerAt(3, {})});
    auto& map = opened.Root<Outer>().map;
    ASSERT_EQ(map.NItems(), 1U);
    EXPECT_EQ(map.KeyAt(1).get(), &opened.At<Inner>(2));
}

TEST_F(ReaderTest, FindsTheFirstObjectOfAClassByItsRegisteredName) {
    Opened opened = Open({InnerAt(1, {}), MiddleAt(2, 0, 0), MiddleAt(3, 0, 0)});
    EXPECT_EQ(opened.stream.FindFirstObject("Middle"), &opened.At<Middle>(2));
    EXPECT_EQ(opened.stream.FindFirstObject("(anonymous namespace)::Middle"), &opened.At<Middle>(2));
    EXPECT_EQ(opened.stream.FindFirstObject("Outer"), nullptr);
}

TEST_F(ReaderTest, DuplicateUidsResolveToTheLast) {
    Opened opened = Open(
        {InnerAt(1, {.number = 1, .reference = 2}), InnerAt(2, {.number = 2}), InnerAt(2, {.number = 3})});
    EXPECT_EQ(opened.Count(), 3U);
    EXPECT_EQ(opened.Root<Inner>().reference->number, 3);
}

TEST_F(ReaderTest, ObjectsThatOwnEachOtherAreLegal) {
    Opened opened = Open({InnerAt(1, {.child = 2, .children = {1, 2, 2}}), InnerAt(2, {.child = 1})});
    EXPECT_EQ(opened.Root<Inner>().child->child.get(), opened.root);
    EXPECT_EQ(opened.Root<Inner>().children.NItems(), 3U);
}

TEST_F(ReaderTest, UidsOfAnySizeAreTaken) {
    const int uids[] = {2'147'483'647, -2'147'483'647 - 1, -1, 5'000'000, 3};
    std::vector<Row> rows{InnerAt(1, {.children = {2'147'483'647, -2'147'483'647 - 1, -1, 5'000'000, 3, 0}})};
    for (const int uid : uids) rows.push_back(InnerAt(uid, {.number = uid}));
    Opened opened = Open(rows);
    auto& children = opened.Root<Inner>().children;
    ASSERT_EQ(children.NItems(), 6U);
    for (unsigned i = 0; i < 5; ++i) EXPECT_EQ(children[i + 1]->number, uids[i]);
}

// Objects that may not stay

TEST_F(ReaderTest, InvalidObjectsGoWithWhatHangsFromThem) {
    const InnerRow refuses{.refusesRead = true};
    const InnerRow invalid{.invalid = true};
    const struct {
        const char* name;
        std::vector<Row> rows;
        std::vector<int> staying; // none: the root went too
    } cases[] = {
        {"all valid", {InnerAt(1, {.child = 2}), InnerAt(2, {})}, {1, 2}},
        {"a child refuses to be read", {InnerAt(1, {.child = 2}), InnerAt(2, refuses)}, {1}},
        {"a child is invalid, its own children go too",
         {InnerAt(1, {.child = 2}), InnerAt(2, {.invalid = true, .child = 3, .children = {4}}),
          InnerAt(3, {.child = 5}), InnerAt(4, {}), InnerAt(5, {})},
         {1}},
        {"what somebody who stays owns too stays, with its children",
         {InnerAt(1, {.child = 3, .children = {2}}),
          InnerAt(2, {.invalid = true, .child = 3, .children = {5}}), InnerAt(3, {.child = 4}),
          InnerAt(4, {}), InnerAt(5, {})},
         {1, 3, 4}},
        {"an invalid one goes whoever owns it",
         {InnerAt(1, {.child = 2, .children = {2, 3}}), InnerAt(2, invalid), InnerAt(3, {.reference = 2})},
         {1, 3}},
        {"the root", {InnerAt(1, {.invalid = true, .child = 2}), InnerAt(2, {})}, {}},
        {"the root, owned by its child",
         {InnerAt(1, {.invalid = true, .child = 2}), InnerAt(2, {.child = 1})},
         {}},
        {"a circle beside the root",
         {InnerAt(1, {.reference = 2}), InnerAt(2, {.invalid = true, .child = 3}), InnerAt(3, {.child = 2})},
         {1}},
        {"a member's refusal is its owner's",
         {InnerAt(1, {.children = {2}}), WideAt(2, {}, 3), InnerAt(3, refuses)},
         {1}},
        {"an invalid member makes its owner invalid",
         {InnerAt(1, {.children = {2}, .reference = 3}), WideAt(2, {}, 3), InnerAt(3, invalid)},
         {1}},
        {"a nested member's refusal reaches the outermost owner",
         {InnerAt(7, {}), OuterAt(1, {.middle = 2}), MiddleAt(2, 0, 3), InnerAt(3, refuses)},
         {7}},
        {"a refusal reaches an owner that is read later",
         {InnerAt(7, {}), MiddleAt(1, 0, 2), InnerAt(2, refuses), OuterAt(3, {.middle = 1})},
         {7}},
        {"a member's children go with its owner",
         {InnerAt(1, {.children = {2}}), WideAt(2, {.invalid = true}, 3), InnerAt(3, {.child = 4}),
          InnerAt(4, {})},
         {1}},
        {"what a member who stays owns stays",
         {WideAt(1, {.children = {3}}, 2), InnerAt(2, {.child = 4}),
          InnerAt(3, {.invalid = true, .child = 4}), InnerAt(4, {.child = 5}), InnerAt(5, {})},
         {1, 4, 5}},
        {"what a nested member who stays owns stays",
         {OuterAt(1, {.middle = 2, .children = {4}}), MiddleAt(2, 0, 3), InnerAt(3, {.child = 5}),
          InnerAt(4, {.invalid = true, .child = 5}), InnerAt(5, {})},
         {1, 5}},
        {"an owner kept by another keeps its member",
         {InnerAt(1, {.children = {2, 3}}), InnerAt(2, {.invalid = true, .children = {3}}), WideAt(3, {}, 4),
          InnerAt(4, {.child = 5}), InnerAt(5, {})},
         {1, 3, 5}},
    };
    for (const auto& tested : cases) {
        SCOPED_TRACE(tested.name);
        Opened opened = Open(tested.rows);
        std::vector<int> staying;
        for (int uid = 1; uid <= 9; ++uid) {
            if (opened.stream.GetInstance(uid) != nullptr) staying.push_back(uid);
        }
        EXPECT_EQ(staying, tested.staying);
        EXPECT_EQ(opened.root != nullptr, !tested.staying.empty());
    }
}

TEST_F(ReaderTest, NothingRefersToWhatWasRemoved) {
    Opened opened = Open({OuterAt(1, {.middle = 2,
                                      .direct = 8,
                                      .child = 4,
                                      .children = {4, 5},
                                      .reference = 4,
                                      .references = {4, 0, 5, 4},
                                      .keys = {4, 5, 5},
                                      .values = {5, 4, 5}}),
                          MiddleAt(2, 0, 3, 4), InnerAt(3, {.child = 4, .children = {4, 5}, .reference = 6}),
                          InnerAt(4, {.invalid = true, .child = 6}), InnerAt(5, {.reference = 4}),
                          InnerAt(6, {.child = 7}), InnerAt(7, {.reference = 5}),
                          InnerAt(8, {.child = 5, .reference = 7})});
    auto& outer = opened.Root<Outer>();
    auto* five = &opened.At<Inner>(5);
    EXPECT_EQ(outer.child.get(), nullptr);
    ASSERT_EQ(outer.children.NItems(), 1U);
    EXPECT_EQ(outer.children[1].get(), five);
    EXPECT_EQ(outer.reference, nullptr);
    ASSERT_EQ(outer.references.NItems(), 2U);
    EXPECT_EQ(outer.references[1], nullptr) << "the null that was written";
    EXPECT_EQ(outer.references[2], five);
    ASSERT_EQ(outer.map.NItems(), 1U);
    EXPECT_EQ(outer.map.KeyAt(1).get(), five);
    EXPECT_EQ(five->reference, nullptr);
    // Members are no other than objects of their own.
    EXPECT_EQ(outer.middle.back, nullptr);
    EXPECT_EQ(outer.middle.inner.child.get(), nullptr);
    ASSERT_EQ(outer.middle.inner.children.NItems(), 1U);
    EXPECT_EQ(outer.middle.inner.reference, nullptr);
    EXPECT_EQ(outer.direct.child.get(), five);
    EXPECT_EQ(outer.direct.reference, nullptr);
}

TEST_F(ReaderTest, AnObjectLetGoOfAndInvalidEndsOnce) {
    // A field that stands twice: the second value takes the first one's place.
    const ClassEntry inner{.id = 1,
                           .name = "Inner",
                           .values = {{0, -10, "invalid"}},
                           .children = {{1, -6, "child"}, {1, -6, "child"}}};
    const auto row = [](int uid, bool invalid, int first, int second) {
        return Row{uid, 1, Payload().Bool(invalid).Int(first).Int(second)};
    };
    Opened opened(
        FileOf({inner}, {row(1, false, 2, 3), row(2, true, 0, 0), row(3, false, 4, 0), row(4, false, 0, 0)}),
        schema);
    EXPECT_EQ(opened.Count(), 3U);
    EXPECT_EQ(opened.Root<Inner>().child.get(), &opened.At<Inner>(3));
    EXPECT_NE(&opened.At<Inner>(4), nullptr) << "let go of, and the caller's all the same";
}

TEST_F(ReaderTest, WhatOnlyARemovedObjectHeldInTheEndIsTheCallers) {
    // The pair goes with its object, and with the object goes the last owner of the key.
    Opened opened = Open({OuterAt(1, {.keys = {2}, .values = {3}}), InnerAt(2, {.number = 7}),
                          InnerAt(3, {.invalid = true, .child = 2})});
    EXPECT_EQ(opened.Root<Outer>().map.NItems(), 0U);
    EXPECT_EQ(opened.Count(), 2U);
    EXPECT_EQ(opened.At<Inner>(2).number, 7);
}

TEST_F(ReaderTest, ManyInvalidObjectsAreRemovedInOneGo) {
    std::vector<Row> rows{InnerAt(1, {})};
    for (int uid = 2; uid <= 200'000; ++uid)
        rows.push_back(InnerAt(uid, {.invalid = true, .reference = uid - 1}));
    Opened opened(File(rows), schema);
    EXPECT_EQ(opened.Count(), 1U);
}

TEST_F(ReaderTest, RemovesOnRequest) {
    Opened opened =
        Open({InnerAt(1, {.child = 2, .reference = 3}), InnerAt(2, {.child = 3}), InnerAt(3, {})});
    TDList<ZoStreamableBase*> invalid;
    invalid.Add(&opened.At<Inner>(2));
    invalid.Add(&opened.At<Inner>(2));
    opened.streamer.RemoveInvalidObjects(&invalid);
    EXPECT_EQ(opened.Count(), 1U);
    EXPECT_EQ(opened.Root<Inner>().child.get(), nullptr);
    EXPECT_EQ(opened.Root<Inner>().reference, nullptr);
}

// Failures

TEST_F(ReaderTest, AFailureBeforeResolvingDeletesEachObjectOnce) {
    const std::vector<Row> good{OuterAt(1, {.direct = 2, .child = 3}), InnerAt(2, {}),
                                InnerAt(3, {.child = 1})};
    const char* unlisted = "Metadado inv\xE1lido @ TBinInStreamer::ReadObjects #3";
    const char* tooShort = "Tamanho de registro corrompido @ TZoClass::LoadFromStreamPre";
    const struct {
        const char* name;
        Row last;
        const char* failure;
    } cases[] = {
        {"a class that the file does not list", {4, 50, "x"}, unlisted},
        {"class 0", {4, 0, "x"}, unlisted},
        {"a negative class", {4, -7, "x"}, unlisted},
        {"the greatest class", {4, 2'147'483'647, "x"}, unlisted},
        {"a record that is too short", {4, 1, "xyz"}, tooShort},
        {"an empty record", {4, 1, ""}, tooShort},
        {"a list that claims more",
         {4, 1, Payload().Int(0).Bool(false).Bool(false).Ints({0, 5, 0, 0, 0, 0})},
         tooShort},
    };
    for (const auto& tested : cases) {
        SCOPED_TRACE(tested.name);
        std::vector<Row> rows = good;
        rows.push_back(tested.last);
        const std::string file = File(rows);
        TMemoryBinInStream stream(file.data(), file.size(), 0);
        stream.Initialize();
        TBinInStreamer streamer(&stream, &schema);
        EXPECT_EQ(FailureOf([&] { streamer.ReadObjects(); }), tested.failure);
        EXPECT_EQ(Alive::Count(), before);
        EXPECT_EQ(stream.Objects().NItems(), 0U) << "nothing is left in the stream";
        EXPECT_EQ(stream.GetHandle(1), nullptr);
        EXPECT_EQ(stream.GetUnresolved(1), nullptr);
    }
}

TEST_F(ReaderTest, AFailureWhileResolvingLeavesTheObjectsToTheCaller) {
    for (const char* field : {"map", "middle", "child", "children", "references"}) {
        SCOPED_TRACE(field);
        Outer::throwsAt = field;
        const std::string file =
            File({OuterAt(1, {.middle = 2,
                              .direct = 3,
                              .child = 4,
                              .children = {4, 5},
                              .references = {5},
                              .keys = {4},
                              .values = {5}}),
                  MiddleAt(2, 0, 0), InnerAt(3, {}), InnerAt(4, {.child = 5}), InnerAt(5, {})});
        EXPECT_THROW(Opened(file, schema), std::runtime_error); // it frees what the stream lists
        EXPECT_EQ(Alive::Count(), before);
    }
}

TEST_F(ReaderTest, TellsMissingFromBrokenSchemas) {
    const struct {
        const char* name;
        std::string file;
        const char* failure;
    } cases[] = {
        {"no record at all", FileOf(std::vector<Row>{}),
         "Metadado corrompido @ TBinInStreamer::ReadObjects #1"},
        {"an id twice", FileOf({ClassEntry{}, ClassEntry{}}, {}),
         "Metadado inv\xE1lido @ TBinInStreamer::ReadObjects #2"},
        {"no objects", FileOf({ClassEntry{}}, {}), ""},
    };
    for (const auto& tested : cases) {
        SCOPED_TRACE(tested.name);
        EXPECT_EQ(FailureOf([&] {
                      Opened opened(tested.file, schema);
                      EXPECT_EQ(opened.root, nullptr);
                      EXPECT_EQ(opened.Count(), 0U);
                  }),
                  tested.failure);
    }
}

TEST_F(ReaderTest, CallsTheHooksInOrder) {
    class Hooked : public TBinInStreamer {
    public:
        using TBinInStreamer::TBinInStreamer;
        void OnAfterLoadInstance(ZoStreamableBase* object) override { Note("load", object); }
        void OnAfterResolveInstance(ZoStreamableBase* object) override { Note("resolve", object); }

    protected:
        ZoStreamableBase* CreateInstance(TZoClass* fileClass, TZoMetaData* fileSchema,
                                         TZoMetaData* appSchema) override {
            events.push_back("create " + Text(fileClass->GetName()));
            if (fileClass->GetName() == "Middle") return nullptr;
            return TBinInStreamer::CreateInstance(fileClass, fileSchema, appSchema);
        }
        static void Note(const char* what, ZoStreamableBase* object) {
            events.push_back(what + std::string(" ") + std::to_string(dynamic_cast<Inner&>(*object).number));
        }
    };
    const std::string file =
        File({InnerAt(1, {.number = 10, .reference = 3}), MiddleAt(2, 0, 0), InnerAt(3, {.number = 30})});
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    stream.Initialize();
    Hooked streamer(&stream, &schema);
    const pointer<ZoStreamableBase> root(streamer.ReadObjects());
    const pointer<ZoStreamableBase> other(stream.Objects()[2]);
    EXPECT_EQ(events, (std::vector<std::string>{"create Inner", "load 10", "create Middle", "create Inner",
                                                "load 30", "resolve 10", "resolve 30"}));
    EXPECT_EQ(streamer.GetStream(), &stream);
    EXPECT_EQ(streamer.GetFile(), nullptr);
}

TEST_F(ReaderTest, OneStreamerReadsOneStreamAfterAnother) {
    const std::string strange =
        FileOf({ClassEntry{.id = 2'000'000'000, .name = "Unknown"}}, {{1, 2'000'000'000, "x"}});
    TMemoryBinInStream stream(strange.data(), strange.size(), 0);
    TBinInStreamer streamer(&stream, &schema);
    for (int round = 0; round < 2; ++round) {
        stream.Initialize();
        EXPECT_EQ(streamer.ReadObjects(), nullptr);
        EXPECT_EQ(streamer.GetUnknowObjects()->NItems(), 1U);
    }
}

TEST_F(ReaderTest, PrimitivesAndEveryKindComeBack) {
    TZoMetaData full;
    app::RegisterEveryKind(full);
    app::Leaf outside(99);
    app::EveryKind written;
    written.Fill(outside);
    Opened opened(Save(full, &written), full);
    auto& read = opened.Root<app::EveryKind>();
    EXPECT_EQ(read.aBlob, written.aBlob);
    EXPECT_EQ(read.map.ValueAt(1)->number, 15);
    EXPECT_EQ(read.reference, read.children[2].get());
    EXPECT_EQ(read.references[1], read.child.get());
    EXPECT_EQ(read.references[2], &read.member);
    EXPECT_EQ(read.external->number, 99);
    EXPECT_EQ(read.externals[1], read.external.get());
    EXPECT_EQ(Save(full, &read), Save(full, &written)) << "in every value";
}

TEST(ReaderTests, ForgetsExcludedFieldsWithTheReading) {
    TZoMetaData schema;
    app::RegisterEveryKind(schema);
    const ClassEntry entry{.id = 1, .name = "Leaf", .values = {{0, -1, "gone"}}};
    Opened opened(FileOf({entry}, {{1, 1, Payload().Int(5)}}), schema);
    EXPECT_EQ(opened.Count(), 1U);
    EXPECT_EQ(opened.stream.GetFirstExcludedField(), nullptr);
}

TEST(ReaderTests, AnAccessorThatThrowsWhileReferencesAreTakenOutLeaksNothing) {
    const auto children = [](ZoStreamableBase * object) -> auto& {
        return dynamic_cast<app::EveryKind&>(*object).children;
    };
    static constexpr auto CHILDREN = children;
    TZoPointerListAccessors access;
    access.add = [](ZoStreamableBase* object, TZoClassField*, ZoStreamableBase* target) {
        auto& leaf = dynamic_cast<app::Leaf&>(*target);
        if (leaf.number == 3) throw std::runtime_error("full");
        CHILDREN(object).Add(&leaf);
    };
    access.elementAt = [](ZoStreamableBase* object, TZoClassField*, int i) -> ZoStreamableBase* {
        return CHILDREN(object)[static_cast<unsigned long long>(i)].get();
    };
    access.nItems = [](ZoStreamableBase* object, TZoClassField*) { return CHILDREN(object).NItems(); };
    access.createList = [](ZoStreamableBase* object, int, int, int) { CHILDREN(object).RemoveAll(); };
    TZoClassFieldPointerList field("children", ftChildPointerList, access);
    app::EveryKind owner;
    const int before = Alive::Count();
    for (const int number : {1, 2, 3, 4}) owner.children.Add(new app::Leaf(number));
    const ZoStreamableBase* removed = owner.children[1].get();
    const auto isRemoved = [](const void* wanted, const ZoStreamableBase* item) { return item == wanted; };
    EXPECT_THROW(field.DeleteReferences(&owner, isRemoved, removed), std::runtime_error);
    EXPECT_EQ(owner.children.NItems(), 1U) << "of the second";
    EXPECT_EQ(Alive::Count(), before + 2) << "the second, and the removed one, which is the caller's";
    delete removed;
}
