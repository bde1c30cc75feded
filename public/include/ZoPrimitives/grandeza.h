#pragma once

// Values with a physical unit. A quantity stores one number in the storage unit of its class and converts
// when it is set and read:
//
//     GComprimento span(7.5, TComprimento::m);
//     span.cm();                            // 750
//     span += GComprimento(20.0);           // cm, the storage unit
//     span.Valor(TComprimento::ft);         // as span.ft()
//
// The units are those of the technical system in centimetres: kgf, cm, s, °C, with 1 kN = 100 kgf and 1 kp =
// 1 kgf by convention. A unit is an enumerator: its number may be stored, its name depends on the language in
// use. Applications rely on every bit of a conversion, including the oddities noted below.

#include "ZoPrimitives/GrandezaUnits.h"
#include "ZoPrimitives/ZoRegister.h"

#include <type_traits>

namespace ZoPrimitives {

/// Base of the quantities. Comparisons and arithmetic use the stored numbers, whatever their units; a plain
/// number counts as one in the storage unit.
class ZO_API Grandeza : public ZoObjectStreamable {
public:
    using ZoClass = Grandeza;

    Grandeza(double v);
    explicit Grandeza(StreamableInit init);
    Grandeza(const Grandeza& other);
    ~Grandeza() override;

    void operator=(const Grandeza& other);

    /// Compares exactly: NaN equals nothing.
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
    /// Division by zero always gives 1.797693e+308.
    Grandeza& operator/=(const Grandeza& other);

    /// In the storage unit.
    ZO_VALUE_ACCESSORS_(double, valor, {})

    static TZoClass* Register(TZoMetaData* schema);
    static void Unregister(TZoMetaData* schema);
    TZoClass* GetClass() const override;
    TZoClass* GetOriginalClass(TZoMetaData* schema) const override;
    ZoString StreamableClassName() const override;
    /// Text output: the handle, then the code 40 and the stored number with 15 significant digits.
    void Write(OutputStreamer& streamer) override;

protected:
    bool ReadData(int code, InputStreamer& streamer) override;
};

/// The result of reading a quantity from text; true when the text was understood.
struct TLeituraDeGrandeza {
    enum class TEsperado : int {
        Nada,
        Numero,
        Algarismo,
        Separador,
        Representavel,
        Unidade,
        Fim,
        MilharesJuntos
    };

    /// What was expected but not found; `Nada` when the text was understood.
    TEsperado esperado = TEsperado::Nada;
    /// The position in the text, from 0; the text's length if it ends too early.
    unsigned posicao = 0;
    /// The number of the unit that was read or, if none was written, assumed; -1 on failure.
    int unidade = -1;
    /// What was expected, in the language in use: "um algarismo", "uma unidade: cm, m".
    ZoString descricao;

    explicit operator bool() const { return esperado == TEsperado::Nada; }
};

// Every quantity has these, and an accessor for each unit, which returns what `Valor(unit)` returns.
//
// A number that is not a unit is ignored by `Valor(v, u)`, reads as 0 and has an empty name and text. Names
// are in the language in use. `Create` is the factory for readers.
//
// `Texto` writes the value as `FormatFloat` does, a space and the unit's name: "3,50 kN/m". `LeTexto` reads
// such texts and what people type: a sign, digits, the separator and more digits, an exponent, blanks and a
// unit: "-1e-3m", "2 kgf/cm2", "3. ft". `semUnidade` applies if no unit is written; if it is not a unit, one
// must be written. Thousands must not be grouped. If the text is refused, the value is unchanged.
//
// A unit is written by its name in any language or by its accessor's; "2" and "^2" also mean "²", and the
// degree sign means "º". Its parts may be joined by a point, a middle dot, a hyphen, an
// asterisk, blanks or nothing ("kN.m", "kNm", "sqin"); blanks may surround "/", and a point may end the name.
// Case is ignored except for M, because mega is neither milli nor metre; a name entirely in capitals is read
// too: "12 MM".
//
// A written value reads back as the same value, to its number of decimals (and the 15 digits of a double),
// except for W and kW, which do not convert back exactly, for the unit without a name, unless it is
// `semUnidade`, and for values that are not finite. The separator must be a punctuation mark and not a sign;
// others fail an assertion. No text makes `LeTexto` throw.
#define ZO_ENUMERATOR_(Class, unit, ...) unit,
#define ZO_ACCESSOR_(Class, unit, ...) double unit() const;
#define ZO_GRANDEZA_(Class, Unit)                                                                            \
public:                                                                                                      \
    using TUnidade = Unit;                                                                                   \
                                                                                                             \
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
    ZoString StreamableClassName() const override;                                                           \
    ZO_UNITS_##Unit(ZO_ACCESSOR_)

/// Angles. Kept in radians.
enum class TAngulo : int { ZO_UNITS_TAngulo(ZO_ENUMERATOR_) };
class ZO_API GAngulo : public Grandeza {
    ZO_GRANDEZA_(GAngulo, TAngulo)

