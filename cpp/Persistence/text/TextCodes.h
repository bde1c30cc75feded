#pragma once

namespace ZoPrimitives::TextCodes {

// Group codes.
inline constexpr int OBJECT = 0;    ///< an object begins, with its class's name, or its data end; alone: null
inline constexpr int HANDLE = 3;    ///< the object's own handle
inline constexpr int REFERENCE = 5; ///< the handle of an object written before
inline constexpr int END = 7;       ///< an object's data end

/// What closes sections, tables and groups.
inline constexpr const char* TERMINATORS[] = {
    "ENDSEC", "ENDTAB", "ENDGROUP", "ENDGROUPELEMENTOS", "ENDGROUPELEMENTOPARARA", "ENDRAINDIV"};
/// The last one closes something only where a pointer is expected.
inline constexpr unsigned TERMINATORS_OF_OBJECTS = 5;
inline constexpr unsigned TERMINATORS_OF_POINTERS = 6;

inline constexpr const char* TOO_DEEP = "Objetos aninhados demais";

} // namespace ZoPrimitives::TextCodes
