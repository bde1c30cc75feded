#include "ZoPrimitives/ZoStreamable.h"

#include "Persistence/text/TextCodes.h"
#include "Persistence/text/TextLevel.h"
#include "Persistence/text/TextLosses.h"
#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"

// The text input and output of every object.

namespace ZoPrimitives {

void ZoStreamableBase::Write(OutputStreamer& streamer) {
    streamer << TextCodes::HANDLE << streamer.GetHandle(this);
}

void ZoStreamableBase::Read(InputStreamer& streamer) {
    TextLevel level(streamer, *this);
    level.BeginData();
    int code = 0;
    for (streamer >> code; code != TextCodes::OBJECT && code != TextCodes::END; streamer >> code) {
        try {
            if (ReadData(code, streamer)) continue;
            streamer.SkipValue();
            streamer.Losses().AddUnknownCode(*this, code);
            streamer.RefuseFault(strictFields);
        } catch (const XInvalidHandle&) {
            // The value is dropped.
            streamer.Losses().AddLostReference(*this, code);
            streamer.RefuseFault(strictReferences);
        }
    }
}

bool ZoStreamableBase::ReadData(int code, InputStreamer& streamer) {
    if (code != TextCodes::HANDLE) return false;
    int own = 0;
    streamer >> own;
    streamer.SetHandle(this, own);
    return true;
}

} // namespace ZoPrimitives
