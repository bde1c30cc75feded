#include "ZoPrimitives/ZoReadReport.h"

#include "ZoPrimitives/FilteredBinInStreamer.h"
#include "ZoPrimitives/ZoRegister.h"
#include "ZoPrimitives/ZoUtf8.h"
#include "support/Streaming.h"

#include <gmock/gmock.h>

using namespace ZoPrimitives;

namespace {

class Pin : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Pin)
    DECLARE_ZO_FIELD(int, number)
    REGISTER_ZO_END
    bool GetIsValid() const override { return number != 666; }
    Alive alive;
};

class Node : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Node)
    DECLARE_ZO_FIELD(int, number)
    DECLARE_ZO_FIELD_CHILD(Pin, pin)
    DECLARE_ZO_FIELD_CHILD_LIST(Pin, pins)
    DECLARE_ZO_FIELD_REFERENCE(Node, next)
    REGISTER_ZO_END
    Alive alive;
};

ClassEntry NodeEntry() {
    return {.id = 1,
            .name = "Node",
            .values = {{0, -1, "number"}},
            .children = {{2, -6, "pin"}},
            .childLists = {{2, -7, "pins"}},
            .references = {{1, -8, "next"}}};
}
ClassEntry PinEntry(int id = 2) { return {.id = id, .name = "Pin", .values = {{0, -1, "number"}}}; }
Row NodeRow(int uid, int pin, const std::vector<int>& pins, int next) {
    Payload payload;
    payload.Int(uid).Int(pin).Int(static_cast<long long>(pins.size()));
    for (const int each : pins) payload.Int(each);
    return {uid, 1, payload.Int(next)};
}
Row PinRow(int uid, int classId = 2, int number = 1) { return {uid, classId, Payload().Int(number)}; }

struct ZoReadReportTests : testing::Test {
    ZoReadReportTests() {
        Pin::Register(&schema);
        Node::Register(&schema);
    }
    TZoMetaData schema;
};

