#pragma once

#include "ZoPrimitives/ZoString.h"

#include <initializer_list>
#include <new>
#include <string_view>

namespace ZoPrimitives {

// A `ZoString` that finds no memory is empty and says nothing. Where a text must not be lost, it is made
// here.

/// Fills `target` with `count` bytes. Throws `std::bad_alloc` when there is no memory for them.
inline void AssignWhole(ZoString& target, const char* bytes, unsigned count) {
    target.Assign(bytes, count);
    if (count != 0 && bytes[0] != '\0' && target.c_str()[0] == '\0') throw std::bad_alloc();
}

/// Whether a copy was made without loss.
inline bool IsWhole(const ZoString& copy, const char* text) {
    return text == nullptr || text[0] == '\0' || copy.c_str()[0] != '\0';
}
inline void CheckWhole(const ZoString& copy, const char* text) {
    if (!IsWhole(copy, text)) throw std::bad_alloc();
}

/// The parts one after the other. Throws `std::bad_alloc` when there is no memory for all of them.
ZoString WholeText(std::initializer_list<std::string_view> parts);

inline ZoString WholeText(const ZoString& text) {
    ZoString copy;
    AssignWhole(copy, text.c_str(), text.length());
    return copy;
}

/// Adds a copy of the text. Throws `std::bad_alloc` when there is no memory for it; the list is as before
/// then.
template <class List>
void AddWhole(List& list, const ZoString& text) {
    list.Add(ZoString());
    list.Last() = text;
    if (IsWhole(list.Last(), text.c_str())) return;
    list.RemoveLast();
    throw std::bad_alloc();
}

} // namespace ZoPrimitives
