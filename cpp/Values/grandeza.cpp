#include "ZoPrimitives/grandeza.h"

#include "Values/UnitName.h"
#include "Values/UnitTables.h"
#include "Values/UnitText.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/Math2.h"
#include "ZoPrimitives/OutputStreamer.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace ZoPrimitives {

namespace {

/// The result of a division by zero: finite, slightly below the largest double.
constexpr double DIVIDED_BY_ZERO = 1.797693e+308;
/// Positive numbers up to this are rounded like negative ones in `Int`.
constexpr double INT_ZERO = 1e-21;

/// The group code of the stored number in a text.
constexpr int VALOR_CODE = 40;

/// The number of a quantity's C++ class in the process; 0 before this module is initialised.
template <class Quantity>
const unsigned SLOT = ZoNewClassSlot();

template <class Quantity>
ZoRegistration Registration(TZoMetaData* schema, const char* name, const char* parent,
                            TZoCreateFunction create) {
    return {schema, name, {parent, "NULL", "NULL"}, create, false, typeid(Quantity), SLOT<Quantity>};
}

// The common implementation of all quantities.

void Store(UnitTable table, double v, int unit, double& valor) {
    if (const UnitRow* row = FindUnit(table, unit)) valor = row->stored(v);
}

double ValueIn(UnitTable table, int unit, double valor) {
    const UnitRow* row = FindUnit(table, unit);
    return row != nullptr ? row->reading(valor) : 0.0;
}

ZoString UnitName(UnitTable table, int unit) {
    const UnitRow* row = FindUnit(table, unit);
    return row != nullptr ? row->NameIn(CurrentLanguage()) : ZoString();
}

/// The first unit with this name, trying `TRIED_FIRST` before table order; null if there is none.
template <class Unit>
const UnitRow* FindUnitByName(const ZoString& name) {
    const UnitTable table = Units<Unit>::rows;
    const Language language = CurrentLanguage();
    const auto named = [&](const UnitRow& row) { return name == row.NameIn(language); };
    for (const Unit unit : TRIED_FIRST<Unit>) {
        if (const UnitRow* row = FindUnit(table, static_cast<int>(unit)); named(*row)) return row;
    }
    const auto found = std::find_if(table.begin(), table.end(), named);
    return found != table.end() ? &*found : nullptr;
}

template <class Unit>
Unit UnitByName(const ZoString& name) {
    const UnitRow* row = FindUnitByName<Unit>(name);
    if (row == nullptr)
        AssertWithFunctor("false", "Nome da unidade incorreto.", ZoSources::GRANDEZA, __LINE__);
    return static_cast<Unit>(row->unit);
}

/// An accessor's conversion, known at compile time.
template <auto UNIT>
double In(double valor) {
    constexpr UnitConversion reading = Units<decltype(UNIT)>::rows[static_cast<int>(UNIT)].reading;
    return reading(valor);
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

#define ZO_ACCESSOR_BODY(Class, unit, ...)                                                                   \
    double Class::unit() const { return In<Class::TUnidade::unit>(valor); }
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
    static_assert(UnitsAreTranslated(Units<Unit>::rows), "po/ lacks a unit's name: ./dev messages");         \
    static_assert(UnitNamesReadApart(Units<Unit>::rows), "two units' names read alike");                     \
    static_assert(HasStorageUnit(Units<Unit>::rows), "the storage unit is stored and read as it is");        \
    static_assert(UnitsConvertBack(Units<Unit>::rows, LOOSE_UNIT<Unit>), "reading must undo storing");       \
    ZO_UNITS_##Unit(ZO_ACCESSOR_BODY)

ZO_GRANDEZA_BODY(GAngulo, TAngulo)
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

ZO_GRANDEZA_BODY(GAreaM, TAreaM)

ZO_GRANDEZA_BODY(GComprimento, TComprimento)
double GComprimento::EmEscala(double escala) const { return valor * escala; }
TComprimento GComprimento::UnidadePorNome(const ZoString& nome) { return UnitByName<TComprimento>(nome); }

ZO_GRANDEZA_BODY(GCorrente, TCorrente)

ZO_GRANDEZA_BODY(GEnergia, TEnergia)

ZO_GRANDEZA_BODY(GForcaArea, TForcaArea)

ZO_GRANDEZA_BODY(GForcaConcentrada, TForcaConcentrada)

ZO_GRANDEZA_BODY(GForcaLinear, TForcaLinear)

ZO_GRANDEZA_BODY(GInercia, TInercia)

ZO_GRANDEZA_BODY(GIntensidade, TIntensidade)

ZO_GRANDEZA_BODY(GMomento, TMomento)

ZO_GRANDEZA_BODY(GPeso, TPeso)

ZO_GRANDEZA_BODY(GPoderCalorifico, TPoderCalorifico)

ZO_GRANDEZA_BODY(GPotencia, TPotencia)
TPotencia GPotencia::UnidadePorNome(const ZoString& nome) { return UnitByName<TPotencia>(nome); }

ZO_GRANDEZA_BODY(GPressaoCoesao, TPressaoCoesao)

ZO_GRANDEZA_BODY(GPressaoHidraulica, TPressaoHidraulica)
TPressaoHidraulica GPressaoHidraulica::UnidadePorNome(const ZoString& nome) {
    const UnitRow* row = FindUnitByName<TPressaoHidraulica>(nome);
    if (row == nullptr) std::abort();
    return static_cast<TPressaoHidraulica>(row->unit);
}

ZO_GRANDEZA_BODY(GPressaoTensao, TPressaoTensao)

ZO_GRANDEZA_BODY(GRecalque, TRecalque)

ZO_GRANDEZA_BODY(GTemperatura, TTemperatura)

ZO_GRANDEZA_BODY(GTempo, TTempo)

ZO_GRANDEZA_BODY(GVazao, TVazao)
TVazao GVazao::UnidadePorNome(const ZoString& nome) { return UnitByName<TVazao>(nome); }

ZO_GRANDEZA_BODY(GVelocidade, TVelocidade)

ZO_GRANDEZA_BODY(GVolume, TVolume)

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
