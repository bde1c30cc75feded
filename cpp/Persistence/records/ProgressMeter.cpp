#include "Persistence/records/ProgressMeter.h"

#include "Platform/Platform.h"
#include "ZoPrimitives/XStream.h"

namespace ZoPrimitives {

TZoProgress::~TZoProgress() = default;

ProgressMeter::ProgressMeter(const pointer<TZoProgress>& called, const char* operation)
    : progress(called), location(operation), last(called ? Platform::Current().Ticks() : 0) {}

bool ProgressMeter::IsDue() {
    const std::uint32_t now = Platform::Current().Ticks();
    if (now - last < INTERVAL) return false;
    last = now;
    return true;
}

void ProgressMeter::Tell(unsigned long long done, unsigned long long all) {
    if (!progress->GoesOn(done, all)) throw XCancelled(location);
}

} // namespace ZoPrimitives
