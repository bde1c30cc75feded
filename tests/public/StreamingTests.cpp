#include "ZoPrimitives/ZoPrimitives.h"

#include <gtest/gtest.h>

// An application, in a namespace of its own, that sees the shared library only.
namespace bridge {

using namespace ZoPrimitives;

class Part : public virtual ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Part)
    DECLARE_ZO_FIELD(ZoString, label)
    REGISTER_ZO_END
    virtual double Weight() const = 0;
};
class Coated : public virtual ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Coated)
    DECLARE_ZO_FIELD(unsigned, colour)
    REGISTER_ZO_END
};

class Span;

class Cable : public Part, public Coated {
    REGISTER_ZO_BEGIN(Cable, bridge::Part, Coated)
    DECLARE_ZO_FIELD(ZoBlob, certificate)
    DECLARE_ZO_FIELD_LIST(ZoString, remarks)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Span, neighbours) // declared later
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(StreamableZoString, maker)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE_LIST(ZoObjectStreamable, owners)
    REGISTER_ZO_END
    Cable() = default;
    explicit Cable(StreamableInit) {}
    double Weight() const override { return 1; }
};

/// A quantity of the application's own.
class Level : public GComprimento {
    REGISTER_ZO_BEGIN(Level, GComprimento)
    DECLARE_ZO_FIELD(ZoString, datum)
    REGISTER_ZO_END
    explicit Level(double cm) : GComprimento(cm) {}
    explicit Level(StreamableInit init) : GComprimento(init) {}
};

class Span : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Span)
    DECLARE_ZO_FIELD_CHILD(Cable, main)
    DECLARE_ZO_FIELD_CHILD_MAP(StreamableZoString, Cable, byName)
    DECLARE_ZO_FIELD_CHILD_VALUE(ZoDouble, length) // without default constructor
    DECLARE_ZO_FIELD_CHILD_VALUE(GVolume, volume)
    DECLARE_ZO_FIELD_CHILD_LIST(Level, levels)
    REGISTER_ZO_END
};

std::string Saved(TZoMetaData& schema, ZoStreamableBase* root) {
    TMemoryBinOutStream stream(3, 2026);
    stream.Initialize();
    TBinOutStreamer(&stream, &schema).WriteObjectWithMetaData(root);
    return {reinterpret_cast<const char*>(stream.GetData()), static_cast<std::size_t>(stream.GetSize())};
}

TEST(StreamingTests, SavesAndOpensTheApplicationsObjects) {
    TZoMetaData schema;
    ZoRegisterPrimitives(&schema);
    ZoRegisterGrandezas(&schema);
    Part::Register(&schema);
    Coated::Register(&schema);
    Cable::Register(&schema);
    Level::Register(&schema);
    Span::Register(&schema);
    ZoString report;
    EXPECT_TRUE(schema.Check(&report)) << report.c_str();

    StreamableZoString maker("maker");
    ZoInteger owner(42);
    Span written;
    written.length = ZoDouble(12.5);
    EXPECT_TRUE(written.volume.LeTexto("1,5e3 l", ',', TVolume::m3));
    written.levels.Add(new Level(-250));
    written.levels[1]->datum = "quay";
    written.main = new Cable;
    Cable& cable = *written.main;
    cable.label = "main cable";
    cable.colour = 0xFF00FFU;
    cable.certificate = ZoBlob("\0\1\2", 3);
    cable.remarks.Add("checked");
    cable.neighbours.Add(&written);
    cable.maker = &maker;
    cable.owners.Add(&owner);
    cable.owners.Add(&maker);
    written.byName.Append(new StreamableZoString("first"), &cable);

    const std::string bytes = Saved(schema, &written);
    const auto in = CreateMemoryBinInStream(bytes.data(), bytes.size(), 3);
    TBinInStreamer reader(in.get(), &schema);
    const pointer<Span> read(dynamic_cast<Span*>(reader.ReadObjects()));
    ASSERT_NE(read.get(), nullptr);
    EXPECT_EQ(read->main->label, "main cable");
    EXPECT_EQ(read->main->certificate, cable.certificate);
    EXPECT_EQ(read->main->neighbours[1], read.get());
    EXPECT_EQ(read->byName.ValueAt(1), read->main);
    EXPECT_EQ(read->volume.Texto(TVolume::l, 3, false, ','), "1500 l");
    EXPECT_EQ(read->levels[1]->m(), -2.5);
    const pointer<StreamableZoString> openedMaker(read->main->maker.get());
    const pointer<ZoObjectStreamable> openedOwner(read->main->owners[1]);
    EXPECT_EQ(dynamic_cast<ZoInteger&>(*openedOwner).value, 42);
    EXPECT_EQ(Saved(schema, read.get()), bytes) << "all that there is";
}

TEST(StreamingTests, SharesTheNumbersOfTheLibrarysClasses) {
    TZoMetaData schema, byLibrary;
    TZoClass* registered = ZoDouble::Register(&schema); // here, not in the library
    const ZoDouble object(1);                           // whose virtual operations are the library's
    EXPECT_EQ(object.GetClass(), registered);
    EXPECT_EQ(object.GetOriginalClass(&schema), registered);
    ZoRegisterPrimitives(&byLibrary);
    EXPECT_EQ(object.GetClass(), byLibrary.FindClass("ZoDouble"));
    EXPECT_EQ(object.StreamableClassName(), "class ZoDouble");
    EXPECT_EQ(Span().StreamableClassName(), "class bridge::Span");
}

} // namespace bridge
