#include "Persistence/instances/FieldLayout.h"
#include "Persistence/schema/FieldKinds.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoRecords.h"

#include <cstdint>
#include <cstring>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/Persistence/ZoRecords";

template <class T>
T At(const unsigned char* place) {
    T value;
    std::memcpy(&value, place, sizeof value);
    return value;
}

bool IsListOfValues(TZoClassFieldType kind) {
    return kind == ftListInt || kind == ftListFloat || kind == ftListDouble || kind == ftListString;
}

std::string_view BlockAt(const unsigned char* place) {
    return {reinterpret_cast<const char*>(place) + 4, At<std::uint32_t>(place)};
}

} // namespace

int TZoValue::AsInt() const {
    ZO_ASSERT(GetKind() == ftInt, "GetKind() == ftInt", SOURCE);
    return At<std::int32_t>(begin);
}

unsigned TZoValue::AsUnsigned() const {
    ZO_ASSERT(GetKind() == ftUnsigned, "GetKind() == ftUnsigned", SOURCE);
    return At<std::uint32_t>(begin);
}

bool TZoValue::AsBool() const {
    ZO_ASSERT(GetKind() == ftBool, "GetKind() == ftBool", SOURCE);
    return *begin != 0;
}

float TZoValue::AsFloat() const {
    ZO_ASSERT(GetKind() == ftFloat, "GetKind() == ftFloat", SOURCE);
    return At<float>(begin);
}

double TZoValue::AsDouble() const {
    ZO_ASSERT(GetKind() == ftDouble, "GetKind() == ftDouble", SOURCE);
    return At<double>(begin);
}

std::string_view TZoValue::AsBytes() const {
    ZO_ASSERT(GetKind() == ftString || GetKind() == ftBlob, "GetKind() == ftString || GetKind() == ftBlob",
              SOURCE);
    return BlockAt(begin);
}

ZoString TZoValue::AsString() const {
    ZO_ASSERT(GetKind() == ftString, "GetKind() == ftString", SOURCE);
    const std::string_view bytes = BlockAt(begin);
    return WholeText({bytes});
}

ZoBlob TZoValue::AsBlob() const {
    ZO_ASSERT(GetKind() == ftBlob, "GetKind() == ftBlob", SOURCE);
    const std::string_view bytes = BlockAt(begin);
    return {bytes.data(), bytes.size()};
}

// Items

bool TZoValue::IsList(int half) const {
    return IsListOfValues(GetKind()) || IsKindOf<TZoClassFieldPointerList>(GetKind()) ||
           (GetKind() == ftChildPointerMap && integers[half - 1] != FieldLayout::SINGLE);
}

/// Where the value, or half the map, begins.
const unsigned char* TZoValue::Half(int half) const {
    ZO_ASSERT(half == 1 || (half == 2 && GetKind() == ftChildPointerMap),
              "half == 1 || (half == 2 && GetKind() == ftChildPointerMap)", SOURCE);
    if (half == 1) return begin;
    if (!IsList(1)) return begin + 4;
    return Items(1) + 4LL * NItems(1);
}

const unsigned char* TZoValue::Items(int half) const {
    const unsigned char* first = Half(half);
    return IsList(half) ? first + 4 + 4LL * integers[half - 1] : first;
}

const unsigned char* TZoValue::Item(int index, int half, unsigned size) const {
    ZO_ASSERT(index >= 1 && index <= NItems(half), "index >= 1 && index <= NItems()", SOURCE);
    return Items(half) + (index - 1LL) * size;
}

int TZoValue::NItems(int half) const {
    const unsigned char* first = Half(half);
    return IsList(half) ? At<std::int32_t>(first) : 1;
}

int TZoValue::NIntegers(int half) const {
    Half(half); // checks it
    return IsList(half) ? integers[half - 1] : 0;
}

int TZoValue::Integer(int index, int half) const {
    ZO_ASSERT(index >= 1 && index <= NIntegers(half), "index >= 1 && index <= NIntegers()", SOURCE);
    return At<std::int32_t>(Half(half) + 4LL * index);
}

int TZoValue::IntItem(int index) const {
    ZO_ASSERT(GetKind() == ftListInt, "GetKind() == ftListInt", SOURCE);
    return At<std::int32_t>(Item(index, 1, 4));
}

float TZoValue::FloatItem(int index) const {
    ZO_ASSERT(GetKind() == ftListFloat, "GetKind() == ftListFloat", SOURCE);
    return At<float>(Item(index, 1, 4));
}

double TZoValue::DoubleItem(int index) const {
    ZO_ASSERT(GetKind() == ftListDouble, "GetKind() == ftListDouble", SOURCE);
    return At<double>(Item(index, 1, 8));
}

std::string_view TZoValue::StringItemBytes(int index) const {
    ZO_ASSERT(GetKind() == ftListString, "GetKind() == ftListString", SOURCE);
    ZO_ASSERT(index >= 1 && index <= NItems(), "index >= 1 && index <= NItems()", SOURCE);
    if (latest == 0 || index < latest) {
        latest = 1;
        latestAt = Items(1);
    }
    for (; latest < index; ++latest) latestAt += 4 + At<std::uint32_t>(latestAt);
    return BlockAt(latestAt);
}

ZoString TZoValue::StringItem(int index) const { return WholeText({StringItemBytes(index)}); }

const unsigned char* TZoValue::UidBytes(int index, int half) const {
    ZO_ASSERT(field->IsPointerKind(), "field->IsPointerKind()", SOURCE);
    return Item(index, half, 4);
}

int TZoValue::Uid(int index, int half) const { return At<std::int32_t>(UidBytes(index, half)); }

} // namespace ZoPrimitives
