#include "support/EveryKind.h"

#include "ZoPrimitives/FilteredBinInStreamer.h"

#include <map>
#include <sstream>

using namespace ZoPrimitives;

namespace {

/// What happened while a file was read.
std::vector<std::string> events;

/// Numbers of objects that do something when they are read.
enum : int { MAKES = -1, TAKES = -2, FAILS = -3 };

class Inner : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Inner)
    DECLARE_ZO_FIELD(int, number)
    DECLARE_ZO_FIELD(bool, refusesRead)
    DECLARE_ZO_FIELD(bool, invalid)
    DECLARE_ZO_FIELD_CHILD(Inner, child)
    DECLARE_ZO_FIELD_CHILD_LIST(Inner, children)
    DECLARE_ZO_FIELD_REFERENCE(Inner, reference)
    REGISTER_ZO_END
    bool OnRead(TBinInStream* stream, bool) override {
        const pointer<Inner> held(this); // to be let go of does not end it
        EXPECT_EQ(stream->GetRemaining(), 0U);
        read.push_back(this);
        if (number == MAKES) children.Add(new Inner);
        if (number == TAKES) child = dynamic_cast<Inner*>(stream->GetInstance(4));
        if (number == FAILS) throw XStream("refused", "OnRead");
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
        const pointer<ZoStreamableBase> held(target); // to be let go of does not end it
        if (letsGoAt == Text(field->GetFieldName())) child = nullptr;
        if (throwsAt == Text(field->GetFieldName())) throw XStream("refused", "OnReadPointer");
    }
    static inline std::string throwsAt, letsGoAt;
    Alive alive;
};

