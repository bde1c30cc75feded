#pragma once

#include "ZoPrimitives/ZoReadReport.h"
#include "ZoPrimitives/ZoString.h"

#include <map>
#include <utility>

namespace ZoPrimitives {

class ZoStreamableBase;

/// What the reading of a text could not use.
class TextLosses {
public:
    void AddUnknownClass(const ZoString& className);
    void AddUnknownCode(const ZoStreamableBase& object, int code);
    void AddLostReference(const ZoStreamableBase& object, int code);
    TZoReadReport Report() const;

private:
    using Codes = std::map<std::pair<ZoString, int>, unsigned long long>; // a class's: how often

    std::map<ZoString, unsigned long long> classes;
    Codes codes;
    Codes references;
};

} // namespace ZoPrimitives
