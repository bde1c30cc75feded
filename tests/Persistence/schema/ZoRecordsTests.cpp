#include "ZoPrimitives/ZoRecords.h"
#include "support/EveryKind.h"

#include <gtest/gtest.h>

using namespace ZoPrimitives;

namespace {

TEST(ZoRecordsTests, ReadsEveryKindWithoutItsClass) {
    TZoMetaData schema;
    app::RegisterEveryKind(schema);
    app::EveryKind every;
    app::Leaf outside(99);
    every.Fill(outside);
    const std::string file = SaveAtOnce(schema, &every);
    TZoMemoryBytes bytes(file.data(), file.size());
    TZoRecordReader reader(bytes);
    EXPECT_EQ(reader.GetSchema().GetClassCount(), 2);
    TZoRecord record;
    ASSERT_TRUE(reader.Next(record));
    EXPECT_EQ(record.GetUid(), 1);
    EXPECT_EQ(record.GetClass()->GetName(), "EveryKind");
    EXPECT_EQ(record.GetState(), TZoRecordState::Whole);
    const std::vector<app::FieldBytes> fields = app::EveryKindFields();
    ASSERT_EQ(record.NValues(), static_cast<int>(fields.size()));
    for (int i = 1; i <= record.NValues(); ++i) {
        const app::FieldBytes& field = fields[static_cast<std::size_t>(i) - 1];
        const TZoValue value = record.Value(i);
        EXPECT_EQ(Text(value.GetField().GetFieldName()), field.name);
        EXPECT_EQ(value.GetKind(), field.kind);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(value.GetBytes()), value.GetSize()), field.bytes);
    }
    const auto at = [&](const char* name) { return *record.FindValue(name); };
    EXPECT_EQ(at("anInt").AsInt(), -2);
    EXPECT_EQ(at("aFloat").AsFloat(), 1.5F);
    EXPECT_EQ(at("aDouble").AsDouble(), -0.25);
    EXPECT_EQ(at("aString").AsString(), "text");
    EXPECT_EQ(at("aBlob").AsBlob(), every.aBlob);
    EXPECT_TRUE(at("aBool").AsBool());
    EXPECT_EQ(at("anUnsigned").AsUnsigned(), 4'000'000'000U);
    EXPECT_EQ(at("ints").NItems(), 2);
    EXPECT_EQ(at("ints").IntItem(2), -8);
    EXPECT_EQ(at("floats").FloatItem(1), 2.5F);
    EXPECT_EQ(at("doubles").DoubleItem(1), 3.25);
    EXPECT_EQ(at("strings").StringItem(1), "a");
    EXPECT_EQ(at("strings").StringItem(2), "");
    EXPECT_EQ(at("map").NItems(2), 1);
    EXPECT_EQ(at("map").Uid(1, 1), 2);
    EXPECT_EQ(at("map").Uid(1, 2), 3);
    EXPECT_EQ(at("child").Uid(), 4);
    EXPECT_EQ(at("children").Uid(2), 7);
    EXPECT_FALSE(record.FindValue("none"));
    int count = 0;
    while (reader.Next(record)) ++count;
    EXPECT_EQ(count, 7);
    ASSERT_TRUE(reader.Find(8, record));
    EXPECT_EQ(record.Value(1).AsInt(), 99);
    EXPECT_EQ(reader.ClassOf(8)->GetName(), "Leaf");
    EXPECT_EQ(reader.ClassOf(9), nullptr);
    EXPECT_EQ(reader.GetUndecided().NItems(), 0U);
}

} // namespace
