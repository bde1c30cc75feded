#pragma once

#include "ZoPrimitives/ZoString.h"

namespace ZoPrimitives {

struct TZoText;

/// A text for the user, of the library or of an application (`ZoAddTexts`), named by its literal
/// (Windows-1252), which is also the text in a language that has no other.
class ZO_API TTranslatedString {
public:
    explicit TTranslatedString(const char* literal);
    ~TTranslatedString();

    /// The text in the current language.
    ZoString ToZoString() const;

private:
    ZoString literal;
    const TZoText* row; // null if the literal is in no table
};

} // namespace ZoPrimitives
