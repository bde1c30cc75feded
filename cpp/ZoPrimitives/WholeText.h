#pragma once

#include "ZoPrimitives/ZoString.h"

#include <initializer_list>
#include <new>
#include <string_view>

namespace ZoPrimitives {

// A `ZoString` for which memory is short is silently empty. These functions throw instead, for texts that
// must not be lost.

/// Sets `target` to `count` bytes. Throws `std::bad_alloc` when memory is short.
inline void AssignWhole(ZoString& target, const char* bytes, unsigned count) {
    target.Assign(bytes, count);
    if (count != 0 && bytes[0] != '\0' && target.c_str()[0] == '\0') throw std::bad_alloc();
}

/// Whether `copy` holds the text, not the empty string of a failed copy.
inline bool IsWhole(const ZoString& copy, const char* text) {
    return text == nullptr || text[0] == '\0' || copy.c_str()[0] != '\0';
}
inline void CheckWhole(const ZoString& copy, const char* text) {
    if (!IsWhole(copy, text)) throw std::bad_alloc();
}

/// Concatenates the parts. Throws `std::bad_alloc` when memory is short.
ZoString WholeText(std::initializer_list<std::string_view> parts);

inline ZoString WholeText(const ZoString& text) {
    ZoString copy;
    AssignWhole(copy, text.c_str(), text.length());
    return copy;
}

/// Appends a copy of the text. Throws `std::bad_alloc`, leaving the list unchanged, when memory is short.
template <class List>
void AddWhole(List& list, const ZoString& text) {
    list.Add(ZoString());
    list.Last() = text;
    if (IsWhole(list.Last(), text.c_str())) return;
    list.RemoveLast();
    throw std::bad_alloc();
}

} // namespace ZoPrimitives
