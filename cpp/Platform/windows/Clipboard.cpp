#include "Platform/ClipboardWait.h"
#include "Platform/windows/Windows.h"

#include <cstring>
#include <utility>

namespace ZoPrimitives::Platform {

namespace {

// Serialises the users of the library: some systems take all callers that open the clipboard without a window
// for the same one. A thread's end releases the mutex. Null if it cannot be created; then only the system
// decides.
HANDLE Turn() {
    static const HANDLE mutex = CreateMutexA(nullptr, FALSE, "Local\\ZoPrimitives.Clipboard");
    return mutex;
}

bool TakeTurn() {
    const DWORD answer = Turn() == nullptr ? WAIT_OBJECT_0 : WaitForSingleObject(Turn(), 0);
    return answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED;
}

void PassTurn() {
    if (Turn() != nullptr) ReleaseMutex(Turn());
}

struct Opened {
    HGLOBAL locked = nullptr;
    bool open = false;

    void Unlock() {
        if (locked != nullptr) GlobalUnlock(std::exchange(locked, nullptr));
    }
    void Close() {
        if (!open) return;
        Unlock();
        ::CloseClipboard();
        open = false;
        PassTurn();
    }
    ~Opened() { Close(); }
};

thread_local Opened opened;

bool TryToOpen() {
    if (!TakeTurn()) {
        SetLastError(ErrorSharingViolation);
        return false;
    }
    if (::OpenClipboard(nullptr)) {
        opened.open = true;
        return true;
    }
    const unsigned long error = LastError();
    PassTurn();
    // The system reports this when another program has it open.
    SetLastError(error == ErrorAccessDenied ? ErrorSharingViolation : error);
    return false;
}

bool OpenedHere() {
    if (!opened.open) SetLastError(ErrorClipboardNotOpen);
    return opened.open;
}

} // namespace

unsigned Services::ClipboardFormat(const char* name) {
    if (name == nullptr || *name == '\0') {
        SetLastError(ErrorInvalidParameter);
        return 0;
    }
    return RegisterClipboardFormatA(name);
}

bool Services::OpenClipboard() {
    if (opened.open) {
        SetLastError(ErrorSharingViolation);
        return false;
    }
    return AwaitClipboard(*this, TryToOpen);
}

void Services::CloseClipboard() { opened.Close(); }

const void* Services::ClipboardData(unsigned format, std::size_t& size) {
    size = 0;
    if (!OpenedHere()) return nullptr;
    opened.Unlock();
    const HGLOBAL block = GetClipboardData(format);
    if (block == nullptr) return nullptr;
    if (const void* data = GlobalLock(block)) {
        opened.locked = block;
        size = GlobalSize(block);
        return data;
    }
    // A block without bytes cannot be locked.
    static const unsigned char nothing = 0;
    return GlobalSize(block) == 0 ? &nothing : nullptr;
}

bool Services::SetClipboardData(unsigned format, const void* data, std::size_t size) {
    if (!OpenedHere()) return false;
    // A block without bytes could be neither filled nor read.
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size != 0 ? size : 1);
    if (block == nullptr) return false;
    void* const bytes = GlobalLock(block);
    if (bytes != nullptr) {
        if (size != 0) std::memcpy(bytes, data, size);
        GlobalUnlock(block);
        opened.Unlock();
        // The system owns a block that it has accepted.
        if (EmptyClipboard() && ::SetClipboardData(format, block) != nullptr) return true;
    }
    const unsigned long error = LastError();
    GlobalFree(block);
    SetLastError(error);
    return false;
}

} // namespace ZoPrimitives::Platform
