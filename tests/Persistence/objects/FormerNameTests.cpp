#include "ZoPrimitives/FilteredBinInStreamer.h"
#include "ZoPrimitives/StreamableFactory.h"
#include "ZoPrimitives/ZoRegister.h"
#include "support/Streaming.h"

using namespace ZoPrimitives;

// An application whose classes and fields once had other names.

namespace {

class Part : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Part)
    DECLARE_ZO_FIELD(int, number)
    ZO_FIELD_WAS(number, "no", "index")
    REGISTER_ZO_END
};

class Beam : public Part {
    REGISTER_ZO_BEGIN(Beam, Part)
    ZO_CLASS_WAS("Girder", "Joist")
    DECLARE_ZO_FIELD(double, clearLength)
    ZO_FIELD_WAS(clearLength, "length")
    DECLARE_ZO_FIELD_REFERENCE(Beam, next)
    ZO_FIELD_WAS(next, "follower")
    REGISTER_ZO_END
};

struct FormerNameTests : testing::Test {
    FormerNameTests() {
        Part::Register(&schema);
        Beam::Register(&schema);
    }
    TZoMetaData schema;
};

const ClassEntry PART{.id = 1, .name = "Part", .values = {{0, -1, "no"}}};

TEST_F(FormerNameTests, AreReadAndThePresentOnesWritten) {
    const struct {
        const char* name;
        std::vector<ClassEntry> classes;
        Payload first; // of the first object, without its reference
        double length;
    } rows[] = {
        {"class and fields",
         {PART,
          {.id = 2,
           .name = "Girder",
           .parents = {1},
           .values = {{0, -3, "length"}},
           .references = {{2, -8, "follower"}}}},
         Payload().Int(7).Double(1.5),
         1.5},
        {"another former name",
         {{.id = 1, .name = "Part", .values = {{0, -1, "index"}}},
          {.id = 2,
           .name = "Joist",
           .parents = {1},
           .values = {{0, -3, "clearLength"}},
           .references = {{2, -8, "next"}}}},
         Payload().Int(7).Double(2.5),
         2.5},
        {"both names: the present one counts",
         {PART,
          {.id = 2,
           .name = "Beam",
           .parents = {1},
           .values = {{0, -3, "clearLength"}, {0, -3, "length"}},
           .references = {{2, -8, "next"}}}},
         Payload().Int(7).Double(3.5).Double(9),
         3.5},
        {"a former name in another kind",
         {PART,
          {.id = 2,
           .name = "Beam",
           .parents = {1},
           .values = {{0, -4, "length"}},
           .references = {{2, -8, "next"}}}},
         Payload().Int(7).Text("long"),
         0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Opened opened(
            FileOf(row.classes, {{1, 2, Payload(row.first).Int(2)}, {2, 2, Payload(row.first).Int(0)}}),
            schema);
        Beam& first = opened.Root<Beam>();
        EXPECT_EQ(first.number, 7);
        EXPECT_EQ(first.clearLength, row.length);
        EXPECT_EQ(first.next.get(), &opened.At<Beam>(2));
        EXPECT_TRUE(opened.Unknown().empty());
        for (const TZoReadReport::Field& field : opened.streamer.Report().fields)
            EXPECT_NE(field.fault, TFieldFault::NotInFile) << field.name.c_str();
        const std::string saved = Save(schema, &opened.At<Beam>(2));
        EXPECT_NE(saved.find("clearLength"), std::string::npos);
        EXPECT_EQ(saved.find("follower"), std::string::npos);
        EXPECT_EQ(saved.find("Girder"), std::string::npos);
    }
}

TEST_F(FormerNameTests, GiveWayToPresentOnesAndAreFoundByFiltersAndTexts) {
    const std::string bytes =
        FileOf({{.id = 1, .name = "Girder", .values = {{0, -3, "length"}}}}, {{1, 1, Payload().Double(4)}});
    for (const char* name : {"Beam", "Girder"}) {
        TMemoryBinInStream stream(bytes.data(), bytes.size(), 0);
        stream.Initialize();
        TDList<ZoString> names;
        names.Add(name);
        TFilteredBinInStreamer filtered(&stream, &schema, &names);
        EXPECT_TRUE(filtered.Read()) << name;
        EXPECT_EQ(dynamic_cast<Beam&>(*filtered.GetObjects()[1]).clearLength, 4);
        delete filtered.GetObjects()[1];
    }
    const pointer<ZoStreamableBase> made(StreamableFactory(&schema).CreateObject("class Girder"));
    EXPECT_NE(dynamic_cast<Beam*>(made.get()), nullptr);
    // A new class takes over the former name of another.
    TZoMetaData later;
    Part::Register(&later);
    TZoClass* other = later.AddClass(new TZoClass(&later, nullptr, "Girder", nullptr, false, nullptr));
    Beam::Register(&later);
    EXPECT_EQ(later.FindFormerClass("Girder")->GetName(), "Beam");
    Opened opened(bytes, later);
    EXPECT_EQ(opened.streamer.GetFileMetaData()->GetClass(1)->GetOriginal(), other);
    EXPECT_EQ(opened.Count(), 0U);
    // Of two that had one name only the first is found.
    other->AddFormerName("Joist");
    TZoClass* beam = later.FindClass("Beam");
    beam->AddFormerName(beam->FindField("next"), "length");
    ZoString warnings;
    EXPECT_TRUE(later.Check(nullptr, &warnings));
    EXPECT_EQ(Text(warnings),
              "[zowarning] classes Girder and Beam both had the name Joist. See ZO_CLASS_WAS\n"
              "[zowarning] fields clearLength and next of class Beam both had the name length. See "
              "ZO_FIELD_WAS");
}

} // namespace
