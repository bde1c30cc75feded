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

    /// Reads a named section of a text, for readers that delegate sections. False when the factory does not
    /// know the section, as here.
    virtual bool ReadSection(InputStreamer* streamer, ZoString name);
    /// A new, empty object, owned by the caller; a text names its class as `StreamableClassName` does. Throws
    /// `XUnknownObject` for a class that the factory does not know.
    virtual ZoStreamableBase* CreateObject(ZoString className);

private:
    TZoMetaData* schema;
};

} // namespace ZoPrimitives
