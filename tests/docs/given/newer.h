namespace newer {
class House : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(House)
    DECLARE_ZO_FIELD(int, storeys)
    DECLARE_ZO_FIELD(ZoString, colour)
    REGISTER_ZO_END
};
} // namespace newer

class House : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(House)
    DECLARE_ZO_FIELD(int, storeys)
    REGISTER_ZO_END
};

struct Before {
    TZoMetaData schema;
    Before() {
        TZoMetaData itsSchema;
        newer::House::Register(&itsSchema);
        newer::House house;
        house.colour = "red";
        ZoSave("house.zo", &house, &itsSchema, {2});
        House::Register(&schema);
    }
};
static Before before;
static TZoMetaData& schema = before.schema;
