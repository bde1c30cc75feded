#include "ZoPrimitives/TTranslatedString.h"

#include "ZoPrimitives/TextTables.h"
#include "ZoPrimitives/UserText.h"

namespace ZoPrimitives {

TTranslatedString::TTranslatedString(const char* text) : literal(text), row(FindInTables(literal.c_str())) {}
TTranslatedString::~TTranslatedString() = default;

ZoString TTranslatedString::ToZoString() const {
    return row != nullptr ? ZoString(row->languages[static_cast<int>(CurrentLanguage())]) : literal;
}

} // namespace ZoPrimitives
