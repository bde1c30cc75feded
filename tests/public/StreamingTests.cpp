#include "ZoPrimitives/BinInStreamer.h"
#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/MemoryBinInStream.h"
#include "ZoPrimitives/MemoryBinOutStream.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoRegister.h"
#include "ZoPrimitives/ZoStreamablePrimitives.h"

#include <gtest/gtest.h>

#include <string>

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
class Priced : public virtual ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Priced)
    DECLARE_ZO_FIELD(double, price)
    REGISTER_ZO_END
};

class Span;

class Cable : public Part, public Coated, public Priced {
    REGISTER_ZO_BEGIN(Cable, bridge::Part, Coated, Priced)
    DECLARE_ZO_FIELD(float, diameter)
    DECLARE_ZO_FIELD(bool, stranded)
    DECLARE_ZO_FIELD(ZoBlob, certificate)
    DECLARE_ZO_FIELD(int, strands)
    DECLARE_ZO_FIELD_LIST(int, batches)
    DECLARE_ZO_FIELD_LIST(float, forces)
    DECLARE_ZO_FIELD_LIST(double, lengths)
    DECLARE_ZO_FIELD_LIST(ZoString, remarks)
    DECLARE_ZO_FIELD_REFERENCE(Span, span) // declared later
    DECLARE_ZO_FIELD_REFERENCE_LIST(Span, neighbours)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(StreamableZoString, maker)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE_LIST(ZoObjectStreamable, owners)
    REGISTER_ZO_END
    Cable() = default;
    explicit Cable(StreamableInit) {}
    double Weight() const override { return static_cast<double>(diameter) * strands; }
};

class Span : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Span)
    DECLARE_ZO_FIELD_CHILD(Cable, main)
    DECLARE_ZO_FIELD_CHILD_LIST(Part, parts)
    DECLARE_ZO_FIELD_CHILD_MAP(StreamableZoString, Cable, byName)
    DECLARE_ZO_FIELD_CHILD_VALUE(ZoDouble, length) // without default constructor
    REGISTER_ZO_END
};

class Unregistered : public Span {};

void RegisterAll(TZoMetaData& schema) {
    ZoRegisterPrimitives(&schema);
    Part::Register(&schema);
    Coated::Register(&schema);
    Priced::Register(&schema);
    Cable::Register(&schema);
    Span::Register(&schema);
}

std::string BytesOf(TMemoryBinOutStream& stream) {
    return {reinterpret_cast<const char*>(stream.GetData()), static_cast<std::size_t>(stream.GetSize())};
}

void Write(TMemoryBinOutStream& stream, TZoMetaData& schema, ZoStreamableBase* root) {
    stream.Initialize();
    TBinOutStreamer streamer(&stream, &schema);
    streamer.WriteObjectMetaData(root);
    streamer.WriteObject(root);
}

} // namespace bridge

using namespace bridge;

TEST(StreamingTests, SavesAndOpensEveryKindUnderThreeParents) {
    TZoMetaData schema;
    RegisterAll(schema);
    ZoString report;
    EXPECT_TRUE(schema.Check(&report)) << report.c_str();

    StreamableZoString maker("maker");
    ZoInteger owner(42);
    Span written;
    written.length = ZoDouble(12.5);
    written.main = new Cable;
    Cable& cable = *written.main;
    cable.label = "main cable";
    cable.colour = 0xFF00FFU;
    cable.price = 9.75;
    cable.diameter = 0.5F;
    cable.stranded = true;
    cable.certificate = ZoBlob("\0\1\2", 3);
    cable.strands = -7;
    cable.batches.Add(3);
    cable.forces.Add(1.5F);
    cable.lengths.Add(2.25);
    cable.remarks.Add("checked");
    cable.span = &written;
    cable.neighbours.Add(&written);
    cable.maker = &maker;
    cable.owners.Add(&owner);
    cable.owners.Add(&maker);
    written.parts.Add(written.main.get());
    written.byName.Append(new StreamableZoString("first"), written.main.get());

    TMemoryBinOutStream out(3, 2026);
    Write(out, schema, &written);
    const auto in = CreateMemoryBinInStream(out.GetData(), out.GetSize(), 3);
    TBinInStreamer reader(in.get(), &schema);
    const pointer<Span> read(dynamic_cast<Span*>(reader.ReadObjects()));
    ASSERT_NE(read.get(), nullptr);
    const Cable& opened = *read->main;
    EXPECT_EQ(opened.label, "main cable");
    EXPECT_EQ(opened.certificate, cable.certificate);
    EXPECT_TRUE(opened.remarks == cable.remarks);
    EXPECT_EQ(opened.neighbours[1], read.get());
    EXPECT_EQ(read->byName.ValueAt(1), read->main);
    const pointer<StreamableZoString> openedMaker(opened.maker.get());
    const pointer<ZoObjectStreamable> openedOwner(opened.owners[1]);
    EXPECT_EQ(dynamic_cast<ZoInteger&>(*openedOwner).value, 42);
    TMemoryBinOutStream again(3, 2026);
    Write(again, schema, read.get());
    EXPECT_EQ(BytesOf(again), BytesOf(out)) << "all that there is";
}

TEST(StreamingTests, SharesTheNumbersOfTheLibrarysClasses) {
    TZoMetaData schema;
    TZoClass* registered = ZoDouble::Register(&schema); // here, not in the library
    const ZoDouble object(1);                           // whose virtual operations are the library's
    EXPECT_EQ(object.GetClass(), registered);
    EXPECT_EQ(object.GetOriginalClass(&schema), registered);
    TZoMetaData byLibrary;
    ZoRegisterPrimitives(&byLibrary);
    EXPECT_EQ(object.GetClass(), byLibrary.FindClass("ZoDouble"));
    EXPECT_EQ(std::string(object.StreamableClassName().c_str()), "class ZoDouble");
    EXPECT_EQ(std::string(Span().StreamableClassName().c_str()), "class bridge::Span");
}

TEST(StreamingTests, CatchesWhatTheLibraryThrows) {
    TZoMetaData schema;
    RegisterAll(schema);
    TMemoryBinOutStream out;

    Unregistered forgotten;
    EXPECT_THROW(Write(out, schema, &forgotten), XZoAssert);

    Span span;
    Span outside;
    span.main = new Cable;
    span.main->span = &outside;
    const auto thrown = [](const auto& operation) -> std::string {
        try {
            operation();
        } catch (const XStream& failure) {
            return (failure.Message() + " @ " + failure.Location()).c_str();
        }
        return "nothing";
    };
    EXPECT_NE(thrown([&] { Write(out, schema, &span); }).find("@ TZoClassFieldPointer::SavePointer"),
              std::string::npos);
    span.main->span = &span;
    Write(out, schema, &span);
    EXPECT_THROW(CreateMemoryBinInStream(out.GetData(), 20, 0), XReadStream);
    const auto in = CreateMemoryBinInStream(out.GetData(), 28, 0);
    EXPECT_EQ(thrown([&] { TBinInStreamer(in.get(), &schema).ReadObjects(); }).substr(0, 19),
              "Metadado corrompido");
}
