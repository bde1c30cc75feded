#include "SmallFile.h"
#include "salvaging.h"
#include "tool.h"

#include <gtest/gtest.h>

using namespace ZoPrimitives;
using namespace ZoTool;

// Every way to damage one byte of a small file, and to cut it.

namespace {

struct Salvaged {
    std::string file;
    Faults losses;
};

Salvaged SalvageOf(const std::string& bytes, const std::string& good = "") {
    TZoMemoryBytes source(bytes.data(), bytes.size());
    TZoMemoryBytes other(good.data(), good.size());
    Salvaged salvaged;
    Salvage salvage(source, good.empty() ? nullptr : &other,
                    [&](const Fault& loss) { salvaged.losses.push_back(loss); });
    if (salvage.Choose() == 0) return salvaged;
    TMemoryBinOutStream target(salvage.Version(), salvage.Release());
    target.SetWritesDigest(true);
    target.Initialize();
    salvage.Write(target);
    target.RewriteHeader();
    salvaged.file = BytesOf(target);
    return salvaged;
}

std::map<int, Row> RowsByUid(const std::string& file) {
    std::map<int, Row> rows;
    if (file.empty()) return rows;
    TZoMemoryBytes bytes(file.data(), file.size());
    TZoRecordReader reader(bytes);
    for (TZoRecord record; reader.Next(record);) {
        rows[record.GetUid()] = {
            record.GetUid(), record.GetClassId(),
            std::string(reinterpret_cast<const char*>(record.GetPayload()), record.GetSize())};
    }
    return rows;
}

/// The object as it is when others are lost: references to these are null.
Row WithNulls(TZoRecordReader& sound, int uid, const std::map<int, Row>& left) {
    TZoRecord record;
    sound.Find(uid, record);
    Row row{uid, record.GetClassId(),
            std::string(reinterpret_cast<const char*>(record.GetPayload()), record.GetSize())};
    for (int i = 1; i <= record.NValues(); ++i) {
        const TZoValue value = record.Value(i);
        if (!value.GetField().IsPointerKind()) continue;
        for (int half = 1; half <= (value.GetKind() == ftChildPointerMap ? 2 : 1); ++half) {
            for (int item = 1; item <= value.NItems(half); ++item) {
                if (left.count(value.Uid(item, half)) == 0)
                    row.payload.replace(
                        static_cast<std::size_t>(value.UidBytes(item, half) - record.GetPayload()), 4, 4, 0);
            }
        }
    }
    return row;
}

struct DamageTests : testing::Test {
    DamageTests() : memory(small.bytes.data(), small.bytes.size()), sound(memory) {}

    /// Every object but those of the records `hit` to `last` is in the salvaged file, and this is sound.
    void ExpectSalvaged(const std::string& damaged, int hit, int last) {
        const Salvaged salvaged = SalvageOf(damaged, hit == 0 ? small.bytes : "");
        const std::map<int, Row> left = RowsByUid(salvaged.file);
        for (int uid = 1; uid < static_cast<int>(small.offsets.size()); ++uid) {
            if (left.count(uid) != 0)
                ASSERT_EQ(left.at(uid), WithNulls(sound, uid, left));
            else
                ASSERT_TRUE(uid >= hit && uid <= last) << uid << " is lost\n" << TextOf(salvaged.losses);
        }
        ASSERT_LT(left.size(), small.offsets.size()) << "others than there were";
        if (left.empty()) return;
        ASSERT_EQ(TextOf(FaultsOf(salvaged.file), false), "");
        ASSERT_EQ(salvaged.losses.empty(), TextOf(FaultsOf(damaged), false) == "") << TextOf(salvaged.losses);
    }

