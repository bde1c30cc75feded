#include "units.h"

#include "failure.h"
#include "words.h"

#include "ZoPrimitives/Math2.h"
#include "ZoPrimitives/ZoUtf8.h"

namespace Frame {

using namespace ZoPrimitives;

namespace {

using L = TComprimento;
using F = TForcaConcentrada;

const struct {
    const char* name;
    Units units;
} SYSTEMS[] = {
    // Masses are shown as weights: a tonne for 1 tf.
    {"metric",
     {{L::m, 2},
      {L::m, 2},
      {L::mm, 0},
      {TArea::cm2, 1},
      {TArea::m2, 2},
      {TForcaArea::kN_m2, 2},
      {TInercia::cm4, 0},
      {TVolume::cm3, 0},
      {F::kN, 1},
      {TForcaLinear::kN_m, 2},
      {F::tf, 2, "t"},
      {TForcaLinear::kgf_m, 1, "kg/m"},
      {TPeso::kgf_m3, 0, "kg/m³"},
      '.'}},
    {"technical",
     {{L::cm, 0},
      {L::m, 2},
      {L::cm, 1},
      {TArea::cm2, 1},
      {TArea::m2, 2},
      {TForcaArea::tf_m2, 3},
      {TInercia::cm4, 0},
      {TVolume::cm3, 0},
      {F::tf, 2},
      {TForcaLinear::tf_m, 3},
      {F::tf, 2},
      {TForcaLinear::kgf_m, 1},
      {TPeso::kgf_m3, 0},
      '.'}},
    {"imperial",
     {{L::ft, 2},
      {L::ft, 2},
      {L::in, 1},
      {TArea::sqin, 1, "in²"},
      {TArea::sqft, 1, "ft²"},
      {TForcaArea::psf, 1},
      {TInercia::in4, 0},
      {TVolume::cuin, 0, "in³"},
      {F::kip, 1},
      {TForcaLinear::kip_ft, 3},
      {F::lb, 0},
      {TForcaLinear::lb_ft, 1},
      {TPeso::lb_cuft, 0},
      '.'}},
};

} // namespace

Units Units::Named(const std::string& name, const std::string& separator) {
    if (separator != "." && separator != ",") {
        throw Failure(Words("\"{1}\" does not separate decimals here: use a point or a comma.", {separator}));
    }
    for (const auto& system : SYSTEMS) {
        if (name != system.name) continue;
        Units units = system.units;
        units.separator = separator[0];
        return units;
    }
    throw Failure(Words("There are no units \"{1}\": use metric, technical or imperial.", {name}));
}

std::string Units::Decimal(double value, unsigned decimals) const {
    return FormatFloat(value, decimals, true, separator).c_str();
}

std::string Units::Utf8(const ZoString& unitAtItsEnd) {
    std::string text = ZoToUtf8(unitAtItsEnd);
    // Windows-1252 lacks the superscript 4.
    if (!text.empty() && text.back() == '4') text.replace(text.size() - 1, 1, "⁴");
    return text;
}

} // namespace Frame
