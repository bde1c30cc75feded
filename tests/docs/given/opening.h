struct Sketch {
    TZoMetaData schema;
    Sketch() {
        Room::Register(&schema);
        House::Register(&schema);
        const pointer<House> house = new House;
        house->rooms.Add(new Room);
        ZoSave("house.zo", house.get(), &schema, {1, 2026});
    }
};
static Sketch sketch;
static TZoMetaData& schema = sketch.schema;
static TZoOpened<House> opened;