    SmallFile small;
    TZoMemoryBytes memory;
    TZoRecordReader sound;
};

TEST_F(DamageTests, ASoundFileHasNoFaultsAndLosesNothing) {
    EXPECT_EQ(TextOf(FaultsOf(small.bytes)), "");
    const Salvaged salvaged = SalvageOf(small.bytes);
    EXPECT_EQ(salvaged.file, small.bytes);
    EXPECT_EQ(TextOf(salvaged.losses), "");
}

TEST_F(DamageTests, EveryByteThatFlipsIsFoundAndCostsNoOtherRecord) {
    for (std::size_t at = 0; at < small.bytes.size(); ++at) {
        for (const int bits : {0x01, 0x10, 0x80, 0xFF}) {
            SCOPED_TRACE(testing::Message() << "byte " << at << " bits " << bits);
            std::string damaged = small.bytes;
            damaged[at] = static_cast<char>(damaged[at] ^ bits);
            // Without its name or layout a digest is none; what is in the file stays the same.
            const bool changesMeaning = at < 28 || at >= 36;
            const std::string faults = TextOf(FaultsOf(damaged), false);
            ASSERT_TRUE(faults != "" || !changesMeaning);
            FaultsOf(damaged, true);
            const int hit = small.RecordAt(at);
            ExpectSalvaged(damaged, hit, hit);
            if (HasFatalFailure()) return;
        }
    }
}

TEST_F(DamageTests, EveryCutIsFoundAndCostsNoRecordBeforeIt) {
    for (std::size_t size = 0; size < small.bytes.size(); ++size) {
        SCOPED_TRACE(size);
        const std::string damaged = small.bytes.substr(0, size);
        ASSERT_NE(TextOf(FaultsOf(damaged), false), "");
        FaultsOf(damaged, true);
        const int hit = small.RecordAt(size);
        if (hit > 0) ExpectSalvaged(damaged, hit, INT_MAX);
        if (HasFatalFailure()) return;
    }
}

// Heads, which checksums do not cover

struct SalvageRow {
    const char* name;
    std::string file;
    std::map<int, std::string> left; // payloads by uid
    std::string losses;              // without the places
};

// Class 1 owns a list of objects of class 2 and refers to one; class 3 has the same fields as class 2.
const std::vector<ClassEntry> CLASSES{
    {.id = 1, .name = "Owner", .childLists = {{2, -7, "items"}}, .references = {{2, -8, "one"}}},
    {.id = 2, .name = "Item", .values = {{0, -1, "n"}}},
    {.id = 3, .name = "Twin", .values = {{0, -1, "n"}}},
};
Payload Owner(std::initializer_list<int> items, int one) {
    return Payload().Int(static_cast<long long>(items.size())).Ints(items).Int(one);
}
Row Item(int uid, int number, int classId = 2) { return {uid, classId, Payload().Int(number)}; }
std::string Number(int number) { return Payload().Int(number); }
const Row ROOT{1, 1, Owner({2, 3}, 4)};
const std::string INNER = FileOf(CLASSES, {{1, 1, Owner({2}, 2)}, Item(2, 99)});
/// A record with another file in it, of which the head is lost.
const std::string OPENED = std::string(24, 'x') + std::string(Payload().Text(INNER));

const SalvageRow HEADS[] = {
    {"nothing",
     FileOf(CLASSES, {ROOT, Item(2, 7), Item(3, 8), Item(4, 9)}),
     {{1, Owner({2, 3}, 4)}, {2, Number(7)}, {3, Number(8)}, {4, Number(9)}},
     ""},
    {"the uid of the next one",
     FileOf(CLASSES, {ROOT, Item(3, 7), Item(3, 8), Item(4, 9)}),
     {{1, Owner({0, 3}, 4)}, {3, Number(8)}, {4, Number(9)}},
     "record 4 has its uid, too, and is kept\nits field 'items' becomes null: it refers to uid 2, which is "
     "lost\n"},
    {"the uid of the one before",
     FileOf(CLASSES, {ROOT, Item(2, 7), Item(2, 8), Item(4, 9)}),
     {{1, Owner({2, 0}, 4)}, {2, Number(7)}, {4, Number(9)}},
     "record 3 has its uid, too, and is kept\nits field 'items' becomes null: it refers to uid 3, which is "
     "lost\n"},
    {"a uid of none",
     FileOf(CLASSES, {ROOT, Item(2, 7), Item(1005, 8), Item(4, 9), Item(5, 0)}),
     {{1, Owner({2, 0}, 4)}, {2, Number(7)}, {4, Number(9)}, {5, Number(0)}},
     "its uid is not its own: it stands elsewhere, and nothing refers to it\n"
     "its field 'items' becomes null: it refers to uid 3, which is lost\n"},
    {"a class with other fields",
     FileOf(CLASSES, {ROOT, Item(2, 7), Item(3, 8, 1), Item(4, 9)}),
     {{1, Owner({2, 0}, 4)}, {2, Number(7)}, {4, Number(9)}},
     "its payload is not one of its class\nits field 'items' becomes null: it refers to uid 3, which is "
     "lost\n"},
    {"a class with the same fields",
     FileOf(CLASSES, {ROOT, Item(2, 7), Item(3, 8), Item(4, 9, 3)}),
     {{1, Owner({2, 3}, 0)}, {2, Number(7)}, {3, Number(8)}},
     "its class is not its own: all that refers to it wants another\n"
     "its field 'one' becomes null: it refers to uid 4, which is lost\n"},
    {"a file inside a record without its head",
     FileOf(CLASSES, {ROOT, Item(2, 7), Item(3, 8)}) + OPENED + RecordBytes(5, 2, Number(0)),
     {{1, Owner({2, 3}, 0)}, {2, Number(7)}, {3, Number(8)}, {5, Number(0)}},
     "56 bytes belong to no record\na file inside a payload whose record is lost, with 2 records\n"
     "its field 'one' becomes null: it refers to uid 4, which is lost\n"},
    {"a file behind a torn record",
     FileOf(CLASSES, {ROOT, Item(2, 7), Item(3, 8)}) + RecordBytes(4, 2, Number(0x01020304)).substr(0, 26) +
         INNER,
     {{1, Owner({2, 3}, 0)}, {2, Number(7)}, {3, Number(8)}},
     "the checksum 0xE951A406 is not that of its 4 bytes\n26 bytes belong to no record\n"
     "a file inside a payload whose record is lost, with 2 records\n"
     "its field 'one' becomes null: it refers to uid 4, which is lost\n"},
};

TEST(SalvageTests, BelievesNoHeadThatDoesNotAgreeWithTheRest) {
    for (const SalvageRow& row : HEADS) {
        SCOPED_TRACE(row.name);
        const Salvaged salvaged = SalvageOf(row.file);
        std::map<int, std::string> left;
        for (const auto& [uid, one] : RowsByUid(salvaged.file)) left[uid] = one.payload;
        EXPECT_EQ(left, row.left);
        std::string losses;
        for (const Fault& loss : salvaged.losses) losses += loss.text + "\n";
        EXPECT_EQ(losses, row.losses);
        EXPECT_EQ(TextOf(FaultsOf(salvaged.file), false), "");
    }
}

} // namespace
