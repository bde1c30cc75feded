#include "ZoPrimitives/ZoPrimitives.h"

#include <gtest/gtest.h>

// An application, in a namespace of its own, that sees the shared library only.
namespace plant {

using namespace ZoPrimitives;

/// A quantity of the application's own.
class Level : public GComprimento {
    REGISTER_ZO_BEGIN(Level, GComprimento)
    DECLARE_ZO_FIELD(ZoString, datum)
    REGISTER_ZO_END
    explicit Level(double cm) : GComprimento(cm) {}
    explicit Level(StreamableInit init) : GComprimento(init) {}
};

class Tank : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Tank)
    DECLARE_ZO_FIELD_CHILD_VALUE(GVolume, volume)
    DECLARE_ZO_FIELD_CHILD_VALUE(GTemperatura, temperature)
    DECLARE_ZO_FIELD_CHILD(Level, bottom)
    REGISTER_ZO_END
};

TEST(Quantities, OfAnApplicationsObjects) {
    TZoMetaData schema;
    ZoRegisterGrandezas(&schema);
    Level::Register(&schema);
    Tank::Register(&schema);
    ZoString report;
    EXPECT_TRUE(schema.Check(&report)) << report.c_str();

    Tank tank;
    ASSERT_TRUE(tank.volume.LeTexto("1,5e3 l", ',', TVolume::m3));
    tank.temperature = GTemperatura(212, TTemperatura::f);
    tank.bottom = new Level(-250);
    tank.bottom->datum = "quay";
    TMemoryBinOutStream out(1, 1);
    out.Initialize();
    TBinOutStreamer writer(&out, &schema);
    writer.WriteObjectMetaData(&tank);
    writer.WriteObject(&tank);

    const auto in = CreateMemoryBinInStream(out.GetData(), out.GetSize(), 1);
    in->Initialize();
    const pointer<ZoStreamableBase> root(TBinInStreamer(in.get(), &schema).ReadObjects());
    const auto& read = dynamic_cast<Tank&>(*root);
    EXPECT_EQ(read.volume.Texto(TVolume::m3, 3, false, ','),
              ZoString("1,5 ") + GVolume::NomeDaUnidade(TVolume::m3));
    EXPECT_EQ(read.temperature, 101.25);
    EXPECT_EQ(read.bottom->m(), -2.5);
    EXPECT_EQ(read.bottom->datum, "quay");
    EXPECT_THROW(GComprimento::UnidadePorNome("km"), XZoAssert);
}

} // namespace plant
