#include "support/EveryKind.h"

#include "ZoPrimitives/FilteredBinInStreamer.h"

#include <algorithm>
#include <climits>
#include <stdexcept>

using namespace ZoPrimitives;

namespace {

std::vector<std::string> events;

class Node : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Node)
    DECLARE_ZO_FIELD(int, number)
    DECLARE_ZO_FIELD(bool, refusesRead)
    DECLARE_ZO_FIELD_REFERENCE(Node, other)
    REGISTER_ZO_END
    bool OnRead(TBinInStream*, bool) override { return !refusesRead; }
    void OnReadPointer(TZoClassField*, ZoStreamableBase*, unsigned) override {
        if (number == FAILS) throw XStream("refused", "OnReadPointer");
    }
    bool GetIsValid() const override { return other != nullptr; }
    static constexpr int FAILS = -1;
    Alive alive;
};

class Corner : public Node {
    REGISTER_ZO_BEGIN(Corner, Node)
    DECLARE_ZO_FIELD(double, angle)
    REGISTER_ZO_END
};

class Frame : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Frame)
    DECLARE_ZO_FIELD_CHILD_VALUE(Node, middle)
    DECLARE_ZO_FIELD_CHILD(Node, first)
    DECLARE_ZO_FIELD_CHILD_LIST(Node, nodes)
    REGISTER_ZO_END
    void HandleExcludedField(TZoClassField* field, TBinInStream*) override {
        events.push_back(Text(field->GetFieldName()));
    }
    Alive alive;
};

struct FilteredBinInStreamerTests : testing::Test {
    FilteredBinInStreamerTests() {
        Node::Register(&schema);
        Corner::Register(&schema);
        Frame::Register(&schema);
        events.clear();
        before = Alive::Count();
    }
    ~FilteredBinInStreamerTests() override { EXPECT_EQ(Alive::Count(), before); }

    static std::vector<ClassEntry> Classes() {
        ClassEntry node{.id = 1, .name = "Node", .values = {{0, -1, "number"}, {0, -10, "refusesRead"}}};
        node.references = {{1, -8, "other"}};
        ClassEntry corner{.id = 2, .name = "Corner", .parents = {1}, .values = {{0, -3, "angle"}}};
        ClassEntry frame{.id = 3, .name = "Frame", .values = {{0, -1, "left out since"}}};
        frame.children = {{1, -18, "middle"}, {1, -6, "first"}};
        frame.childLists = {{1, -7, "nodes"}};
        ClassEntry gone{.id = 9, .name = "Gone", .parents = {1}};
        return {node, corner, frame, gone};
    }
    static Payload NodePart(int number, int other = 0, bool refusesRead = false) {
        return Payload().Int(number).Bool(refusesRead).Int(other);
    }
    static Row NodeAt(int uid, int number, int other = 0) { return {uid, 1, NodePart(number, other)}; }
    static Row CornerAt(int uid, int number) { return {uid, 2, NodePart(number).Double(0.5)}; }
    static Row FrameAt(int uid, int middle, int first, const std::vector<int>& nodes) {
        Payload bytes;
        bytes.Ints({7, middle, first}).Int(static_cast<long long>(nodes.size()));
        for (const int node : nodes) bytes.Int(node);
        return {uid, 3, bytes};
    }
    static std::vector<Row> FrameRows() {
        return {FrameAt(1, 2, 3, {4, 5, 6}),
                NodeAt(2, 20, 3),
                NodeAt(3, 30, 1),
                NodeAt(4, 40, 6),
                CornerAt(5, 50),
                NodeAt(6, 60, 4),
                {7, 9, NodePart(70)},
                {8, 77, "foreign"},
                NodeAt(9, 90)};
    }

    TZoMetaData schema;
    int before = 0;
};

