#pragma once

#include "ZoPrimitives/ZoStreamable.h"

namespace ZoPrimitives {

/// Makes the objects of a text stream for its reader (`InputStreamer::AddFactory`).
class ZO_API StreamableFactory : public ZoStreamableBase {
public:
    /// Knows no class.
    StreamableFactory();
    explicit StreamableFactory(StreamableInit init);
    /// Knows the classes that are registered in a schema, which is not owned.
    explicit StreamableFactory(TZoMetaData* schema);
    StreamableFactory(const StreamableFactory& other);
    StreamableFactory& operator=(const StreamableFactory& other);
    ~StreamableFactory() override;

    ZoString StreamableClassName() const override;

    /// Reads a section of a text, for readers that hand sections over by name; false when the factory does
    /// not know it. False here.
    virtual bool ReadSection(InputStreamer* streamer, ZoString name);
    /// A new, empty object of the class that a text names as `StreamableClassName` does; it is the caller's.
    /// Throws `XUnknownObject` for a class that the factory does not know.
    virtual ZoStreamableBase* CreateObject(ZoString className);

private:
    TZoMetaData* schema;
};

} // namespace ZoPrimitives
