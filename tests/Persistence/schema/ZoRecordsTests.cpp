#include "ZoPrimitives/ZoRecords.h"
#include "ZoPrimitives/ZoStreamablePrimitives.h"
#include "support/EveryKind.h"
#include "support/FaultyServices.h"
#include "support/Memory.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

using namespace ZoPrimitives;
using Testing::FaultyServices;

namespace {

/// A reader over a file that lives as long.
struct OverBytes {
    explicit OverBytes(std::string bytes)
        : file(std::move(bytes)), block(file.data(), file.size()), reader(block) {}
    std::string file;
    TZoMemoryBytes block;
    TZoRecordReader reader;
};

// Values

/// Objects with drawn values in every kind of field, which refer to each other's leaves.
class DrawnKinds {
public:
    explicit DrawnKinds(unsigned seed) : random(seed) {
        for (auto i = 1 + random() % 6; i > 0; --i) {
            objects.push_back(new app::EveryKind);
            root.GetList().Add(objects.back());
            Fill(*objects.back());
        }
        for (app::EveryKind* object : objects) Refer(*object);
    }
    StreamableList root;

private:
    app::Leaf* NewLeaf() {
        leaves.push_back(new app::Leaf(static_cast<int>(random())));
        return leaves.back();
    }
    app::Leaf* AnyLeaf() {
        const std::size_t pick = random() % (leaves.size() + 1);
        return pick == 0 ? nullptr : leaves[pick - 1];
    }
    template <class Action>
    void Few(Action action) {
        for (auto i = random() % 4; i > 0; --i) action();
    }
    std::string AnyText() {
        std::string text(random() % 9, ' ');
        for (char& c : text) c = static_cast<char>(1 + random() % 255);
        return text;
    }
    void Fill(app::EveryKind& to) {
        to.anInt = static_cast<int>(random());
        to.aFloat = static_cast<float>(random()) / 3;
        to.aDouble = static_cast<double>(random()) / 7;
        to.aString = AnyText();
        to.aBlob = ZoBlob(AnyText().data(), random() % 3);
        to.aBool = random() % 2 == 0;
        to.anUnsigned = static_cast<unsigned>(random());
        Few([&] { to.ints.Add(static_cast<int>(random() % 5)); });
        Few([&] { to.floats.Add(static_cast<float>(random())); });
        Few([&] { to.doubles.Add(static_cast<double>(random()) / 9); });
        Few([&] { to.strings.Add(AnyText()); });
        to.child = random() % 2 == 0 ? nullptr : NewLeaf();
        to.member.number = static_cast<int>(random());
        leaves.push_back(&to.member);
        Few([&] { to.children.Add(NewLeaf()); });
        Few([&] { to.map.Append(NewLeaf(), NewLeaf()); });
    }
    void Refer(app::EveryKind& from) {
        from.reference = AnyLeaf();
        from.external = AnyLeaf();
        Few([&] { from.references.Add(AnyLeaf()); });
        Few([&] { from.externals.Add(AnyLeaf()); });
    }

    std::mt19937 random;
    std::vector<app::EveryKind*> objects;
    std::vector<app::Leaf*> leaves;
};

/// Checks the values of records against the objects that they were opened as.
class SavedValues {
public:
    SavedValues(Opened& opened, TZoRecordReader& itsReader) : reader(itsReader) {
        for (int uid = 1; uid <= static_cast<int>(itsReader.NObjects()); ++uid)
            uids[opened.stream.GetInstance(uid)] = uid;
        for (const auto& object :
             opened.Root<StreamableList>().GetList()) { // members have no handle any more
            reader.Find(UidOf(object.get()), record);
            uids[&dynamic_cast<app::EveryKind&>(*object).member] = At("member").Uid();
        }
    }

