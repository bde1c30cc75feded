#pragma once

#include "ZoPrimitives/TEnum.h"
#include "ZoPrimitives/ZoString.h"

#include <cstdint>

namespace ZoPrimitives {

/// What kind of value a property that the user defines has. Any number can be held; those beyond `Inteiro`
/// are kinds of nothing, are no real numbers and have the name of `Texto`.
class ZO_API ECustomPropertyValueType : public TEnum {
public:
    enum Kind : std::int32_t {
        Texto,
        Numero,
        SimNao,
        Volume,
        Area,
        Comprimento,
        Massa,
        Potencia,
        FluxoLuminoso,
        Corrente,
        Angulo,
        Inteiro
    };

    ECustomPropertyValueType();
    ECustomPropertyValueType(int kind);
    ECustomPropertyValueType(const ECustomPropertyValueType& other);
    ~ECustomPropertyValueType() override;
    ECustomPropertyValueType& operator=(const ECustomPropertyValueType& other);

    operator int() const { return value; }

    /// In the language in use.
    static ZoString Nome(ECustomPropertyValueType kind);
    static ECustomPropertyValueType PrimeiroValor();
    static ECustomPropertyValueType UltimoValor();
    /// The first kind of that name, in the language in use and in any case; `Texto` when there is none.
    static ECustomPropertyValueType Value(const ZoString& nome);

    bool IsRealNumber() const;
    static bool IsRealNumber(const ECustomPropertyValueType& kind);

private:
    std::int32_t value = Texto;
};

} // namespace ZoPrimitives
