#include "Persistence/text/TextLosses.h"

#include "Persistence/instances/ClassNames.h"
#include "ZoPrimitives/ZoStreamable.h"

namespace ZoPrimitives {

namespace {

std::pair<ZoString, int> CodeOf(const ZoStreamableBase& object, int code) {
    return {PlainClassName(object.StreamableClassName()), code};
}

ZoString NameOf(int code) { return ZoString::FormatString("%d", code); }

} // namespace

void TextLosses::AddUnknownClass(const ZoString& className) { ++classes[PlainClassName(className)]; }

void TextLosses::AddUnknownCode(const ZoStreamableBase& object, int code) { ++codes[CodeOf(object, code)]; }

void TextLosses::AddLostReference(const ZoStreamableBase& object, int code) {
    ++references[CodeOf(object, code)];
}

TZoReadReport TextLosses::Report() const {
    TZoReadReport report;
    for (const auto& [name, count] : classes) report.lostClasses.Add({name, false, "", 0, count});
    for (const auto& [at, count] : codes)
        report.fields.Add({at.first, NameOf(at.second), TFieldFault::NotInClass, 0, 0});
    for (const auto& [at, count] : references)
        report.references.Add({at.first, NameOf(at.second), TReferenceLoss::Missing, count});
    return report;
}

} // namespace ZoPrimitives
