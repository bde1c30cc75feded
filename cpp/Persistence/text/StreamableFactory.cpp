#include "ZoPrimitives/StreamableFactory.h"

#include "Persistence/instances/ClassNames.h"
#include "ZoPrimitives/ZoMetaData.h"
#include "ZoPrimitives/ZoRegister.h"
#include "ZoPrimitives/xContainer.h"

#include <typeinfo>

namespace ZoPrimitives {

StreamableFactory::StreamableFactory() : schema(nullptr) {}
StreamableFactory::StreamableFactory(StreamableInit init) : ZoStreamableBase(init), schema(nullptr) {}
StreamableFactory::StreamableFactory(TZoMetaData* classes) : schema(classes) {}
StreamableFactory::StreamableFactory(const StreamableFactory& other) = default;
StreamableFactory& StreamableFactory::operator=(const StreamableFactory& other) = default;
StreamableFactory::~StreamableFactory() = default;

ZoString StreamableFactory::StreamableClassName() const { return ClassText(typeid(*this)); }

bool StreamableFactory::ReadSection(InputStreamer*, ZoString) { return false; }

ZoStreamableBase* StreamableFactory::CreateObject(ZoString className) {
    if (schema == nullptr) throw XUnknownObject();
    const ZoString name = PlainClassName(className);
    TZoClass* known = schema->FindClass(name);
    if (known == nullptr) known = schema->FindClass(ZoRegisteredName(name.c_str()));
    if (known == nullptr) known = schema->FindFormerClass(name);
    ZoStreamableBase* object = known == nullptr ? nullptr : known->CreateInstance(schema, schema);
    if (object == nullptr) throw XUnknownObject();
    return object;
}

} // namespace ZoPrimitives
