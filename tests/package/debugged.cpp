// What gdb_tests.py looks at.
#include "ZoPrimitives/ZoPrimitives.h"

using namespace ZoPrimitives;

namespace {

class Storey : public ZoStreamableBase {
    REGISTER_ZO_BEGIN(Storey)
    DECLARE_ZO_FIELD(ZoString, name)
    DECLARE_ZO_FIELD(double, area)
    REGISTER_ZO_END
};

class House : public Storey {
    REGISTER_ZO_BEGIN(House, Storey)
    DECLARE_ZO_FIELD_CHILD_LIST(Storey, storeys)
    DECLARE_ZO_FIELD_REFERENCE(Storey, highest)
    REGISTER_ZO_END
};

void Look(const ZoStreamableBase&) {}

} // namespace

int main() {
    TZoMetaData schema;
    Storey::Register(&schema);
    TZoClass* houseClass = House::Register(&schema);
    const TZoClassField* field = houseClass->FindField("storeys");

    pointer<House> house = new House;
    house->name = "Casa do Jo\xE3o";
    house->storeys.Add(new Storey);
    house->highest = house->storeys[1].get();
    house->storeys[1]->name = "T\xE9rreo";
    house->storeys[1]->area = 12.5;

    const Storey& storey = *house;
    ZoString text("a \"quoted\" text");
    ZoBlob blob("zo", 2);
    pointer<Storey> none;
    crossRef<Storey> reference(house.get());
    TDVector<int> numbers;
    numbers.Add(17);
    numbers.Add(4);
    TIMap<ZoString, ZoInteger> map;
    map.Add("one", new ZoInteger(1));
    GComprimento length(2, TComprimento::m);
    GForcaArea load(3, TForcaArea::kgf_cm2);
    Point2D point(1, 2.5);
    Point3D point3(1, 2, 3);
    TVector3D vector(0, 0, -1);
    LDPoint plain(3, 4);
    const TTimestamp start = TTimestamp::FromTicks(14'182'940'455'000'000 - 1);
    const TTimestamp before = TTimestamp::FromTicks(-10'000'000);
    TZoColor colour(1, 2, 3, 255);
    TTranslatedString message("Arquivo corrompido");

    Look(storey);
    return field == nullptr || numbers[1] != 17 || text.IsNull() || blob.Size() == 0 || none || !reference ||
           map.NItems() != 1 || length == load || point.X() == point3.X() + vector.X() + plain.x ||
           start == before || colour.IsBlack() || message.ToZoString().IsNull();
}
