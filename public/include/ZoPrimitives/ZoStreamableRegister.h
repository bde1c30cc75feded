#pragma once

#include "ZoPrimitives/ZoObject.h"
#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

class TZoClass;
class TZoMetaData;

/// How to register a class. A schema keeps it until the class's prerequisites are registered
/// (`TZoMetaData::ClassesRegister`).
class ZO_API ZoStreamableRegister : public ZoObject {
public:
    /// A class's static `Register`.
    using RegisterFunction = TZoClass* (*)(TZoMetaData* schema);
    /// Whether the class can be registered now: usually, whether its parents are.
    using ReadyFunction = bool (*)(TZoMetaData* schema);

    /// `className` is the name that `registerClass` registers. Without `ready` the class can be registered at
    /// any time.
    ZoStreamableRegister(const ZoString& className, RegisterFunction registerClass, ReadyFunction ready);
    ~ZoStreamableRegister() override;

    const ZoString& GetName() const { return className; }
    bool ReadyToRegister(TZoMetaData* schema) const { return ready == nullptr || ready(schema); }
    /// Registers the class, ready or not, and returns it.
    TZoClass* Register(TZoMetaData* schema) const;

private:
    ZoString className;
    RegisterFunction registerClass;
    ReadyFunction ready;
};

} // namespace ZoPrimitives
