#pragma once

#include "ZoPrimitives/ZoRecords.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>
#include <variant>

namespace ZoTool {

struct Text {
    std::string_view windows1252;
};
struct Blob {
    std::string_view bytes;
};
struct Pointer {
    int uid; ///< 0: null
};

/// One value of an object: a field's, or an item's of a list. A float is the double of the same shortest
/// text.
using Scalar = std::variant<bool, long long, double, Text, Blob, Pointer>;

/// A value, or half a map: the scalars in it.
struct Scalars {
    explicit Scalars(const ZoPrimitives::TZoValue& value, int half = 1) : value(value), half(half) {}

    bool IsList() const; ///< otherwise it is one scalar
    int Count() const;
    Scalar operator[](int index) const; ///< from 1
    int Integers() const;               ///< those that stand with the list
    int Integer(int index) const { return value.Integer(index, half); }

    const ZoPrimitives::TZoValue& value;
    int half;
};
/// 2 for a map, 1 for all else.
int Halves(const ZoPrimitives::TZoValue& value);

// For people and programs. Pointers show the class that they reach, which the reader tells.

/// The fewest digits that give it back; "NaN", "Infinity", "-Infinity".
std::string NumberText(double value);
/// "#5 Girder", "null", "#5 (no such object)".
std::string PointerText(int uid, ZoPrimitives::TZoRecordReader& reader);
std::string ScalarText(const Scalar& scalar, ZoPrimitives::TZoRecordReader& reader);
/// On one line, whole.
std::string ValueText(const ZoPrimitives::TZoValue& value, ZoPrimitives::TZoRecordReader& reader);
/// On one line, at a glance: pointers as uids alone, lists as their lengths, long texts cut.
std::string Glance(const ZoPrimitives::TZoValue& value);
/// In the layout "zo objects", version 1: docs/zo.md.
nlohmann::ordered_json ValueJson(const ZoPrimitives::TZoValue& value, ZoPrimitives::TZoRecordReader& reader);
nlohmann::ordered_json RealJson(double value);
std::string Base64(std::string_view bytes);

} // namespace ZoTool
