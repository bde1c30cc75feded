#include "ZoPrimitives/TEnum.h"

namespace ZoPrimitives {

TEnum::TEnum() = default;
TEnum::TEnum(const TEnum&) = default;
TEnum& TEnum::operator=(const TEnum&) = default;
TEnum::~TEnum() = default;

} // namespace ZoPrimitives
