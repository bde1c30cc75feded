#include "support/EveryKind.h"

#include "ZoPrimitives/ZoStreamablePrimitives.h"

#include <algorithm>
#include <sstream>

using namespace ZoPrimitives;

// One application in two versions: files of the one are opened by the other.

namespace {

using app::FieldBytes;

/// The excluded fields that an object was offered.
std::vector<FieldBytes> offers;

/// Takes as many bytes from the stream's position as the field has in a filled object.
void TakeExcluded(TZoClassField* field, TBinInStream* stream) {
    for (FieldBytes offered : app::EveryKindFields()) {
        if (field->GetFieldName() != offered.name.c_str()) continue;
        for (char& byte : offered.bytes) {
            unsigned char taken = 0;
            stream->Take(taken);
            byte = static_cast<char>(taken);
        }
        offers.push_back({offered.name, field->GetFieldType(), offered.bytes});
    }
}

/// The same fields, in kinds of the same encoding or of another.
namespace changed {
using app::Leaf;
class EveryKind : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(EveryKind)
    DECLARE_ZO_FIELD_CHILD_VALUE(Leaf, child)
    DECLARE_ZO_FIELD_CHILD(Leaf, member)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(Leaf, reference)
    DECLARE_ZO_FIELD_REFERENCE(Leaf, external)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE_LIST(Leaf, references)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Leaf, externals)
    DECLARE_ZO_FIELD(unsigned, anInt)
    DECLARE_ZO_FIELD(int, anUnsigned)
    DECLARE_ZO_FIELD(double, aFloat)
    DECLARE_ZO_FIELD(ZoBlob, aString)
    DECLARE_ZO_FIELD(ZoString, aBlob)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Leaf, children)
    DECLARE_ZO_FIELD_LIST(float, ints)
    DECLARE_ZO_FIELD_CHILD_LIST(Leaf, map)
    DECLARE_ZO_FIELD(double, aDouble)
    REGISTER_ZO_END
    void HandleExcludedField(TZoClassField* field, TBinInStream* stream) override {
        TakeExcluded(field, stream);
    }
};
} // namespace changed

void ExpectOffers(const std::vector<std::string>& names) {
    std::vector<FieldBytes> expected;
    for (const FieldBytes& field : app::EveryKindFields()) {
        if (std::count(names.begin(), names.end(), field.name) != 0) expected.push_back(field);
    }
    EXPECT_EQ(offers, expected);
}

std::string FilledFile() { return FileOf(app::EveryKindEntries(), app::EveryKindRows()); }

TEST(VersionTests, KindsOfTheSameEncodingMatchAndOthersCountAsGone) {
    TZoMetaData schema;
    app::Leaf::Register(&schema);
    changed::EveryKind::Register(&schema);
    offers.clear();
    Opened opened(FilledFile(), schema);
    auto& read = opened.Root<changed::EveryKind>();
    EXPECT_EQ(read.child.number, 10);
    ASSERT_NE(read.member.get(), nullptr);
    EXPECT_EQ(read.member->number, 13);
    EXPECT_EQ(read.reference, &opened.At<app::Leaf>(7));
    EXPECT_EQ(read.external, &opened.At<app::Leaf>(8));
    ASSERT_EQ(read.references.NItems(), 2U);
    EXPECT_EQ(read.references[1], &read.child);
    EXPECT_EQ(read.references[2], read.member.get());
    ASSERT_EQ(read.externals.NItems(), 1U);
    EXPECT_EQ(read.aDouble, -0.25);
    EXPECT_EQ(read.anInt, 0U);
    EXPECT_EQ(read.aFloat, 0);
    EXPECT_EQ(read.map.NItems() + read.children.NItems() + read.ints.NItems(), 0U);
    ExpectOffers({"map", "anInt", "aFloat", "aString", "aBlob", "aBool", "ints", "floats", "doubles",
                  "strings", "anUnsigned", "children"});
}

// Classes that are gone

