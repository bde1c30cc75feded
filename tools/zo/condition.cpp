#include "condition.h"

#include "text.h"
#include "values.h"

#include "fields.h"
#include "words.h"

#include <charconv>
#include <iterator>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

std::optional<double> NumberOf(const std::string& text) {
    if (text == "true") return 1;
    if (text == "false" || text == "null") return 0;
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stopped != end) return std::nullopt;
    return number;
}

} // namespace

Condition::Condition(const std::string& given) {
    const struct {
        const char* sign;
        Operator op;
    } operators[] = {{"!=", Operator::Unequal}, {"<=", Operator::AtMost}, {">=", Operator::AtLeast},
                     {"=", Operator::Equal},    {"<", Operator::Less},    {">", Operator::Greater},
                     {"~", Operator::Contains}};
    const std::size_t at = given.find_first_of("=!<>~");
    for (const auto& known : operators) {
        if (at == 0 || at == std::string::npos || given.compare(at, std::strlen(known.sign), known.sign) != 0)
            continue;
        field = given.substr(0, at);
        op = known.op;
        text = given.substr(at + std::strlen(known.sign));
        number = NumberOf(text);
        return;
    }
    throw Trouble(
        Words("\"{}\" is no condition; one is FIELD=VALUE, with = != < <= > >= or ~ (contains)", given));
}

void Condition::Prepare(Model& model, const std::vector<TZoClass*>& classes) {
    for (TZoClass* const type : classes) {
        const std::vector<std::string>& names = model.NamesOf(*type);
        const auto found = std::find(names.begin(), names.end(), field);
        if (found == names.end()) continue;
        const auto index = found - names.begin();
        CheckFits(*AllFields(*type)[static_cast<std::size_t>(index)]);
        positions[type] = static_cast<int>(index) + 1;
    }
    if (positions.empty())
        throw Trouble(Words("no class asked for has a field \"{}\"; \"zo schema\" lists them", field));
}

void Condition::CheckFits(const TZoClassField& wanted) const {
    const TZoClassFieldType kind = wanted.GetFieldType();
    if (kind == ftBlob) throw Trouble(Words("\"{}\" is a blob, which cannot be compared", field));
    const bool isText = kind == ftString || kind == ftListString;
    if (isText || number) return;
    throw Trouble(
        Words("\"{}\" is no value of \"{}\", which is a field of kind {}", text, field, TypeOf(wanted)));
}

template <class T>
bool Condition::Compare(const T& a, const T& b) const {
    switch (op) {
    case Operator::Equal:
        return a == b;
    case Operator::Unequal:
        return a != b;
    case Operator::Less:
        return a < b;
    case Operator::AtMost:
        return a <= b;
    case Operator::Greater:
        return a > b;
    case Operator::AtLeast:
        return a >= b;
    case Operator::Contains:
        break;
    }
    return false;
}

bool Condition::Holds(const TZoValue& value) const {
    for (int half = 1; half <= Halves(value); ++half) {
        const Scalars scalars(value, half);
        for (int i = 1; i <= scalars.Count(); ++i) {
            const Scalar scalar = scalars[i];
            if (const Text* const given = std::get_if<Text>(&scalar)) {
                const std::string utf8 = Utf8(given->windows1252);
                if (op == Operator::Contains ? utf8.find(text) != std::string::npos : Compare(utf8, text))
                    return true;
                continue;
            }
            double given = 0;
            if (const auto* const is = std::get_if<bool>(&scalar)) given = *is;
            if (const auto* const integer = std::get_if<long long>(&scalar))
                given = static_cast<double>(*integer);
            if (const auto* const real = std::get_if<double>(&scalar)) given = *real;
            if (const auto* const pointer = std::get_if<Pointer>(&scalar)) given = pointer->uid;
            if (Compare(given, *number)) return true;
        }
    }
    return false;
}

bool Condition::Holds(const TZoRecord& record) const {
    const auto found = positions.find(record.GetClass());
    return found != positions.end() && found->second <= record.NValues() &&
           Holds(record.Value(found->second));
}

} // namespace ZoTool
