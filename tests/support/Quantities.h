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
    ZoPrimitives::TZoClass* (*registered)(ZoPrimitives::TZoMetaData*);
    ZoPrimitives::TZoCreateFunction create;
};

template <class Class, class Unit>
Quantity QuantityOf(const char* name, std::vector<double (Class::*)() const> accessors) {
    using ZoPrimitives::Grandeza;
    return {
        name,
        static_cast<int>(accessors.size()),
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
        &Class::Register,
        &Class::Create,
    };
}

inline const std::vector<Quantity>& AllQuantities() {
    using namespace ZoPrimitives;
#define ZO_Q(Name, ...) QuantityOf<G##Name, T##Name>("G" #Name, {__VA_ARGS__})
    static const std::vector<Quantity> all = {
        ZO_Q(Angulo, &GAngulo::Radianos, &GAngulo::Graus),
        ZO_Q(Area, &GArea::mm2, &GArea::cm2, &GArea::m2, &GArea::sqin, &GArea::sqft),
        ZO_Q(AreaM, &GAreaM::cm2_m),
        ZO_Q(Comprimento, &GComprimento::cm, &GComprimento::m, &GComprimento::in, &GComprimento::ft,
             &GComprimento::mm),
        ZO_Q(Corrente, &GCorrente::a, &GCorrente::ka),
        ZO_Q(Energia, &GEnergia::kwh, &GEnergia::kcal),
        ZO_Q(ForcaArea, &GForcaArea::kgf_m2, &GForcaArea::tf_m2, &GForcaArea::kN_m2, &GForcaArea::kp_m2,
             &GForcaArea::psf, &GForcaArea::ksf, &GForcaArea::kgf_cm2),
        ZO_Q(ForcaConcentrada, &GForcaConcentrada::kgf, &GForcaConcentrada::tf, &GForcaConcentrada::kN,
             &GForcaConcentrada::kp, &GForcaConcentrada::lb, &GForcaConcentrada::kip),
        ZO_Q(ForcaLinear, &GForcaLinear::kgf_m, &GForcaLinear::tf_m, &GForcaLinear::kN_m, &GForcaLinear::kp_m,
             &GForcaLinear::lb_ft, &GForcaLinear::kip_ft, &GForcaLinear::lb_in, &GForcaLinear::kgf_cm,
             &GForcaLinear::tf_cm),
        ZO_Q(Inercia, &GInercia::cm4, &GInercia::m4, &GInercia::in4),
        ZO_Q(Intensidade, &GIntensidade::cm_s, &GIntensidade::m_s, &GIntensidade::mm_min, &GIntensidade::mm_h,
             &GIntensidade::m_min),
        ZO_Q(Momento, &GMomento::kgfm, &GMomento::tfm, &GMomento::kNm, &GMomento::kpm, &GMomento::ftkip,
             &GMomento::ftlb, &GMomento::kgfcm, &GMomento::tfcm),
        ZO_Q(Peso, &GPeso::kgf_m3, &GPeso::tf_m3, &GPeso::kN_m3, &GPeso::kp_m3, &GPeso::lb_cuft,
             &GPeso::kgf_cm3),
        ZO_Q(PoderCalorifico, &GPoderCalorifico::kcal_m3),
        ZO_Q(Potencia, &GPotencia::kcal_s, &GPotencia::kcal_min, &GPotencia::kcal_h, &GPotencia::cv,
             &GPotencia::watt, &GPotencia::kwatt),
        ZO_Q(PressaoCoesao, &GPressaoCoesao::kgf_cm2, &GPressaoCoesao::tf_m2, &GPressaoCoesao::kN_m2,
             &GPressaoCoesao::kp_cm2, &GPressaoCoesao::psi, &GPressaoCoesao::ksi),
        ZO_Q(PressaoHidraulica, &GPressaoHidraulica::cmca, &GPressaoHidraulica::mca,
             &GPressaoHidraulica::mmca, &GPressaoHidraulica::kpa, &GPressaoHidraulica::kgf_cm2),
        ZO_Q(PressaoTensao, &GPressaoTensao::kgf_cm2, &GPressaoTensao::tf_m2, &GPressaoTensao::kN_cm2,
             &GPressaoTensao::MPa, &GPressaoTensao::kp_cm2, &GPressaoTensao::psi, &GPressaoTensao::ksi,
             &GPressaoTensao::tf_cm2),
        ZO_Q(Recalque, &GRecalque::kgf_cm3, &GRecalque::tf_m3, &GRecalque::kN_m3, &GRecalque::kp_cm3,
             &GRecalque::lb_cuin),
        ZO_Q(Temperatura, &GTemperatura::c, &GTemperatura::f, &GTemperatura::k),
        ZO_Q(Tempo, &GTempo::s, &GTempo::minuto, &GTempo::h, &GTempo::dia, &GTempo::ms),
        ZO_Q(Vazao, &GVazao::cm3_s, &GVazao::m3_s, &GVazao::m3_h, &GVazao::m3_dia, &GVazao::l_s,
             &GVazao::l_min, &GVazao::l_dia),
        ZO_Q(Velocidade, &GVelocidade::cm_s, &GVelocidade::m_s, &GVelocidade::mm_h, &GVelocidade::mm_min,
             &GVelocidade::km_h),
        ZO_Q(Volume, &GVolume::cm3, &GVolume::m3, &GVolume::cuin, &GVolume::cuft, &GVolume::l),
    };
#undef ZO_Q
    return all;
}

inline const Quantity& QuantityNamed(const std::string& name) {
    for (const Quantity& quantity : AllQuantities()) {
        if (quantity.name == name) return quantity;
    }
    throw std::out_of_range(name);
}
