#include "ZoPrimitives/ZoStreamablePrimitives.h"

namespace ZoPrimitives {

ZoBoolean::ZoBoolean() = default;
ZoBoolean::ZoBoolean(bool initial) : value(initial) {}
ZoBoolean::ZoBoolean(StreamableInit init) : ZoObjectStreamable(init) {}
ZoBoolean::ZoBoolean(const ZoBoolean&) = default;
ZoBoolean& ZoBoolean::operator=(const ZoBoolean&) = default;
ZoBoolean::~ZoBoolean() = default;
ZoString ZoBoolean::ToString() const { return ZoString(value ? "true" : "false"); }

ZoInteger::ZoInteger(int initial) : value(initial) {}
ZoInteger::ZoInteger(StreamableInit init) : ZoObjectStreamable(init) {}
ZoInteger::ZoInteger(const ZoInteger&) = default;
ZoInteger& ZoInteger::operator=(const ZoInteger&) = default;
ZoInteger::~ZoInteger() = default;
ZoString ZoInteger::ToString() const { return ZoString(value); }

ZoUnsigned::ZoUnsigned(unsigned initial) : value(initial) {}
ZoUnsigned::ZoUnsigned(StreamableInit init) : ZoObjectStreamable(init) {}
ZoUnsigned::ZoUnsigned(const ZoUnsigned&) = default;
ZoUnsigned& ZoUnsigned::operator=(const ZoUnsigned&) = default;
ZoUnsigned::~ZoUnsigned() = default;
ZoString ZoUnsigned::ToString() const { return ZoString(value); }

ZoFloat::ZoFloat(float initial) : value(initial) {}
ZoFloat::ZoFloat(StreamableInit init) : ZoObjectStreamable(init) {}
ZoFloat::ZoFloat(const ZoFloat&) = default;
ZoFloat& ZoFloat::operator=(const ZoFloat&) = default;
ZoFloat::~ZoFloat() = default;
ZoString ZoFloat::ToString() const { return ZoString(static_cast<double>(value)); }

ZoDouble::ZoDouble(double initial) : value(initial) {}
ZoDouble::ZoDouble(StreamableInit init) : ZoObjectStreamable(init) {}
ZoDouble::ZoDouble(const ZoDouble&) = default;
ZoDouble& ZoDouble::operator=(const ZoDouble&) = default;
ZoDouble::~ZoDouble() = default;
ZoString ZoDouble::ToString() const { return ZoString(value); }

StreamableZoString::StreamableZoString(const ZoString& initial) : value(initial) {}
StreamableZoString::StreamableZoString(StreamableInit init) : ZoObjectStreamable(init) {}
StreamableZoString::StreamableZoString(const StreamableZoString&) = default;
StreamableZoString& StreamableZoString::operator=(const StreamableZoString&) = default;
StreamableZoString::~StreamableZoString() = default;
ZoString StreamableZoString::ToString() const { return ZoString(value); }

StreamableList::StreamableList() = default;
StreamableList::StreamableList(StreamableInit init) : ZoObjectStreamable(init) {}
StreamableList::StreamableList(const StreamableList&) = default;
StreamableList& StreamableList::operator=(const StreamableList&) = default;
StreamableList::~StreamableList() = default;
ZoStreamableBase* StreamableList::Create(TZoMetaData* fileSchema, TZoMetaData* schema, TZoClass* cls) {
    return ZoCreateInstance<StreamableList>(fileSchema, schema, cls);
}

void ZoRegisterPrimitives(TZoMetaData* schema) {
    ZoBoolean::Register(schema);
    ZoInteger::Register(schema);
    ZoUnsigned::Register(schema);
    ZoFloat::Register(schema);
    ZoDouble::Register(schema);
    StreamableZoString::Register(schema);
    StreamableList::Register(schema);
}

} // namespace ZoPrimitives
