#include "ZoPrimitives/TTranslatedString.h"

namespace ZoPrimitives {

TTranslatedString::TTranslatedString(const char* literal) : text(literal) {}
TTranslatedString::~TTranslatedString() = default;

} // namespace ZoPrimitives
