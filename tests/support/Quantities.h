#pragma once

#include "ZoPrimitives/grandeza.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// A quantity's class, its units as numbers.
struct Quantity {
    std::string name;
    int units; // one accessor for each
    std::vector<std::string> accessorNames;
    std::function<double(double v, int unit)> constructed;
    std::function<double(double valor, double v, int unit)> stored;
    std::function<double(double valor, int unit)> read;
    std::function<double(double valor, int unit)> accessor;
    std::function<std::string(int unit)> unitName;
    std::function<std::unique_ptr<ZoPrimitives::Grandeza>(double valor)> make;
    std::function<std::string(double valor, int unit, unsigned decimals, bool keepZeros, char separator)>
        text;
    /// The value, and what came of the reading.
    std::function<std::pair<double, ZoPrimitives::TLeituraDeGrandeza>(const char* text, char separator,
                                                                      int unitWhenNone)>
        ofText;
    ZoPrimitives::TZoCreateFunction create;
};

template <class Class>
Quantity QuantityOf(const char* name, std::vector<double (Class::*)() const> accessors,
                    std::vector<std::string> accessorNames) {
    using ZoPrimitives::Grandeza;
    using Unit = typename Class::TUnidade;
    return {
        name,
        static_cast<int>(accessors.size()),
        accessorNames,
        [](double v, int unit) { return Class(v, static_cast<Unit>(unit)).valor; },
        [](double valor, double v, int unit) {
            Class quantity(valor);
            quantity.Valor(v, static_cast<Unit>(unit));
            return quantity.valor;
        },
        [](double valor, int unit) { return Class(valor).Valor(static_cast<Unit>(unit)); },
        [accessors](double valor, int unit) {
            return (Class(valor).*accessors[static_cast<std::size_t>(unit)])();
        },
        [](int unit) { return std::string(Class::NomeDaUnidade(static_cast<Unit>(unit)).c_str()); },
        [](double valor) { return std::unique_ptr<Grandeza>(new Class(valor)); },
        [](double valor, int unit, unsigned decimals, bool keepZeros, char separator) {
            return std::string(
                Class(valor).Texto(static_cast<Unit>(unit), decimals, keepZeros, separator).c_str());
        },
        [](const char* text, char separator, int unitWhenNone) {
            Class read(-77.0);
            auto result = read.LeTexto(text, separator, static_cast<Unit>(unitWhenNone));
            return std::pair(read.valor, result);
        },
        &Class::Create,
    };
}

inline const std::vector<Quantity>& AllQuantities() {
    using namespace ZoPrimitives;
// clang-format off
#define ZO_A(Class, unit, ...) &Class::unit,
#define ZO_N(Class, unit, ...) #unit,
#define ZO_Q(Name) QuantityOf<G##Name>("G" #Name, {ZO_UNITS_T##Name(ZO_A)}, {ZO_UNITS_T##Name(ZO_N)}),
    static const std::vector<Quantity> all = {
        ZO_Q(Angulo) ZO_Q(Area) ZO_Q(AreaM) ZO_Q(Comprimento) ZO_Q(Corrente) ZO_Q(Energia)
        ZO_Q(ForcaArea) ZO_Q(ForcaConcentrada) ZO_Q(ForcaLinear) ZO_Q(Inercia) ZO_Q(Intensidade) ZO_Q(Momento)
        ZO_Q(Peso) ZO_Q(PoderCalorifico) ZO_Q(Potencia) ZO_Q(PressaoCoesao) ZO_Q(PressaoHidraulica)
        ZO_Q(PressaoTensao) ZO_Q(Recalque) ZO_Q(Temperatura) ZO_Q(Tempo) ZO_Q(Vazao) ZO_Q(Velocidade)
        ZO_Q(Volume)};
#undef ZO_A
#undef ZO_N
#undef ZO_Q
    // clang-format on
    return all;
}

inline const Quantity& QuantityNamed(const std::string& name) {
    for (const Quantity& quantity : AllQuantities()) {
        if (quantity.name == name) return quantity;
    }
    throw std::out_of_range(name);
}
