#pragma once

#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"

namespace ZoPrimitives {

// Numbers in the text of an object, each after its code: those of x, y and z of a point are 10 apart.

template <class... Numbers>
void WriteCoded(OutputStreamer& streamer, int code, const Numbers&... numbers) {
    code -= 10;
    ((streamer << (code += 10) << numbers), ...);
}

/// Reads the coordinate of that code, `first` being the code of x; false, with nothing read, if there is
/// none.
template <class... Numbers>
bool ReadCoded(int code, InputStreamer& streamer, int first, Numbers&... numbers) {
    first -= 10;
    return ((code == (first += 10) && (streamer >> numbers, true)) || ...);
}

} // namespace ZoPrimitives
