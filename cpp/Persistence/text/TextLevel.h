#pragma once

#include "ZoPrimitives/InputStreamer.h"

namespace ZoPrimitives {

/// One level of nested objects, while an object's data are read; throws `XReadStream` when that is too deep.
/// Levels of one object directly inside each other count once, until its data are read: data that are read
/// within those of the same object lie deeper.
///
/// No `pointer` that the data fill or empty ends the object meanwhile.
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
    bool held; // by `pointer`s, before
};

} // namespace ZoPrimitives