class Base : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Base)
    DECLARE_ZO_FIELD(int, number)
    DECLARE_ZO_FIELD_CHILD(Base, child)
    DECLARE_ZO_FIELD_CHILD_LIST(Base, children)
    DECLARE_ZO_FIELD_REFERENCE(Base, reference)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Base, references)
    DECLARE_ZO_FIELD_CHILD_MAP(ZoInteger, Base, map)
    REGISTER_ZO_END
    bool OnRead(TBinInStream*, bool substituted) override { return stands = substituted, true; }
    void HandleExcludedField(TZoClassField* field, TBinInStream*) override {
        excluded.push_back(Text(field->GetFieldName()));
    }
    bool stands = false;
    std::vector<std::string> excluded;
};

class Strict : public Base {
    REGISTER_ZO_BEGIN(Strict, Base)
    REGISTER_ZO_END
    bool CanBeConvertedToBaseClass() const override { return false; }
};

// The entry of `Base` as class 1, and a record of it.
ClassEntry BaseEntry() {
    return {.id = 1,
            .name = "Base",
            .maps = {{1, -19, "map"}},
            .values = {{0, -1, "number"}},
            .children = {{1, -6, "child"}},
            .childLists = {{1, -7, "children"}},
            .references = {{1, -8, "reference"}},
            .referenceLists = {{1, -9, "references"}}};
}
Payload BasePart(int number, const std::vector<int>& uids = {}) {
    const auto list = [&] {
        Payload bytes;
        bytes.Int(static_cast<long long>(uids.size()));
        for (const int uid : uids) bytes.Int(uid);
        return bytes;
    };
    const int first = uids.empty() ? 0 : uids.front();
    Payload bytes;
    bytes.Add(list()).Add(list()).Int(number).Int(first).Add(list()).Int(first).Add(list());
    return bytes;
}

TEST(VersionTests, AnObjectOfAnUnknownClassClimbsItsFirstParents) {
    const auto made = [](int id, const char* name, std::vector<int> parents = {}, bool abstract = false) {
        return ClassEntry{.id = id, .name = name, .abstract = abstract, .parents = std::move(parents)};
    };
    const ClassEntry gone{.id = 2, .name = "Gone", .parents = {1}, .values = {{0, -1, "own"}}};
    const ClassEntry base = BaseEntry();
    ClassEntry abstractBase = base;
    abstractBase.abstract = true;
    enum Outcome { Dropped, Itself, Substituted };
    // The class of the objects is the last.
    const std::tuple<const char*, std::vector<ClassEntry>, Outcome> cases[] = {
        {"known", {base}, Itself},
        {"unknown without parent", {base, made(2, "Gone")}, Dropped},
        {"unknown with a known parent", {base, gone}, Substituted},
        {"unknown with a known grandparent", {base, gone, made(3, "Further", {2})}, Substituted},
        {"an abstract parent drops, a known grandparent does not help",
         {base, made(2, "Gone", {1}, true), made(3, "Further", {2})},
         Dropped},
        {"an abstract class of the file that the application knows", {abstractBase, gone}, Dropped},
        {"an abstract class of its own counts only as a parent",
         {base, made(2, "Gone", {1}, true)},
         Substituted},
        {"the second parent is not climbed", {base, made(2, "Other"), made(3, "Gone", {2, 1})}, Dropped},
        {"an ancestor that cannot stand for others",
         {base, made(2, "Strict", {1}), made(3, "Gone", {2})},
         Dropped},
        {"which stands for itself", {base, made(2, "Strict", {1})}, Itself},
    };
    for (const auto& [name, classes, outcome] : cases) {
        SCOPED_TRACE(name);
        TZoMetaData schema;
        Base::Register(&schema);
        Strict::Register(&schema);
        const int id = classes.back().id;
        const Payload record = BasePart(7).Int(8).Int(9);
        Opened opened(FileOf(classes, {{1, id, record}, {2, id, record}}), schema);
        std::vector<std::string> unknown;
        if (outcome != Itself) unknown.push_back(classes.back().name);
        EXPECT_EQ(opened.Unknown(), unknown);
        ASSERT_EQ(opened.Count(), outcome == Dropped ? 0U : 2U);
        if (outcome == Dropped) continue;
        EXPECT_EQ(opened.Root<Base>().number, 7);
        EXPECT_EQ(opened.Root<Base>().stands, outcome == Substituted);
    }
}

