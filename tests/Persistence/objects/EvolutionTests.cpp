#include "ZoPrimitives/ZoOpen.h"
#include "ZoPrimitives/ZoRegister.h"
#include "ZoPrimitives/ZoSave.h"
#include "ZoPrimitives/ZoStreamablePrimitives.h"
#include "support/Streaming.h"

#include <gmock/gmock.h>

using namespace ZoPrimitives;

// An application before and after every change of docs/evolution.md.

namespace {

namespace was {

class Node : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Node)
    DECLARE_ZO_FIELD(int, number)
    REGISTER_ZO_END
    Node() = default;
    explicit Node(int its) : number(its) {}
};
class Stamp : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Stamp)
    DECLARE_ZO_FIELD(int, day)
    REGISTER_ZO_END
};
enum class Finish { Raw, Painted };
class Part : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Part)
    DECLARE_ZO_FIELD(Finish, finish)
    DECLARE_ZO_FIELD(ZoString, mark)
    DECLARE_ZO_FIELD(double, width)
    REGISTER_ZO_END
};
class Girder : public Part {
    REGISTER_ZO_BEGIN(Girder, Part)
    DECLARE_ZO_FIELD(double, length)
    DECLARE_ZO_FIELD(double, depth)
    DECLARE_ZO_FIELD(int, grade)
    DECLARE_ZO_FIELD(ZoString, note)
    DECLARE_ZO_FIELD_CHILD(Node, start)
    DECLARE_ZO_FIELD_CHILD(Node, middle)
    DECLARE_ZO_FIELD_REFERENCE(Node, support)
    DECLARE_ZO_FIELD_CHILD_LIST(Node, holes)
    DECLARE_ZO_FIELD_CHILD(Stamp, stamp)
    DECLARE_ZO_FIELD_CHILD(Part, bracing)
    REGISTER_ZO_END
};

void Register(TZoMetaData& schema) {
    Node::Register(&schema);
    Stamp::Register(&schema);
    Part::Register(&schema);
    Girder::Register(&schema);
}

} // namespace was

namespace now {

class Entity : public ZoObjectStreamable { // put between
    REGISTER_ZO_BEGIN(Entity)
    DECLARE_ZO_FIELD(int, layer, 3)
    REGISTER_ZO_END
};
class Node : public Entity {
    REGISTER_ZO_BEGIN(Node, Entity)
    DECLARE_ZO_FIELD(int, number)
    REGISTER_ZO_END
    Node() = default;
    explicit Node(int its) : number(its) {}
};
class Label : public ZoObjectStreamable { // split off
    REGISTER_ZO_BEGIN(Label)
    DECLARE_ZO_FIELD(ZoString, text)
    REGISTER_ZO_END
    Label() = default;
    explicit Label(const ZoString& its) : text(its) {}
};
enum class Finish { Raw, Painted, Galvanised };
class Part : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Part)
    DECLARE_ZO_FIELD_CHILD(Label, label)
    DECLARE_ZO_FIELD(Finish, finish)
    DECLARE_ZO_FIELD(double, depth)
    REGISTER_ZO_END
    void HandleExcludedField(TZoClassField* field, TBinInStream* stream) override {
        if (field->GetFieldName() != "mark") return;
        ZoString mark;
        *stream >> mark;
        label = new Label(mark);
    }
};
class Beam : public Part {
    REGISTER_ZO_BEGIN(Beam, Part)
    ZO_CLASS_WAS("Girder")
    DECLARE_ZO_FIELD_CHILD_VALUE(Node, middle)
    DECLARE_ZO_FIELD(ZoString, grade)
    DECLARE_ZO_FIELD(double, clearLength)
    ZO_FIELD_WAS(clearLength, "length")
    DECLARE_ZO_FIELD(double, width)
    DECLARE_ZO_FIELD(double, camber, 1.5)
    DECLARE_ZO_FIELD_CHILD_LIST(Node, starts)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Node, supports)
    DECLARE_ZO_FIELD_CHILD_MAP(ZoInteger, Node, holesByNumber)
    DECLARE_ZO_FIELD_CHILD(Part, bracing)
    REGISTER_ZO_END
    void HandleExcludedField(TZoClassField* field, TBinInStream* stream) override;
};
class Truss : public Beam {
    REGISTER_ZO_BEGIN(Truss, Beam)
    DECLARE_ZO_FIELD(int, bars)
    REGISTER_ZO_END
};

void Beam::HandleExcludedField(TZoClassField* field, TBinInStream* stream) {
    const ZoString& name = field->GetFieldName();
    int value = 0; // a number, a uid or a count
    if (name == "width") {
        *stream >> width;
    } else if (name == "grade") {
        *stream >> value;
        grade = ZoString::FormatString("S%d", value);
    } else if (name == "start" || name == "support") {
        *stream >> value;
        const bool owned = name == "start";
        stream->WhenRead(value, [this, owned](ZoStreamableBase* object) {
            auto* node = dynamic_cast<Node*>(object);
            if (node != nullptr && owned) starts.Add(node);
            if (node != nullptr && !owned) supports.Add(node);
        });
    } else if (name == "holes") {
        *stream >> value;
        for (int i = 0; i < value; ++i) {
            int uid = 0;
            *stream >> uid;
            stream->WhenRead(uid, [this](ZoStreamableBase* object) {
                if (auto* node = dynamic_cast<Node*>(object))
                    holesByNumber.Add(new ZoInteger(node->number), node);
            });
        }
    } else {
        Part::HandleExcludedField(field, stream);
    }
}

