#include "ZoPrimitives/grandeza.h"

#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/Math2.h"
#include "ZoPrimitives/OutputStreamer.h"
#include "ZoPrimitives/UnitTables.h"
#include "ZoPrimitives/UnitText.h"

#include <cstdlib>
#include <limits>

namespace ZoPrimitives {

namespace {

constexpr const char* SOURCE = "cpp/ZoPrimitives/grandeza";

/// What division by zero gives: finite, a little below the largest double.
constexpr double DIVIDED_BY_ZERO = 1.797693e+308;
/// Up to here a positive number counts as a negative one in `Int`.
constexpr double INT_ZERO = 1e-21;

/// The group code of the stored number in a text.
constexpr int VALOR_CODE = 40;

/// The number of a quantity's class in the process; 0 before this module is initialised.
template <class Quantity>
const unsigned SLOT = ZoNewClassSlot();

template <class Quantity>
ZoRegistration Registration(TZoMetaData* schema, const char* name, const char* parent,
                            TZoCreateFunction create) {
    return {schema, name, {parent, "NULL", "NULL"}, create, false, typeid(Quantity), SLOT<Quantity>};
}

// The engine of all quantities.

void Store(UnitTable table, double v, int unit, double& valor) {
    if (const UnitRow* row = FindUnit(table, unit)) valor = row->stored(v);
}

double ValueIn(UnitTable table, int unit, double valor) {
    const UnitRow* row = FindUnit(table, unit);
    return row != nullptr ? row->reading(valor) : 0.0;
}

ZoString UnitName(UnitTable table, int unit) {
    const UnitRow* row = FindUnit(table, unit);
    if (row == nullptr || *row->name == '\0') return ZoString();
    return TranslatedName(row->name);
}

/// The first unit, in the order of the class's tries, that has the name; null for none.
template <class Unit>
const Unit* FindUnitByName(const ZoString& name) {
    for (const Unit& unit : Units<Unit>::tries) {
        if (UnitName(Units<Unit>::rows, static_cast<int>(unit)) == name) return &unit;
    }
    return nullptr;
}

template <class Unit>
Unit UnitByName(const ZoString& name) {
    const Unit* unit = FindUnitByName<Unit>(name);
    if (unit == nullptr) AssertWithFunctor("false", "Nome da unidade incorreto.", SOURCE, __LINE__);
    return *unit;
}

/// The conversion of a named accessor, known when it is compiled.
template <auto UNIT>
double In(double valor) {
    constexpr UnitConversion reading = Units<decltype(UNIT)>::rows[static_cast<int>(UNIT)].reading;
    return reading(valor);
}

/// The number of the unit that does not quite convert back to itself; -1 for none.
template <class Unit>
constexpr int LooseUnit() {
    if constexpr (requires { Units<Unit>::loose; }) return static_cast<int>(Units<Unit>::loose);
    return -1;
}

template <class Unit>
constexpr bool TriesEachUnitOnce() {
    if constexpr (requires { Units<Unit>::tries; }) {
        unsigned tried = 0;
        for (const Unit unit : Units<Unit>::tries) tried |= 1u << static_cast<int>(unit);
        return std::size(Units<Unit>::tries) == std::size(Units<Unit>::rows) &&
               tried + 1 == 1u << std::size(Units<Unit>::rows);
    }
    return true;
}

} // namespace

Grandeza::Grandeza(double v) : valor(v) {}
Grandeza::Grandeza(StreamableInit init) : ZoObjectStreamable(init) {}
Grandeza::Grandeza(const Grandeza& other) = default;
Grandeza::~Grandeza() = default;

void Grandeza::operator=(const Grandeza& other) { valor = other.valor; }

bool Grandeza::operator==(const ZoObject& other) const {
    const auto* quantity = dynamic_cast<const Grandeza*>(&other);
    return quantity != nullptr && valor == quantity->valor;
}

int Grandeza::Int() const {
    const double shifted = valor > INT_ZERO ? valor + 0.5 : valor - 0.5;
    if (shifted != shifted) return 0;
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    if (shifted <= lowest) return lowest;
    return shifted >= highest ? highest : static_cast<int>(shifted);
}

Grandeza& Grandeza::operator+=(const Grandeza& other) {
    valor += other.valor;
    return *this;
}
Grandeza& Grandeza::operator-=(const Grandeza& other) {
    valor -= other.valor;
    return *this;
}
Grandeza& Grandeza::operator*=(const Grandeza& other) {
    valor *= other.valor;
    return *this;
}
Grandeza& Grandeza::operator/=(const Grandeza& other) {
    valor = other.valor == 0.0 ? DIVIDED_BY_ZERO : valor / other.valor;
    return *this;
}

TZoClass* Grandeza::Register(TZoMetaData* schema) {
    auto registration = Registration<Grandeza>(schema, "Grandeza", "0", ZoCreateInstance<Grandeza>);
    registration.SetHooks(ZoHooksOf<Grandeza>());
    registration.AddField(Getfieldclassfor_valor, Addfieldfor_valor);
    return registration.Finish();
}
void Grandeza::Unregister(TZoMetaData* schema) { schema->ExcludeClass("Grandeza"); }
TZoClass* Grandeza::GetClass() const { return TZoMetaData::FindClassOf(*this, SLOT<Grandeza>); }
TZoClass* Grandeza::GetOriginalClass(TZoMetaData* schema) const {
    return schema->FindClass(SLOT<Grandeza>, "Grandeza", typeid(Grandeza));
}
ZoString Grandeza::StreamableClassName() const { return "Grandeza"; }

void Grandeza::Write(OutputStreamer& streamer) {
    ZoObjectStreamable::Write(streamer);
    streamer << VALOR_CODE << valor;
}
bool Grandeza::ReadData(int code, InputStreamer& streamer) {
    if (code != VALOR_CODE) return ZoObjectStreamable::ReadData(code, streamer);
    streamer >> valor;
    return true;
}

#define ZO_GRANDEZA_BODY(Class, Unit)                                                                        \
    Class::Class(double v) : Grandeza(v) {}                                                                  \
    Class::Class(double v, Unit u) : Grandeza(0.0) { Valor(v, u); }                                          \
    Class::Class(StreamableInit init) : Grandeza(init) {}                                                    \
    Class::Class(const Class& other) = default;                                                              \
    Class::Class(Class&& other) noexcept : Grandeza(other) {}                                                \
    Class::~Class() = default;                                                                               \
    Class& Class::operator=(const Class& other) {                                                            \
        valor = other.valor;                                                                                 \
        return *this;                                                                                        \
    }                                                                                                        \
    Class& Class::operator=(Class&& other) noexcept {                                                        \
        valor = other.valor;                                                                                 \
        return *this;                                                                                        \
    }                                                                                                        \
    void Class::Valor(double v, Unit u) { Store(Units<Unit>::rows, v, static_cast<int>(u), valor); }         \
    double Class::Valor(Unit u) const { return ValueIn(Units<Unit>::rows, static_cast<int>(u), valor); }     \
    ZoString Class::NomeDaUnidade(Unit u) { return UnitName(Units<Unit>::rows, static_cast<int>(u)); }       \
    ZoString Class::Texto(Unit u, unsigned decimais, bool manterZeros, char separador) const {               \
        return WriteQuantity(Units<Unit>::rows, static_cast<int>(u), valor, decimais, manterZeros,           \
                             separador);                                                                     \
    }                                                                                                        \
    TLeituraDeGrandeza Class::LeTexto(const ZoString& texto, char separador, Unit semUnidade) {              \
        return ReadQuantity(Units<Unit>::rows, texto, separador, static_cast<int>(semUnidade), valor);       \
    }                                                                                                        \
    TZoClass* Class::Register(TZoMetaData* schema) {                                                         \
        auto registration = Registration<Class>(schema, #Class, "Grandeza", Create);                         \
        registration.SetHooks(ZoHooksOf<Class>());                                                           \
        return registration.Finish();                                                                        \
    }                                                                                                        \
    void Class::Unregister(TZoMetaData* schema) { schema->ExcludeClass(#Class); }                            \
    ZoStreamableBase* Class::Create(TZoMetaData* fileSchema, TZoMetaData* schema, TZoClass* cls) {           \
        return ZoCreateInstance<Class>(fileSchema, schema, cls);                                             \
    }                                                                                                        \
    TZoClass* Class::GetClass() const { return TZoMetaData::FindClassOf(*this, SLOT<Class>); }               \
    TZoClass* Class::GetOriginalClass(TZoMetaData* schema) const {                                           \
        return schema->FindClass(SLOT<Class>, #Class, typeid(Class));                                        \
    }                                                                                                        \
    ZoString Class::StreamableClassName() const { return #Class; }                                           \
    static_assert(UnitsAreInOrder(Units<Unit>::rows), "one row for each enumerator, in their order");        \
    static_assert(UnitNamesDiffer(Units<Unit>::rows), "a unit's name stands twice");                         \
    static_assert(UnitNamesReadApart(Units<Unit>::rows), "two units' names read alike");                     \
    static_assert(HasStorageUnit(Units<Unit>::rows), "the storage unit is stored and read as it is");        \
    static_assert(UnitsConvertBack(Units<Unit>::rows, LooseUnit<Unit>()), "reading must undo storing");      \
    static_assert(TriesEachUnitOnce<Unit>(), "UnidadePorNome tries each unit once");

ZO_GRANDEZA_BODY(GAngulo, TAngulo)
double GAngulo::Radianos() const { return In<TAngulo::Radianos>(valor); }
double GAngulo::Graus() const { return In<TAngulo::Graus>(valor); }
void GAngulo::operator=(double radianos) { valor = radianos; }
bool GAngulo::operator==(double radianos) const { return valor == radianos; }
GAngulo& GAngulo::operator+=(double radianos) {
    valor += radianos;
    return *this;
}
double GAngulo::ValorAjustado(TAngulo u) const { return GAngulo(AdjustAngle(valor)).Valor(u); }
bool GAngulo::Ortogonal() const {
    const double degrees = ValorAjustado(TAngulo::Graus);
    for (const double multiple : {0.0, 90.0, 180.0, 270.0, 360.0}) {
        if (Equal(degrees, multiple, 5)) return true;
    }
    return false;
}

ZO_GRANDEZA_BODY(GArea, TArea)
double GArea::mm2() const { return In<TArea::mm2>(valor); }
double GArea::cm2() const { return In<TArea::cm2>(valor); }
double GArea::m2() const { return In<TArea::m2>(valor); }
double GArea::sqin() const { return In<TArea::sqin>(valor); }
double GArea::sqft() const { return In<TArea::sqft>(valor); }

ZO_GRANDEZA_BODY(GAreaM, TAreaM)
double GAreaM::cm2_m() const { return In<TAreaM::cm2_m>(valor); }

ZO_GRANDEZA_BODY(GComprimento, TComprimento)
double GComprimento::cm() const { return In<TComprimento::cm>(valor); }
double GComprimento::m() const { return In<TComprimento::m>(valor); }
double GComprimento::in() const { return In<TComprimento::in>(valor); }
double GComprimento::ft() const { return In<TComprimento::ft>(valor); }
double GComprimento::mm() const { return In<TComprimento::mm>(valor); }
double GComprimento::EmEscala(double escala) const { return valor * escala; }
TComprimento GComprimento::UnidadePorNome(const ZoString& nome) { return UnitByName<TComprimento>(nome); }

ZO_GRANDEZA_BODY(GCorrente, TCorrente)
double GCorrente::a() const { return In<TCorrente::a>(valor); }
double GCorrente::ka() const { return In<TCorrente::ka>(valor); }

ZO_GRANDEZA_BODY(GEnergia, TEnergia)
double GEnergia::kwh() const { return In<TEnergia::kwh>(valor); }
double GEnergia::kcal() const { return In<TEnergia::kcal>(valor); }

ZO_GRANDEZA_BODY(GForcaArea, TForcaArea)
double GForcaArea::kgf_m2() const { return In<TForcaArea::kgf_m2>(valor); }
double GForcaArea::tf_m2() const { return In<TForcaArea::tf_m2>(valor); }
double GForcaArea::kN_m2() const { return In<TForcaArea::kN_m2>(valor); }
double GForcaArea::kp_m2() const { return In<TForcaArea::kp_m2>(valor); }
double GForcaArea::psf() const { return In<TForcaArea::psf>(valor); }
double GForcaArea::ksf() const { return In<TForcaArea::ksf>(valor); }
double GForcaArea::kgf_cm2() const { return In<TForcaArea::kgf_cm2>(valor); }

ZO_GRANDEZA_BODY(GForcaConcentrada, TForcaConcentrada)
double GForcaConcentrada::kgf() const { return In<TForcaConcentrada::kgf>(valor); }
double GForcaConcentrada::tf() const { return In<TForcaConcentrada::tf>(valor); }
double GForcaConcentrada::kN() const { return In<TForcaConcentrada::kN>(valor); }
double GForcaConcentrada::kp() const { return In<TForcaConcentrada::kp>(valor); }
double GForcaConcentrada::lb() const { return In<TForcaConcentrada::lb>(valor); }
double GForcaConcentrada::kip() const { return In<TForcaConcentrada::kip>(valor); }

ZO_GRANDEZA_BODY(GForcaLinear, TForcaLinear)
double GForcaLinear::kgf_m() const { return In<TForcaLinear::kgf_m>(valor); }
double GForcaLinear::tf_m() const { return In<TForcaLinear::tf_m>(valor); }
double GForcaLinear::kN_m() const { return In<TForcaLinear::kN_m>(valor); }
double GForcaLinear::kp_m() const { return In<TForcaLinear::kp_m>(valor); }
double GForcaLinear::lb_ft() const { return In<TForcaLinear::lb_ft>(valor); }
double GForcaLinear::kip_ft() const { return In<TForcaLinear::kip_ft>(valor); }
double GForcaLinear::lb_in() const { return In<TForcaLinear::lb_in>(valor); }
double GForcaLinear::kgf_cm() const { return In<TForcaLinear::kgf_cm>(valor); }
double GForcaLinear::tf_cm() const { return In<TForcaLinear::tf_cm>(valor); }

ZO_GRANDEZA_BODY(GInercia, TInercia)
double GInercia::cm4() const { return In<TInercia::cm4>(valor); }
double GInercia::m4() const { return In<TInercia::m4>(valor); }
double GInercia::in4() const { return In<TInercia::in4>(valor); }

ZO_GRANDEZA_BODY(GIntensidade, TIntensidade)
double GIntensidade::cm_s() const { return In<TIntensidade::cm_s>(valor); }
double GIntensidade::m_s() const { return In<TIntensidade::m_s>(valor); }
double GIntensidade::mm_min() const { return In<TIntensidade::mm_min>(valor); }
double GIntensidade::mm_h() const { return In<TIntensidade::mm_h>(valor); }
double GIntensidade::m_min() const { return In<TIntensidade::m_min>(valor); }

ZO_GRANDEZA_BODY(GMomento, TMomento)
double GMomento::kgfm() const { return In<TMomento::kgfm>(valor); }
double GMomento::tfm() const { return In<TMomento::tfm>(valor); }
double GMomento::kNm() const { return In<TMomento::kNm>(valor); }
double GMomento::kpm() const { return In<TMomento::kpm>(valor); }
double GMomento::ftkip() const { return In<TMomento::ftkip>(valor); }
double GMomento::ftlb() const { return In<TMomento::ftlb>(valor); }
double GMomento::kgfcm() const { return In<TMomento::kgfcm>(valor); }
double GMomento::tfcm() const { return In<TMomento::tfcm>(valor); }

ZO_GRANDEZA_BODY(GPeso, TPeso)
double GPeso::kgf_m3() const { return In<TPeso::kgf_m3>(valor); }
double GPeso::tf_m3() const { return In<TPeso::tf_m3>(valor); }
double GPeso::kN_m3() const { return In<TPeso::kN_m3>(valor); }
double GPeso::kp_m3() const { return In<TPeso::kp_m3>(valor); }
double GPeso::lb_cuft() const { return In<TPeso::lb_cuft>(valor); }
double GPeso::kgf_cm3() const { return In<TPeso::kgf_cm3>(valor); }

ZO_GRANDEZA_BODY(GPoderCalorifico, TPoderCalorifico)
double GPoderCalorifico::kcal_m3() const { return In<TPoderCalorifico::kcal_m3>(valor); }

ZO_GRANDEZA_BODY(GPotencia, TPotencia)
double GPotencia::kcal_s() const { return In<TPotencia::kcal_s>(valor); }
double GPotencia::kcal_min() const { return In<TPotencia::kcal_min>(valor); }
double GPotencia::kcal_h() const { return In<TPotencia::kcal_h>(valor); }
double GPotencia::cv() const { return In<TPotencia::cv>(valor); }
double GPotencia::watt() const { return In<TPotencia::watt>(valor); }
double GPotencia::kwatt() const { return In<TPotencia::kwatt>(valor); }
TPotencia GPotencia::UnidadePorNome(const ZoString& nome) { return UnitByName<TPotencia>(nome); }

ZO_GRANDEZA_BODY(GPressaoCoesao, TPressaoCoesao)
double GPressaoCoesao::kgf_cm2() const { return In<TPressaoCoesao::kgf_cm2>(valor); }
double GPressaoCoesao::tf_m2() const { return In<TPressaoCoesao::tf_m2>(valor); }
double GPressaoCoesao::kN_m2() const { return In<TPressaoCoesao::kN_m2>(valor); }
double GPressaoCoesao::kp_cm2() const { return In<TPressaoCoesao::kp_cm2>(valor); }
double GPressaoCoesao::psi() const { return In<TPressaoCoesao::psi>(valor); }
double GPressaoCoesao::ksi() const { return In<TPressaoCoesao::ksi>(valor); }

ZO_GRANDEZA_BODY(GPressaoHidraulica, TPressaoHidraulica)
double GPressaoHidraulica::cmca() const { return In<TPressaoHidraulica::cmca>(valor); }
double GPressaoHidraulica::mca() const { return In<TPressaoHidraulica::mca>(valor); }
double GPressaoHidraulica::mmca() const { return In<TPressaoHidraulica::mmca>(valor); }
double GPressaoHidraulica::kpa() const { return In<TPressaoHidraulica::kpa>(valor); }
double GPressaoHidraulica::kgf_cm2() const { return In<TPressaoHidraulica::kgf_cm2>(valor); }
TPressaoHidraulica GPressaoHidraulica::UnidadePorNome(const ZoString& nome) {
    const TPressaoHidraulica* unit = FindUnitByName<TPressaoHidraulica>(nome);
    if (unit == nullptr) std::abort();
    return *unit;
}

ZO_GRANDEZA_BODY(GPressaoTensao, TPressaoTensao)
double GPressaoTensao::kgf_cm2() const { return In<TPressaoTensao::kgf_cm2>(valor); }
double GPressaoTensao::tf_m2() const { return In<TPressaoTensao::tf_m2>(valor); }
double GPressaoTensao::kN_cm2() const { return In<TPressaoTensao::kN_cm2>(valor); }
double GPressaoTensao::MPa() const { return In<TPressaoTensao::MPa>(valor); }
double GPressaoTensao::kp_cm2() const { return In<TPressaoTensao::kp_cm2>(valor); }
double GPressaoTensao::psi() const { return In<TPressaoTensao::psi>(valor); }
double GPressaoTensao::ksi() const { return In<TPressaoTensao::ksi>(valor); }
double GPressaoTensao::tf_cm2() const { return In<TPressaoTensao::tf_cm2>(valor); }

ZO_GRANDEZA_BODY(GRecalque, TRecalque)
double GRecalque::kgf_cm3() const { return In<TRecalque::kgf_cm3>(valor); }
double GRecalque::tf_m3() const { return In<TRecalque::tf_m3>(valor); }
double GRecalque::kN_m3() const { return In<TRecalque::kN_m3>(valor); }
double GRecalque::kp_cm3() const { return In<TRecalque::kp_cm3>(valor); }
double GRecalque::lb_cuin() const { return In<TRecalque::lb_cuin>(valor); }

ZO_GRANDEZA_BODY(GTemperatura, TTemperatura)
double GTemperatura::c() const { return In<TTemperatura::c>(valor); }
double GTemperatura::f() const { return In<TTemperatura::f>(valor); }
double GTemperatura::k() const { return In<TTemperatura::k>(valor); }

ZO_GRANDEZA_BODY(GTempo, TTempo)
double GTempo::s() const { return In<TTempo::s>(valor); }
double GTempo::minuto() const { return In<TTempo::minuto>(valor); }
double GTempo::h() const { return In<TTempo::h>(valor); }
double GTempo::dia() const { return In<TTempo::dia>(valor); }
double GTempo::ms() const { return In<TTempo::ms>(valor); }

ZO_GRANDEZA_BODY(GVazao, TVazao)
double GVazao::cm3_s() const { return In<TVazao::cm3_s>(valor); }
double GVazao::m3_s() const { return In<TVazao::m3_s>(valor); }
double GVazao::m3_h() const { return In<TVazao::m3_h>(valor); }
double GVazao::m3_dia() const { return In<TVazao::m3_dia>(valor); }
double GVazao::l_s() const { return In<TVazao::l_s>(valor); }
double GVazao::l_min() const { return In<TVazao::l_min>(valor); }
double GVazao::l_dia() const { return In<TVazao::l_dia>(valor); }
TVazao GVazao::UnidadePorNome(const ZoString& nome) { return UnitByName<TVazao>(nome); }

ZO_GRANDEZA_BODY(GVelocidade, TVelocidade)
double GVelocidade::cm_s() const { return In<TVelocidade::cm_s>(valor); }
double GVelocidade::m_s() const { return In<TVelocidade::m_s>(valor); }
double GVelocidade::mm_h() const { return In<TVelocidade::mm_h>(valor); }
double GVelocidade::mm_min() const { return In<TVelocidade::mm_min>(valor); }
double GVelocidade::km_h() const { return In<TVelocidade::km_h>(valor); }

ZO_GRANDEZA_BODY(GVolume, TVolume)
double GVolume::cm3() const { return In<TVolume::cm3>(valor); }
double GVolume::m3() const { return In<TVolume::m3>(valor); }
double GVolume::cuin() const { return In<TVolume::cuin>(valor); }
double GVolume::cuft() const { return In<TVolume::cuft>(valor); }
double GVolume::l() const { return In<TVolume::l>(valor); }

void ZoRegisterGrandezas(TZoMetaData* schema) {
    Grandeza::Register(schema);
    GAngulo::Register(schema);
    GArea::Register(schema);
    GAreaM::Register(schema);
    GComprimento::Register(schema);
    GCorrente::Register(schema);
    GEnergia::Register(schema);
    GForcaArea::Register(schema);
    GForcaConcentrada::Register(schema);
    GForcaLinear::Register(schema);
    GInercia::Register(schema);
    GIntensidade::Register(schema);
    GMomento::Register(schema);
    GPeso::Register(schema);
    GPoderCalorifico::Register(schema);
    GPotencia::Register(schema);
    GPressaoCoesao::Register(schema);
    GPressaoHidraulica::Register(schema);
    GPressaoTensao::Register(schema);
    GRecalque::Register(schema);
    GTemperatura::Register(schema);
    GTempo::Register(schema);
    GVazao::Register(schema);
    GVelocidade::Register(schema);
    GVolume::Register(schema);
}

} // namespace ZoPrimitives
