#pragma once

// The unit tables, made from the rows of GrandezaUnits.h.

#include "Values/UnitTable.h"
#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/grandeza.h"

#include <array>

namespace ZoPrimitives {

/// `rows` has one row for each enumerator, in their order.
template <class Unit>
struct Units;

/// The units that `UnidadePorNome` compares first.
template <class Unit>
inline constexpr std::array<Unit, 0> TRIED_FIRST{};
template <>
inline constexpr std::array<TComprimento, 1> TRIED_FIRST<TComprimento>{TComprimento::mm};
template <>
inline constexpr std::array<TPressaoHidraulica, 2> TRIED_FIRST<TPressaoHidraulica>{TPressaoHidraulica::cmca,
                                                                                   TPressaoHidraulica::mmca};

/// The number of the unit that does not convert back exactly; -1 for none.
template <class Unit>
inline constexpr int LOOSE_UNIT = -1;
template <>
inline constexpr int LOOSE_UNIT<TPotencia> = static_cast<int>(TPotencia::watt);

// Constants used by the rows.
constexpr double HALF_TURN = 3.141592653589793;
constexpr double FAHRENHEIT = 1.777777777777778; // per degree Celsius; applications expect it, not 1.8

#define ZO_UNIT_ROW_(Class, unit, ...) {unit, #unit, __VA_ARGS__},
#define ZO_UNIT_TABLE_(Unit)                                                                                 \
    template <>                                                                                              \
    struct Units<Unit> {                                                                                     \
        using enum Unit;                                                                                     \
        static constexpr UnitRow rows[] = {ZO_UNITS_##Unit(ZO_UNIT_ROW_)};                                   \
    };

ZO_UNIT_TABLE_(TAngulo)
ZO_UNIT_TABLE_(TArea)
ZO_UNIT_TABLE_(TAreaM)
ZO_UNIT_TABLE_(TComprimento)
ZO_UNIT_TABLE_(TCorrente)
ZO_UNIT_TABLE_(TEnergia)
ZO_UNIT_TABLE_(TForcaArea)
ZO_UNIT_TABLE_(TForcaConcentrada)
ZO_UNIT_TABLE_(TForcaLinear)
ZO_UNIT_TABLE_(TInercia)
ZO_UNIT_TABLE_(TIntensidade)
ZO_UNIT_TABLE_(TMomento)
ZO_UNIT_TABLE_(TPeso)
ZO_UNIT_TABLE_(TPoderCalorifico)
ZO_UNIT_TABLE_(TPotencia)
ZO_UNIT_TABLE_(TPressaoCoesao)
ZO_UNIT_TABLE_(TPressaoHidraulica)
ZO_UNIT_TABLE_(TPressaoTensao)
ZO_UNIT_TABLE_(TRecalque)
ZO_UNIT_TABLE_(TTemperatura)
ZO_UNIT_TABLE_(TTempo)
ZO_UNIT_TABLE_(TVazao)
ZO_UNIT_TABLE_(TVelocidade)
ZO_UNIT_TABLE_(TVolume)

#undef ZO_UNIT_TABLE_
#undef ZO_UNIT_ROW_

} // namespace ZoPrimitives
