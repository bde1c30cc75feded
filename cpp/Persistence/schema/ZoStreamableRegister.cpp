#include "ZoPrimitives/ZoStreamableRegister.h"

namespace ZoPrimitives {

ZoStreamableRegister::ZoStreamableRegister(const ZoString& className, RegisterFunction registerClass,
                                           ReadyFunction ready)
    : className(className), registerClass(registerClass), ready(ready) {}
ZoStreamableRegister::~ZoStreamableRegister() = default;

TZoClass* ZoStreamableRegister::Register(TZoMetaData* schema) const {
    return registerClass == nullptr ? nullptr : registerClass(schema);
}

} // namespace ZoPrimitives
