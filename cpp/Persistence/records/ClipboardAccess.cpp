#include "Persistence/records/ClipboardAccess.h"

#include "Persistence/records/ErrorText.h"
#include "Platform/Platform.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoClipboardFormat.h"

#include <atomic>

namespace ZoPrimitives {

namespace {

// These are the system's error numbers; the C run-time has texts for its own numbers only.
const char* Reason(unsigned long error) {
    constexpr unsigned long NOT_ENOUGH_SPACE = 12;
    constexpr unsigned long PERMISSION_DENIED = 13;
    switch (error) {
    case Platform::ErrorSharingViolation:
        return "Clipboard in use";
    case Platform::ErrorInvalidOwner:
        return "Clipboard folder not private to this user";
    case Platform::ErrorAccessDenied:
        return ErrorText(PERMISSION_DENIED);
    case Platform::ErrorNotEnoughMemory:
        return ErrorText(NOT_ENOUGH_SPACE);
    default:
        return ErrorText(error);
    }
}

/// Closes the clipboard, whatever happens.
struct Closing {
    Closing() = default;
    Closing(const Closing&) = delete;
    Closing& operator=(const Closing&) = delete;
    ~Closing() { Platform::Current().CloseClipboard(); }
};

} // namespace

unsigned IdZoClipboardFormat() {
    static std::atomic<unsigned> registered = 0;
    unsigned format = registered.load(std::memory_order_relaxed);
    if (format == 0) {
        format = Platform::Current().ClipboardFormat("ZoCad");
        registered.store(format, std::memory_order_relaxed);
    }
    return format;
}

OpenedClipboard::OpenedClipboard(const char* operation) : location(operation) {
    if (Platform::Current().OpenClipboard()) return;
    const unsigned long error = Platform::LastError();
    throw XReadStream(Reason(error), location, CauseOf(error));
}

OpenedClipboard::~OpenedClipboard() { Platform::Current().CloseClipboard(); }

const unsigned char* OpenedClipboard::Data(std::size_t& size) const {
    const void* data = Platform::Current().ClipboardData(IdZoClipboardFormat(), size);
    if (data == nullptr) throw XReadStream("Invalid data handle", location, TStreamFailure::WrongFile);
    return static_cast<const unsigned char*>(data);
}

void PutOnClipboard(const void* data, std::size_t size, const char* location) {
    const unsigned format = IdZoClipboardFormat();
    bool put = format != 0 && Platform::Current().OpenClipboard();
    unsigned long error = Platform::LastError();
    if (put) {
        const Closing closing;
        put = Platform::Current().SetClipboardData(format, data, size);
        error = Platform::LastError();
    }
    if (put) return;
    const TStreamCause cause = CauseOf(error);
    if (cause.kind == TStreamFailure::DiskFull) throw XWriteStreamOutOfSpace(location, cause.systemCode);
    throw XWriteStream(Reason(error), location, cause);
}

} // namespace ZoPrimitives