void Register(TZoMetaData& schema) {
    Entity::Register(&schema);
    ZoInteger::Register(&schema);
    Node::Register(&schema);
    Label::Register(&schema);
    Part::Register(&schema);
    Beam::Register(&schema);
    Truss::Register(&schema);
}

} // namespace now

struct EvolutionTests : testing::Test {
    EvolutionTests() {
        was::Register(before);
        now::Register(after);
    }
    TZoMetaData before, after;
};

TEST_F(EvolutionTests, TheNewVersionOpensWhatTheOldOneSaved) {
    was::Girder old;
    old.mark = "V1";
    old.finish = was::Finish::Painted;
    old.width = 20;
    old.length = 600;
    old.depth = 50;
    old.grade = 355;
    old.note = "painted";
    old.start = new was::Node(1);
    old.middle = new was::Node(2);
    old.support = old.start.get();
    for (const int number : {7, 8}) old.holes.Add(new was::Node(number));
    old.stamp = new was::Stamp;
    old.bracing = new was::Part;
    const auto opened = ZoOpenFromMemory<now::Beam>(ZoSaveInMemory(&old, &before), &after);
    now::Beam& beam = *opened;
    EXPECT_EQ(beam.camber, 1.5) << "a field was added";
    EXPECT_EQ(beam.finish, now::Finish::Painted) << "put in another place";
    EXPECT_EQ(beam.clearLength, 600) << "class and field were renamed";
    EXPECT_EQ(beam.depth, 50) << "moved to a parent";
    EXPECT_EQ(beam.width, 20) << "moved to a subclass";
    EXPECT_EQ(beam.grade, "S355") << "of another kind";
    EXPECT_EQ(beam.middle.number, 2) << "an owned object became a member";
    ASSERT_EQ(beam.starts.NItems(), 1U) << "a pointer became a list";
    EXPECT_EQ(beam.starts[1]->number, 1);
    ASSERT_EQ(beam.supports.NItems(), 1U);
    EXPECT_EQ(beam.supports[1], beam.starts[1].get());
    ASSERT_EQ(beam.holesByNumber.NItems(), 2U) << "a list became a map";
    EXPECT_EQ(beam.holesByNumber.ValueAt(2)->number, 8);
    ASSERT_TRUE(beam.label) << "a class was split";
    EXPECT_EQ(beam.label->text, "V1");
    EXPECT_EQ(beam.starts[1]->layer, 3) << "a parent was put between";
    EXPECT_EQ(beam.bracing->label->text, "");
    const std::string said = Text(opened.Report().Text());
    EXPECT_THAT(said, testing::HasSubstr("Girder.note")) << "a field was removed";
    EXPECT_THAT(said, testing::HasSubstr("Classe Stamp desconhecida: 1 objetos perdidos"))
        << "a class was removed";
    unsigned lost = 0;
    for (const TZoReadReport::Field& field : opened.Report().fields)
        lost += field.fault != TFieldFault::NotInFile;
    EXPECT_EQ(lost, 2U) << said << "but note and stamp";
    // Saved by the new version, all of it is in its present form.
    const auto again = ZoOpenFromMemory<now::Beam>(ZoSaveInMemory(&beam, &after), &after);
    EXPECT_EQ(again->label->text, "V1");
    EXPECT_EQ(again->holesByNumber.ValueAt(2)->number, 8);
    EXPECT_TRUE(again.Report().IsClean()) << again.Report().Text().c_str();
}

TEST_F(EvolutionTests, TheOldVersionOpensWhatTheNewOneSaved) {
    now::Part part;
    part.label = new now::Label("V1");
    part.depth = 50;
    part.finish = now::Finish::Galvanised;
    const auto opened = ZoOpenFromMemory<was::Part>(ZoSaveInMemory(&part, &after), &before);
    EXPECT_EQ(opened->mark, "") << "the class of the label is not known";
    EXPECT_EQ(static_cast<int>(opened->finish), 2) << "an enumeration got a value";
    EXPECT_THAT(Text(opened.Report().Text()), testing::HasSubstr("Part.depth"));
    now::Truss truss;
    truss.middle.number = 4;
    const auto climbed = ZoOpenFromMemory<was::Part>(ZoSaveInMemory(&truss, &after), &before);
    EXPECT_THAT(Text(climbed.Report().Text()),
                testing::HasSubstr("Classe Truss desconhecida: 1 objetos lidos como Part"))
        << "a subclass was added, and its parent renamed";
}

} // namespace
