#pragma once

#include "ZoPrimitives/Export.h"
#include "ZoPrimitives/TZoPath.h"

#include <cstddef>

namespace ZoPrimitives {

/// Sets the language of the texts for users: "pt-BR", which it is at first, "en-US" or "es-MX"; the case of
/// the letters does not matter. It holds for the whole process; any thread may set it at any time. A text
/// that was made before stays as it is. Throws `XInvalidLanguage` for any other name.
ZO_API void ZoSetLanguage(const ZoString& name);

/// The name of the current language.
ZO_API const char* ZoLanguage() noexcept;

/// Sets the language that the file "Language.ini" in the application's folder names, as "en-US" alone on a
/// line or as "Language=en-US"; false, and nothing is changed, if there is no such file. Lines that begin
/// with ';', '#' or '[', and those with other keys, do not count. Throws `XInvalidLanguage` if the file names
/// no language or an unknown one, `XReadStream` if it cannot be read.
ZO_API bool ZoLoadLanguage();
/// The same from another file.
ZO_API bool ZoLoadLanguage(const TZoPath& file);

/// A text in every language, in Windows-1252.
struct TZoText {
    const char* key;                ///< the literal in the source
    const char* const languages[3]; ///< pt-BR, en-US, es-MX
};

/// Adds texts of an application, which `TTranslatedString` finds from then on. They are sorted by the bytes
/// of their keys, and stay where they are as long as the process runs; a key that was there before keeps its
/// text. Throws `std::bad_alloc` when memory is short.
ZO_API void ZoAddTexts(const TZoText* texts, std::size_t count);
template <std::size_t N>
void ZoAddTexts(const TZoText (&texts)[N]) {
    ZoAddTexts(texts, N);
}

} // namespace ZoPrimitives
