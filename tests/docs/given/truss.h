struct Example {
    TZoMetaData schema;
    pointer<Truss> truss = new Truss;
    Example() {
        ZoSetLanguage("en-US");
        Joint::Register(&schema);
        Bar::Register(&schema);
        Truss::Register(&schema);
        AddBar(*truss, "B1", AddJoint(*truss, 0, 0), AddJoint(*truss, 600, 0));
    }
};
static Example example;
static TZoMetaData& schema = example.schema;
static const pointer<Truss>& truss = example.truss;