/// Nothing but a reference, and no hooks: it is resolved while the file is read.
class Pin : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Pin)
    DECLARE_ZO_FIELD(int, number)
    DECLARE_ZO_FIELD_REFERENCE(Pin, reference)
    REGISTER_ZO_END
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
        Outer::throwsAt = Outer::letsGoAt = "";
        before = Alive::Count();
    }
    ~ReaderTest() override { EXPECT_EQ(Alive::Count(), before); }

    // The application's schema as a file holds it: ids 1 to 4.
    std::string File(const std::vector<Row>& rows) { return File(rows, schema); }
    static std::string File(const std::vector<Row>& rows, TZoMetaData& of) {
        TMemoryBinOutStream stream;
        stream.Initialize();
        TBinOutStreamer(&stream, &of).WriteMetaData();
        std::vector<Row> all = RowsOf(BytesOf(stream));
        all.insert(all.end(), rows.begin(), rows.end());
        return FileOf(all);
    }
    // What was read of members where they stand is what factories of an application's own would bring about.
    Opened Open(const std::vector<Row>& rows) {
        Answer(~0u);
        const std::string copied = GraphOf(rows);
        const std::vector<std::string> toldThen = events;
        Answer(hookOnRead | hookOnReadPointer | hookGetIsValid);
        EXPECT_EQ(GraphOf(rows), copied);
        EXPECT_EQ(events, toldThen);
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
        return GraphOf(opened.stream);
    }
    /// Each object with its number and what its fields lead to, by place from 1: those read, then their
    /// members.
    std::string GraphOf(TBinInStream& stream) {
        TBinInStreamer streamer(&stream, &schema);
        TDVector<ZoStreamableBase*> all = stream.Objects();
        std::map<const ZoStreamableBase*, unsigned long long> places;
        for (unsigned long long i = 1; i <= all.NItems(); ++i) {
            places[all[i]] = i;
            all.Append(streamer.ChildsByValueOfInstance(all[i]));
        }
        std::ostringstream graph, targets;
        ZoItemAction tell(
            [&](ZoStreamableBase* item) { targets << ' ' << (item == nullptr ? 0 : places.at(item)); });
        for (ZoStreamableBase* object : all) {
            TZoClass* objectClass = object->GetOriginalClass(&schema);
            graph << (places[object] > 1 ? "; " : "") << objectClass->GetName().c_str();
            const auto* inner = dynamic_cast<Inner*>(object);
            const auto* middle = dynamic_cast<Middle*>(object);
            const int number = inner != nullptr ? inner->number : middle != nullptr ? middle->number : 0;
            if (number != 0) graph << ' ' << number;
            TIList<TZoClassField> fields;
            objectClass->FillAllClassFields(&fields);
            for (const auto& field : fields) {
                targets.str("");
                field->GetFieldMetaData(object, tell);
                if (targets.str() != "" && targets.str() != " 0")
                    graph << ", " << field->GetFieldName().c_str() << targets.str();
            }
        }
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
    EXPECT_EQ(Inner::read, (std::vector<const Inner*>{&outer.middle.inner, &outer.direct,
                                                      outer.direct.child.get(), &opened.At<Inner>(6)}))
        << "where they stand";
    EXPECT_EQ(opened.Count(), 3U) << "the outer one and two children: what was read for members has ended";
    EXPECT_EQ(Alive::Count() - before, 3 + 3);
    std::vector<Row> saved = RowsOf(Save(schema, &outer));
    saved.erase(saved.begin());
    EXPECT_EQ(saved, rows) << "and they, and what refers to them, are written as they were";
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

TEST_F(ReaderTest, PointersLeadWhereTheyCan) {
    const InnerRow toNone{.child = -1, .children = {2'147'483'647, 3, 0}, .reference = 99};
    const InnerRow toWrong{.child = 2, .children = {2, 3, 0}, .reference = 2};
    const int greatest = 2'147'483'647, least = -greatest - 1;
    const char* const loose = "Outer, map 3 0 3 0, middle 4, direct 5; Middle, inner 6; Inner, children 3 0; "
                              "Middle, inner 7; Inner; Inner; Inner";
    const std::tuple<const char*, std::vector<Row>, const char*> cases[] = {
        {"of a member of another type only what it shares is copied; the object goes on as itself",
         {WideAt(1, {}, 2), WideAt(2, {.number = 7}, 0, 3, {3, 3}), InnerAt(3, {})},
         "Wide, base 4; Wide 7, base 5, other 3, others 3 3; Inner; Inner 7; Inner"},
        {"an owning pointer to a member counts as dropped",
         {OuterAt(1, {.direct = 2,
                      .child = 2,
                      .children = {2, 3},
                      .reference = 2,
                      .keys = {2, 3},
                      .values = {3, 3}}),
          InnerAt(2, {}), InnerAt(3, {})},
         "Outer, map 2 2, middle 3, direct 4, children 2, reference 4; Inner; Middle, inner 5; Inner; Inner"},
        {"only the first owner's member counts",
         {WideAt(1, {}, 3, 3), WideAt(2, {}, 3, 3), InnerAt(3, {.number = 5, .child = 4}), InnerAt(4, {})},
         "Wide, base 4, other 4; Wide, base 5, other 4; Inner; Inner 5, child 3; Inner 5"},
        {"a member that was read before its owner",
         {InnerAt(1, {.number = 7}), WideAt(2, {}, 1)},
         "Wide, base 2; Inner 7"},
        {"a member that claims itself", {WideAt(1, {}, 1)}, "Wide, base 2; Inner"},
        {"a member that two members of one owner claim",
         {OuterAt(1, {.middle = 2, .direct = 3}), MiddleAt(2, 0, 3), InnerAt(3, {.number = 30})},
         "Outer, middle 2, direct 3; Middle, inner 4; Inner 30; Inner 30"},
        {"a type that the member is not",
         {OuterAt(1, {.middle = 2}), InnerAt(2, {.number = 20})},
         "Outer, middle 3, direct 4; Inner 20; Middle, inner 5; Inner; Inner"},
        {"a member that owns its owner and itself",
         {WideAt(1, {}, 2), InnerAt(2, {.child = 1, .children = {2, 1, 1}})},
         "Wide, base 2; Inner, child 1, children 1 1"},
        {"a uid twice, claimed",
         {WideAt(1, {}, 2), InnerAt(2, {}), InnerAt(2, {})},
         "Wide, base 3; Inner; Inner"},
        {"the owner's uid twice",
         {WideAt(1, {}, 2), WideAt(1, {}, 2), InnerAt(2, {.number = 20})},
         "Wide, base 3; Wide, base 4; Inner 20; Inner 20"},
        {"the owner has the uid that it claims",
         {WideAt(1, {}, 1), InnerAt(1, {.number = 10}), WideAt(1, {}, 1)},
         "Wide, base 4; Inner 10; Wide, base 5; Inner; Inner"},
        {"read before its owner, with a member that another claims too",
         {MiddleAt(1, 10, 2), InnerAt(2, {.number = 20, .child = 4, .reference = 2}),
          OuterAt(3, {.middle = 1}), InnerAt(4, {.reference = 2}), WideAt(5, {}, 2, 2)},
         "Outer, middle 4, direct 5; Inner, reference 7; Wide, base 6, other 7; Middle 10, inner 7; Inner; "
         "Inner 20; Inner 20, child 2, reference 7"},
        {"members named in another order than their records'",
         {OuterAt(1, {.middle = 5, .direct = 3, .reference = 4}), InnerAt(3, {.number = 30}),
          InnerAt(4, {.number = 40, .child = 3}), MiddleAt(5, 50, 4), InnerAt(6, {.child = 4})},
         "Outer, middle 3, direct 4, reference 5; Inner; Middle 50, inner 5; Inner 30; Inner 40"},
        {"uids that nobody has",
         {OuterAt(1, {.child = 99, .keys = {99, 3, 3, 0}, .values = {3, 99, 3, 0}}), MiddleAt(2, 0, 0),
          InnerAt(3, toNone)},
         loose},
        {"objects of another type",
         {OuterAt(1, {.child = 2, .keys = {2, 3, 3, 0}, .values = {3, 2, 3, 0}}), MiddleAt(2, 0, 0),
          InnerAt(3, toWrong)},
         loose},
        {"a map of unequal lists keeps whole pairs",
         {OuterAt(1, {.keys = {2, 3}, .values = {3}}), InnerAt(2, {}), InnerAt(3, {})},
         "Outer, map 2 3, middle 4, direct 5; Inner; Inner; Middle, inner 6; Inner; Inner"},
        {"a uid twice resolves to the last",
         {InnerAt(1, {.number = 1, .reference = 2}), InnerAt(2, {.number = 2}), InnerAt(2, {.number = 3})},
         "Inner 1, reference 3; Inner 2; Inner 3"},
        {"objects that own each other are legal",
         {InnerAt(1, {.child = 2, .children = {1, 2, 2}}), InnerAt(2, {.child = 1})},
         "Inner, child 2, children 1 2 2; Inner, child 1"},
        {"uids of any size",
         {InnerAt(1, {.children = {greatest, least, -1, 5'000'000, 3, 0}}), InnerAt(greatest, {.number = 2}),
          InnerAt(least, {.number = 3}), InnerAt(-1, {.number = 4}), InnerAt(5'000'000, {.number = 5}),
          InnerAt(3, {.number = 6})},
         "Inner, children 2 3 4 5 6 0; Inner 2; Inner 3; Inner 4; Inner 5; Inner 6"},
        {"a child, with what it made itself",
         {InnerAt(1, {.child = 2}), InnerAt(2, {.number = MAKES, .invalid = true})},
         "Inner"},
        {"a child is invalid, its own children go too",
         {InnerAt(1, {.child = 2}), InnerAt(2, {.invalid = true, .child = 3, .children = {4}}),
          InnerAt(3, {.child = 5}), InnerAt(4, {}), InnerAt(5, {})},
         "Inner"},
        {"what somebody who stays owns too stays, with its children",
         {InnerAt(1, {.child = 3, .children = {2}}),
          InnerAt(2, {.invalid = true, .child = 3, .children = {5}}), InnerAt(3, {.child = 4}),
          InnerAt(4, {}), InnerAt(5, {})},
         "Inner, child 2; Inner, child 3; Inner"},
        {"an invalid one goes whoever owns it",
         {InnerAt(1, {.child = 2, .children = {2, 3}}), InnerAt(2, {.invalid = true}),
          InnerAt(3, {.reference = 2})},
         "Inner, children 2; Inner"},
        {"the root, owned by its child",
         {InnerAt(1, {.invalid = true, .child = 2}), InnerAt(2, {.child = 1})},
         ""},
        {"a circle beside the root",
         {InnerAt(1, {.reference = 2}), InnerAt(2, {.invalid = true, .child = 3}), InnerAt(3, {.child = 2})},
         "Inner"},
        {"a member's refusal is its owner's",
         {InnerAt(1, {.children = {2}}), WideAt(2, {}, 3), InnerAt(3, {.refusesRead = true})},
         "Inner"},
        {"an invalid member makes its owner invalid",
         {InnerAt(1, {.children = {2}, .reference = 3}), WideAt(2, {}, 3), InnerAt(3, {.invalid = true})},
         "Inner"},
        {"a nested member's refusal reaches the outermost owner",
         {InnerAt(7, {}), OuterAt(1, {.middle = 2}), MiddleAt(2, 0, 3), InnerAt(3, {.refusesRead = true})},
         "Inner"},
        {"a refusal reaches an owner that is read later",
         {InnerAt(7, {}), MiddleAt(1, 0, 2), InnerAt(2, {.refusesRead = true}), OuterAt(3, {.middle = 1})},
         "Inner"},
        {"a member's children go with its owner",
         {InnerAt(1, {.children = {2}}), WideAt(2, {.invalid = true}, 3), InnerAt(3, {.child = 4}),
          InnerAt(4, {})},
         "Inner"},
        {"what a member who stays owns stays",
         {WideAt(1, {.children = {3}}, 2), InnerAt(2, {.child = 4}),
          InnerAt(3, {.invalid = true, .child = 4}), InnerAt(4, {.child = 5}), InnerAt(5, {})},
         "Wide, base 4; Inner, child 3; Inner; Inner, child 2"},
        {"what a nested member who stays owns stays",
         {OuterAt(1, {.middle = 2, .children = {4}}), MiddleAt(2, 0, 3), InnerAt(3, {.child = 5}),
          InnerAt(4, {.invalid = true, .child = 5}), InnerAt(5, {})},
         "Outer, middle 3, direct 4; Inner; Middle, inner 5; Inner; Inner, child 2"},
        {"an owner kept by another keeps its member",
         {InnerAt(1, {.children = {2, 3}}), InnerAt(2, {.invalid = true, .children = {3}}), WideAt(3, {}, 4),
          InnerAt(4, {.child = 5}), InnerAt(5, {})},
         "Inner, children 2; Wide, base 4; Inner; Inner, child 3"},
        {"nothing refers to what was removed, from members neither",
         {OuterAt(1, {.middle = 2,
                      .direct = 8,
                      .child = 4,
                      .children = {4, 5},
                      .reference = 4,
                      .references = {4, 0, 5, 4},
                      .keys = {4, 5, 5},
                      .values = {5, 4, 5}}),
          MiddleAt(2, 0, 3, 4), InnerAt(3, {.child = 4, .children = {4, 5}, .reference = 6}),
          InnerAt(4, {.invalid = true, .child = 6}), InnerAt(5, {.reference = 4}), InnerAt(6, {.child = 7}),
          InnerAt(7, {.reference = 5}), InnerAt(8, {.child = 5, .reference = 7})},
         "Outer, map 2 2, middle 3, direct 4, children 2, references 0 2; Inner; Middle, inner 5; Inner, "
         "child 2; Inner, children 2"},
        {"nor to a member of what was removed, nor to a member of that",
         {InnerAt(7, {.child = 8, .reference = 3}), InnerAt(8, {.reference = 4}),
          OuterAt(1, {.middle = 2, .direct = 4}), MiddleAt(2, 0, 3), InnerAt(3, {}),
          InnerAt(4, {.refusesRead = true})},
         "Inner, child 2; Inner"},
        {"what only a removed pair held in the end is the caller's",
         {OuterAt(1, {.keys = {2}, .values = {3}}), InnerAt(2, {.number = 7}),
          InnerAt(3, {.invalid = true, .child = 2})},
         "Outer, middle 3, direct 4; Inner 7; Middle, inner 5; Inner; Inner"},
    };
    for (const auto& [name, rows, graph] : cases) {
        SCOPED_TRACE(name);
        Opened opened = Open(rows);
        EXPECT_EQ(GraphOf(rows), graph);
        EXPECT_EQ(opened.root == nullptr, graph[0] == '\0');
    }
}

TEST_F(ReaderTest, ReferencesSetWhileReadingFollowAUidThatComesAgain) {
    Pin::Register(&schema);
    const ClassEntry pin{
        .id = 1, .name = "Pin", .values = {{0, -1, "number"}}, .references = {{1, -8, "reference"}}};
    const ClassEntry other{.id = 2, .name = "Inner", .values = {{0, -1, "number"}, {0, -1, "gone"}}};
    const auto row = [](int uid, int classId, int number, int reference) {
        return Row{uid, classId, Payload().Ints({number, reference})};
    };
    for (const int lastClass : {1, 2}) { // the second fits no pin's reference
        Opened pins(FileOf({pin, other}, {row(1, 1, 1, 0), row(2, 1, 2, 1), row(3, 1, 3, 4),
                                          row(1, lastClass, 9, 3), row(4, 1, 4, 3)}),
                    schema);
        const Pin* target = pins.At<Pin>(2).reference.get();
        EXPECT_EQ(target == nullptr ? 0 : target->number, lastClass == 1 ? 9 : 0);
        EXPECT_EQ(pins.At<Pin>(3).reference, &pins.At<Pin>(4)) << "it had to wait";
        EXPECT_EQ(pins.At<Pin>(4).reference, &pins.At<Pin>(3));
    }
}

// Objects that may not stay

TEST_F(ReaderTest, AnObjectLetGoOfStaysUnlessItIsInvalid) {
    for (const bool invalid : {true, false}) {
        Outer::letsGoAt = "reference";
        Opened opened(File({OuterAt(1, {.child = 2}), InnerAt(2, {.invalid = invalid})}), schema);
        EXPECT_EQ(opened.Root<Outer>().child.get(), nullptr);
        EXPECT_EQ(opened.Count(), invalid ? 1U : 2U) << "the caller's all the same";
    }
}

TEST_F(ReaderTest, AChainOfInvalidObjectsIsRemovedInOneGo) {
    std::vector<Row> rows{InnerAt(1, {})};
    for (int uid = 2; uid <= 200'000; ++uid)
        rows.push_back(InnerAt(uid, {.invalid = true, .child = uid + 1, .reference = uid - 1}));
    Opened opened(File(rows), schema);
    EXPECT_EQ(opened.Count(), 1U);
}

TEST_F(ReaderTest, RemovesOnRequest) {
    Opened opened =
        Open({InnerAt(1, {.child = 2, .reference = 3}), InnerAt(2, {.child = 3}), InnerAt(3, {})});
    EXPECT_TRUE(opened.streamer.OnReadInstance(opened.root, false));
    EXPECT_FALSE(opened.streamer.OnReadInstance(opened.root, true));
    TDList<ZoStreamableBase*> invalid;
    invalid.Add(&opened.At<Inner>(2));
    invalid.Add(&opened.At<Inner>(2));
    opened.streamer.RemoveInvalidObjects(&invalid);
    EXPECT_EQ(opened.Count(), 1U);
    EXPECT_EQ(opened.Root<Inner>().child.get(), nullptr);
    EXPECT_EQ(opened.Root<Inner>().reference, nullptr);
}

// Failures

TEST_F(ReaderTest, AFailureEndsWhatWasReadUntilPointersAreSet) {
    const OuterRow outer{.middle = 2,
                         .direct = 3,
                         .child = 4,
                         .children = {4, 5},
                         .references = {5},
                         .keys = {4},
                         .values = {5}};
    const std::vector<Row> good{OuterAt(1, outer), MiddleAt(2, 0, 0), InnerAt(3, {}),
                                InnerAt(4, {.child = 1}), InnerAt(5, {.number = TAKES})};
    const char* unlisted = "Metadado inv\xE1lido @ TBinInStreamer::ReadObjects #3";
    const char* tooShort = "Tamanho de registro corrompido @ TZoClass::LoadFromStreamPre";
    const char* setting = "refused @ OnReadPointer";
    const struct {
        const char* name;
        Row last;
        const char* failure;
        const char* throwsAt = "";
    } cases[] = {
        {"a class that the file does not list", {6, 50, "x"}, unlisted},
        {"class 0", {6, 0, "x"}, unlisted},
        {"a negative class", {6, -7, "x"}, unlisted},
        {"the greatest class", {6, 2'147'483'647, "x"}, unlisted},
        {"a record that is too short", {6, 1, "xyz"}, tooShort},
        {"an empty record", {6, 1, ""}, tooShort},
        {"a list that claims more",
         {6, 1, Payload().Int(0).Bool(false).Bool(false).Ints({0, 5, 0, 0, 0, 0})},
         tooShort},
        {"a hook", InnerAt(6, {.number = FAILS}), "refused @ OnRead"},
        {"setting halves of a map", InnerAt(6, {}), setting, "map"},
        {"setting a member", InnerAt(6, {}), setting, "middle"},
        {"setting a child", InnerAt(6, {}), setting, "child"},
        {"setting a list", InnerAt(6, {}), setting, "children"},
        {"setting references", InnerAt(6, {}), setting, "references"},
    };
    for (const auto& tested : cases) {
        SCOPED_TRACE(tested.name);
        Outer::throwsAt = tested.throwsAt;
        std::vector<Row> rows = good;
        rows.push_back(tested.last);
        Opened opened(File(rows), schema, Opened::Later);
        EXPECT_EQ(FailureOf([&] { opened.Read(); }), tested.failure);
        EXPECT_EQ(opened.Count(), tested.failure == setting ? 4U : 0U) << "the caller's then";
        EXPECT_TRUE(tested.failure == setting || Alive::Count() == before);
        EXPECT_EQ(opened.stream.GetHandle(1), nullptr);
        EXPECT_EQ(opened.stream.GetUnresolved(1), nullptr);
    }
}

/// Its references may be set while it is read, but for what it wants to hear.
class Bolt : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Bolt)
    DECLARE_ZO_FIELD_REFERENCE(Bolt, next)
    REGISTER_ZO_END
    void OnReadPointer(TZoClassField*, ZoStreamableBase* target, unsigned uid) override {
        told = uid;
        heard = target;
    }
    unsigned told = 0;
    ZoStreamableBase* heard = nullptr;
};

TEST(ReaderTests, TellsOfReferencesToWhatWasReadBefore) {
    TZoMetaData schema;
    Bolt::Register(&schema);
    Opened opened(FileOf({{.name = "Bolt", .references = {{1, -8, "next"}}}},
                         {{1, 1, Payload().Int(2)}, {2, 1, Payload().Int(1)}}),
                  schema);
    EXPECT_EQ(opened.At<Bolt>(2).told, 1U);
    EXPECT_EQ(opened.At<Bolt>(2).heard, &opened.At<Bolt>(1));
    EXPECT_EQ(opened.At<Bolt>(1).told, 2U);
}

TEST_F(ReaderTest, CallsTheHooksInOrder) {
    static TBinInStream* from = nullptr;
    struct Special : Middle { // of another type than the class that it is read as
        bool OnRead(TBinInStream*, bool) override { return events.push_back("read"), true; }
        void OnReadPointer(TZoClassField*, ZoStreamableBase*, unsigned) override { events.push_back("set"); }
        void CheckForExcludedFields(TBinInStream*) override { events.push_back("check"); }
        bool GetIsValid() const override {
            events.push_back(from->GetHandle(1) == nullptr ? "valid" : "uids are known still");
            return true;
        }
    };
    class Hooked : public TBinInStreamer {
    public:
        using TBinInStreamer::TBinInStreamer;
        void OnAfterLoadInstance(ZoStreamableBase* object) override { Note("load", object); }
        void OnAfterResolveInstance(ZoStreamableBase* object) override { Note("resolve", object); }

    protected:
        ZoStreamableBase* CreateInstance(TZoClass* fileClass, TZoMetaData* fileSchema,
                                         TZoMetaData* appSchema) override {
            events.push_back("create " + Text(fileClass->GetName()));
            if (fileClass->GetName() == "Wide") return nullptr;
            if (fileClass->GetName() == "Middle") return new Special;
            return TBinInStreamer::CreateInstance(fileClass, fileSchema, appSchema);
        }
        static void Note(const char* what, ZoStreamableBase* object) {
            const auto* inner = dynamic_cast<Inner*>(object);
            events.push_back(what + std::string(" ") +
                             (inner != nullptr ? std::to_string(inner->number) : ""));
        }
    };
    const std::string file = File({InnerAt(1, {.number = 10, .reference = 3}), WideAt(2, {}, 0),
                                   InnerAt(3, {.number = 30}), MiddleAt(4, 0, 0, 3)});
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    stream.Initialize();
    from = &stream;
    Hooked streamer(&stream, &schema);
    streamer.ReadObjects();
    TIVector<ZoStreamableBase> objects;
    stream.TakeObjects(&objects);
    EXPECT_EQ(events, (std::vector<std::string>{"create Inner", "load 10", "create Wide", "create Inner",
                                                "load 30", "create Middle", "read", "load ", "check",
                                                "resolve 10", "resolve 30", "set", "resolve ", "valid"}));
    EXPECT_EQ(streamer.GetStream(), &stream);
    EXPECT_EQ(streamer.GetFile(), nullptr);
}

TEST_F(ReaderTest, OneStreamerReadsOneStreamAfterAnother) {
    const std::string file = FileOf({{.id = 2'000'000'000, .name = "Unknown"},
                                     {.id = 1, .name = "Inner", .values = {{0, -10, "invalid"}}}},
                                    {{1, 2'000'000'000, "x"}, {2, 1, Payload().Bool(false)}});
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    TBinInStreamer streamer(&stream, &schema);
    for (int round = 0; round < 2; ++round) {
        stream.Initialize();
        const pointer<ZoStreamableBase> root = streamer.ReadObjects();
        EXPECT_EQ(stream.Objects().NItems(), 1U);
        EXPECT_EQ(streamer.GetUnknowObjects()->NItems(), 1U);
        EXPECT_EQ(stream.GetUnresolved(2), nullptr) << "no more";
    }
}

TEST_F(ReaderTest, ObjectsAreTakenOverAtOnce) {
    // Of one that is not known any more nothing is left but what it held: whoever takes the root alone would
    // leave the rest to nobody.
    TZoMetaData later;
    Inner::Register(&later);
    const std::string file =
        File({OuterAt(1, {.child = 2, .children = {3, 4}}), InnerAt(2, {}), InnerAt(3, {}), InnerAt(4, {})});
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    stream.Initialize();
    ZoStreamableBase* root = TBinInStreamer(&stream, &later).ReadObjects();
    TIVector<ZoStreamableBase> objects;
    objects.Add(new Inner);
    stream.TakeObjects(&objects);
    EXPECT_EQ(objects.NItems(), 1U + 3U);
    EXPECT_EQ(objects[2].get(), root) << "the first that was not dropped";
    EXPECT_EQ(stream.Objects().NItems(), 0U);
    EXPECT_EQ(stream.GetInstance(2), nullptr);
}

// Some classes only

/// What the application does not know any more.
class Gone : public Inner {
    REGISTER_ZO_BEGIN(Gone, Inner)
    REGISTER_ZO_END
};

struct FilteredReaderTest : ReaderTest {
    FilteredReaderTest() {
        for (const auto registers : {Inner::Register<Inner>, Wide::Register<Wide>, Middle::Register<Middle>,
                                     Outer::Register<Outer>, Gone::Register<Gone>})
            registers(&older);
        file = File(all, older);
    }
    TZoMetaData older;
    const std::vector<Row> all{OuterAt(1, {.direct = 2, .child = 3, .children = {4, 5, 6}}),
                               InnerAt(2, {.number = 20, .reference = 3}),
                               InnerAt(3, {.number = 30, .reference = 1}),
                               InnerAt(4, {.number = 40, .reference = 6}),
                               WideAt(5, {.number = 50}, 0),
                               InnerAt(6, {.number = 60, .reference = 4}),
                               {7, 5, InnerPart({.number = 70})},
                               {8, 77, "foreign"},
                               InnerAt(9, {.number = 90})};
    std::string file;
};

/// A reading of some classes, twice, as a reader serves again; its objects end with it.
class Filtered {
public:
    Filtered(std::string file, TZoMetaData& appSchema, const std::vector<const char*>& classes)
        : bytes(std::move(file)), schema(appSchema), stream(bytes.data(), bytes.size(), 0) {
        TDList<ZoString> names;
        for (const char* name : classes) names.Add(name);
        streamer = std::make_unique<TFilteredBinInStreamer>(&stream, &schema, &names);
        for (int round = 0; round < 2 && failure.empty(); ++round) {
            EndObjects(stream, schema);
            stream.Initialize();
            failure = FailureOf([&] { result = streamer->Read(); });
        }
    }
    ~Filtered() { EndObjects(stream, schema); }

private:
    std::string bytes;
    TZoMetaData& schema;

public:
    TMemoryBinInStream stream;
    std::unique_ptr<TFilteredBinInStreamer> streamer;
    bool result = false;
    std::string failure;
};

TEST_F(FilteredReaderTest, ReadsTheClassesAskedFor) {
    const std::string refusing = File({InnerAt(1, {.number = 1}), InnerAt(2, {.refusesRead = true}),
                                       InnerAt(3, {.number = 3, .invalid = true})});
    const std::tuple<const char*, std::vector<const char*>, std::string, const std::string&> cases[] = {
        {"one class, whose pointers lead to what was read, before or behind",
         {"Inner"},
         "Inner 20, reference 2; Inner 30; Inner 40, reference 4; Inner 60, reference 3; Inner 90",
         file},
        {"a derived class alone", {"Wide"}, "Wide 50, base 2; Inner", file},
        {"two, in another order than the file's",
         {"Wide", "Inner"},
         "Inner 20, reference 2; Inner 30; Inner 40, reference 5; Wide 50, base 7; Inner 60, reference 3; "
         "Inner 90; Inner",
         file},
        {"one that is not there, the same one twice",
         {"Absent", "Wide", "Wide"},
         "Wide 50, base 2; Inner",
         file},
        {"a member and items that were passed over",
         {"Outer"},
         "Outer, middle 2, direct 3; Middle, inner 4; Inner; Inner",
         file},
        {"a member and items that were not; what was read for the member has ended",
         {"Outer", "Inner"},
         "Outer, middle 6, direct 7, child 2, children 3 4; Inner 30; Inner 40, reference 4; Inner 60, "
         "reference 3; Inner 90; Middle, inner 8; Inner 20, reference 2; Inner",
         file},
        {"one that the application does not know", {"Gone"}, "", file},
        {"what says on reading that it is invalid goes; what says it later does so in whole models alone",
         {"Inner"},
         "Inner 1; Inner 3",
         refusing},
    };
    for (const auto& [name, classes, graph, bytes] : cases) {
        Filtered filtered(bytes, schema, classes);
        EXPECT_EQ(filtered.failure, "") << name;
        EXPECT_EQ(GraphOf(filtered.stream), graph) << name;
        EXPECT_EQ(filtered.result, graph != "") << name;
        EXPECT_EQ(filtered.stream.GetSkipped(), 0U) << name;
    }
}

TEST_F(FilteredReaderTest, TellsWhatIsWrongWithTheFile) {
    const char* none =
        "N\xE3o existem classes com os nomes da filtragem no metadado @ TFilteredBinInStreamer::Read #3";
    const std::tuple<const char*, std::string, std::vector<const char*>, const char*> cases[] = {
        {"no record", file.substr(0, 28), {"Inner"}, "Metadado corrompido @ TFilteredBinInStreamer::Read #1"},
        {"no class of these names", file, {"Absent", "inner", "class Inner"}, none},
        {"no names", file, {}, none},
        {"a parent that is not there",
         FileOf({ClassEntry{.parents = {5}}}, {}),
         {"X"},
         "Metadado inv\xE1lido @ TFilteredBinInStreamer::Read #2"},
        {"a record asked for that is not whole",
         file.substr(0, file.size() - 1),
         {"Inner"},
         "No error @ TBinInStream::LoadFilteredRecord #7"},
        {"a record that ends before its fields",
         File({InnerAt(2, {}), {3, 1, "abc"}}),
         {"Inner"},
         "Tamanho de registro corrompido @ TZoClass::LoadFromStreamPre"},
        {"a hook while pointers are set",
         File({InnerAt(2, {}), OuterAt(3, {.child = 2})}),
         {"Inner", "Outer"},
         "refused @ OnReadPointer"},
    };
    Outer::throwsAt = "child";
    for (const auto& [name, bytes, classes, failure] : cases) {
        Filtered filtered(bytes, schema, classes);
        EXPECT_EQ(filtered.failure, failure) << name;
        const auto left = std::string(name).rfind("a hook", 0) == 0 ? 2U : 0U; // objects, for the caller
        EXPECT_EQ(filtered.streamer->GetObjects().NItems(), left) << name;
        EXPECT_EQ(filtered.stream.Objects().NItems(), left) << name;
        EXPECT_TRUE(left != 0 || Alive::Count() == before) << name;
    }
}

TEST_F(FilteredReaderTest, SurvivesStrangersWithRightSums) {
    std::vector<Row> rows = all;
    for (Row& row : rows) {
        for (char& byte : row.payload) {
            const char sound = byte;
            for (const char value : {'\0', '\1', '\x7F', '\xFF'}) {
                byte = value;
                const Filtered filtered(File(rows, older), schema, {"Outer", "Inner", "Gone"});
                EXPECT_TRUE(filtered.failure.empty() ||
                            filtered.failure ==
                                "Tamanho de registro corrompido @ TZoClass::LoadFromStreamPre")
                    << filtered.failure;
            }
            byte = sound;
        }
    }
}

} // namespace
