#pragma once

#include "ZoPrimitives/ZoClassField.h"
#include "ZoPrimitives/dvector.h"

#include <type_traits>

namespace ZoPrimitives {

/// The lists of a class's fields, in the order in which a record holds them.
enum class FieldPlace { Maps, Values, Children, ChildLists, References, ReferenceLists };

/// Whose a field's objects are.
enum class FieldHold {
    Nothing,  ///< there are none
    Owned,    ///< its own
    Member,   ///< members of the object that has the field
    Other,    ///< another object's in the graph
    External, ///< anybody's, written after the graph
};

// The kinds of field, one row each: kind, C++ class of the field, its list, what its objects are to it, the
// kind whose encoding it shares, and the C++ type of a member that holds the value (void: reached through
// accessors). Every switch over kinds is made of these rows: an enumerator without one does not compile.
// FieldCodec.h reads and writes a field by its C++ class.
// clang-format off
#define ZO_FIELD_KINDS(row) \
    row(Int,              TZoClassFieldInt,         Values,         Nothing,  Int,              int) \
    row(Float,            TZoClassFieldFloat,       Values,         Nothing,  Float,            float) \
    row(Double,           TZoClassFieldDouble,      Values,         Nothing,  Double,           double) \
    row(String,           TZoClassFieldString,      Values,         Nothing,  String,           ZoString) \
    row(Blob,             TZoClassFieldBlob,        Values,         Nothing,  Blob,             ZoBlob) \
    row(ChildPointer,     TZoClassFieldPointer,     Children,       Owned,    ChildPointer,     void) \
    row(ChildPointerList, TZoClassFieldPointerList, ChildLists,     Owned,    ChildPointerList, void) \
    row(Pointer,          TZoClassFieldPointer,     References,     Other,    Pointer,          void) \
    row(PointerList,      TZoClassFieldPointerList, ReferenceLists, Other,    PointerList,      void) \
    row(Bool,             TZoClassFieldBool,        Values,         Nothing,  Bool,             bool) \
    row(ListInt,          TZoClassFieldListInt,     Values,         Nothing,  ListInt,          TDVector<int>) \
    row(ListFloat,        TZoClassFieldListFloat,   Values,         Nothing,  ListFloat,        TDVector<float>) \
    row(ListDouble,       TZoClassFieldListDouble,  Values,         Nothing,  ListDouble,       TDVector<double>) \
    row(ListString,       TZoClassFieldListString,  Values,         Nothing,  ListString,       TDVector<ZoString>) \
    row(PointerEx,        TZoClassFieldPointer,     References,     External, Pointer,          void) \
    row(PointerListEx,    TZoClassFieldPointerList, ReferenceLists, External, PointerList,      void) \
    row(Unsigned,         TZoClassFieldUnsigned,    Values,         Nothing,  Unsigned,         unsigned) \
    row(ChildValue,       TZoClassFieldPointer,     Children,       Member,   ChildPointer,     void) \
    row(ChildPointerMap,  TZoClassFieldPointerMap,  Maps,           Owned,    ChildPointerMap,  void)
// clang-format on

/// The fewest bytes that a value takes in a record: of strings and blobs the length, of lists the count.
template <class T>
inline constexpr unsigned STORED_SIZE = std::is_class_v<T> ? 4 : static_cast<unsigned>(sizeof(T));
/// A uid or the count of a list; of a map one for each half.
template <>
inline constexpr unsigned STORED_SIZE<void> = 4;

/// What a kind of field is to the streamers.
struct FieldKind {
    FieldPlace list;
    FieldHold holds;
    TZoClassFieldType encoding; ///< the same for kinds that stand alike in a record
    unsigned smallest;          ///< the fewest bytes that a value takes in a record
};

/// A number that is no kind counts as a value of no bytes.
constexpr FieldKind FieldKindOf(TZoClassFieldType kind) {
    switch (kind) {
#define ZO_ROW(Kind, Class, Place, Hold, Encoding, Member)                                                   \
    case ft##Kind:                                                                                           \
        return {FieldPlace::Place, FieldHold::Hold, ft##Encoding,                                            \
                STORED_SIZE<Member> * (FieldPlace::Place == FieldPlace::Maps ? 2 : 1)};
        ZO_FIELD_KINDS(ZO_ROW)
#undef ZO_ROW
    }
    return {FieldPlace::Values, FieldHold::Nothing, kind, 0};
}

/// The size of a member whose bytes are the same in record and object; 0 for others. A bool is among those: a
/// stranger's byte may be 2.
template <class T>
inline constexpr unsigned char FLAT_SIZE =
    std::is_arithmetic_v<T> && !std::is_same_v<T, bool> ? sizeof(T) : 0;
template <>
inline constexpr unsigned char FLAT_SIZE<void> = 0;
constexpr unsigned char FlatSizeOf(TZoClassFieldType kind) {
    switch (kind) {
#define ZO_ROW(Kind, Class, Place, Hold, Encoding, Member)                                                   \
    case ft##Kind:                                                                                           \
        return FLAT_SIZE<Member>;
        ZO_FIELD_KINDS(ZO_ROW)
#undef ZO_ROW
    }
    return 0;
}

/// Whether fields of the kind are of that C++ class.
template <class Field>
constexpr bool IsKindOf(TZoClassFieldType kind) {
    switch (kind) {
#define ZO_ROW(Kind, Class, Place, Hold, Encoding, Member)                                                   \
    case ft##Kind:                                                                                           \
        return std::is_same_v<Field, Class>;
        ZO_FIELD_KINDS(ZO_ROW)
#undef ZO_ROW
    }
    return false;
}

/// The one kind of a C++ class; a class of several kinds does not compile.
template <class Field>
consteval TZoClassFieldType KindOf() {
    TZoClassFieldType kind{};
    int rows = 0;
#define ZO_ROW(Kind, Class, Place, Hold, Encoding, Member)                                                   \
    if (std::is_same_v<Field, Class>) kind = ft##Kind, ++rows;
    ZO_FIELD_KINDS(ZO_ROW)
#undef ZO_ROW
    if (rows != 1) throw "a field's class has one row in ZO_FIELD_KINDS";
    return kind;
}

/// Whether the field's objects get their records with the object.
constexpr bool HoldsChildren(TZoClassFieldType kind) {
    const FieldHold holds = FieldKindOf(kind).holds;
    return holds == FieldHold::Owned || holds == FieldHold::Member;
}

} // namespace ZoPrimitives