    void Expect(app::EveryKind& object) {
        ASSERT_TRUE(reader.Find(UidOf(&object), record));
        EXPECT_EQ(record.GetState(), TZoRecordState::Whole);
        EXPECT_EQ(At("anInt").AsInt(), object.anInt);
        EXPECT_EQ(At("aFloat").AsFloat(), object.aFloat);
        EXPECT_EQ(At("aDouble").AsDouble(), object.aDouble);
        EXPECT_EQ(At("aString").AsString(), object.aString);
        EXPECT_EQ(At("aBlob").AsBlob(), object.aBlob);
        EXPECT_EQ(At("aBool").AsBool(), object.aBool);
        EXPECT_EQ(At("anUnsigned").AsUnsigned(), object.anUnsigned);
        ExpectItems("ints", object.ints, &TZoValue::IntItem);
        ExpectItems("floats", object.floats, &TZoValue::FloatItem);
        ExpectItems("doubles", object.doubles, &TZoValue::DoubleItem);
        ExpectItems("strings", object.strings, &TZoValue::StringItem);
        EXPECT_EQ(At("child").Uid(), UidOf(object.child));
        EXPECT_EQ(At("member").Uid(), UidOf(&object.member));
        EXPECT_EQ(At("reference").Uid(), UidOf(object.reference.get()));
        EXPECT_EQ(At("external").Uid(), UidOf(object.external.get()));
        ExpectUids("children", object.children);
        ExpectUids("references", object.references);
        ExpectUids("externals", object.externals);
        ASSERT_EQ(At("map").NItems(1), static_cast<int>(object.map.NItems()));
        ASSERT_EQ(At("map").NItems(2), At("map").NItems(1));
        for (int i = 1; i <= At("map").NItems(); ++i) {
            EXPECT_EQ(At("map").Uid(i, 1), UidOf(object.map.KeyAt(static_cast<unsigned>(i))));
            EXPECT_EQ(At("map").Uid(i, 2), UidOf(object.map.ValueAt(static_cast<unsigned>(i))));
        }
        for (const auto& leaf : object.children) Expect(*leaf);
        Expect(object.member);
    }

private:
    void Expect(app::Leaf& leaf) {
        ASSERT_TRUE(reader.Find(UidOf(&leaf), record));
        EXPECT_EQ(record.Value(1).AsInt(), leaf.number);
    }
    TZoValue At(const char* name) const { return *record.FindValue(name); }
    int UidOf(ZoStreamableBase* object) { return object == nullptr ? 0 : uids.at(object); }
    int UidOf(const pointer<app::Leaf>& object) { return UidOf(object.get()); }
    template <class List, class Item>
    void ExpectItems(const char* name, const List& expected, Item item) {
        const TZoValue value = At(name);
        ASSERT_EQ(value.NItems(), static_cast<int>(expected.NItems())) << name;
        for (int i = value.NItems(); i >= 1; --i)
            EXPECT_EQ((value.*item)(i), expected[static_cast<unsigned>(i)]) << name;
    }
    template <class List>
    void ExpectUids(const char* name, const List& expected) {
        const TZoValue value = At(name);
        ASSERT_EQ(value.NItems(), static_cast<int>(expected.NItems())) << name;
        for (int i = 1; i <= value.NItems(); ++i)
            EXPECT_EQ(value.Uid(i), UidOf(expected[static_cast<unsigned>(i)])) << name;
    }

    std::map<const ZoStreamableBase*, int> uids;
    TZoRecordReader& reader;
    TZoRecord record;
};

TEST(ZoRecordsTests, ReadsEveryValueThatWasSaved) {
    TZoMetaData schema;
    ZoRegisterPrimitives(&schema);
    app::RegisterEveryKind(schema);
    for (unsigned seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        DrawnKinds drawn(seed);
        const std::string file = SaveAtOnce(schema, &drawn.root);
        Opened opened(file, schema);
        OverBytes over(file);
        SavedValues saved(opened, over.reader);
        for (const auto& object : opened.Root<StreamableList>().GetList())
            saved.Expect(dynamic_cast<app::EveryKind&>(*object));
        EXPECT_EQ(over.reader.GetUndecided().NItems(), 0U);
        TZoRecord record;
        unsigned long long count = 0;
        while (over.reader.Next(record)) {
            EXPECT_EQ(record.GetUid(), static_cast<int>(++count));
            EXPECT_EQ(record.GetState(), TZoRecordState::Whole);
            EXPECT_EQ(record.GetClass(), over.reader.ClassOf(record.GetUid()));
        }
        EXPECT_EQ(count, over.reader.NObjects());
        EXPECT_EQ(over.reader.ClassOf(static_cast<int>(count) + 1), nullptr);
    }
}

TEST(ZoRecordsTests, GivesFieldsInTheOrderOfTheRecord) {
    OverBytes over(FileOf(app::EveryKindEntries(), app::EveryKindRows()));
    TZoRecord record;
    ASSERT_TRUE(over.reader.Next(record));
    const std::vector<app::FieldBytes> fields = app::EveryKindFields();
    ASSERT_EQ(record.NValues(), static_cast<int>(fields.size()));
    for (int i = 1; i <= record.NValues(); ++i) {
        const app::FieldBytes& field = fields[static_cast<std::size_t>(i) - 1];
        const TZoValue value = record.Value(i);
        EXPECT_EQ(Text(value.GetField().GetFieldName()), field.name);
        EXPECT_EQ(value.GetKind(), field.kind);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(value.GetBytes()), value.GetSize()), field.bytes);
    }
    EXPECT_FALSE(record.FindValue("none"));
    EXPECT_THROW(record.Value(20), XZoAssert);
    EXPECT_THROW(record.FindValue("anInt")->AsUnsigned(), XZoAssert);
    EXPECT_THROW(record.FindValue("ints")->IntItem(3), XZoAssert);
    EXPECT_THROW(record.FindValue("ints")->NItems(2), XZoAssert);
    // A class's own field comes before one of the same name that it inherits.
    const FieldEntry named{0, -1, "n"};
    OverBytes inherited(
        FileOf({{.id = 1, .values = {named}}, {.id = 2, .name = "Y", .parents = {1}, .values = {named}}},
               {{1, 2, Payload().Ints({3, 4})}}));
    ASSERT_TRUE(inherited.reader.Next(record));
    EXPECT_EQ(record.FindValue("n")->AsInt(), 4);
}

