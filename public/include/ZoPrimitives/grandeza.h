#pragma once

// Values with a physical unit. A quantity holds one number in the storage unit of its class and converts on
// the way in and out:
//
//     GComprimento span(7.5, TComprimento::m);
//     span.cm();                            // 750
//     span += GComprimento(20.0);           // cm, the storage unit
//     span.Valor(TComprimento::ft);         // as span.ft()
//
// The units are those of the technical system in centimetres: kgf, cm, s, °C; by convention 1 kN = 100 kgf
// and 1 kp = 1 kgf. A unit is an enumerator; its number may be stored, its name depends on the language in
// use. Applications rely on every bit of a conversion, and on its oddities, which are told where they are.

#include "ZoPrimitives/ZoRegister.h"

#include <type_traits>

namespace ZoPrimitives {

/// Base of the quantities. Compares and computes with the stored numbers, whatever their units: in an
/// operation a plain number counts as one in the storage unit.
class ZO_API Grandeza : public ZoObjectStreamable {
public:
    using ZoClass = Grandeza;

    Grandeza(double v);
    explicit Grandeza(StreamableInit init);
    Grandeza(const Grandeza& other);
    ~Grandeza() override;

    void operator=(const Grandeza& other);

    /// Exact: NaN equals nothing.
    bool operator==(const Grandeza& other) const { return valor == other.valor; }
    bool operator!=(const Grandeza& other) const { return valor != other.valor; }
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    bool operator==(Number v) const {
        return valor == static_cast<double>(v);
    }
    template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
    bool operator!=(Number v) const {
        return valor != static_cast<double>(v);
    }
    using ZoObject::operator!=;
    /// False when `other` is not a quantity.
    bool operator==(const ZoObject& other) const override;

    operator double() const { return valor; }
    /// The nearest integer, halves away from zero; the nearest `int` when out of range, 0 for NaN.
    int Int() const;

    Grandeza& operator+=(const Grandeza& other);
    Grandeza& operator-=(const Grandeza& other);
    Grandeza& operator*=(const Grandeza& other);
    /// Divided by zero any value becomes 1.797693e+308.
    Grandeza& operator/=(const Grandeza& other);

    /// In the storage unit.
    DECLARE_ZO_FIELD(double, valor)

    static TZoClass* Register(TZoMetaData* schema);
    static void Unregister(TZoMetaData* schema);
    TZoClass* GetClass() const override;
    TZoClass* GetOriginalClass(TZoMetaData* schema) const override;
    ZoString StreamableClassName() const override;
    /// As text: the handle, then code 40 and the stored number in 15 significant digits.
    void Write(OutputStreamer& streamer) override;

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

/// What came of reading a quantity from text: true when the text was understood.
struct TLeituraDeGrandeza {
    enum class TEsperado : int { Nada, Numero, Algarismo, Separador, Representavel, Unidade, Fim };

    /// What was expected, and not found; `Nada` when the text was understood.
    TEsperado esperado = TEsperado::Nada;
    /// Where in the text, from 0; its length when the text ends too early.
    unsigned posicao = 0;
    /// The number of the unit that was read, or that counted as none was written; -1 without success.
    int unidade = -1;
    /// What was expected, in words of the language in use: "um algarismo", "uma unidade: cm, m".
    ZoString descricao;

