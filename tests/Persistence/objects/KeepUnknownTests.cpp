#include "support/Memory.h"
#include "support/Streaming.h"

#include "ZoPrimitives/ZoOpen.h"
#include "ZoPrimitives/ZoRegister.h"
#include "ZoPrimitives/ZoSave.h"

#include <random>

using namespace ZoPrimitives;

// Two versions of an application: the older one opens, changes and saves the newer one's files.

namespace newer {

class Part : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Part)
    DECLARE_ZO_FIELD(int, number)
    DECLARE_ZO_FIELD(ZoString, label)
    REGISTER_ZO_END
private:
    Alive alive;
};

/// No `Part` is made of what derives from it and the older version does not know.
class Shape : public Part {
    REGISTER_ZO_BEGIN(Shape, Part)
    DECLARE_ZO_FIELD(double, area)
    REGISTER_ZO_END
    virtual int Corners() const = 0;
};

class Square : public Shape {
    REGISTER_ZO_BEGIN(Square, Shape)
    DECLARE_ZO_FIELD(double, side)
    REGISTER_ZO_END
    int Corners() const override { return 4; }
};

class Circle : public Shape {
    REGISTER_ZO_BEGIN(Circle, Shape)
    DECLARE_ZO_FIELD(ZoString, name)
    DECLARE_ZO_FIELD_LIST(ZoString, notes)
    DECLARE_ZO_FIELD_CHILD(Part, centre)
    DECLARE_ZO_FIELD_CHILD_LIST(Shape, inner)
    DECLARE_ZO_FIELD_REFERENCE(Part, about)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Part, all)
    DECLARE_ZO_FIELD_CHILD_MAP(Part, Shape, byPart)
    REGISTER_ZO_END
    int Corners() const override { return 0; }
};

class Beam : public Part {
    REGISTER_ZO_BEGIN(Beam, Part)
    DECLARE_ZO_FIELD(double, length)
    DECLARE_ZO_FIELD_CHILD(Shape, shape)
    DECLARE_ZO_FIELD_CHILD_LIST(Shape, shapes)
    DECLARE_ZO_FIELD_REFERENCE(Shape, seen)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Shape, seenToo)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(Shape, outside)
    DECLARE_ZO_FIELD_CHILD_MAP(Part, Shape, named)
    DECLARE_ZO_FIELD(float, aFloat)
    DECLARE_ZO_FIELD(bool, aBool)
    DECLARE_ZO_FIELD(unsigned, anUnsigned)
    DECLARE_ZO_FIELD(ZoBlob, aBlob)
    DECLARE_ZO_FIELD_LIST(int, ints)
    DECLARE_ZO_FIELD_LIST(double, doubles)
    DECLARE_ZO_FIELD_CHILD(Part, child)
    DECLARE_ZO_FIELD_CHILD_VALUE(Part, member)
    DECLARE_ZO_FIELD_CHILD_LIST(Part, children)
    DECLARE_ZO_FIELD_REFERENCE(Part, reference)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Part, references)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE_LIST(Part, externals)
    DECLARE_ZO_FIELD_CHILD_MAP(Part, Part, map)
    REGISTER_ZO_END
};

/// The older version reads a `Beam` instead.
class Arch : public Beam {
    REGISTER_ZO_BEGIN(Arch, Beam)
    DECLARE_ZO_FIELD(double, rise)
    DECLARE_ZO_FIELD_REFERENCE(Arch, next)
    REGISTER_ZO_END
};

class Model : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Model)
    DECLARE_ZO_FIELD_CHILD_LIST(Beam, beams)
    DECLARE_ZO_FIELD_CHILD_LIST(Part, parts)
    REGISTER_ZO_END
};

void Register(TZoMetaData& schema) {
    Part::Register(&schema);
    Shape::Register(&schema);
    Square::Register(&schema);
    Circle::Register(&schema);
    Beam::Register(&schema);
    Arch::Register(&schema);
    Model::Register(&schema);
}

} // namespace newer

namespace older {

class Part : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Part)
    DECLARE_ZO_FIELD(int, number)
    REGISTER_ZO_END
private:
    Alive alive;
};

class Shape : public Part {
    REGISTER_ZO_BEGIN(Shape, Part)
    DECLARE_ZO_FIELD(double, area)
    REGISTER_ZO_END
    virtual int Corners() const = 0;
};

class Square : public Shape {
    REGISTER_ZO_BEGIN(Square, Shape)
    DECLARE_ZO_FIELD(double, side)
    REGISTER_ZO_END
    int Corners() const override { return 4; }
};

