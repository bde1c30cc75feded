#pragma once

// The units of the 24 quantities, in the technical system: kgf, cm, s, °C, and by convention 1 kN = 100 kgf
// and 1 kp = 1 kgf. The literals are the definition: files and drawings depend on their last bit, and more
// exact physical constants would change both.

#include "ZoPrimitives/AnsiLiteral.h"
#include "ZoPrimitives/UnitTable.h"
#include "ZoPrimitives/grandeza.h"

namespace ZoPrimitives {

/// `rows`: one for each enumerator, in their order. `tries`: the order in which `UnidadePorNome` compares.
/// `loose`: a unit that does not quite convert back to itself.
template <class Unit>
struct Units;

// clang-format off

template <>
struct Units<TAngulo> {
    using enum TAngulo;
    static constexpr double PI = 3.141592653589793;
    static constexpr UnitRow rows[] = {
        {Radianos, "Radianos", AsIs,                       AsIs},
        {Graus,    "Graus",    Times(PI).Then(Over(180)),  Times(180).Then(Over(PI))},
    };
};

template <>
struct Units<TArea> {
    using enum TArea;
    static constexpr UnitRow rows[] = {
        {mm2,  "mm²"_ansi, Over(100),     Times(100)},
        {cm2,  "cm²"_ansi, AsIs,          AsIs},
        {m2,   "m²"_ansi,  Times(10000),  Times(0.0001)},
        {sqin, "sq in",    Times(6.4516), Over(6.4516)},
        {sqft, "sq ft",    Times(929),    Over(929)},
    };
};

template <>
struct Units<TAreaM> {
    using enum TAreaM;
    static constexpr UnitRow rows[] = {
        {cm2_m, "cm²/m"_ansi, AsIs, AsIs},
    };
};

template <>
struct Units<TComprimento> {
    using enum TComprimento;
    static constexpr UnitRow rows[] = {
        {cm, "cm", AsIs,         AsIs},
        {m,  "m",  Times(100),   Times(0.01)},
        {in, "in", Times(2.54),  Over(2.54)},
        {ft, "ft", Times(30.48), Over(30.48)},
        {mm, "mm", Times(0.1),   Times(10)},
    };
    static constexpr TComprimento tries[] = {mm, cm, m, in, ft};
};

template <>
struct Units<TCorrente> {
    using enum TCorrente;
    static constexpr UnitRow rows[] = {
        {a,  "A",  AsIs,        AsIs},
        {ka, "kA", Times(1000), Times(0.001)},
    };
};

template <>
struct Units<TEnergia> {
    using enum TEnergia;
    static constexpr UnitRow rows[] = {
        {kwh,  "kWh",  AsIs,             AsIs},
        {kcal, "kcal", Times(859.84524), Over(859.84524)}, // in this direction: applications expect it
    };
};

template <>
struct Units<TForcaArea> {
    using enum TForcaArea;
    static constexpr UnitRow rows[] = {
        {kgf_m2,  "kgf/m²"_ansi,  Times(0.0001), Times(10000)},
        {tf_m2,   "tf/m²"_ansi,   Times(0.1),    Times(10)},
        {kN_m2,   "kN/m²"_ansi,   Over(100),     Times(100)},
        {kp_m2,   "kp/m²"_ansi,   Times(0.0001), Times(10000)},
        {psf,     "psf",          Over(2048.16), Times(2048.16)},
        {ksf,     "ksf",          Over(2.04816), Times(2.04816)},
        {kgf_cm2, "kgf/cm²"_ansi, AsIs,          AsIs},
    };
};

template <>
struct Units<TForcaConcentrada> {
    using enum TForcaConcentrada;
    static constexpr UnitRow rows[] = {
        {kgf, "kgf", AsIs,          AsIs},
        {tf,  "tf",  Times(1000),   Over(1000)},
        {kN,  "kN",  Times(100),    Over(100)},
        {kp,  "kp",  AsIs,          AsIs},
        {lb,  "lb",  Times(0.4536), Over(0.4536)},
        {kip, "kip", Times(453.6),  Over(453.6)},
    };
};

template <>
struct Units<TForcaLinear> {
    using enum TForcaLinear;
    static constexpr UnitRow rows[] = {
        {kgf_m,  "kgf/m",  Times(0.01),  Times(100)},
        {tf_m,   "tf/m",   Times(10),    Times(0.1)},
        {kN_m,   "kN/m",   AsIs,         AsIs},
        {kp_m,   "kp/m",   Times(0.01),  Times(100)},
        {lb_ft,  "lb/ft",  Over(67.197), Times(67.197)},
        {kip_ft, "kip/ft", Times(14.88), Over(14.88)},
        {lb_in,  "lb/in",  Over(5.6),    Times(5.6)},
        {kgf_cm, "kgf/cm", AsIs,         AsIs},
        {tf_cm,  "tf/cm",  Times(1000),  Times(0.001)},
    };
};

template <>
struct Units<TInercia> {
    using enum TInercia;
    static constexpr UnitRow rows[] = {
        {cm4, "cm4", AsIs,             AsIs},
        {m4,  "m4",  Times(100000000), Times(1e-08)},
        {in4, "in4", Times(41.62),     Over(41.62)},
    };
};

template <>
struct Units<TIntensidade> {
    using enum TIntensidade;
    static constexpr UnitRow rows[] = {
        {cm_s,   "cm/s",   AsIs,                         AsIs},
        {m_s,    "m/s",    Times(100),                   Times(0.01)},
        {mm_min, "mm/min", Times(0.0016666666666666668), Times(600)},
        {mm_h,   "mm/h",   Times(2.777777777777778e-05), Times(36000)},
        {m_min,  "m/min",  Times(1.6666666666666667),    Times(0.6)},
    };
};

template <>
struct Units<TMomento> {
    using enum TMomento;
    static constexpr UnitRow rows[] = {
        {kgfm,  "kgf.m",  Times(100),     Times(0.01)},
        {tfm,   "tf.m",   Times(100000),  Times(1e-05)},
        {kNm,   "kN.m",   Times(10000),   Over(10000)},
        {kpm,   "kp.m",   Times(100),     Times(0.01)},
        {ftkip, "tf.kip", Times(13825.5), Over(13825.5)}, // of a kip-foot; its name stays
        {ftlb,  "ft.lb",  Times(13.8255), Over(13.8255)},
        {kgfcm, "kgf.cm", AsIs,           AsIs},
        {tfcm,  "tf.cm",  Times(1000),    Times(0.001)},
    };
};

template <>
struct Units<TPeso> {
    using enum TPeso;
    static constexpr UnitRow rows[] = {
        {kgf_m3,  "kgf/m³"_ansi,  Times(1e-06),  Times(1000000)},
        {tf_m3,   "tf/m³"_ansi,   Times(0.001),  Times(1000)},
        {kN_m3,   "kN/m³"_ansi,   Times(0.0001), Times(10000)},
        {kp_m3,   "kp/m³"_ansi,   Times(1e-06),  Times(1000000)},
        {lb_cuft, "lb/cu ft",     Over(62428),   Times(62428)},
        {kgf_cm3, "kgf/cm³"_ansi, AsIs,          AsIs},
    };
};

template <>
struct Units<TPoderCalorifico> {
    using enum TPoderCalorifico;
    static constexpr UnitRow rows[] = {
        {kcal_m3, "kcal/m³"_ansi, AsIs, AsIs},
    };
};

template <>
struct Units<TPotencia> {
    using enum TPotencia;
    static constexpr UnitRow rows[] = {
        {kcal_s,   "kcal/s",   AsIs,                          AsIs},
        {kcal_min, "kcal/min", Times(0.016666666666666666),   Times(60)},
        {kcal_h,   "kcal/h",   Times(0.0002777777777777778),  Times(3600)},
        {cv,       "CV",       Times(0.17574599782426456),    Times(5.69003)},
        {watt,     "W",        Times(0.0002387),              Times(4190.02)}, // reads 1.0001577 times as much as was set
        {kwatt,    "kW",       Times(0.2386623),              Times(4.19002)},
    };
    static constexpr TPotencia loose = watt;
    static constexpr TPotencia tries[] = {kcal_s, kcal_min, kcal_h, cv, watt, kwatt};
};

template <>
struct Units<TPressaoCoesao> {
    using enum TPressaoCoesao;
    static constexpr UnitRow rows[] = {
        {kgf_cm2, "kgf/cm²"_ansi, AsIs,          AsIs},
        {tf_m2,   "tf/m²"_ansi,   Times(0.1),    Times(10)},
        {kN_m2,   "kN/m²"_ansi,   Times(0.01),   Times(100)},
        {kp_cm2,  "kp/cm²"_ansi,  AsIs,          AsIs},
        {psi,     "psi",          Over(14.22),   Times(14.22)},
        {ksi,     "ksi",          Over(0.01422), Times(0.01422)},
    };
};

template <>
struct Units<TPressaoHidraulica> {
    using enum TPressaoHidraulica;
    static constexpr UnitRow rows[] = {
        {cmca,    "cm.c.a.",      AsIs,           AsIs},
        {mca,     "m.c.a.",       Times(100),     Times(0.01)},
        {mmca,    "mm.c.a.",      Times(0.1),     Times(10)},
        {kpa,     "kPa",          Times(10.1978), Over(10.1978)},
        {kgf_cm2, "kgf/cm²"_ansi, Times(1000),    Times(0.001)},
    };
    static constexpr TPressaoHidraulica tries[] = {cmca, mmca, mca, kpa, kgf_cm2};
};

template <>
struct Units<TPressaoTensao> {
    using enum TPressaoTensao;
    static constexpr UnitRow rows[] = {
        {kgf_cm2, "kgf/cm²"_ansi, AsIs,          AsIs},
        {tf_m2,   "tf/m²"_ansi,   Times(0.1),    Times(10)},
        {kN_cm2,  "kN/cm²"_ansi,  Times(100),    Over(100)},
        {MPa,     "MPa",          Times(10),     Times(0.1)},
        {kp_cm2,  "kp/cm²"_ansi,  AsIs,          AsIs},
        {psi,     "psi",          Over(14.22),   Times(14.22)},
        {ksi,     "ksi",          Over(0.01422), Times(0.01422)},
        {tf_cm2,  "tf/cm²"_ansi,  Times(1000),   Times(0.001)},
    };
};

template <>
struct Units<TRecalque> {
    using enum TRecalque;
    static constexpr UnitRow rows[] = {
        {kgf_cm3, "kgf/cm³"_ansi, AsIs,          AsIs},
        {tf_m3,   "tf/m³"_ansi,   Times(0.001),  Times(1000)},
        {kN_m3,   "kN/m³"_ansi,   Times(0.0001), Times(10000)},
        {kp_cm3,  "kp/cm³"_ansi,  AsIs,          AsIs},
        {lb_cuin, "lb/cu in",     Over(36.127),  Times(36.127)},
    };
};

template <>
struct Units<TTemperatura> {
    using enum TTemperatura;
    static constexpr double FAHRENHEIT = 1.777777777777778; // applications expect it, not 1.8
    static constexpr UnitRow rows[] = {
        {c, "ºC"_ansi, AsIs,                              AsIs},
        {f, "ºF"_ansi, Minus(32).Then(Over(FAHRENHEIT)),  Times(FAHRENHEIT).Then(Plus(32))},
        {k, "ºK"_ansi, Minus(273.15),                     Plus(273.15)},
    };
};

template <>
struct Units<TTempo> {
    using enum TTempo;
    static constexpr UnitRow rows[] = {
        {s,      "s",   AsIs,         AsIs},
        {minuto, "min", Times(60),    Over(60)},
        {h,      "h",   Times(3600),  Over(3600)},
        {dia,    "dia", Times(86400), Over(86400)},
        {ms,     "ms",  Times(0.001), Times(1000)},
    };
};

template <>
struct Units<TVazao> {
    using enum TVazao;
    static constexpr UnitRow rows[] = {
        {cm3_s,  "cm³/s"_ansi,  AsIs,                       AsIs},
        {m3_s,   "m³/s"_ansi,   Times(1000000),             Times(1e-06)},
        {m3_h,   "m³/h"_ansi,   Times(277.7777777777778),   Times(0.0036)},
        {m3_dia, "m³/dia"_ansi, Times(11.57407407407407),   Times(0.0864)},
        {l_s,    "l/s",         Times(1000),                Times(0.001)},
        {l_min,  "l/min",       Times(16.66666666666667),   Times(0.06)},
        {l_dia,  "l/dia",       Times(0.01157407407407407), Times(86.4)},
    };
    static constexpr TVazao tries[] = {cm3_s, m3_s, m3_h, m3_dia, l_s, l_min, l_dia};
};

template <>
struct Units<TVelocidade> {
    using enum TVelocidade;
    static constexpr UnitRow rows[] = {
        {cm_s,   "cm/s", AsIs,                         AsIs},
        {m_s,    "m/s",  Times(100),                   Times(0.01)},
        {mm_h,   "mm/h", Times(2.777777777777778e-05), Times(36000)},
        {mm_min, "",     Times(0.0016666666666666668), Times(600)}, // nameless
        {km_h,   "km/h", Times(27.77777777777778),     Times(0.036)},
    };
};

template <>
struct Units<TVolume> {
    using enum TVolume;
    static constexpr UnitRow rows[] = {
        {cm3,  "cm³"_ansi, AsIs,           AsIs},
        {m3,   "m³"_ansi,  Times(1000000), Times(1e-06)},
        {cuin, "cu in",    Times(16.387),  Over(16.387)},
        {cuft, "cu ft",    Times(28317),   Over(28317)},
        {l,    "l",        Times(1000),    Times(0.001)},
    };
};

// clang-format on

} // namespace ZoPrimitives