// Parents that changed

/// Levels of an application: what they hold is told by what their objects read.
class Upper : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Upper)
    DECLARE_ZO_FIELD(int, moved)
    DECLARE_ZO_FIELD(int, upper)
    DECLARE_ZO_FIELD_REFERENCE(Upper, link)
    REGISTER_ZO_END
    void HandleExcludedField(TZoClassField* field, TBinInStream*) override {
        excluded.push_back(Text(field->GetFieldName()));
    }
    std::vector<std::string> excluded;
};
class Lower : public Upper {
    REGISTER_ZO_BEGIN(Lower, Upper)
    DECLARE_ZO_FIELD(int, lower)
    REGISTER_ZO_END
};
/// Shares nothing with the others; its fields lie beyond a `Lower`.
class Stranger : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Stranger)
    DECLARE_ZO_FIELD_LIST(double, doubles)
    DECLARE_ZO_FIELD(ZoString, text)
    DECLARE_ZO_FIELD_CHILD(Lower, child)
    DECLARE_ZO_FIELD_CHILD_VALUE(Lower, member)
    DECLARE_ZO_FIELD_CHILD_LIST(Lower, children)
    DECLARE_ZO_FIELD_CHILD_MAP(Lower, Lower, map)
    DECLARE_ZO_FIELD(int, upper)
    REGISTER_ZO_END
};

struct LevelVersionTests : testing::Test {
    LevelVersionTests() {
        Upper::Register(&schema);
        Lower::Register(&schema);
        Stranger::Register(&schema);
    }
    TZoMetaData schema;
};

const ClassEntry STRANGER{.id = 3,
                          .name = "Stranger",
                          .maps = {{2, -19, "map"}},
                          .values = {{0, -13, "doubles"}, {0, -4, "text"}, {0, -1, "upper"}},
                          .children = {{2, -6, "child"}, {2, -18, "member"}},
                          .childLists = {{2, -7, "children"}}};
Payload StrangerPart(int uid) {
    Payload bytes;
    bytes.Ints({1, uid, 1, uid, 1}).Double(0.5).Text("strange").Ints({99, uid, uid, 1, uid});
    return bytes;
}

TEST_F(LevelVersionTests, LevelsThatChangedAreReadWhereTheApplicationHasThem) {
    using Fields = std::vector<FieldEntry>;
    const FieldEntry upper{0, -1, "upper"}, moved{0, -1, "moved"}, lower{0, -1, "lower"};
    const Payload linked = Payload().Ints({5, 1});
    const std::string strangers = ", without map doubles text upper child member children";
    const struct {
        const char* name;
        std::vector<int> parents; // of class 2, `Lower`: 1 `Upper`, 3 `Stranger`, 4 one that is unknown
        Fields upper, lower;
        Payload record;
        std::string read;
    } cases[] = {
        {"up: the file has it below", {1}, {upper}, {moved, lower}, Payload().Ints({1, 0, 2, 3}), "1 2 3"},
        {"down", {1}, {upper, lower}, {moved}, Payload().Ints({1, 2, 0, 3}), "1 3 0, without lower"},
        {"the last word is the lower's", {1}, {upper, moved}, {moved}, Payload().Ints({1, 2, 0, 3}), "1 3 0"},
        {"the same parent", {1}, {upper}, {lower}, Payload(linked).Int(7), "5 0 7 linked"},
        {"no parent at all", {}, {upper}, {lower}, Payload().Int(7), "0 0 7"},
        {"a stranger alone", {3}, {upper}, {lower}, StrangerPart(1).Int(7), "0 0 7" + strangers},
    };
    for (const auto& tested : cases) {
        const std::vector<ClassEntry> classes{
            {.id = 1, .name = "Upper", .values = tested.upper, .references = {{1, -8, "link"}}},
            {.id = 2, .name = "Lower", .parents = tested.parents, .values = tested.lower},
            STRANGER,
            {.id = 4, .name = "Unknown", .values = {upper}}};
        Opened opened(FileOf(classes, {{1, 2, tested.record}, {2, 2, tested.record}}), schema);
        for (const int uid : {1, 2}) {
            const auto& read = opened.At<Lower>(uid);
            std::ostringstream told;
            told << read.upper << ' ' << read.moved << ' ' << read.lower;
            if (read.link == &opened.Root<Upper>()) told << " linked";
            for (const std::string& name : read.excluded)
                told << (&name == &read.excluded[0] ? ", without " : " ") << name;
            EXPECT_EQ(told.str(), tested.read) << tested.name;
        }
    }
}