class Beam : public Part {
    REGISTER_ZO_BEGIN(Beam, Part)
    DECLARE_ZO_FIELD(double, length)
    DECLARE_ZO_FIELD_CHILD(Shape, shape)
    DECLARE_ZO_FIELD_CHILD_LIST(Shape, shapes)
    DECLARE_ZO_FIELD_REFERENCE(Shape, seen)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Shape, seenToo)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(Shape, outside)
    DECLARE_ZO_FIELD_CHILD_MAP(Part, Shape, named)
    REGISTER_ZO_END
};

class Model : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Model)
    DECLARE_ZO_FIELD_CHILD_LIST(Beam, beams)
    DECLARE_ZO_FIELD_CHILD_LIST(Part, parts)
    REGISTER_ZO_END
};

void Register(TZoMetaData& schema) {
    Part::Register(&schema);
    Shape::Register(&schema);
    Square::Register(&schema);
    Beam::Register(&schema);
    Model::Register(&schema);
}

} // namespace older

namespace {

/// A model of the newer version, drawn at random. Its first beam is an arch with values everywhere.
class Drawn {
public:
    explicit Drawn(unsigned seed) : random(seed), outside(new newer::Circle) {
        outside->name = "outside";
        for (int i = Some(2, 5); i > 0; --i) model->parts.Add(NewPart());
        for (int i = Some(12, 18); i > 0; --i) model->beams.Add(NewBeam(model->beams.NItems() == 0));
        for (const auto& beam : model->beams) Refer(*beam);
        for (newer::Circle* circle : circles) Refer(*circle);
    }
    pointer<newer::Model> model{new newer::Model};

private:
    int Some(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random); }
    bool Maybe() { return Some(0, 1) == 1; }

    newer::Part* NewPart() { return Fill(new newer::Part); }
    template <class T>
    T* Fill(T* part) {
        part->number = Some(1, 99);
        part->label = std::string(static_cast<std::size_t>(Some(0, 3)), 'x').c_str();
        parts.push_back(part);
        return part;
    }
    newer::Shape* NewShape(int depth) {
        if (Maybe()) {
            auto* square = Fill(new newer::Square);
            square->side = Some(1, 9);
            shapes.push_back(square);
            return square;
        }
        auto* circle = Fill(new newer::Circle);
        circle->area = Some(1, 9);
        circle->name = "circle";
        for (int i = Some(0, 2); i > 0; --i) circle->notes.Add("note");
        if (Maybe()) circle->centre = NewPart();
        for (int i = depth > 0 ? Some(0, 3) : 0; i > 0; --i) circle->inner.Add(NewShape(depth - 1));
        for (int i = depth > 0 ? Some(0, 2) : 0; i > 0; --i)
            circle->byPart.Append(NewPart(), NewShape(depth - 1));
        shapes.push_back(circle);
        circles.push_back(circle);
        return circle;
    }
    newer::Beam* NewBeam(bool full) {
        newer::Beam* beam = full || Maybe() ? new newer::Arch : new newer::Beam;
        Fill(beam);
        beam->length = Some(1, 50);
        if (full || Maybe()) beam->shape = NewShape(2);
        for (int i = Some(0, 5); i > 0; --i) beam->shapes.Add(NewShape(1));
        for (int i = Some(0, 4); i > 0; --i) beam->named.Append(NewPart(), NewShape(1));
        if (full || Maybe()) beam->outside = outside.get();
        beam->aFloat = static_cast<float>(Some(1, 9));
        beam->aBool = Maybe();
        beam->anUnsigned = 3'000'000'000U;
        beam->aBlob = ZoBlob("\0\1\2", static_cast<unsigned>(Some(0, 3)));
        for (int i = Some(0, 3); i > 0; --i) beam->ints.Add(Some(50, 99));
        for (int i = Some(0, 3); i > 0; --i) beam->doubles.Add(Some(1, 9));
        if (full || Maybe()) beam->child = NewPart();
        beam->member.number = Some(1, 99);
        beam->member.label = "member";
        for (int i = Some(0, 3); i > 0; --i) beam->children.Add(NewPart());
        for (int i = Some(0, 3); i > 0; --i) beam->map.Append(NewPart(), NewPart());
        return beam;
    }
    template <class T>
    T* Any(const std::vector<T*>& all) {
        return all[static_cast<std::size_t>(Some(0, static_cast<int>(all.size()) - 1))];
    }
    void Refer(newer::Beam& beam) {
        if (Maybe()) beam.seen = Any(shapes);
        for (int i = Some(0, 5); i > 0; --i) beam.seenToo.Add(Maybe() ? nullptr : Any(shapes));
        if (Maybe()) beam.reference = Any(parts);
        for (int i = Some(0, 3); i > 0; --i) beam.references.Add(Any(parts));
        for (int i = Some(0, 2); i > 0; --i) beam.externals.Add(Any(parts));
        if (auto* arch = dynamic_cast<newer::Arch*>(&beam)) {
            arch->rise = Some(1, 9);
            arch->next = dynamic_cast<newer::Arch*>(model->beams[1].get());
        }
    }
    void Refer(newer::Circle& circle) {
        if (Maybe()) circle.about = Any(parts);
        for (int i = Some(0, 3); i > 0; --i) circle.all.Add(Any(parts));
    }

