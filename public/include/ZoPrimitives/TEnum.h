#pragma once

#include "ZoPrimitives/Export.h"

namespace ZoPrimitives {

/// Base of the small classes that wrap an enumeration.
class ZO_API TEnum {
public:
    TEnum();
    TEnum(const TEnum&);
    TEnum& operator=(const TEnum&);
    virtual ~TEnum();
};

} // namespace ZoPrimitives