// In time that grows with their number, whatever the handler reads.
TEST_F(LevelVersionTests, ClassesOfManyFieldsAreReadFromEveryStream) {
    struct OwnStream : TMemoryBinInStream {
        using TMemoryBinInStream::TMemoryBinInStream;
    };
    ClassEntry upper{.id = 1, .name = "Upper", .values = {200'000, {0, -10, "gone"}}};
    upper.values.push_back({0, -1, "upper"});
    const ClassEntry unknown{.id = 4, .name = "Unknown", .values = {{0, -1, "upper"}}};
    const ClassEntry lower{.id = 2, .name = "Lower", .parents = {1, 3, 4}, .values = {{0, -1, "lower"}}};
    const Payload record = Payload(std::string(200'000, '\1')).Int(5).Add(StrangerPart(1)).Ints({6, 7});
    const std::string file = FileOf({upper, STRANGER, unknown, lower}, {{1, 2, record}});
    for (const bool own : {false, true}) {
        const std::unique_ptr<TMemoryBinInStream> stream(
            own ? new OwnStream(file.data(), file.size(), 0)
                : new TMemoryBinInStream(file.data(), file.size(), 0));
        stream->Initialize();
        const pointer<ZoStreamableBase> root = TBinInStreamer(stream.get(), &schema).ReadObjects();
        const auto& read = dynamic_cast<Lower&>(*root);
        EXPECT_EQ(read.upper, 5);
        EXPECT_EQ(read.lower, 7);
        EXPECT_EQ(read.excluded.size(), 200'000U + 7U + 1U) << "the stranger's and the unknown one's too";
    }
}

TEST_F(LevelVersionTests, AMemberIsOfferedItsOwnExcludedFields) {
    const ClassEntry lower{.id = 2, .name = "Lower", .values = {{0, -1, "gone"}, {0, -1, "lower"}}};
    const ClassEntry owner{.id = 3, .name = "Stranger", .children = {{2, -18, "member"}}};
    Opened opened(FileOf({lower, owner}, {{1, 3, Payload().Int(2)}, {2, 2, Payload().Ints({7, 8})}}), schema);
    const Lower& member = opened.Root<Stranger>().member;
    EXPECT_EQ(member.lower, 8);
    EXPECT_EQ(member.excluded, std::vector<std::string>{"gone"});
}

TEST_F(LevelVersionTests, ParentsThatSwappedPlacesReadRightly) {
    // The file's `Upper` derives from `Lower`; the application's the other way round.
    const ClassEntry lower{.id = 2, .name = "Lower", .values = {{0, -1, "lower"}, {0, -1, "upper"}}};
    const ClassEntry upper{.id = 1, .name = "Upper", .parents = {2}, .values = {{0, -1, "moved"}}};
    Opened opened(FileOf({lower, upper}, {{1, 1, Payload().Ints({1, 2, 3})}, {2, 2, Payload().Ints({4, 5})}}),
                  schema);
    EXPECT_EQ(opened.Root<Upper>().moved, 3);
    EXPECT_EQ(opened.Root<Upper>().upper, 0) << "a `Lower` level does not belong to an `Upper`";
    EXPECT_EQ(opened.At<Lower>(2).upper, 5);
    EXPECT_EQ(opened.At<Lower>(2).lower, 4);
}

} // namespace
