#include "ZoPrimitives/ECustomPropertyValueType.h"

#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/TTranslatedString.h"

#include <iterator>

namespace ZoPrimitives {

namespace {

struct KindRow {
    const char* name;
    bool real;
};

constexpr KindRow KINDS[] = {
    {"Texto", false},         {"Número"_ansi, true}, {"Sim/Não"_ansi, false}, {"Volume", true},
    {"Área"_ansi, true},      {"Comprimento", true}, {"Massa", true},         {"Potência"_ansi, true},
    {"Fluxo luminoso", true}, {"Corrente", true},    {"Ângulo"_ansi, true},   {"Inteiro", false},
};
static_assert(std::size(KINDS) == ECustomPropertyValueType::Inteiro + 1);

const KindRow& RowOf(int kind) {
    return KINDS[kind >= 0 && kind < static_cast<int>(std::size(KINDS)) ? kind : 0];
}

} // namespace

ECustomPropertyValueType::ECustomPropertyValueType() = default;
ECustomPropertyValueType::ECustomPropertyValueType(int kind) : value(kind) {}
ECustomPropertyValueType::ECustomPropertyValueType(const ECustomPropertyValueType& other) = default;
ECustomPropertyValueType::~ECustomPropertyValueType() = default;
ECustomPropertyValueType&
ECustomPropertyValueType::operator=(const ECustomPropertyValueType& other) = default;

ZoString ECustomPropertyValueType::Nome(ECustomPropertyValueType kind) {
    return TTranslatedString(RowOf(kind).name).ToZoString();
}

ECustomPropertyValueType ECustomPropertyValueType::PrimeiroValor() { return Texto; }
ECustomPropertyValueType ECustomPropertyValueType::UltimoValor() { return Inteiro; }

ECustomPropertyValueType ECustomPropertyValueType::Value(const ZoString& nome) {
    for (int kind = PrimeiroValor(); kind <= UltimoValor(); ++kind) {
        if (Nome(kind).Equal(nome, false)) return kind;
    }
    return Texto;
}

bool ECustomPropertyValueType::IsRealNumber() const { return RowOf(value).real; }
bool ECustomPropertyValueType::IsRealNumber(const ECustomPropertyValueType& kind) {
    return kind.IsRealNumber();
}

} // namespace ZoPrimitives
