#pragma once

#include "ZoPrimitives/ZoRegister.h"
#include "support/Streaming.h"

// An application's classes that hold a field of every kind.
namespace app {

using ZoPrimitives::TZoMetaData;
using ZoPrimitives::ZoBlob;
using ZoPrimitives::ZoString;

class Leaf : public ZoPrimitives::ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Leaf)
    DECLARE_ZO_FIELD(int, number)
    REGISTER_ZO_END
    Leaf() = default;
    explicit Leaf(StreamableInit) {}
    explicit Leaf(int n) : number(n) {}

private:
    Alive alive;
};

class EveryKind : public ZoPrimitives::ZoObjectStreamable {
    REGISTER_ZO_BEGIN(EveryKind)
    DECLARE_ZO_FIELD(int, anInt)
    DECLARE_ZO_FIELD(float, aFloat)
    DECLARE_ZO_FIELD(double, aDouble)
    DECLARE_ZO_FIELD(ZoString, aString)
    DECLARE_ZO_FIELD(ZoBlob, aBlob)
    DECLARE_ZO_FIELD_CHILD(Leaf, child)
    DECLARE_ZO_FIELD_CHILD_LIST(Leaf, children)
    DECLARE_ZO_FIELD_REFERENCE(Leaf, reference)
    DECLARE_ZO_FIELD_REFERENCE_LIST(Leaf, references)
    DECLARE_ZO_FIELD(bool, aBool)
    DECLARE_ZO_FIELD_LIST(int, ints)
    DECLARE_ZO_FIELD_LIST(float, floats)
    DECLARE_ZO_FIELD_LIST(double, doubles)
    DECLARE_ZO_FIELD_LIST(ZoString, strings)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE(Leaf, external)
    DECLARE_ZO_FIELD_EXTERNAL_REFERENCE_LIST(Leaf, externals)
    DECLARE_ZO_FIELD(unsigned, anUnsigned)
    DECLARE_ZO_FIELD_CHILD_VALUE(Leaf, member)
    DECLARE_ZO_FIELD_CHILD_MAP(Leaf, Leaf, map)
    REGISTER_ZO_END
    EveryKind() = default;
    explicit EveryKind(StreamableInit) {}

    /// Values everywhere; the external leaf is the caller's.
    void Fill(Leaf& outside) {
        anInt = -2;
        aFloat = 1.5F;
        aDouble = -0.25;
        aString = "text";
        aBlob = ZoBlob("\1\2", 2);
        aBool = true;
        anUnsigned = 4'000'000'000U;
        for (const int i : {7, -8}) ints.Add(i);
        floats.Add(2.5F);
        doubles.Add(3.25);
        for (const char* text : {"a", ""}) strings.Add(text);
        child = new Leaf(10);
        for (const int i : {11, 12}) children.Add(new Leaf(i));
        member.number = 13;
        map.Append(new Leaf(14), new Leaf(15));
        reference = children[2].get();
        references.Add(child.get());
        references.Add(&member);
        external = &outside;
        externals.Add(&outside);
    }

private:
    Alive alive;
};

inline void RegisterEveryKind(TZoMetaData& schema) {
    Leaf::Register(&schema);
    EveryKind::Register(&schema);
}

/// A field's value in a record.
struct FieldBytes {
    std::string name;
    int kind;
    std::string bytes;

    bool operator==(const FieldBytes&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const FieldBytes& field) {
        return out << Row{0, field.kind, field.bytes} << ' ' << field.name;
    }
};

/// The fields of a filled one, as they follow each other in its record.
inline std::vector<FieldBytes> EveryKindFields() {
    return {{"map", -19, Payload().Ints({1, 2, 1, 3})},
            {"anInt", -1, Payload().Int(-2)},
            {"aFloat", -2, Payload().Float(1.5F)},
            {"aDouble", -3, Payload().Double(-0.25)},
            {"aString", -4, Payload().Text("text")},
            {"aBlob", -5, Payload().Text("\1\2")},
            {"aBool", -10, Payload().Bool(true)},
            {"ints", -11, Payload().Ints({2, 7, -8})},
            {"floats", -12, Payload().Int(1).Float(2.5F)},
            {"doubles", -13, Payload().Int(1).Double(3.25)},
            {"strings", -14, Payload().Int(2).Text("a").Text("")},
            {"anUnsigned", -17, Payload().Int(4'000'000'000LL)},
            {"child", -6, Payload().Int(4)},
            {"member", -18, Payload().Int(5)},
            {"children", -7, Payload().Ints({2, 6, 7})},
            {"reference", -8, Payload().Int(7)},
            {"external", -15, Payload().Int(8)},
            {"references", -9, Payload().Ints({2, 4, 5})},
            {"externals", -16, Payload().Ints({1, 8})}};
}

/// The schema entries of both, under the ids 1 and 2.
inline std::vector<ClassEntry> EveryKindEntries() {
    ClassEntry every{.id = 2, .name = "EveryKind"};
    for (const FieldBytes& field : EveryKindFields()) {
        std::vector<FieldEntry>& block = every.BlockOf(field.kind);
        block.push_back({&block == &every.values ? 0 : 1, field.kind, field.name});
    }
    return {{.id = 1, .name = "Leaf", .values = {{0, -1, "number"}}}, every};
}

/// The records of a filled one: the map's key and value, the child, the member, both children, the external
/// leaf.
inline std::vector<Row> EveryKindRows() {
    std::vector<Row> rows{{1, 2, ""}};
    for (const FieldBytes& field : EveryKindFields()) rows[0].payload += field.bytes;
    int uid = 2;
    for (const int number : {14, 15, 10, 13, 11, 12, 99}) rows.push_back({uid++, 1, Payload().Int(number)});
    return rows;
}

} // namespace app
