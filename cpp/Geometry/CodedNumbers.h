#pragma once

#include "ZoPrimitives/InputStreamer.h"

#include <initializer_list>

namespace ZoPrimitives {

/// A number in the text of an object: the code before it, and where it is kept.
struct CodedNumber {
    int code;
    double* value;
};

/// Reads the number of that code; false, with nothing read, if there is none.
inline bool ReadNumber(int code, InputStreamer& streamer, std::initializer_list<CodedNumber> numbers) {
    for (const CodedNumber& number : numbers) {
        if (number.code != code) continue;
        streamer >> *number.value;
        return true;
    }
    return false;
}

} // namespace ZoPrimitives