    explicit operator bool() const { return esperado == TEsperado::Nada; }
};

// What every quantity has beside its accessors, one for each unit, which return what `Valor(unit)` returns.
//
// A number that is no unit is ignored by `Valor(v, u)`, reads 0 and has the name "" and the text "". Names
// are in the language in use. `Create` is the factory for readers.
//
// `Texto` writes the value in a unit as `FormatFloat` does, a space and the unit's name: "3,50 kN/m".
// `LeTexto` reads such a text, and what people type: a sign, digits, the separator with more digits, an
// exponent, blanks and a unit; "-1e-3m", "2 kgf/cm2". `semUnidade` counts where no unit is written; if it is
// no unit, one must be written. Thousands are not grouped. The value stays as it was when the text is
// refused.
//
// A unit is named in the language in use or by the library's own name, "²" being also "2" or "^2", "º" also
// the degree sign. Its letters may be in any case but for M, as mega is neither milli nor metre.
//
// What was written reads back to the same value as far as its decimals go (and the 15 digits of a double),
// but for W and kW, which do not quite convert back to themselves, for the unit without a name, unless it is
// `semUnidade`, and for values that are not finite. A separator is a punctuation mark, no sign: others fail
// an assertion. Nothing that a text holds throws.
#define ZO_GRANDEZA_(Class, Unit)                                                                            \
public:                                                                                                      \
    explicit Class(double v);                                                                                \
    Class(double v, Unit u);                                                                                 \
    explicit Class(StreamableInit init);                                                                     \
    Class(const Class& other);                                                                               \
    Class(Class&& other) noexcept;                                                                           \
    ~Class() override;                                                                                       \
    Class& operator=(const Class& other);                                                                    \
    Class& operator=(Class&& other) noexcept;                                                                \
                                                                                                             \
    void Valor(double v, Unit u);                                                                            \
    double Valor(Unit u) const;                                                                              \
    static ZoString NomeDaUnidade(Unit u);                                                                   \
    ZoString Texto(Unit u, unsigned decimais, bool manterZeros, char separador) const;                       \
    [[nodiscard]] TLeituraDeGrandeza LeTexto(const ZoString& texto, char separador, Unit semUnidade);        \
                                                                                                             \
    static TZoClass* Register(TZoMetaData* schema);                                                          \
    static void Unregister(TZoMetaData* schema);                                                             \
    static ZoStreamableBase* Create(TZoMetaData* fileSchema, TZoMetaData* schema, TZoClass* cls);            \
    TZoClass* GetClass() const override;                                                                     \
    TZoClass* GetOriginalClass(TZoMetaData* schema) const override;                                          \
    ZoString StreamableClassName() const override;

/// Angles. Kept in radians.
enum class TAngulo : int { Radianos, Graus };
class ZO_API GAngulo : public Grandeza {
    ZO_GRANDEZA_(GAngulo, TAngulo)
    double Radianos() const;
    double Graus() const;

    using Grandeza::operator==;
    using Grandeza::operator+=;
    void operator=(double radianos);
    /// Exact.
    bool operator==(double radianos) const;
    bool operator==(const GAngulo& other) const { return valor == other.valor; }
    /// Not brought back into one turn.
    GAngulo& operator+=(double radianos);

    /// In unit `u`, brought into one turn as far as `AdjustAngle` does: below a full turn, or that itself
    /// within rounding; angles of more turns than 32 bits count stay beyond.
    double ValorAjustado(TAngulo u) const;
    /// Whether the angle, within one turn, is a multiple of 90 degrees, to 5 decimals of a degree.
    bool Ortogonal() const;
};

/// Areas. Kept in cm².
enum class TArea : int { mm2, cm2, m2, sqin, sqft };
class ZO_API GArea : public Grandeza {
    ZO_GRANDEZA_(GArea, TArea)
    double mm2() const;
    double cm2() const;
    double m2() const;
    double sqin() const;
    double sqft() const;
};

/// Areas per metre, of reinforcement. Kept in cm²/m.
enum class TAreaM : int { cm2_m };
class ZO_API GAreaM : public Grandeza {
    ZO_GRANDEZA_(GAreaM, TAreaM)
    double cm2_m() const;
};

/// Lengths. Kept in cm.
enum class TComprimento : int { cm, m, in, ft, mm };
class ZO_API GComprimento : public Grandeza {
    ZO_GRANDEZA_(GComprimento, TComprimento)
    double cm() const;
    double m() const;
    double in() const;
    double ft() const;
    double mm() const;