    using Grandeza::operator==;
    using Grandeza::operator+=;
    void operator=(double radianos);
    /// Compares exactly.
    bool operator==(double radianos) const;
    bool operator==(const GAngulo& other) const { return valor == other.valor; }
    /// Does not reduce the sum to one turn.
    GAngulo& operator+=(double radianos);

    /// The angle in unit `u`, reduced to one turn as `AdjustAngle` does: below a full turn, or a full turn
    /// within rounding. Angles of more turns than 32 bits count are not reduced.
    double ValorAjustado(TAngulo u) const;
    /// Whether the angle, reduced to one turn, is a multiple of 90 degrees to 5 decimals of a degree.
    bool Ortogonal() const;
};

/// Areas. Kept in cm².
enum class TArea : int { ZO_UNITS_TArea(ZO_ENUMERATOR_) };
class ZO_API GArea : public Grandeza {
    ZO_GRANDEZA_(GArea, TArea)
};

/// Areas per metre, of reinforcement. Kept in cm²/m.
enum class TAreaM : int { ZO_UNITS_TAreaM(ZO_ENUMERATOR_) };
class ZO_API GAreaM : public Grandeza {
    ZO_GRANDEZA_(GAreaM, TAreaM)
};

/// Lengths. Kept in cm.
enum class TComprimento : int { ZO_UNITS_TComprimento(ZO_ENUMERATOR_) };
class ZO_API GComprimento : public Grandeza {
    ZO_GRANDEZA_(GComprimento, TComprimento)

    /// The length in cm on a drawing: multiplied by `escala`.
    double EmEscala(double escala) const;
    /// Asserts that a unit has that name, in the language in use.
    static TComprimento UnidadePorNome(const ZoString& nome);
};

/// Electric currents. Kept in A.
enum class TCorrente : int { ZO_UNITS_TCorrente(ZO_ENUMERATOR_) };
class ZO_API GCorrente : public Grandeza {
    ZO_GRANDEZA_(GCorrente, TCorrente)
};

/// Energies. Kept in kWh. One kcal counts as 859.84524 kWh, as applications expect.
enum class TEnergia : int { ZO_UNITS_TEnergia(ZO_ENUMERATOR_) };
class ZO_API GEnergia : public Grandeza {
    ZO_GRANDEZA_(GEnergia, TEnergia)
};

/// Loads on a surface. Kept in kgf/cm².
enum class TForcaArea : int { ZO_UNITS_TForcaArea(ZO_ENUMERATOR_) };
class ZO_API GForcaArea : public Grandeza {
    ZO_GRANDEZA_(GForcaArea, TForcaArea)
};

/// Forces. Kept in kgf.
enum class TForcaConcentrada : int { ZO_UNITS_TForcaConcentrada(ZO_ENUMERATOR_) };
class ZO_API GForcaConcentrada : public Grandeza {
    ZO_GRANDEZA_(GForcaConcentrada, TForcaConcentrada)
};

/// Loads on a line. Kept in kgf/cm.
enum class TForcaLinear : int { ZO_UNITS_TForcaLinear(ZO_ENUMERATOR_) };
class ZO_API GForcaLinear : public Grandeza {
    ZO_GRANDEZA_(GForcaLinear, TForcaLinear)
};

/// Second moments of area. Kept in cm⁴.
enum class TInercia : int { ZO_UNITS_TInercia(ZO_ENUMERATOR_) };
class ZO_API GInercia : public Grandeza {
    ZO_GRANDEZA_(GInercia, TInercia)
};

/// Intensities of rain, or of flow on an area. Kept in cm/s.
enum class TIntensidade : int { ZO_UNITS_TIntensidade(ZO_ENUMERATOR_) };
class ZO_API GIntensidade : public Grandeza {
    ZO_GRANDEZA_(GIntensidade, TIntensidade)
};

/// Moments. Kept in kgf·cm. `ftkip` is the moment of one kip at one foot; its name is "tf.kip".
enum class TMomento : int { ZO_UNITS_TMomento(ZO_ENUMERATOR_) };
class ZO_API GMomento : public Grandeza {
    ZO_GRANDEZA_(GMomento, TMomento)
};

/// Specific weights. Kept in kgf/cm³.
enum class TPeso : int { ZO_UNITS_TPeso(ZO_ENUMERATOR_) };
class ZO_API GPeso : public Grandeza {
    ZO_GRANDEZA_(GPeso, TPeso)
};

/// Calorific values. Kept in kcal/m³.
enum class TPoderCalorifico : int { ZO_UNITS_TPoderCalorifico(ZO_ENUMERATOR_) };
class ZO_API GPoderCalorifico : public Grandeza {
    ZO_GRANDEZA_(GPoderCalorifico, TPoderCalorifico)
};

/// Powers. Kept in kcal/s. W and kW do not convert back exactly: a value set in W reads 1.0001577 times as
/// large, one set in kW 0.9999998 times.
enum class TPotencia : int { ZO_UNITS_TPotencia(ZO_ENUMERATOR_) };
class ZO_API GPotencia : public Grandeza {
    ZO_GRANDEZA_(GPotencia, TPotencia)

