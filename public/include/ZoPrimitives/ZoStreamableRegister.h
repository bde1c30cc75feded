#pragma once

#include "ZoPrimitives/ZoObject.h"
#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

class TZoClass;
class TZoMetaData;

/// How a class registers, kept by a schema until what the class stands on is registered
/// (`TZoMetaData::ClassesRegister`).
class ZO_API ZoStreamableRegister : public ZoObject {
public:
    /// A class's static `Register`.
    using RegisterFunction = TZoClass* (*)(TZoMetaData* schema);
    /// Whether the class can register now: as a rule, whether its parents are there.
    using ReadyFunction = bool (*)(TZoMetaData* schema);

    /// `className`: under which `registerClass` registers. Without `ready` the class can register at any
    /// time.
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
