#include "SmallFile.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace ZoPrimitives;
using namespace ZoTool;

namespace {

// Class 1 owns a list of objects of class 2 and refers to one; class 2 has a number, class 3 a text.
const std::vector<ClassEntry> CLASSES{
    {.id = 1, .name = "Owner", .childLists = {{2, -7, "items"}}, .references = {{2, -8, "one"}}},
    {.id = 2, .name = "Item", .values = {{0, -1, "n"}}},
    {.id = 3, .name = "Other", .values = {{0, -4, "t"}}},
};
Row Owner(int uid, int item, int one) { return {uid, 1, Payload().Ints({1, item, one})}; }
Row Item(int uid) { return {uid, 2, Payload().Int(7)}; }

std::string Counted(std::string file, unsigned count) { return file.replace(12, 4, LittleEndian(count)); }
std::string Sound(const std::vector<Row>& rows) {
    return Counted(FileOf(CLASSES, rows), static_cast<unsigned>(rows.size()) + 1);
}

struct FaultRow {
    const char* name;
    std::string file;
    std::string faults; ///< without the places; one line each, notes marked
    bool quickToo = true;
};

std::string Lines(const Faults& faults) {
    std::string text;
    for (const Fault& fault : faults) {
        text += (IsNote(fault.kind) ? "note " : "") +
                (fault.number == 0 && fault.uid == 0 ? "" : std::to_string(fault.uid) + " ") + fault.text +
                "\n";
    }
    return text;
}

const std::string GOOD = Sound({Owner(1, 2, 3), Item(2), Item(3)});
const ClassEntry STRANGE{.id = 1, .name = "Owner", .values = {{0, -20, "n"}, {0, -1, "n"}, {0, -1, "n"}}};

const FaultRow FAULTS[] = {
    {"nothing", GOOD, ""},
    {"no records", HeaderBytes(1, 1), "no schema can be read: its objects cannot be checked\n"},
    {"a duplicate", Sound({Owner(1, 2, 3), Item(2), Item(3), Item(2)}),
     "note 2 uids do not rise here; records with a uid below the one before: 1\n2 record 3 has the uid 2, "
     "too\n"},
    {"a uid of nothing", Sound({Owner(1, 2, 2), Item(2), Item(-4)}),
     "-4 no object can refer to the uid -4\nnote -4 uids do not rise here; records with a uid below the one "
     "before: 1\n"
     "note -4 nothing refers to it, and it is not the root\n",
     false},
    {"an unknown class", Sound({Owner(1, 2, 2), Item(2), {3, 9, "x"}}),
     "3 the schema has no class 9\nnote 3 nothing refers to it, and it is not the root\n", false},
    {"bytes left", Sound({Owner(1, 2, 2), {2, 2, Payload().Ints({1, 2})}}),
     "2 4 of its 8 bytes are left behind its last field\n", false},
    {"bytes missing", Sound({Owner(1, 2, 2), {2, 2, "xy"}}),
     "2 its fields need more than its 2 bytes, from the 1. field on\n", false},
    {"a dangling reference", Sound({Owner(1, 2, 9), Item(2)}),
     "1 its field 'one' refers to uid 9, which is not in the file\n", false},
    {"another in a list", Sound({Owner(1, 9, 2), Item(2)}),
     "1 its field 'items' refers to uid 9, which is not in the file\n", false},
    {"an object of the wrong class", Sound({Owner(1, 2, 3), Item(2), {3, 3, Payload().Text("")}}),
     "1 its field 'one' wants a 'Item' and refers to uid 3, which is a 'Other'\n", false},
    {"unreachable ones", Sound({Owner(1, 2, 2), Item(2), Owner(3, 4, 4), Item(4)}),
     "note 3 nothing refers to it, and it is not the root\n", false},
    {"a reference back", Sound({Owner(1, 4, 4), Item(2), Item(3), {4, 1, Payload().Ints({1, 2, 3})}}),
     "1 its field 'items' wants a 'Item' and refers to uid 4, which is a 'Owner'\n"
     "1 its field 'one' wants a 'Item' and refers to uid 4, which is a 'Owner'\n",
     false},
    {"unordered ones", Sound({Owner(1, 2, 3), Item(3), Item(2)}),
     "note 2 uids do not rise here; records with a uid below the one before: 1\n"},
    {"too few", Counted(GOOD, 3), "note the header counts 3 records, there are 4\n"},
    {"too many", Counted(GOOD, 5),
     "note the header counts 5 records, there are 4; objects without fields count, too, and have none\n"},
    {"a schema that contradicts itself", Counted(FileOf({ClassEntry{.parents = {9}}}, {}), 1),
     "0 the schema contradicts itself\nno schema can be read: its objects cannot be checked\n"},
    {"a strange schema",
     Counted(FileOf({STRANGE, {.id = 2, .name = "Owner"}}, {{1, 1, "??"}, {2, 1, "0123456789"}}), 3),
     "class 'Owner' has fields of a kind that this program does not know: its objects cannot be checked\n"
     "class 'Owner' has two fields 'n'\ntwo classes have the name 'Owner'\n"
     "note 2 nothing refers to it, and it is not the root\n",
     false},
    {"lists that records do not tell of",
     Counted(FileOf({ClassEntry{.childLists = {{1, -7, "a"}, {1, -7, "b"}}}},
                    {{1, 1, Payload().Ints({0, 1, 1, 1, 1})}}),
             2),
     "note the records of 'X' do not tell how the field 'a' stands in them\n"
     "note the records of 'X' do not tell how the field 'b' stands in them\n",
     false},
    {"an extra block", HeaderBytes(1, 1, 4, 3) + "abc" + GOOD.substr(28),
     "note the extra block is none that this program knows\n"},
};

TEST(FaultTests, TellsWhatIsWrong) {
    for (const FaultRow& row : FAULTS) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Lines(FaultsOf(row.file)), row.faults);
        if (!row.quickToo) continue;
        EXPECT_EQ(Lines(FaultsOf(row.file, true)), row.faults);
    }
}

TEST(FaultTests, TellsDamageWithItsPlace) {
    const std::string file = GOOD + "garbage";
    const std::size_t second = file.find(RecordBytes(2, 2, Payload().Int(7)));
    std::string damaged = file;
    damaged[second + 24] = 'x';
    EXPECT_EQ(TextOf(FaultsOf(damaged)),
              "offset " + std::to_string(second) + ", record 3, uid 2 (Item): the checksum 0x" +
                  fmt::format("{:08X}", Word(file, second + 8)) + " is not that of its 4 bytes\n" +
                  "offset " + std::to_string(GOOD.size()) +
                  ": 7 bytes behind the last record belong to none\n" + "offset " +
                  std::to_string(file.find(RecordBytes(1, 1, Payload().Ints({1, 2, 3})))) +
                  ", record 2, uid 1 (Owner): its field 'items' refers to uid 2, whose record is damaged\n");
}

/// A chain of objects, each owned by the one before and in the file behind it.
TEST(FaultTests, FollowsReferencesBackThroughManyObjects) {
    std::vector<Row> rows{{1, 1, Payload().Int(100'000)}};
    for (int uid = 2; uid <= 100'000; ++uid) rows.push_back({uid, 1, Payload().Int(uid == 2 ? 0 : uid - 1)});
    const std::string file = FileOf({{.references = {{1, -8, "next"}}}}, rows);
    EXPECT_EQ(Lines(FaultsOf(Counted(file, 100'001))), "");
}

} // namespace
