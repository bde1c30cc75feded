#include "ZoPrimitives/ZoStreamable.h"

#include "Persistence/instances/ClassNames.h"
#include "Persistence/instances/InstanceTables.h"
#include "Persistence/instances/KeptParts.h"
#include "Platform/Platform.h"
#include "ZoPrimitives/BinInStream.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/xContainer.h"

#include <string>
#include <string_view>

namespace ZoPrimitives {

namespace {

std::string Without(std::string_view text, std::string_view part) {
    std::string rest;
    for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part)) {
        rest += text.substr(0, at);
        text.remove_prefix(at + part.size());
    }
    return rest += text;
}

} // namespace

ZoString ClassText(const std::type_info& type) {
    return WholeText({"class ", Without(Platform::TypeName(type), "ZoPrimitives::")});
}

ZoString PlainClassName(const ZoString& classText) {
    return WholeText({Without(Without(classText.c_str(), "ZoPrimitives::"), "class ")});
}

ZoStreamableBase::ZoStreamableBase() : handleRun(0), madeFor(0), kept(0) {}
ZoStreamableBase::ZoStreamableBase(const ZoStreamableBase& other)
    : ZoObject(other), handleRun(0), madeFor(other.madeFor), kept(0) {}
ZoStreamableBase::ZoStreamableBase(StreamableInit) : handleRun(0), madeFor(0), kept(0) {}
ZoStreamableBase& ZoStreamableBase::operator=(const ZoStreamableBase&) { return *this; }
ZoStreamableBase::~ZoStreamableBase() {
    if (kept != 0) KeptParts::End(*this);
}

void ZoStreamableBase::WillWrite() {}

bool ZoStreamableBase::GetIsValid() const { return true; }
TZoClass* ZoStreamableBase::GetClass() const { return nullptr; }
TZoClass* ZoStreamableBase::GetOriginalClass(TZoMetaData*) const { return nullptr; }
bool ZoStreamableBase::OnRead(TBinInStream*, bool) { return true; }
bool ZoStreamableBase::CanBeConvertedToBaseClass() const { return true; }
void ZoStreamableBase::OnReadPointer(TZoClassField*, ZoStreamableBase*, unsigned) {}
void ZoStreamableBase::HandleExcludedField(TZoClassField*, TBinInStream*) {}

void ZoStreamableBase::CheckForExcludedFields(TBinInStream* stream) {
    while (TZoClassField* field = stream->GetFirstExcludedField()) {
        HandleExcludedField(field, stream);
        stream->RemoveExcludedField(field);
        InstanceTables& tables = InstanceTables::Of(*stream);
        if (tables.excluded.WasTaken(field)) tables.takenFields.insert(field);
    }
}

ZoString ZoStreamableBase::ToString() const { return StreamableClassName(); }

ZoObjectStreamable::ZoObjectStreamable() = default;
ZoObjectStreamable::ZoObjectStreamable(const ZoObjectStreamable& other) = default;
ZoObjectStreamable::ZoObjectStreamable(StreamableInit init) : ZoStreamableBase(init) {}
ZoObjectStreamable& ZoObjectStreamable::operator=(const ZoObjectStreamable& other) = default;
ZoObjectStreamable::~ZoObjectStreamable() = default;

ZoObject* ZoObjectStreamable::CreateBusinessObject() { return nullptr; }
void ZoObjectStreamable::FillBusinessObject(ZoObject*, TStreamableToBusinessObjectConvertionHelper*) {}
void ZoObjectStreamable::FillFromBusinessObject(ZoObject*, TBusinessToStreamableObjectConvertionHelper*) {}

ZoStreamableBaseFunctor::~ZoStreamableBaseFunctor() = default;

} // namespace ZoPrimitives
