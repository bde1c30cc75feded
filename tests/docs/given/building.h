static const char path[] = "plan.zo";

// Somebody else has the file open.
inline void OpenBuilding(const char* name) {
    TFileBinInStream other(name);
    other.Initialize();
    TZoMetaData schema;
    ZoOpen<ZoStreamableBase>(name, &schema);
}
