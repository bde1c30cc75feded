#include "values.h"

#include "text.h"
#include "words.h"

#include "ZoPrimitives/TBase64.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>

namespace ZoTool {

using namespace ZoPrimitives;
using nlohmann::ordered_json;

namespace {

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

double Widened(float value) {
    if (!std::isfinite(value)) return value;
    const std::string text = fmt::format("{}", value);
    double wide = 0;
    std::from_chars(text.data(), text.data() + text.size(), wide);
    return wide;
}

std::string HalfText(const Scalars& half, TZoRecordReader& reader) {
    if (!half.IsList()) return ScalarText(half[1], reader);
    std::string text = "[";
    for (int i = 1; i <= half.Count(); ++i) text += (i > 1 ? ", " : "") + ScalarText(half[i], reader);
    text += ']';
    for (int i = 1; i <= half.Integers(); ++i)
        text += fmt::format("{}{}", i == 1 ? " with " : ", ", half.Integer(i));
    return text;
}

ordered_json PointerJson(int uid, TZoRecordReader& reader) {
    if (uid == 0) return nullptr;
    const TZoClass* const type = reader.ClassOf(uid);
    return {{"uid", uid}, {"class", type == nullptr ? ordered_json() : ordered_json(Utf8(type->GetName()))}};
}

ordered_json ScalarJson(const Scalar& scalar, TZoRecordReader& reader) {
    return std::visit(Overloaded{[](bool value) -> ordered_json { return value; },
                                 [](long long value) -> ordered_json { return value; },
                                 [](double value) { return RealJson(value); },
                                 [](const Text& text) -> ordered_json { return Utf8(text.windows1252); },
                                 [](const Blob& blob) -> ordered_json { return Base64(blob.bytes); },
                                 [&](const Pointer& pointer) { return PointerJson(pointer.uid, reader); }},
                      scalar);
}

ordered_json HalfJson(const Scalars& half, TZoRecordReader& reader) {
    if (!half.IsList()) return ScalarJson(half[1], reader);
    ordered_json items = ordered_json::array();
    for (int i = 1; i <= half.Count(); ++i) items.push_back(ScalarJson(half[i], reader));
    if (half.Integers() == 0) return items;
    ordered_json integers = ordered_json::array();
    for (int i = 1; i <= half.Integers(); ++i) integers.push_back(half.Integer(i));
    return {{"integers", std::move(integers)}, {"items", std::move(items)}};
}

} // namespace

int Halves(const TZoValue& value) { return value.GetKind() == ftChildPointerMap ? 2 : 1; }

bool Scalars::IsList() const {
    switch (value.GetKind()) {
    case ftInt:
    case ftUnsigned:
    case ftBool:
    case ftFloat:
    case ftDouble:
    case ftString:
    case ftBlob:
        return false;
    case ftListInt:
    case ftListFloat:
    case ftListDouble:
    case ftListString:
    case ftChildPointer:
    case ftChildPointerList:
    case ftPointer:
    case ftPointerList:
    case ftPointerEx:
    case ftPointerListEx:
    case ftChildValue:
    case ftChildPointerMap:
        return value.IsList(half);
    }
    return false;
}

int Scalars::Count() const { return IsList() ? value.NItems(half) : 1; }
int Scalars::Integers() const { return IsList() ? value.NIntegers(half) : 0; }

Scalar Scalars::operator[](int index) const {
    switch (value.GetKind()) {
    case ftInt:
        return static_cast<long long>(value.AsInt());
    case ftUnsigned:
        return static_cast<long long>(value.AsUnsigned());
    case ftBool:
        return value.AsBool();
    case ftFloat:
        return Widened(value.AsFloat());
    case ftDouble:
        return value.AsDouble();
    case ftString:
        return Text{value.AsBytes()};
    case ftBlob:
        return Blob{value.AsBytes()};
    case ftListInt:
        return static_cast<long long>(value.IntItem(index));
    case ftListFloat:
        return Widened(value.FloatItem(index));
    case ftListDouble:
        return value.DoubleItem(index);
    case ftListString:
        return Text{value.StringItemBytes(index)};
    case ftChildPointer:
    case ftChildPointerList:
    case ftPointer:
    case ftPointerList:
    case ftPointerEx:
    case ftPointerListEx:
    case ftChildValue:
    case ftChildPointerMap:
        return Pointer{value.Uid(index, half)};
    }
    return Pointer{0};
}

std::string NumberText(double value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
    return fmt::format("{}", value);
}

std::string PointerText(int uid, TZoRecordReader& reader) {
    if (uid == 0) return "null";
    const TZoClass* const type = reader.ClassOf(uid);
    return fmt::format("#{} {}", uid, type == nullptr ? Words("(no such object)") : ClassName(*type));
}

std::string ScalarText(const Scalar& scalar, TZoRecordReader& reader) {
    return std::visit(Overloaded{[](bool value) -> std::string { return value ? "true" : "false"; },
                                 [](long long value) { return std::to_string(value); },
                                 [](double value) { return NumberText(value); },
                                 [](const Text& text) { return Quoted(Utf8(text.windows1252)); },
                                 [](const Blob& blob) {
                                     return fmt::format("{}: {}", Counted(blob.bytes.size(), "byte"),
                                                        Base64(blob.bytes));
                                 },
                                 [&](const Pointer& pointer) { return PointerText(pointer.uid, reader); }},
                      scalar);
}

std::string ValueText(const TZoValue& value, TZoRecordReader& reader) {
    const std::string first = HalfText(Scalars(value), reader);
    return Halves(value) == 1 ? first : first + " -> " + HalfText(Scalars(value, 2), reader);
}

std::string Glance(const TZoValue& value) {
    constexpr std::size_t LONG = 40;
    const Scalars all(value, Halves(value));
    if (all.IsList()) return fmt::format("[{}]", all.Count());
    return std::visit(
        Overloaded{[](bool is) -> std::string { return is ? "true" : "false"; },
                   [](long long number) { return std::to_string(number); },
                   [](double number) { return NumberText(number); },
                   [](const Text& text) {
                       return Quoted(Utf8(text.windows1252.substr(0, LONG))) +
                              (text.windows1252.size() > LONG ? "..." : "");
                   },
                   [](const Blob& blob) { return fmt::format("({})", Counted(blob.bytes.size(), "byte")); },
                   [](const Pointer& pointer) {
                       return pointer.uid == 0 ? "null" : fmt::format("#{}", pointer.uid);
                   }},
        all[1]);
}

ordered_json ValueJson(const TZoValue& value, TZoRecordReader& reader) {
    if (Halves(value) == 1) return HalfJson(Scalars(value), reader);
    return {{"keys", HalfJson(Scalars(value, 1), reader)}, {"values", HalfJson(Scalars(value, 2), reader)}};
}

ordered_json RealJson(double value) {
    if (!std::isfinite(value)) return NumberText(value);
    return value;
}

std::string Base64(std::string_view bytes) {
    std::string copy(bytes); // the encoder takes no constant
    const ZoString text = TBase64::EncodeBlock(reinterpret_cast<unsigned char*>(copy.data()),
                                               static_cast<unsigned long>(copy.size()));
    return {text.c_str(), text.length()};
}

} // namespace ZoTool
