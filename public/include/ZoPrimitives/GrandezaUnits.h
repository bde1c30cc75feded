#pragma once

// The units of the quantities, one row each:
//
//     UNIT(class, enumerator, name, store, read[, others])
//
// `enumerator` is also the accessor's name; its number is the row's position, from 0, so append new units.
// `name` is displayed, "" for none. `store` converts a value in the unit to the storage unit of the class,
// `read` converts back. `others` are further spellings that are read besides the name and the enumerator:
// "a|b".
//
// The units are those of the technical system: kgf, cm, s, °C, with 1 kN = 100 kgf and 1 kp = 1 kgf by
// convention. The literals are the definition: files and drawings depend on their last bit, and more exact
// physical constants would change both.

// clang-format off

#define ZO_UNITS_TAngulo(UNIT)                                                                                            \
    UNIT(GAngulo, Radianos, "Radianos", AsIs,                             AsIs,                             "rad")        \
    UNIT(GAngulo, Graus,    "Graus",    Times(HALF_TURN).Then(Over(180)), Times(180).Then(Over(HALF_TURN)), "º|deg"_ansi)

#define ZO_UNITS_TArea(UNIT)                                           \
    UNIT(GArea, mm2,  "mm²"_ansi, Over(100),     Times(100))           \
    UNIT(GArea, cm2,  "cm²"_ansi, AsIs,          AsIs)                 \
    UNIT(GArea, m2,   "m²"_ansi,  Times(10000),  Times(0.0001))        \
    UNIT(GArea, sqin, "sq in",    Times(6.4516), Over(6.4516),  "in2") \
    UNIT(GArea, sqft, "sq ft",    Times(929),    Over(929),     "ft2")

#define ZO_UNITS_TAreaM(UNIT)                     \
    UNIT(GAreaM, cm2_m, "cm²/m"_ansi, AsIs, AsIs)

#define ZO_UNITS_TComprimento(UNIT)                         \
    UNIT(GComprimento, cm, "cm", AsIs,         AsIs)        \
    UNIT(GComprimento, m,  "m",  Times(100),   Times(0.01)) \
    UNIT(GComprimento, in, "in", Times(2.54),  Over(2.54))  \
    UNIT(GComprimento, ft, "ft", Times(30.48), Over(30.48)) \
    UNIT(GComprimento, mm, "mm", Times(0.1),   Times(10))

#define ZO_UNITS_TCorrente(UNIT)                         \
    UNIT(GCorrente, a,  "A",  AsIs,        AsIs)         \
    UNIT(GCorrente, ka, "kA", Times(1000), Times(0.001))

// kcal: the factor is applied in this direction, so 1 kcal is 859.84524 kWh; applications expect it.
#define ZO_UNITS_TEnergia(UNIT)                                     \
    UNIT(GEnergia, kwh,  "kWh",  AsIs,             AsIs)            \
    UNIT(GEnergia, kcal, "kcal", Times(859.84524), Over(859.84524))

#define ZO_UNITS_TForcaArea(UNIT)                                            \
    UNIT(GForcaArea, kgf_m2,  "kgf/m²"_ansi,  Times(0.0001), Times(10000))   \
    UNIT(GForcaArea, tf_m2,   "tf/m²"_ansi,   Times(0.1),    Times(10))      \
    UNIT(GForcaArea, kN_m2,   "kN/m²"_ansi,   Over(100),     Times(100))     \
    UNIT(GForcaArea, kp_m2,   "kp/m²"_ansi,   Times(0.0001), Times(10000))   \
    UNIT(GForcaArea, psf,     "psf",          Over(2048.16), Times(2048.16)) \
    UNIT(GForcaArea, ksf,     "ksf",          Over(2.04816), Times(2.04816)) \
    UNIT(GForcaArea, kgf_cm2, "kgf/cm²"_ansi, AsIs,          AsIs)

