#pragma once

#include "Values/UnitTable.h"
#include "ZoPrimitives/grandeza.h"

namespace ZoPrimitives {

/// "" for a unit that is not in the table.
ZoString WriteQuantity(UnitTable table, int unit, double valor, unsigned decimals, bool keepZeros,
                       char separator);
/// Reads a unit by its name in any language. Sets `valor` in the storage unit; leaves it unchanged when the
/// text is refused.
TLeituraDeGrandeza ReadQuantity(UnitTable table, const ZoString& text, char separator, int unitWhenNone,
                                double& valor);

} // namespace ZoPrimitives