/// A reading of some classes, whose objects end with it.
class Filtered {
public:
    Filtered(std::string file, TZoMetaData& schema, const std::vector<const char*>& classNames)
        : bytes(std::move(file)), stream(bytes.data(), bytes.size(), 0), streamer(Make(schema, classNames)) {}
    ~Filtered() { End(); }
    /// Reads twice: a reader serves again.
    std::string Read() {
        std::string failure;
        for (int round = 0; round < 2 && failure.empty(); ++round) {
            End();
            events.clear();
            stream.Initialize();
            failure = FailureOf([&] { result = streamer->Read(); });
        }
        return failure;
    }
    /// Nodes by their numbers, with that of another that they lead to, and frames with what they hold.
    std::string Objects() {
        std::string text;
        for (ZoStreamableBase* object : streamer->GetObjects()) {
            const auto* frame = dynamic_cast<const Frame*>(object);
            text += text.empty() ? "" : " ";
            if (frame == nullptr) {
                text += Told(dynamic_cast<const Node&>(*object));
                continue;
            }
            text += "Frame(" + Told(frame->middle);
            if (frame->first) text += " first " + Told(*frame->first);
            for (const auto& node : frame->nodes) text += " " + Told(*node);
            text += ")";
        }
        return text;
    }

private:
    static std::string Told(const Node& node) {
        return std::to_string(node.number) + (node.other ? ">" + std::to_string(node.other->number) : "");
    }

private:
    void End() {
        const auto& objects = streamer->GetObjects();
        const std::vector<pointer<ZoStreamableBase>> holders(objects.begin(), objects.end());
    }
    std::unique_ptr<TFilteredBinInStreamer> Make(TZoMetaData& schema,
                                                 const std::vector<const char*>& classNames) {
        TDList<ZoString> names;
        for (const char* name : classNames) names.Add(name);
        return std::make_unique<TFilteredBinInStreamer>(&stream, &schema, &names);
    }
    std::string bytes;

public:
    TMemoryBinInStream stream;
    std::unique_ptr<TFilteredBinInStreamer> streamer;
    bool result = false;
};

TEST_F(FilteredBinInStreamerTests, ReadsTheClassesAskedFor) {
    const struct {
        const char* name;
        std::vector<const char*> classes;
        std::string objects;
        std::vector<Row> rows = FrameRows();
    } cases[] = {
        {"one class, whose pointers lead to what was read, before or behind",
         {"Node"},
         "20>30 30 40>60 60>40 90"},
        {"a derived class alone", {"Corner"}, "50"},
        {"two, in another order than the file's", {"Corner", "Node"}, "20>30 30 40>60 50 60>40 90"},
        {"one that is not there, the same one twice", {"Absent", "Corner", "Corner"}, "50"},
        {"a member and items that were passed over", {"Frame"}, "Frame(0)"},
        {"a member and items that were not; what was read for the member has ended",
         {"Frame", "Node"},
         "Frame(20>30 first 30 40>60 60>40) 30 40>60 60>40 90"},
        {"one that the application does not know", {"Gone"}, ""},
        {"what says on reading that it is invalid goes; to lead nowhere counts in whole models alone",
         {"Node"},
         "1 3",
         {NodeAt(1, 1), {2, 1, NodePart(2, 0, true)}, NodeAt(3, 3, 2)}},
    };
    for (const auto& row : cases) {
        Filtered filtered(FileOf(Classes(), row.rows), schema, row.classes);
        EXPECT_EQ(filtered.Read(), "") << row.name;
        EXPECT_EQ(filtered.Objects(), row.objects) << row.name;
        EXPECT_EQ(filtered.result, row.objects != "") << row.name;
        EXPECT_EQ(filtered.stream.GetSkipped(), 0U) << row.name;
        EXPECT_EQ(events.size(), row.objects[0] == 'F' ? 1U : 0U) << "the field left out since";
    }
}

