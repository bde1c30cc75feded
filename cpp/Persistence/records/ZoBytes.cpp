#include "Persistence/records/ErrorText.h"
#include "Persistence/records/FileAccess.h"
#include "Platform/Platform.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoFrames.h"

#include <algorithm>
#include <cstring>

namespace ZoPrimitives {

TZoBytes::TZoBytes() = default;
TZoBytes::~TZoBytes() = default;

const unsigned char* TZoBytes::GetMemory() const { return nullptr; }

TZoFileBytes::TZoFileBytes(const TZoPath& itsPath) : path(itsPath) {
    static constexpr const char* WHERE = "TZoFileBytes::TZoFileBytes";
    TFileReading reading = TFileReading::Viewing;
    const auto open = [&] {
        if (file != nullptr) Platform::Current().CloseFile(file);
        file = nullptr;
        file = OpenToRead(path, reading, WHERE);
    };
    LoadSteadily(path, open);
    if (Platform::Current().FileSize(file, size)) return;
    const unsigned long error = Platform::LastError();
    Platform::Current().CloseFile(file);
    Platform::SetLastError(error);
    ThrowUnreadable(path, WHERE);
}

TZoFileBytes::~TZoFileBytes() { Platform::Current().CloseFile(file); }

unsigned TZoFileBytes::Read(unsigned long long offset, void* data, unsigned wanted) {
    if (offset >= size) return 0;
    wanted = static_cast<unsigned>(std::min<unsigned long long>(wanted, size - offset));
    Platform::Services& system = Platform::Current();
    std::size_t done = 0;
    bool good = position == offset;
    if (!good)
        good = system.SeekFile(file, static_cast<long long>(offset), Platform::Origin::Begin, position);
    if (good) good = system.ReadFile(file, data, wanted, done);
    if (!good) {
        const TStreamCause cause = CauseOf(Platform::LastError());
        position = size; // unknown, but never asked for
        XReadStream failure(ErrorText(DEVICE_ERROR), "TZoFileBytes::Read", cause);
        failure.SetPath(path);
        throw failure;
    }
    position = offset + done;
    return static_cast<unsigned>(done);
}

TZoMemoryBytes::TZoMemoryBytes(const void* itsBlock, unsigned long long itsSize)
    : block(static_cast<const unsigned char*>(itsBlock)), size(itsBlock == nullptr ? 0 : itsSize) {}

TZoMemoryBytes::~TZoMemoryBytes() = default;

unsigned TZoMemoryBytes::Read(unsigned long long offset, void* data, unsigned wanted) {
    if (offset >= size) return 0;
    wanted = static_cast<unsigned>(std::min<unsigned long long>(wanted, size - offset));
    std::memcpy(data, block + offset, wanted);
    return wanted;
}

} // namespace ZoPrimitives