// What a record does not tell by itself

struct LayoutRow {
    const char* name;
    ClassEntry fields;            // of class 1
    std::vector<Payload> records; // of its objects, with the uids 11, 12 ...; others, of class 2, have 1 to 9
    std::string read; // of the first record: each list as integers, ':', items; a map's halves with '/'
    Names undecided{};
};

std::string ListText(const TZoValue& value, int half) {
    std::string text;
    for (int i = 1; i <= value.NIntegers(half); ++i) text += std::to_string(value.Integer(i, half)) + " ";
    text += value.IsList(half) ? ":" : "=";
    for (int i = 1; i <= value.NItems(half); ++i) {
        const bool isInts = value.GetKind() == ftListInt;
        text += " " + std::to_string(isInts ? value.IntItem(i) : value.Uid(i, half));
    }
    return text;
}

std::string ValuesText(const TZoRecord& record) {
    std::string text;
    for (int i = 1; i <= record.NValues(); ++i) {
        const TZoValue value = record.Value(i);
        const bool isMap = value.GetKind() == ftChildPointerMap;
        text += (i == 1 ? "" : ", ") + ListText(value, 1) + (isMap ? " / " + ListText(value, 2) : "");
    }
    return text;
}

const ClassEntry ONE_LIST{.childLists = {{2, -7, "a"}}};
const ClassEntry TWO_LISTS{.childLists = {{2, -7, "a"}, {2, -7, "b"}}};
const ClassEntry MAP{.maps = {{2, -19, "m"}}};
const ClassEntry MANY_LISTS = [] {
    ClassEntry lists;
    for (char name = 'a'; name <= 'l'; ++name) lists.childLists.push_back({2, -7, std::string(1, name)});
    return lists;
}();
Payload Ints(std::initializer_list<int> values) { return Payload().Ints(values); }

