#pragma once

#include "ZoPrimitives/InputStreamer.h"

namespace ZoPrimitives {

/// One level of nested objects while an object's data are read; throws `XReadStream` when the nesting is too
/// deep. Directly nested levels of the same object count once until `BeginData`; from then on they are a
/// level deeper.
///
/// Keeps `pointer`s that the data fill or empty from deleting the object meanwhile.
class TextLevel {
public:
    TextLevel(InputStreamer& streamer, const ZoStreamableBase& read);
    ~TextLevel();
    TextLevel(const TextLevel&) = delete;
    TextLevel& operator=(const TextLevel&) = delete;

    void BeginData() { reader.innermost = nullptr; }

private:
    InputStreamer& reader;
    const ZoStreamableBase* object;
    const ZoStreamableBase* outer;
    int outerDepth;
    bool held; // `pointer`s held the object before
};

} // namespace ZoPrimitives