#define ZO_UNITS_TForcaConcentrada(UNIT)                                     \
    UNIT(GForcaConcentrada, kgf, "kgf", AsIs,          AsIs)                 \
    UNIT(GForcaConcentrada, tf,  "tf",  Times(1000),   Over(1000))           \
    UNIT(GForcaConcentrada, kN,  "kN",  Times(100),    Over(100))            \
    UNIT(GForcaConcentrada, kp,  "kp",  AsIs,          AsIs)                 \
    UNIT(GForcaConcentrada, lb,  "lb",  Times(0.4536), Over(0.4536), "lbs")  \
    UNIT(GForcaConcentrada, kip, "kip", Times(453.6),  Over(453.6),  "kips")

#define ZO_UNITS_TForcaLinear(UNIT)                                              \
    UNIT(GForcaLinear, kgf_m,  "kgf/m",  Times(0.01),  Times(100))               \
    UNIT(GForcaLinear, tf_m,   "tf/m",   Times(10),    Times(0.1))               \
    UNIT(GForcaLinear, kN_m,   "kN/m",   AsIs,         AsIs)                     \
    UNIT(GForcaLinear, kp_m,   "kp/m",   Times(0.01),  Times(100))               \
    UNIT(GForcaLinear, lb_ft,  "lb/ft",  Over(67.197), Times(67.197), "lbs/ft")  \
    UNIT(GForcaLinear, kip_ft, "kip/ft", Times(14.88), Over(14.88),   "kips/ft") \
    UNIT(GForcaLinear, lb_in,  "lb/in",  Over(5.6),    Times(5.6),    "lbs/in")  \
    UNIT(GForcaLinear, kgf_cm, "kgf/cm", AsIs,         AsIs)                     \
    UNIT(GForcaLinear, tf_cm,  "tf/cm",  Times(1000),  Times(0.001))

#define ZO_UNITS_TInercia(UNIT)                                \
    UNIT(GInercia, cm4, "cm4", AsIs,             AsIs)         \
    UNIT(GInercia, m4,  "m4",  Times(100000000), Times(1e-08)) \
    UNIT(GInercia, in4, "in4", Times(41.62),     Over(41.62))

#define ZO_UNITS_TIntensidade(UNIT)                                                  \
    UNIT(GIntensidade, cm_s,   "cm/s",   AsIs,                         AsIs)         \
    UNIT(GIntensidade, m_s,    "m/s",    Times(100),                   Times(0.01))  \
    UNIT(GIntensidade, mm_min, "mm/min", Times(0.0016666666666666668), Times(600))   \
    UNIT(GIntensidade, mm_h,   "mm/h",   Times(2.777777777777778e-05), Times(36000)) \
    UNIT(GIntensidade, m_min,  "m/min",  Times(1.6666666666666667),    Times(0.6))

// ftkip: the moment of one kip at one foot; applications expect this name.
#define ZO_UNITS_TMomento(UNIT)                                                      \
    UNIT(GMomento, kgfm,  "kgf.m",  Times(100),     Times(0.01))                     \
    UNIT(GMomento, tfm,   "tf.m",   Times(100000),  Times(1e-05))                    \
    UNIT(GMomento, kNm,   "kN.m",   Times(10000),   Over(10000))                     \
    UNIT(GMomento, kpm,   "kp.m",   Times(100),     Times(0.01))                     \
    UNIT(GMomento, ftkip, "tf.kip", Times(13825.5), Over(13825.5), "ft.kip|ft.kips") \
    UNIT(GMomento, ftlb,  "ft.lb",  Times(13.8255), Over(13.8255), "ft.lbs")         \
    UNIT(GMomento, kgfcm, "kgf.cm", AsIs,           AsIs)                            \
    UNIT(GMomento, tfcm,  "tf.cm",  Times(1000),    Times(0.001))

