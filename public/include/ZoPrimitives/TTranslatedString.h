#pragma once

#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

/// A user-visible text in the current language. The Portuguese literal (Windows-1252) is the key and the
/// default text; no other language is installed, so the text is the literal.
class ZO_API TTranslatedString {
public:
    explicit TTranslatedString(const char* literal);
    ~TTranslatedString();

    const ZoString& Text() const { return text; }
    ZoString ToZoString() const { return text; }

private:
    ZoString text;
};

} // namespace ZoPrimitives
