#pragma once

#include "ZoPrimitives/TEnum.h"
#include "ZoPrimitives/ZoString.h"

#include <cstdint>

namespace ZoPrimitives {

/// The kind of value of a user-defined property. Any number can be held; one outside `Texto` to `Inteiro`
/// counts as no real number and has the name of `Texto`.
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
    /// The first kind of that name in the language in use, ignoring case; `Texto` when there is none.
    static ECustomPropertyValueType Value(const ZoString& nome);

    bool IsRealNumber() const;
    static bool IsRealNumber(const ECustomPropertyValueType& kind);

private:
    std::int32_t value = Texto;
};

} // namespace ZoPrimitives