    /// The length in cm on a drawing: times `escala`.
    double EmEscala(double escala) const;
    /// Asserts that some unit has that name, in the language in use.
    static TComprimento UnidadePorNome(const ZoString& nome);
};

/// Electric currents. Kept in A.
enum class TCorrente : int { a, ka };
class ZO_API GCorrente : public Grandeza {
    ZO_GRANDEZA_(GCorrente, TCorrente)
    double a() const;
    double ka() const;
};

/// Energies. Kept in kWh. One kcal counts as 859.84524 kWh: applications expect it.
enum class TEnergia : int { kwh, kcal };
class ZO_API GEnergia : public Grandeza {
    ZO_GRANDEZA_(GEnergia, TEnergia)
    double kwh() const;
    double kcal() const;
};

/// Loads on a surface. Kept in kgf/cm².
enum class TForcaArea : int { kgf_m2, tf_m2, kN_m2, kp_m2, psf, ksf, kgf_cm2 };
class ZO_API GForcaArea : public Grandeza {
    ZO_GRANDEZA_(GForcaArea, TForcaArea)
    double kgf_m2() const;
    double tf_m2() const;
    double kN_m2() const;
    double kp_m2() const;
    double psf() const;
    double ksf() const;
    double kgf_cm2() const;
};

/// Forces. Kept in kgf.
enum class TForcaConcentrada : int { kgf, tf, kN, kp, lb, kip };
class ZO_API GForcaConcentrada : public Grandeza {
    ZO_GRANDEZA_(GForcaConcentrada, TForcaConcentrada)
    double kgf() const;
    double tf() const;
    double kN() const;
    double kp() const;
    double lb() const;
    double kip() const;
};

/// Loads on a line. Kept in kgf/cm.
enum class TForcaLinear : int { kgf_m, tf_m, kN_m, kp_m, lb_ft, kip_ft, lb_in, kgf_cm, tf_cm };
class ZO_API GForcaLinear : public Grandeza {
    ZO_GRANDEZA_(GForcaLinear, TForcaLinear)
    double kgf_m() const;
    double tf_m() const;
    double kN_m() const;
    double kp_m() const;
    double lb_ft() const;
    double kip_ft() const;
    double lb_in() const;
    double kgf_cm() const;
    double tf_cm() const;
};

/// Second moments of area. Kept in cm⁴.
enum class TInercia : int { cm4, m4, in4 };
class ZO_API GInercia : public Grandeza {
    ZO_GRANDEZA_(GInercia, TInercia)
    double cm4() const;
    double m4() const;
    double in4() const;
};

/// Intensities of rain, or of flow on an area. Kept in cm/s.
enum class TIntensidade : int { cm_s, m_s, mm_min, mm_h, m_min };
class ZO_API GIntensidade : public Grandeza {
    ZO_GRANDEZA_(GIntensidade, TIntensidade)
    double cm_s() const;
    double m_s() const;
    double mm_min() const;
    double mm_h() const;
    double m_min() const;
};

/// Moments. Kept in kgf·cm. `ftkip` is the moment of a kip at one foot, and is named "tf.kip".
enum class TMomento : int { kgfm, tfm, kNm, kpm, ftkip, ftlb, kgfcm, tfcm };
class ZO_API GMomento : public Grandeza {
    ZO_GRANDEZA_(GMomento, TMomento)
    double kgfm() const;
    double tfm() const;
    double kNm() const;
    double kpm() const;
    double ftkip() const;
    double ftlb() const;
    double kgfcm() const;
    double tfcm() const;
};

/// Specific weights. Kept in kgf/cm³.
enum class TPeso : int { kgf_m3, tf_m3, kN_m3, kp_m3, lb_cuft, kgf_cm3 };
class ZO_API GPeso : public Grandeza {
    ZO_GRANDEZA_(GPeso, TPeso)
    double kgf_m3() const;
    double tf_m3() const;
    double kN_m3() const;
    double kp_m3() const;
    double lb_cuft() const;
    double kgf_cm3() const;
};

/// Calorific values. Kept in kcal/m³.
enum class TPoderCalorifico : int { kcal_m3 };
class ZO_API GPoderCalorifico : public Grandeza {
    ZO_GRANDEZA_(GPoderCalorifico, TPoderCalorifico)
    double kcal_m3() const;
};

/// Powers. Kept in kcal/s. W and kW do not convert back to themselves: what was set in W reads 1.0001577
/// times as much in W, what was set in kW 0.9999998 times.
enum class TPotencia : int { kcal_s, kcal_min, kcal_h, cv, watt, kwatt };
class ZO_API GPotencia : public Grandeza {
    ZO_GRANDEZA_(GPotencia, TPotencia)
    double kcal_s() const;
    double kcal_min() const;
    double kcal_h() const;
    double cv() const;
    double watt() const;
    double kwatt() const;