    std::mt19937 random;
    pointer<newer::Circle> outside; // what an external reference names has another owner
    std::vector<newer::Part*> parts;
    std::vector<newer::Shape*> shapes;
    std::vector<newer::Circle*> circles;
};

struct KeepUnknownTests : testing::Test {
    KeepUnknownTests() {
        newer::Register(now);
        older::Register(before);
    }
    TZoMetaData now;
    TZoMetaData before;
    TZoOpening keeping = [] {
        TZoOpening how;
        how.strict = strictEverything;
        how.keepUnknown = true;
        return how;
    }();

    /// As the newer version sees it.
    std::string Seen(const ZoBlob& file) {
        const auto opened = ZoOpenFromMemory<newer::Model>(file, &now);
        EXPECT_TRUE(opened.Report().IsClean()) << opened.Report().Text().c_str();
        return SaveAtOnce(now, opened.GetRoot().get());
    }
};

TEST_F(KeepUnknownTests, AnOlderVersionSavesWhatItDoesNotKnow) {
    for (unsigned seed = 1; seed <= 15; ++seed) {
        SCOPED_TRACE(seed);
        Drawn drawn(seed);
        newer::Model& model = *drawn.model;
        const ZoBlob file = ZoSaveInMemory(&model, &now);
        auto root = ZoOpenFromMemory<older::Model>(file, &before, keeping).GetRoot(); // owns all by itself
        EXPECT_EQ(Seen(ZoSaveInMemory(root.get(), &before)), SaveAtOnce(now, &model));
        const std::string inTwoCalls = Save(before, root.get());
        EXPECT_EQ(inTwoCalls, SaveAtOnce(before, root.get()));
        // The same changes in both versions.
        model.beams[1]->length = root->beams[1]->length = 1000;
        model.parts.Add(new newer::Part);
        root->parts.Add(new older::Part);
        model.beams.Add(new newer::Beam);
        root->beams.Add(new older::Beam);
        const ZoBlob again = ZoSaveInMemory(root.get(), &before);
        EXPECT_EQ(Seen(again), SaveAtOnce(now, &model));
        // Once more through the older version.
        root = ZoOpenFromMemory<older::Model>(again, &before, keeping).GetRoot();
        EXPECT_EQ(Seen(ZoSaveInMemory(root.get(), &before)), SaveAtOnce(now, &model));
    }
    EXPECT_EQ(Alive::Count(), 0);
}

/// A small model: an arch whose shapes are of known and unknown classes, and a beam that refers to them.
pointer<newer::Model> Small() {
    const auto square = [](int number) {
        auto* made = new newer::Square;
        made->number = number;
        return made;
    };
    const auto circle = [](const char* name) {
        auto* made = new newer::Circle;
        made->name = name;
        return made;
    };
    pointer<newer::Model> model(new newer::Model);
    auto* arch = new newer::Arch;
    auto* beam = new newer::Beam;
    auto* part = new newer::Part;
    model->beams.Add(arch);
    model->beams.Add(beam);
    model->parts.Add(part);
    part->label = "part";
    arch->rise = 3;
    arch->next = arch;
    auto* first = circle("first");
    first->about = part;
    first->centre = new newer::Part;
    arch->shape = first;
    arch->seen = first;
    arch->shapes.Add(square(1));
    arch->shapes.Add(circle("second"));
    arch->shapes.Add(square(2));
    arch->shapes.Add(circle("third"));
    arch->named.Append(new newer::Part, circle("named"));
    beam->seen = first;
    beam->seenToo.Add(arch->shapes[2].get());
    beam->seenToo.Add(arch->shapes[1].get());
    beam->reference = part;
    return model;
}

