#include "ZoPrimitives/ECustomPropertyValueType.h"

#include "ZoPrimitives/UserText.h"

#include <iterator>

namespace ZoPrimitives {

namespace {

struct KindRow {
    UserText name;
    bool real;
};

constexpr KindRow KINDS[] = {
    {UserText("Texto"), false},   {UserText("Número"), true},   {UserText("Sim/Não"), false},
    {UserText("Volume"), true},   {UserText("Área"), true},     {UserText("Comprimento"), true},
    {UserText("Massa"), true},    {UserText("Potência"), true}, {UserText("Fluxo luminoso"), true},
    {UserText("Corrente"), true}, {UserText("Ângulo"), true},   {UserText("Inteiro"), false},
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
    return Translated(RowOf(kind).name);
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