#define ZO_UNITS_TPeso(UNIT)                                                                        \
    UNIT(GPeso, kgf_m3,  "kgf/m³"_ansi,  Times(1e-06),  Times(1000000))                             \
    UNIT(GPeso, tf_m3,   "tf/m³"_ansi,   Times(0.001),  Times(1000))                                \
    UNIT(GPeso, kN_m3,   "kN/m³"_ansi,   Times(0.0001), Times(10000))                               \
    UNIT(GPeso, kp_m3,   "kp/m³"_ansi,   Times(1e-06),  Times(1000000))                             \
    UNIT(GPeso, lb_cuft, "lb/cu ft",     Over(62428),   Times(62428),   "lb/ft3|lbs/cu ft|lbs/ft3") \
    UNIT(GPeso, kgf_cm3, "kgf/cm³"_ansi, AsIs,          AsIs)

#define ZO_UNITS_TPoderCalorifico(UNIT)                         \
    UNIT(GPoderCalorifico, kcal_m3, "kcal/m³"_ansi, AsIs, AsIs)

// W: reading returns 1.0001577 times the value that was set.
#define ZO_UNITS_TPotencia(UNIT)                                                        \
    UNIT(GPotencia, kcal_s,   "kcal/s",   AsIs,                         AsIs)           \
    UNIT(GPotencia, kcal_min, "kcal/min", Times(0.016666666666666666),  Times(60))      \
    UNIT(GPotencia, kcal_h,   "kcal/h",   Times(0.0002777777777777778), Times(3600))    \
    UNIT(GPotencia, cv,       "CV",       Times(0.17574599782426456),   Times(5.69003)) \
    UNIT(GPotencia, watt,     "W",        Times(0.0002387),             Times(4190.02)) \
    UNIT(GPotencia, kwatt,    "kW",       Times(0.2386623),             Times(4.19002))

#define ZO_UNITS_TPressaoCoesao(UNIT)                                            \
    UNIT(GPressaoCoesao, kgf_cm2, "kgf/cm²"_ansi, AsIs,          AsIs)           \
    UNIT(GPressaoCoesao, tf_m2,   "tf/m²"_ansi,   Times(0.1),    Times(10))      \
    UNIT(GPressaoCoesao, kN_m2,   "kN/m²"_ansi,   Times(0.01),   Times(100))     \
    UNIT(GPressaoCoesao, kp_cm2,  "kp/cm²"_ansi,  AsIs,          AsIs)           \
    UNIT(GPressaoCoesao, psi,     "psi",          Over(14.22),   Times(14.22))   \
    UNIT(GPressaoCoesao, ksi,     "ksi",          Over(0.01422), Times(0.01422))

#define ZO_UNITS_TPressaoHidraulica(UNIT)                                            \
    UNIT(GPressaoHidraulica, cmca,    "cm.c.a.",      AsIs,           AsIs)          \
    UNIT(GPressaoHidraulica, mca,     "m.c.a.",       Times(100),     Times(0.01))   \
    UNIT(GPressaoHidraulica, mmca,    "mm.c.a.",      Times(0.1),     Times(10))     \
    UNIT(GPressaoHidraulica, kpa,     "kPa",          Times(10.1978), Over(10.1978)) \
    UNIT(GPressaoHidraulica, kgf_cm2, "kgf/cm²"_ansi, Times(1000),    Times(0.001))

#define ZO_UNITS_TPressaoTensao(UNIT)                                            \
    UNIT(GPressaoTensao, kgf_cm2, "kgf/cm²"_ansi, AsIs,          AsIs)           \
    UNIT(GPressaoTensao, tf_m2,   "tf/m²"_ansi,   Times(0.1),    Times(10))      \
    UNIT(GPressaoTensao, kN_cm2,  "kN/cm²"_ansi,  Times(100),    Over(100))      \
    UNIT(GPressaoTensao, MPa,     "MPa",          Times(10),     Times(0.1))     \
    UNIT(GPressaoTensao, kp_cm2,  "kp/cm²"_ansi,  AsIs,          AsIs)           \
    UNIT(GPressaoTensao, psi,     "psi",          Over(14.22),   Times(14.22))   \
    UNIT(GPressaoTensao, ksi,     "ksi",          Over(0.01422), Times(0.01422)) \
    UNIT(GPressaoTensao, tf_cm2,  "tf/cm²"_ansi,  Times(1000),   Times(0.001))