TEST_F(KeepUnknownTests, ChangesOfTheOlderVersionCount) {
    const struct {
        const char* name;
        void (*older)(older::Model& model, older::Beam& arch, older::Beam& beam);
        void (*newer)(newer::Model& model, newer::Arch& arch, newer::Beam& beam);
    } rows[] = {
        {"none", [](auto&, auto&, auto&) {}, [](auto&, auto&, auto&) {}},
        {"an object with kept parts ends",
         [](auto& model, auto&, auto& beam) {
             beam.seenToo.RemoveAll();
             model.beams.RemoveAt(1);
         },
         [](auto& model, auto&, auto& beam) {
             beam.seenToo.RemoveAll();
             beam.seen = nullptr;
             model.beams.RemoveAt(1);
         }},
        {"an object that kept parts refer to ends",
         [](auto& model, auto&, auto&) { model.parts.RemoveAll(); },
         [](auto& model, auto& arch, auto& beam) {
             static_cast<newer::Circle&>(*arch.shape).about = nullptr;
             beam.reference = nullptr;
             model.parts.RemoveAll();
         }},
        {"a reference that is set counts, and nothing is left without an owner",
         [](auto&, auto& arch, auto&) { arch.shape = new older::Square; },
         [](auto&, auto& arch, auto& beam) {
             arch.seen = beam.seen = nullptr;
             arch.shape = new newer::Square;
         }},
        {"items behind an item that is gone come last",
         [](auto&, auto& arch, auto& beam) {
             beam.seenToo.RemoveAll();
             arch.shapes.RemoveAt(1);
         },
         [](auto&, auto& arch, auto& beam) {
             beam.seenToo.RemoveAt(2);
             const pointer<newer::Shape> second = arch.shapes[2];
             arch.shapes.RemoveAt(2);
             arch.shapes.RemoveAt(1);
             arch.shapes.Add(second.get());
         }},
        {"items stay behind the one that they followed",
         [](auto&, auto& arch, auto& beam) {
             const pointer<older::Shape> first = arch.shapes[1];
             arch.shapes.RemoveAt(1);
             arch.shapes.Add(new older::Square);
             arch.shapes.Add(first.get());
             arch.named.Append(new older::Part, new older::Square);
             beam.seenToo.Add(first.get());
         },
         [](auto&, auto& arch, auto& beam) {
             const pointer<newer::Shape> first = arch.shapes[1];
             const pointer<newer::Shape> second = arch.shapes[2];
             arch.shapes.RemoveAt(1);
             arch.shapes.RemoveAt(1);
             arch.shapes.Add(new newer::Square);
             arch.shapes.Add(first.get());
             arch.shapes.Add(second.get());
             arch.named.Append(new newer::Part, new newer::Square);
             beam.seenToo.Add(first.get());
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto model = Small();
        const ZoBlob file = ZoSaveInMemory(model.get(), &now);
        const auto root = ZoOpenFromMemory<older::Model>(file, &before, keeping).GetRoot();
        const pointer<older::Beam> arch = root->beams[1];
        row.older(*root, *arch, *root->beams[2]);
        // The older version's own holds are no part of the graph.
        const ZoBlob again = ZoSaveInMemory(root.get(), &before);
        auto& newArch = dynamic_cast<newer::Arch&>(*model->beams[1]);
        const pointer<newer::Arch> held(&newArch);
        row.newer(*model, newArch, *model->beams[2]);
        EXPECT_EQ(Seen(again), SaveAtOnce(now, model.get()));
        EXPECT_EQ(Seen(ZoSaveInMemory(root.get(), &before)), Seen(again)) << "saved twice";
    }
    EXPECT_EQ(Alive::Count(), 0);
}

TEST_F(KeepUnknownTests, ModelsKeepTheirPartsApart) {
    const auto model = Small();
    const ZoBlob file = ZoSaveInMemory(model.get(), &now);
    auto one = ZoOpenFromMemory<older::Model>(file, &before, keeping).GetRoot();
    const auto other = ZoOpenFromMemory<older::Model>(file, &before, keeping).GetRoot();
    EXPECT_EQ(Seen(ZoSaveInMemory(other.get(), &before)), SaveAtOnce(now, model.get()));
    other->beams.Add(one->beams[1].get()); // the arch takes its parts along
    other->parts.Add(one->parts[1].get());
    one = nullptr;
    const auto opened = ZoOpenFromMemory<newer::Model>(ZoSaveInMemory(other.get(), &before), &now);
    const auto& arch = dynamic_cast<newer::Arch&>(*opened->beams[3]);
    EXPECT_EQ(arch.next.get(), &arch);
    EXPECT_EQ(dynamic_cast<newer::Circle&>(*arch.shapes[4]).name, "third");
    EXPECT_EQ(dynamic_cast<newer::Circle&>(*arch.shape).about.get(), opened->parts[2].get());
}

TEST_F(KeepUnknownTests, IsToldAndWrittenByStreamersOrRefused) {
    const auto model = Small();
    Opened opened(SaveAtOnce(now, model.get()), before, Opened::Later);
    opened.streamer.KeepUnknown(true);
    opened.streamer.SetStrict(strictEverything);
    opened.Read();
    const TZoReadReport report = opened.streamer.Report();
    ASSERT_EQ(report.lostClasses.NItems(), 2U);
    EXPECT_EQ(report.lostClasses[1], (TZoReadReport::LostClass{"Circle", false, "", 0, 0, 4}));
    EXPECT_EQ(report.lostClasses[2], (TZoReadReport::LostClass{"Arch", false, "Beam", 1, 0, 1}));
    EXPECT_EQ(report.references.NItems(), 0U);
    EXPECT_TRUE(report.fields[1].kept && !report.IsClean());
    EXPECT_NE(Text(report.Text()).find("Circle: 4 objetos preservados"), std::string::npos);
    // A schema that knows nothing of it.
    TMemoryBinOutStream stream;
    stream.Initialize();
    TBinOutStreamer streamer(&stream, &before);
    streamer.WriteMetaData();
    EXPECT_THROW(streamer.WriteObject(opened.root), XStream);
    EXPECT_THROW(before.FindClass("Model")->SaveToStream(&stream, &streamer, opened.root), XStream);
}

/// Reads one of the fields that it lacks.
class Reader : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Reader)
    DECLARE_ZO_FIELD(int, number)
    REGISTER_ZO_END
    void HandleExcludedField(TZoClassField* field, TBinInStream* stream) override {
        if (field->GetFieldName() == "taken") *stream >> number;
    }
};

