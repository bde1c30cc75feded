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

} // namespace