    /// Asserts that some unit has that name, in the language in use.
    static TPotencia UnidadePorNome(const ZoString& nome);
};

/// Cohesions of soils. Kept in kgf/cm².
enum class TPressaoCoesao : int { kgf_cm2, tf_m2, kN_m2, kp_cm2, psi, ksi };
class ZO_API GPressaoCoesao : public Grandeza {
    ZO_GRANDEZA_(GPressaoCoesao, TPressaoCoesao)
    double kgf_cm2() const;
    double tf_m2() const;
    double kN_m2() const;
    double kp_cm2() const;
    double psi() const;
    double ksi() const;
};

/// Pressures of water. Kept in cm of water column.
enum class TPressaoHidraulica : int { cmca, mca, mmca, kpa, kgf_cm2 };
class ZO_API GPressaoHidraulica : public Grandeza {
    ZO_GRANDEZA_(GPressaoHidraulica, TPressaoHidraulica)
    double cmca() const;
    double mca() const;
    double mmca() const;
    double kpa() const;
    double kgf_cm2() const;

    /// Ends the process when no unit has that name, in the language in use.
    static TPressaoHidraulica UnidadePorNome(const ZoString& nome);
};

/// Stresses. Kept in kgf/cm².
enum class TPressaoTensao : int { kgf_cm2, tf_m2, kN_cm2, MPa, kp_cm2, psi, ksi, tf_cm2 };
class ZO_API GPressaoTensao : public Grandeza {
    ZO_GRANDEZA_(GPressaoTensao, TPressaoTensao)
    double kgf_cm2() const;
    double tf_m2() const;
    double kN_cm2() const;
    double MPa() const;
    double kp_cm2() const;
    double psi() const;
    double ksi() const;
    double tf_cm2() const;
};

/// Moduli of subgrade reaction. Kept in kgf/cm³.
enum class TRecalque : int { kgf_cm3, tf_m3, kN_m3, kp_cm3, lb_cuin };
class ZO_API GRecalque : public Grandeza {
    ZO_GRANDEZA_(GRecalque, TRecalque)
    double kgf_cm3() const;
    double tf_m3() const;
    double kN_m3() const;
    double kp_cm3() const;
    double lb_cuin() const;
};

/// Temperatures. Kept in degrees Celsius. A degree Celsius counts as 1.777777777777778 degrees Fahrenheit:
/// applications expect it.
enum class TTemperatura : int { c, f, k };
class ZO_API GTemperatura : public Grandeza {
    ZO_GRANDEZA_(GTemperatura, TTemperatura)
    double c() const;
    double f() const;
    double k() const;
};

/// Durations. Kept in s. `dia` is 24 hours.
enum class TTempo : int { s, minuto, h, dia, ms };
class ZO_API GTempo : public Grandeza {
    ZO_GRANDEZA_(GTempo, TTempo)
    double s() const;
    double minuto() const;
    double h() const;
    double dia() const;
    double ms() const;
};

/// Flow rates. Kept in cm³/s.
enum class TVazao : int { cm3_s, m3_s, m3_h, m3_dia, l_s, l_min, l_dia };
class ZO_API GVazao : public Grandeza {
    ZO_GRANDEZA_(GVazao, TVazao)
    double cm3_s() const;
    double m3_s() const;
    double m3_h() const;
    double m3_dia() const;
    double l_s() const;
    double l_min() const;
    double l_dia() const;

    /// Asserts that some unit has that name, in the language in use.
    static TVazao UnidadePorNome(const ZoString& nome);
};

/// Velocities. Kept in cm/s. `mm_min` has no name.
enum class TVelocidade : int { cm_s, m_s, mm_h, mm_min, km_h };
class ZO_API GVelocidade : public Grandeza {
    ZO_GRANDEZA_(GVelocidade, TVelocidade)
    double cm_s() const;
    double m_s() const;
    double mm_h() const;
    double mm_min() const;
    double km_h() const;
};

/// Volumes. Kept in cm³.
enum class TVolume : int { cm3, m3, cuin, cuft, l };
class ZO_API GVolume : public Grandeza {
    ZO_GRANDEZA_(GVolume, TVolume)
    double cm3() const;
    double m3() const;
    double cuin() const;
    double cuft() const;
    double l() const;
};

#undef ZO_GRANDEZA_

/// Registers `Grandeza` and all of the above.
ZO_API void ZoRegisterGrandezas(TZoMetaData* schema);

} // namespace ZoPrimitives