TEST_F(ZoReadReportTests, TellWhatDidNotComeIn) {
    const Row plain = NodeRow(1, 2, {3}, 0);
    std::string torn = FileOf({NodeEntry(), PinEntry()}, {plain, PinRow(2), PinRow(3)});
    const std::size_t pin = 24 + 4; // of one Pin's record, at the end
    torn[torn.size() - 1] ^= 1;
    torn[torn.size() - pin - 1] ^= 1;
    torn += "xyz";
    ClassEntry more = NodeEntry(), less = PinEntry();
    more.values.push_back({0, -4, "colour"});
    less.values = {{0, -5, "number"}};
    const auto file = [](std::vector<ClassEntry> classes, std::vector<Row> rows) {
        return FileOf(classes, std::move(rows));
    };
    const struct {
        const char* name;
        std::string bytes;
        unsigned faults;
        std::string text;
    } rows[] = {
        {"clean", file({NodeEntry(), PinEntry()}, {plain, PinRow(2), PinRow(3)}), strictNothing, ""},
        {"damaged records and bytes behind them", torn, strictDamage | strictReferences,
         std::to_string(2 * pin + 3) + " bytes ileg\xEDveis a partir do byte " +
             std::to_string(torn.size() - 2 * pin - 3) + " (2 registros danificados)\n" +
             "Node.pin: 1 refer\xEAncias perdidas: os objetos n\xE3o est\xE3o no arquivo\n"
             "Node.pins: 1 refer\xEAncias perdidas: os objetos n\xE3o est\xE3o no arquivo\n"},
        {"fewer records than the header tells",
         [&] {
             std::string bytes = file({NodeEntry(), PinEntry()}, {plain, PinRow(2), PinRow(3)});
             bytes[12] = 6;
             return bytes;
         }(),
         strictDamage, "Faltam 2 de 6 registros\n"},
        {"unknown class, dropped",
         file({NodeEntry(), PinEntry(), {.id = 3, .name = "Bolt", .values = {{0, -1, "number"}}}},
              {NodeRow(1, 2, {2, 3}, 0), PinRow(2, 3), PinRow(3)}),
         strictClasses | strictReferences,
         "Classe Bolt desconhecida: 1 objetos perdidos\n"
         "Node.pin: 1 refer\xEAncias perdidas: os objetos do arquivo n\xE3o foram criados\n"
         "Node.pins: 1 refer\xEAncias perdidas: os objetos do arquivo n\xE3o foram criados\n"},
        {"unknown class, an ancestor stands for it",
         file({NodeEntry(), PinEntry(), {.id = 3, .name = "Bolt", .parents = {2}}},
              {plain, PinRow(2, 3), PinRow(3)}),
         strictClasses, "Classe Bolt desconhecida: 1 objetos lidos como Pin\n"},
        {"reference to an object of another class",
         file({NodeEntry(), PinEntry()}, {NodeRow(1, 0, {}, 2), PinRow(2)}), strictReferences,
         "Node.next: 1 refer\xEAncias perdidas: os objetos s\xE3o de outra classe\n"},
        {"fields that the class, or the file, lacks, and one of another kind",
         file({more, less},
              {{1, 1, Payload().Int(1).Text("red").Int(2).Int(0).Int(0)}, {2, 2, Payload().Text("?")}}),
         strictFields,
         "Node.colour: o campo do arquivo n\xE3o existe mais; seus valores n\xE3o foram lidos\n"
         "Pin.number: o campo do arquivo \xE9 de outro tipo; seus valores n\xE3o foram lidos\n"},
        {"a field that the file lacks is no fault",
         file({{.id = 1, .name = "Node", .values = {{0, -1, "number"}}}}, {{1, 1, Payload().Int(1)}}),
         strictNothing,
         "Node.pin: o arquivo n\xE3o tem o campo, que fica com o valor inicial\n"
         "Node.pins: o arquivo n\xE3o tem o campo, que fica com o valor inicial\n"
         "Node.next: o arquivo n\xE3o tem o campo, que fica com o valor inicial\n"},
        {"objects that call themselves invalid",
         file({NodeEntry(), PinEntry()}, {plain, PinRow(2, 2, 666), PinRow(3)}), strictInvalid,
         "Classe Pin: 1 objetos inv\xE1lidos retirados, e 0 que s\xF3 eles possu\xED"
         "am\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const int alive = Alive::Count();
        {
            Opened opened(row.bytes, schema);
            const TZoReadReport report = opened.streamer.Report();
            EXPECT_EQ(report.Faults(), row.faults);
            EXPECT_EQ(Text(report.Text()), row.text);
            EXPECT_EQ(report.IsClean(), row.text.empty());
        }
        EXPECT_EQ(Alive::Count(), alive);
        // Each fault ends the reading where it is not accepted, and no other.
        for (const unsigned strict : {1U, 2U, 4U, 8U, 16U}) {
            TMemoryBinInStream stream(row.bytes.data(), row.bytes.size(), 0);
            stream.Initialize();
            TBinInStreamer streamer(&stream, &schema);
            streamer.SetStrict(strict);
            unsigned refused = 0;
            try {
                streamer.ReadObjects();
                streamer.ReleaseObjects();
            } catch (const XRefusedData& refusal) {
                refused = strict;
                EXPECT_EQ(Text(refusal.Message()), row.text);
                EXPECT_EQ(refusal.Report().Faults(), row.faults);
            }
            EXPECT_EQ(refused, row.faults & strict);
            EXPECT_EQ(Alive::Count(), alive) << strict;
        }
    }
}

TEST_F(ZoReadReportTests, OfAPartialReadingDoNotCallWhatWasNotReadLost) {
    const std::string bytes = FileOf({NodeEntry(), PinEntry()}, {NodeRow(1, 2, {}, 9), PinRow(2)});
    TMemoryBinInStream stream(bytes.data(), bytes.size(), 0);
    stream.Initialize();
    TDList<ZoString> names;
    names.Add("Node");
    TFilteredBinInStreamer filtered(&stream, &schema, &names);
    filtered.SetStrict(strictEverything);
    filtered.Read();
    EXPECT_EQ(Text(filtered.Report().Text()),
              "Node.next: 1 refer\xEAncias a objetos que n\xE3o foram lidos\n"
              "Node.pin: 1 refer\xEAncias a objetos que n\xE3o foram lidos\n");
    EXPECT_TRUE(filtered.Report().partial);
    delete filtered.GetObjects()[1];
}

TEST(ZoReadReportJsonTests, AreWholeAndQuoted) {
    TZoReadReport report;
    EXPECT_EQ(Text(report.Json()),
              "{\"expected\":0,\"read\":0,\"partial\":false,\"wrongDigest\":false,\"passedOver\":[],"
              "\"lostClasses\":[],\"fields\":[],\"references\":[],\"removed\":[]}");
    report.expected = 9;
    report.read = 7;
    report.partial = true;
    report.passedOver = {{28, 5, 1}, {99, 1, 0}};
    report.lostClasses.Add({"A\"\\\n\xE7", false, "B", 1, 2});
    report.fields.Add({"C", "f", TFieldFault::OtherKind, -1, -5});
    report.references.Add({"C", "r", TReferenceLoss::WrongType, 3});
    report.removed.Add({"D", 1, 4});
    EXPECT_EQ(
        Text(report.Json()),
        "{\"expected\":9,\"read\":7,\"partial\":true,\"wrongDigest\":false,\"passedOver\":[{\"offset\":28,"
        "\"size\":5,\"records\":1}"
        ","
        "{\"offset\":99,\"size\":1,\"records\":0}],\"lostClasses\":[{\"name\":\"A\\\"\\\\\\u000a\xC3\xA7\","
        "\"known\":false,\"readAs\":\"B\",\"read\":1,\"lost\":2,\"kept\":0}],\"fields\":[{\"class\":\"C\","
        "\"name\":"
        "\"f\","
        "\"fault\":\"otherKind\",\"fileKind\":-1,\"classKind\":-5,\"kept\":false}],\"references\":[{"
        "\"class\":\"C\","
        "\"field\":\"r\",\"why\":\"wrongType\",\"count\":3}],\"removed\":[{\"class\":\"D\",\"invalid\":1,"
        "\"owned\":4}]}");
}

} // namespace
