// In files of version 3, today's quantities and points were plain numbers. A field whose kind differs from
// the file's counts as one that the class lacks: the file's field is offered to the class, which converts it.

#include "model.h"

#include "ZoPrimitives/BinInStream.h"

namespace Frame {

using namespace ZoPrimitives;

namespace {

/// Reads the field if it is the one named; false otherwise. `unit` is the plain number's.
template <class Quantity, class Unit>
bool Take(TZoClassField* field, TBinInStream* stream, const char* name, Quantity& quantity, Unit unit) {
    if (field->GetFieldName() != name || field->GetFieldType() != ftDouble) return false;
    double number = 0;
    *stream >> number;
    quantity.Valor(number, unit);
    return true;
}

} // namespace

void Material::HandleExcludedField(TZoClassField* field, TBinInStream* stream) {
    if (!Take(field, stream, "density", density, TPeso::kgf_m3)) Entity::HandleExcludedField(field, stream);
}

void Section::HandleExcludedField(TZoClassField* field, TBinInStream* stream) {
    const bool taken = Take(field, stream, "depth", depth, TComprimento::cm) ||
                       Take(field, stream, "area", area, TArea::cm2) ||
                       Take(field, stream, "inertia", inertia, TInercia::cm4);
    if (!taken) Entity::HandleExcludedField(field, stream);
}

void Node::HandleExcludedField(TZoClassField* field, TBinInStream* stream) {
    GComprimento distance(0.0);
    if (Take(field, stream, "x", distance, TComprimento::cm)) {
        place.X(distance.cm());
    } else if (Take(field, stream, "y", distance, TComprimento::cm)) {
        place.Y(distance.cm());
    } else {
        Entity::HandleExcludedField(field, stream);
    }
}

void Girder::HandleExcludedField(TZoClassField* field, TBinInStream* stream) {
    if (field->GetFieldName() != "loads" || field->GetFieldType() != ftListDouble) {
        return Member::HandleExcludedField(field, stream);
    }
    int count = 0;
    *stream >> count;
    for (; count > 0 && stream->GetRemaining() >= sizeof(double); --count) {
        double load = 0;
        *stream >> load;
        loads.Add(new GForcaLinear(load, TForcaLinear::kN_m));
    }
}

void Storey::HandleExcludedField(TZoClassField* field, TBinInStream* stream) {
    const bool taken = Take(field, stream, "level", level, TComprimento::cm) ||
                       Take(field, stream, "height", height, TComprimento::cm);
    if (!taken) Entity::HandleExcludedField(field, stream);
}

} // namespace Frame