class Holder : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Holder)
    DECLARE_ZO_FIELD(int, number)
    DECLARE_ZO_FIELD_CHILD_VALUE(older::Part, member)
    REGISTER_ZO_END
};

class Derived : public older::Part {
    REGISTER_ZO_BEGIN(Derived, Part)
    DECLARE_ZO_FIELD(int, moved)
    REGISTER_ZO_END
};

TEST_F(KeepUnknownTests, FilesByHand) {
    Reader::Register(&before);
    Holder::Register(&before);
    Derived::Register(&before);
    const ClassEntry root{
        .id = 1, .name = "Reader", .values = {{0, -1, "number"}}, .references = {{0, -15, "any"}}};
    const auto list = [](const char* name) { return FieldEntry{0, -9, name}; };
    const struct {
        const char* name;
        std::vector<ClassEntry> classes;
        std::vector<Row> rows; // behind the root, which refers to the first
        const char* refused;   // class and field; empty: it is kept
    } rows[] = {
        {"a field that is taken is not kept",
         {{.id = 1, .name = "Reader", .values = {{0, -1, "taken"}, {0, -1, "kept"}}}},
         {},
         ""},
        {"lists",
         {root, {.id = 2, .name = "Lists", .referenceLists = {list("a"), list("b")}}},
         {{2, 2, Payload().Ints({2, 1, 2, 1, 2})}},
         ""},
        {"a list with an integer",
         {root, {.id = 2, .name = "Lists", .referenceLists = {list("a")}}},
         {{2, 2, Payload().Ints({1, 77, 1})}},
         "Lists.a"},
        {"lists, or one with an integer",
         {root, {.id = 2, .name = "Lists", .referenceLists = {list("a"), list("b")}}},
         {{2, 2, Payload().Ints({0, 2, 1, 2})}},
         "Lists.a"},
        {"the same, told by another record",
         {root, {.id = 2, .name = "Lists", .referenceLists = {list("a"), list("b")}}},
         {{2, 2, Payload().Ints({0, 2, 1, 2})}, {3, 2, Payload().Ints({0, 1, 2})}},
         ""},
        {"a kind of a later version",
         {root, {.id = 2, .name = "Later", .values = {{0, -77, "a"}}}},
         {{2, 2, Payload().Int(1)}},
         "Later."},
        {"more than the fields",
         {root, {.id = 2, .name = "Longer", .values = {{0, -1, "a"}}}},
         {{2, 2, Payload().Ints({1, 2})}},
         "Longer."},
        {"less than the fields",
         {root, {.id = 2, .name = "Shorter", .values = {{0, -4, "a"}}}},
         {{2, 2, Payload().Int(1)}},
         "Shorter.a"},
        {"a field that stands in a derived class here",
         {root,
          {.id = 2, .name = "Part", .values = {{0, -1, "number"}, {0, -1, "moved"}}},
          {.id = 3, .name = "Derived", .parents = {2}}},
         {{2, 3, Payload().Ints({1, 2})}},
         "Part.moved"},
        {"a hierarchy that is turned round",
         {root,
          {.id = 2, .name = "Derived", .values = {{0, -1, "moved"}, {0, -1, "new"}}},
          {.id = 3, .name = "Part", .parents = {2}}},
         {{2, 3, Payload().Ints({1, 2})}},
         "Derived."},
        {"a member of an unknown class",
         {root,
          {.id = 2, .name = "Holder", .values = {{0, -1, "number"}}, .children = {{0, -18, "member"}}},
          {.id = 3, .name = "Other", .values = {{0, -1, "a"}}}},
         {{2, 2, Payload().Ints({1, 3})}, {3, 3, Payload().Int(1)}},
         "Holder.member"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<Row> all = row.rows;
        all.insert(all.begin(), {1, 1, Payload().Ints({5, 2})});
        Opened opened(FileOf(row.classes, all), before, Opened::Later);
        opened.streamer.KeepUnknown(true);
        try {
            opened.Read();
            EXPECT_STREQ(row.refused, "");
            const std::vector<Row> saved = RowsOf(SaveAtOnce(before, opened.root));
            for (std::size_t i = 0; i < all.size(); ++i) EXPECT_EQ(saved.at(i + 1).payload, all[i].payload);
        } catch (const XCannotKeep& refusal) {
            EXPECT_EQ(Text(refusal.ClassName()) + "." + Text(refusal.Field()), row.refused);
            EXPECT_EQ(opened.Count(), 0U);
        }
    }
    // Nothing stands for a root that is not made.
    Opened rootless(FileOf({{.id = 1, .name = "Gone", .values = {{0, -1, "a"}}}}, {{1, 1, Payload().Int(1)}}),
                    before, Opened::Later);
    rootless.streamer.KeepUnknown(true);
    EXPECT_THROW(rootless.Read(), XCannotKeep);
}

TEST_F(KeepUnknownTests, HostileRecordsAreKeptOrRefused) {
    const auto model = Small();
    const std::vector<Row> sound = RowsOf(SaveAtOnce(now, model.get()));
    for (std::size_t i = 1; i < sound.size(); ++i) {
        for (std::size_t at = 0; at + 4 <= sound[i].payload.size(); at += 4) {
            for (const unsigned value : {1U, 7U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
                std::vector<Row> rows = sound;
                rows[i].payload.replace(at, 4, LittleEndian(value));
                if (at % 8 == 0) rows[i].uid = static_cast<int>(value);
                Opened opened(FileOf(rows), before, Opened::Later);
                opened.streamer.KeepUnknown(true);
                try {
                    opened.Read();
                    SaveAtOnce(before, opened.root);
                } catch (const XStream&) {
                    // Refused, or a reference of the file leads nowhere.
                }
            }
        }
    }
}

TEST_F(KeepUnknownTests, AShortageOfMemoryFailsTheWholeReading) {
    if (!Memory::Watched()) GTEST_SKIP();
    const auto model = Small();
    const ZoBlob file = ZoSaveInMemory(model.get(), &now);
    const std::string whole = SaveAtOnce(now, model.get());
    const int alive = Alive::Count();
    bool met = true;
    for (long long number = 1; met; ++number) {
        ZoBlob saved;
        try {
            const Memory::Shortage shortage(number, false);
            saved = ZoSaveInMemory(ZoOpenFromMemory<older::Model>(file, &before, keeping).GetRoot().get(),
                                   &before);
            met = Memory::Shortage::Met();
        } catch (const std::bad_alloc&) {
        }
        EXPECT_EQ(Alive::Count(), alive) << number;
        if (saved.Size() != 0) {
            EXPECT_EQ(Seen(saved), whole) << number;
        }
    }
}

} // namespace