const LayoutRow LAYOUTS[] = {
    {"a list", ONE_LIST, {Ints({2, 5, 6})}, ": 5 6"},
    {"an empty list", ONE_LIST, {Ints({0})}, ":"},
    {"a list with an integer", ONE_LIST, {Ints({1, 77, 6})}, "77 : 6"},
    {"a list with two", ONE_LIST, {Ints({1, 77, -78, 6})}, "77 -78 : 6"},
    {"a list of values with an integer", {.values = {{0, -11, "a"}}}, {Ints({1, 77, 6})}, "77 : 6"},
    {"plain lists, though others fit", TWO_LISTS, {Ints({1, 5, 1, 1})}, ": 5, : 1"},
    {"either with an integer", TWO_LISTS, {Ints({0, 2, 2, 5, 6})}, ":, 2 : 5 6", {"a", "b"}},
    {"either, but another record tells",
     TWO_LISTS,
     {Ints({0, 2, 2, 5, 6}), Ints({0, 8, 1, 5})},
     "2 :, : 5 6"},
    {"uids that exist tell", TWO_LISTS, {Ints({1, 99, 1, 1, 99})}, "99 : 1, : 99"},
    {"a map of lists", MAP, {Ints({1, 5, 1, 6})}, ": 5 / : 6"},
    {"a map of objects", MAP, {Ints({5, 6})}, "= 5 / = 6"},
    {"a map of lists with integers", MAP, {Ints({1, 70, 5, 1, 71, 6})}, "70 : 5 / 71 : 6"},
    {"an odd record decides nothing", ONE_LIST, {Ints({1, 77, 6}), Ints({1}), Ints({1, 78, 5})}, "77 : 6"},
    {"nor if it is the first", ONE_LIST, {Ints({1, 77, 78, 6}), Ints({2, 5, 6}), Ints({1, 5})}, ": 77"},
    {"more readings than can be tried",
     MANY_LISTS,
     {Payload(std::string(80, '\0'))},
     ":, :, :, :, :, :, :, :, :, :, :, :",
     {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"}},
    {"no reading fits", ONE_LIST, {Ints({9})}, "", {"a"}},
};

TEST(ZoRecordsTests, FindsOutHowListsAndMapsStandInRecords) {
    for (const LayoutRow& row : LAYOUTS) {
        SCOPED_TRACE(row.name);
        std::vector<Row> rows;
        int uid = 11;
        for (const Payload& record : row.records) rows.push_back({uid++, 1, record});
        for (int other = 1; other <= 9; ++other) rows.push_back({other, 2, Payload().Int(0)});
        const ClassEntry target{.id = 2, .name = "Y", .values = {{0, -1, "n"}}};
        OverBytes over(FileOf({row.fields, target}, rows));
        TZoRecord record;
        ASSERT_TRUE(over.reader.Next(record));
        EXPECT_EQ(ValuesText(record), row.read);
        Names undecided;
        for (const auto& one : over.reader.GetUndecided())
            undecided.push_back(Text(one.field->GetFieldName()));
        EXPECT_EQ(undecided, row.undecided);
    }
}

// Records that do not fit

struct Misfit {
    const char* name;
    ClassEntry fields; // of class 1
    Row row;
    TZoRecordState state;
    int values; // that are there
};

const ClassEntry INT_AND_TEXT{.values = {{0, -1, "n"}, {0, -4, "t"}}};
const Misfit MISFITS[] = {
    {"whole", INT_AND_TEXT, {1, 1, Payload().Int(1).Text("x")}, TZoRecordState::Whole, 2},
    {"an unknown class", INT_AND_TEXT, {1, 2, Payload().Int(1).Text("x")}, TZoRecordState::UnknownClass, 0},
    {"a second schema", INT_AND_TEXT, {0, 0, Payload().Int(0)}, TZoRecordState::UnknownClass, 0},
    {"bytes behind the end",
     INT_AND_TEXT,
     {1, 1, Payload().Int(1).Text("x").Bool(true)},
     TZoRecordState::NotConsumed,
     2},
    {"a text past the end",
     INT_AND_TEXT,
     {1, 1, Payload().Int(1).Int(2).Bool(true)},
     TZoRecordState::PastEnd,
     1},
    {"a text of four GiB", INT_AND_TEXT, {1, 1, Payload().Int(1).Int(-1)}, TZoRecordState::PastEnd, 1},
    {"too short for all fields", INT_AND_TEXT, {1, 1, Payload().Int(1)}, TZoRecordState::PastEnd, 0},
    {"a kind from the future",
     {.values = {{0, -20, "n"}}},
     {1, 1, Payload().Int(1)},
     TZoRecordState::UnknownKind,
     0},
};

TEST(ZoRecordsTests, TellsRecordsThatDoNotFitTheirClass) {
    for (const Misfit& misfit : MISFITS) {
        SCOPED_TRACE(misfit.name);
        const Row good{2, 3, Payload().Int(0)};
        OverBytes over(
            FileOf({misfit.fields, {.id = 3, .name = "Z", .values = {{0, -1, "n"}}}}, {misfit.row, good}));
        TZoRecord record;
        ASSERT_TRUE(over.reader.Next(record));
        EXPECT_EQ(record.GetState(), misfit.state);
        EXPECT_EQ(record.NValues(), misfit.values);
        EXPECT_EQ(record.GetClass() == nullptr, misfit.state == TZoRecordState::UnknownClass);
        ASSERT_TRUE(over.reader.Next(record)) << "what follows";
        EXPECT_EQ(record.GetUid(), 2);
        EXPECT_FALSE(over.reader.Next(record));
        over.reader.Restart();
        EXPECT_TRUE(over.reader.Next(record));
    }
}

TEST(ZoRecordsTests, FindsByUidWhateverTheOrder) {
    const std::vector<ClassEntry> classes{{.values = {{0, -1, "n"}}}};
    const auto row = [](int uid, int value) { return Row{uid, 1, Payload().Int(value)}; };
    const std::string file =
        FileOf(classes, {row(7, 70), row(2'000'000'000, 5), row(-3, 30), row(8, 80), row(7, 71)});
    OverBytes over(file + "garbage" + RecordBytes(9, 1, Payload().Int(90)));
    TZoRecord record;
    const std::map<int, int> all{{7, 71}, {8, 80}, {9, 90}, {2'000'000'000, 5}, {-3, 30}};
    for (const auto& [uid, value] : all) {
        ASSERT_TRUE(over.reader.Find(uid, record)) << uid;
        EXPECT_EQ(record.Value(1).AsInt(), value);
    }
    for (const int uid : {0, 1, 6, 10, -4}) EXPECT_FALSE(over.reader.Find(uid, record)) << uid;
    EXPECT_EQ(over.reader.NObjects(), 6U);
}

TEST(ZoRecordsTests, RefusesWhatHasNoSchema) {
    const std::string schema =
        FileOf(std::vector<ClassEntry>{{.values = {{0, -1, "n"}}}}, {{1, 1, Payload().Int(5)}});
    const std::string contradiction = FileOf({ClassEntry{.parents = {9}}}, {});
    const std::string cut = FileOf({{0, 0, Payload().Int(1'000'000)}});
    struct {
        const char* message;
        std::string file;
        TStreamFailure kind;
    } rows[] = {{"Header de arquivo inv\xE1lido", "", TStreamFailure::Truncated},
                {"Header de arquivo inv\xE1lido", HeaderBytes(10'000, 0), TStreamFailure::WrongFile},
                {"Metadado corrompido", HeaderBytes(1, 1), TStreamFailure::Damaged},
                {"Metadado inv\xE1lido", contradiction, TStreamFailure::Damaged},
                {"Metadado inv\xE1lido", cut, TStreamFailure::Damaged}};
    for (const auto& row : rows) {
        const Testing::TemporaryFolder folder;
        folder.Write("file", row.file);
        try {
            TZoRecordReader reader{TZoPath(folder.Path("file"))};
            ADD_FAILURE() << row.message;
        } catch (const XReadStream& failure) {
            EXPECT_EQ(Text(failure.Message()), row.message);
            EXPECT_EQ(failure.Kind(), row.kind);
            EXPECT_EQ(Text(failure.Path()), folder.Path("file"));
        }
        TZoMemoryBytes bytes(row.file.data(), row.file.size());
        TZoRecordReader withAnother(bytes, OverBytes(schema).reader.ShareSchema());
        TZoRecord record;
        EXPECT_FALSE(withAnother.Next(record));
    }
    // Another file's schema is enough.
    const std::string bare = schema.substr(schema.size() - 28);
    TZoMemoryBytes bytes(bare.data(), bare.size());
    TZoRecordReader withAnother(bytes, OverBytes(schema).reader.ShareSchema());
    TZoRecord record;
    ASSERT_TRUE(withAnother.Next(record));
    EXPECT_EQ(record.Value(1).AsInt(), 5);
}

TEST(ZoRecordsTests, ADeviceThatFailsIsToldWithTheFile) {
    const Testing::TemporaryFolder folder;
    folder.Write("file", FileOf(app::EveryKindEntries(), app::EveryKindRows()));
    for (int call = 1; call <= 2; ++call) {
        FaultyServices services;
        services.Fail("ReadFile", call, Platform::ErrorDevice);
        try {
            TZoRecordReader reader{TZoPath(folder.Path("file"))};
            TZoRecord record;
            while (reader.Next(record)) {
            }
            ADD_FAILURE() << call;
        } catch (const XReadStream& failure) {
            EXPECT_EQ(failure.Kind(), TStreamFailure::Device);
            EXPECT_EQ(failure.SystemCode(), unsigned{Platform::ErrorDevice});
            EXPECT_EQ(Text(failure.Path()), folder.Path("file"));
        }
    }
}

TEST(ZoRecordsTests, APassAllocatesNothing) {
    if (!Memory::Watched()) GTEST_SKIP();
    std::vector<Row> rows;
    for (int uid = 1; uid <= 1000; ++uid) {
        rows.push_back(app::EveryKindRows()[0]);
        rows.back().uid = uid;
    }
    OverBytes over(FileOf(app::EveryKindEntries(), rows));
    TZoRecord record;
    int count = over.reader.Next(record) ? 1 : 0;
    const Memory::Shortage shortage(1, true);
    while (over.reader.Next(record)) count += record.FindValue("anInt")->AsInt() == -2 ? 1 : 0;
    EXPECT_FALSE(Memory::Shortage::Met());
    EXPECT_EQ(count, 1000);
}

} // namespace
