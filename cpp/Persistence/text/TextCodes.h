#pragma once

#include "ZoPrimitives/UserText.h"

namespace ZoPrimitives::TextCodes {

// Group codes.
inline constexpr int OBJECT = 0;    ///< begins an object or ends its data; alone, a null pointer
inline constexpr int HANDLE = 3;    ///< the object's own handle
inline constexpr int REFERENCE = 5; ///< the handle of an object already written
inline constexpr int END = 7;       ///< the end of an object's data

/// Tokens that close sections, tables and groups.
inline constexpr const char* TERMINATORS[] = {
    "ENDSEC", "ENDTAB", "ENDGROUP", "ENDGROUPELEMENTOS", "ENDGROUPELEMENTOPARARA", "ENDRAINDIV"};
/// The last one closes something only where a pointer is expected.
inline constexpr unsigned TERMINATORS_OF_OBJECTS = 5;
inline constexpr unsigned TERMINATORS_OF_POINTERS = 6;

inline constexpr UserText TOO_DEEP = UserText("Objetos aninhados demais");

} // namespace ZoPrimitives::TextCodes