TEST_F(FilteredBinInStreamerTests, TellsWhatIsWrongWithTheFile) {
    const std::string file = FileOf(Classes(), FrameRows());
    const std::string headless = file.substr(0, 28);
    const struct {
        const char* name;
        std::string file;
        std::vector<const char*> classes;
        const char* failure;
        unsigned left = 0; // objects, for the caller
    } cases[] = {
        {"no record", headless, {"Node"}, "Metadado corrompido @ TFilteredBinInStreamer::Read #1"},
        {"no class of these names",
         file,
         {"Absent", "node", "class Node"},
         "N\xE3o existem classes com os nomes da filtragem no metadado @ TFilteredBinInStreamer::Read #3"},
        {"no names",
         file,
         {},
         "N\xE3o existem classes com os nomes da filtragem no metadado @ TFilteredBinInStreamer::Read #3"},
        {"a parent that is not there",
         FileOf({ClassEntry{.parents = {5}}}, {}),
         {"X"},
         "Metadado inv\xE1lido @ TFilteredBinInStreamer::Read #2"},
        {"a record asked for that is not whole",
         file.substr(0, file.size() - 1),
         {"Node"},
         "No error @ TBinInStream::LoadFilteredRecord #7"},
        {"a record that ends before its fields",
         FileOf(Classes(), {NodeAt(2, 20), {3, 1, "abc"}}),
         {"Node"},
         "Tamanho de registro corrompido @ TZoClass::LoadFromStreamPre"},
        {"a hook while pointers are set",
         FileOf(Classes(), {NodeAt(2, 20), NodeAt(3, Node::FAILS)}),
         {"Node"},
         "refused @ OnReadPointer",
         2},
    };
    for (const auto& row : cases) {
        Filtered filtered(row.file, schema, row.classes);
        EXPECT_EQ(filtered.Read(), row.failure) << row.name;
        EXPECT_EQ(filtered.streamer->GetObjects().NItems(), row.left) << row.name;
        EXPECT_EQ(filtered.stream.Objects().NItems(), row.left) << row.name;
        EXPECT_EQ(Alive::Count(), before + static_cast<int>(row.left)) << row.name;
    }
}

TEST_F(FilteredBinInStreamerTests, ReadsFromAStreamInOneCall) {
    const std::string file = FileOf(Classes(), FrameRows());
    TDList<ZoString> names;
    names.Add("Corner");
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    stream.Initialize();
    EXPECT_TRUE(TFilteredBinInStreamer::ReadFromStream(&stream, &schema, &names));
    const pointer<ZoStreamableBase> corner = stream.FirstObject();
    EXPECT_EQ(dynamic_cast<Corner&>(*corner).number, 50);
}

TEST_F(FilteredBinInStreamerTests, RecordsOfClassesThatTheSchemaLacksArePassedOver) {
    const std::string file = FileOf({{1, 2, "of the schema"}, {2, 77, "of none"}, {3, 1, "not asked for"}});
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    stream.Initialize();
    const int ids[] = {2, 3, 77};
    int classId = 0, uid = 0;
    EXPECT_TRUE(stream.LoadFilteredRecord(&schema, ids, &classId, &uid, 3));
    EXPECT_EQ(classId, 2);
    EXPECT_EQ(uid, 1);
    EXPECT_FALSE(stream.LoadFilteredRecord(&schema, ids, &classId, &uid, 3));
}

TEST_F(FilteredBinInStreamerTests, ObjectsAreTakenOverAtOnce) {
    // Of a frame that is not known any more nothing is left but what it held: whoever takes the root alone
    // would leave the rest to nobody.
    std::vector<ClassEntry> classes = Classes();
    classes[2].name = "Unknown";
    std::vector<Row> rows = FrameRows();
    rows.erase(rows.begin() + 7);
    const std::string file = FileOf(classes, rows);
    TMemoryBinInStream stream(file.data(), file.size(), 0);
    stream.Initialize();
    TBinInStreamer streamer(&stream, &schema);
    ZoStreamableBase* root = streamer.ReadObjects();
    TIVector<ZoStreamableBase> objects;
    objects.Add(new Node);
    stream.TakeObjects(&objects);
    EXPECT_EQ(objects.NItems(), 1U + 3U) << "nodes 2, 4 and 6; the others are invalid without another";
    EXPECT_EQ(objects[2].get(), root) << "the first that was not dropped";
    EXPECT_EQ(stream.Objects().NItems(), 0U);
    EXPECT_EQ(stream.GetInstance(2), nullptr);
}

TEST_F(FilteredBinInStreamerTests, SurvivesStrangersWithRightSums) {
    std::vector<Row> rows = FrameRows();
    for (Row& row : rows) {
        for (char& byte : row.payload) {
            const char sound = byte;
            for (const char value : {'\0', '\1', '\x7F', '\xFF'}) {
                byte = value;
                Filtered filtered(FileOf(Classes(), rows), schema, {"Frame", "Node", "Gone"});
                const std::string failure = filtered.Read();
                EXPECT_TRUE(failure.empty() ||
                            failure == "Tamanho de registro corrompido @ TZoClass::LoadFromStreamPre")
                    << failure;
            }
            byte = sound;
        }
    }
}

} // namespace