#define ZO_UNITS_TRecalque(UNIT)                                                                       \
    UNIT(GRecalque, kgf_cm3, "kgf/cm³"_ansi, AsIs,          AsIs)                                      \
    UNIT(GRecalque, tf_m3,   "tf/m³"_ansi,   Times(0.001),  Times(1000))                               \
    UNIT(GRecalque, kN_m3,   "kN/m³"_ansi,   Times(0.0001), Times(10000))                              \
    UNIT(GRecalque, kp_cm3,  "kp/cm³"_ansi,  AsIs,          AsIs)                                      \
    UNIT(GRecalque, lb_cuin, "lb/cu in",     Over(36.127),  Times(36.127), "lb/in3|lbs/cu in|lbs/in3")

#define ZO_UNITS_TTemperatura(UNIT)                                                                      \
    UNIT(GTemperatura, c, "ºC"_ansi, AsIs,                             AsIs)                             \
    UNIT(GTemperatura, f, "ºF"_ansi, Minus(32).Then(Over(FAHRENHEIT)), Times(FAHRENHEIT).Then(Plus(32))) \
    UNIT(GTemperatura, k, "ºK"_ansi, Minus(273.15),                    Plus(273.15))

#define ZO_UNITS_TTempo(UNIT)                                                       \
    UNIT(GTempo, s,      "s",   AsIs,         AsIs)                                 \
    UNIT(GTempo, minuto, "min", Times(60),    Over(60))                             \
    UNIT(GTempo, h,      "h",   Times(3600),  Over(3600))                           \
    UNIT(GTempo, dia,    "dia", Times(86400), Over(86400), "d|dias|days|días"_ansi) \
    UNIT(GTempo, ms,     "ms",  Times(0.001), Times(1000))

#define ZO_UNITS_TVazao(UNIT)                                                      \
    UNIT(GVazao, cm3_s,  "cm³/s"_ansi,  AsIs,                       AsIs)          \
    UNIT(GVazao, m3_s,   "m³/s"_ansi,   Times(1000000),             Times(1e-06))  \
    UNIT(GVazao, m3_h,   "m³/h"_ansi,   Times(277.7777777777778),   Times(0.0036)) \
    UNIT(GVazao, m3_dia, "m³/dia"_ansi, Times(11.57407407407407),   Times(0.0864)) \
    UNIT(GVazao, l_s,    "l/s",         Times(1000),                Times(0.001))  \
    UNIT(GVazao, l_min,  "l/min",       Times(16.66666666666667),   Times(0.06))   \
    UNIT(GVazao, l_dia,  "l/dia",       Times(0.01157407407407407), Times(86.4))

// mm_min: has no display name, but is read by its enumerator.
#define ZO_UNITS_TVelocidade(UNIT)                                                \
    UNIT(GVelocidade, cm_s,   "cm/s", AsIs,                         AsIs)         \
    UNIT(GVelocidade, m_s,    "m/s",  Times(100),                   Times(0.01))  \
    UNIT(GVelocidade, mm_h,   "mm/h", Times(2.777777777777778e-05), Times(36000)) \
    UNIT(GVelocidade, mm_min, "",     Times(0.0016666666666666668), Times(600))   \
    UNIT(GVelocidade, km_h,   "km/h", Times(27.77777777777778),     Times(0.036))

#define ZO_UNITS_TVolume(UNIT)                                           \
    UNIT(GVolume, cm3,  "cm³"_ansi, AsIs,           AsIs)                \
    UNIT(GVolume, m3,   "m³"_ansi,  Times(1000000), Times(1e-06))        \
    UNIT(GVolume, cuin, "cu in",    Times(16.387),  Over(16.387), "in3") \
    UNIT(GVolume, cuft, "cu ft",    Times(28317),   Over(28317),  "ft3") \
    UNIT(GVolume, l,    "l",        Times(1000),    Times(0.001))

// clang-format on