    /// Asserts that a unit has that name, in the language in use.
    static TPotencia UnidadePorNome(const ZoString& nome);
};

/// Cohesions of soils. Kept in kgf/cm².
enum class TPressaoCoesao : int { ZO_UNITS_TPressaoCoesao(ZO_ENUMERATOR_) };
class ZO_API GPressaoCoesao : public Grandeza {
    ZO_GRANDEZA_(GPressaoCoesao, TPressaoCoesao)
};

/// Pressures of water. Kept in cm of water column.
enum class TPressaoHidraulica : int { ZO_UNITS_TPressaoHidraulica(ZO_ENUMERATOR_) };
class ZO_API GPressaoHidraulica : public Grandeza {
    ZO_GRANDEZA_(GPressaoHidraulica, TPressaoHidraulica)

    /// Ends the process if no unit has that name, in the language in use.
    static TPressaoHidraulica UnidadePorNome(const ZoString& nome);
};

/// Stresses. Kept in kgf/cm².
enum class TPressaoTensao : int { ZO_UNITS_TPressaoTensao(ZO_ENUMERATOR_) };
class ZO_API GPressaoTensao : public Grandeza {
    ZO_GRANDEZA_(GPressaoTensao, TPressaoTensao)
};

/// Moduli of subgrade reaction. Kept in kgf/cm³.
enum class TRecalque : int { ZO_UNITS_TRecalque(ZO_ENUMERATOR_) };
class ZO_API GRecalque : public Grandeza {
    ZO_GRANDEZA_(GRecalque, TRecalque)
};

/// Temperatures. Kept in degrees Celsius. A degree Celsius counts as 1.777777777777778 degrees Fahrenheit, as
/// applications expect.
enum class TTemperatura : int { ZO_UNITS_TTemperatura(ZO_ENUMERATOR_) };
class ZO_API GTemperatura : public Grandeza {
    ZO_GRANDEZA_(GTemperatura, TTemperatura)
};

/// Durations. Kept in s. `dia` is 24 hours.
enum class TTempo : int { ZO_UNITS_TTempo(ZO_ENUMERATOR_) };
class ZO_API GTempo : public Grandeza {
    ZO_GRANDEZA_(GTempo, TTempo)
};

/// Flow rates. Kept in cm³/s.
enum class TVazao : int { ZO_UNITS_TVazao(ZO_ENUMERATOR_) };
class ZO_API GVazao : public Grandeza {
    ZO_GRANDEZA_(GVazao, TVazao)

    /// Asserts that a unit has that name, in the language in use.
    static TVazao UnidadePorNome(const ZoString& nome);
};

/// Velocities. Kept in cm/s. `mm_min` has no name.
enum class TVelocidade : int { ZO_UNITS_TVelocidade(ZO_ENUMERATOR_) };
class ZO_API GVelocidade : public Grandeza {
    ZO_GRANDEZA_(GVelocidade, TVelocidade)
};

/// Volumes. Kept in cm³.
enum class TVolume : int { ZO_UNITS_TVolume(ZO_ENUMERATOR_) };
class ZO_API GVolume : public Grandeza {
    ZO_GRANDEZA_(GVolume, TVolume)
};

#undef ZO_GRANDEZA_
#undef ZO_ACCESSOR_
#undef ZO_ENUMERATOR_

/// Registers `Grandeza` and all of the above.
ZO_API void ZoRegisterGrandezas(TZoMetaData* schema);

} // namespace ZoPrimitives
