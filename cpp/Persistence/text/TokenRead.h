#pragma once

#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

/// Whether `read` found a token: false when none is left or none can be read.
template <class Read>
bool ReadsToken(const Read& read) {
    try {
        read();
        return true;
    } catch (const XEndOfStream&) {
        return false;
    } catch (const XReadStream&) {
        return false;
    }
}

} // namespace ZoPrimitives
