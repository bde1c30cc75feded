#pragma once

#include "Values/UnitTable.h"
#include "ZoPrimitives/grandeza.h"

namespace ZoPrimitives {

/// A unit's name from the table, translated into the language in use.
using ShownName = ZoString (*)(const char* name);
ZoString TranslatedName(const char* name);

/// "" for a unit that is not in the table.
ZoString WriteQuantity(UnitTable table, int unit, double valor, unsigned decimals, bool keepZeros,
                       char separator);
/// Sets `valor` in the storage unit; leaves it unchanged when the text is refused.
TLeituraDeGrandeza ReadQuantity(UnitTable table, const ZoString& text, char separator, int unitWhenNone,
                                double& valor, ShownName shown = TranslatedName);

} // namespace ZoPrimitives
