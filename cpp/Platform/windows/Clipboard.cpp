#include "Platform/ClipboardWait.h"
#include "Platform/windows/Windows.h"

#include <cstring>
#include <new>
#include <utility>

namespace ZoPrimitives::Platform {

namespace {

// Serialises the users of the library: some systems take all callers that open the clipboard without a window
// for the same one. A thread's end releases the mutex. Null if it cannot be created; then only the system
// decides.
HANDLE Turn() {
    static const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"Local\\ZoPrimitives.Clipboard");
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
    HWND owner = nullptr;
    bool open = false;

    /// A window that is never seen, of a class of the system's: what puts data on the clipboard needs one.
    HWND Owner() {
        if (owner == nullptr)
            owner = ::CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                                      nullptr);
        return owner;
    }
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

// Held by the system, which ends it with its thread: mingw frees the memory of a thread_local before it calls
// the destructor.
class OpenedByThreads {
public:
    OpenedByThreads() : slot(FlsAlloc(End)) {}
    ~OpenedByThreads() { FlsFree(slot); }
    OpenedByThreads(const OpenedByThreads&) = delete;
    OpenedByThreads& operator=(const OpenedByThreads&) = delete;

    /// This thread's, or null if it has opened nothing yet.
    Opened* Find() const { return static_cast<Opened*>(FlsGetValue(slot)); }
    /// This thread's, made if need be; null if there is no memory.
    Opened* FindOrMake() const {
        if (Opened* found = Find()) return found;
        Opened* made = new (std::nothrow) Opened;
        if (made == nullptr || FlsSetValue(slot, made) != 0) return made;
        delete made;
        return nullptr;
    }

private:
    static void WINAPI End(void* ended) { delete static_cast<Opened*>(ended); }

    DWORD slot;
};

const OpenedByThreads& Threads() {
    static const OpenedByThreads threads;
    return threads;
}

/// Null unless this thread has the clipboard open.
Opened* FindOpen() {
    Opened* mine = Threads().Find();
    return mine != nullptr && mine->open ? mine : nullptr;
}

bool TryToOpen() {
    if (!TakeTurn()) {
        SetLastError(ErrorSharingViolation);
        return false;
    }
    Opened& mine = *Threads().Find(); // `OpenClipboard` made it
    if (::OpenClipboard(mine.Owner())) {
        mine.open = true;
        return true;
    }
    PassTurn();
    // Another program has it open, whatever the system reports.
    SetLastError(ErrorSharingViolation);
    return false;
}

/// The same, and sets the error.
Opened* OpenedHere() {
    Opened* opened = FindOpen();
    if (opened == nullptr) SetLastError(ErrorClipboardNotOpen);
    return opened;
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
    const Opened* mine = Threads().FindOrMake();
    if (mine == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return false;
    }
    if (mine->open) {
        SetLastError(ErrorSharingViolation);
        return false;
    }
    return AwaitClipboard(*this, TryToOpen);
}

void Services::CloseClipboard() {
    if (Opened* opened = FindOpen()) opened->Close();
}

const void* Services::ClipboardData(unsigned format, std::size_t& size) {
    size = 0;
    Opened* opened = OpenedHere();
    if (opened == nullptr) return nullptr;
    opened->Unlock();
    const HGLOBAL block = GetClipboardData(format);
    if (block == nullptr) return nullptr;
    if (const void* data = GlobalLock(block)) {
        opened->locked = block;
        size = GlobalSize(block);
        return data;
    }
    // A block without bytes cannot be locked.
    static const unsigned char nothing = 0;
    return GlobalSize(block) == 0 ? &nothing : nullptr;
}

bool Services::SetClipboardData(unsigned format, const void* data, std::size_t size) {
    Opened* opened = OpenedHere();
    if (opened == nullptr) return false;
    // A block without bytes could be neither filled nor read.
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size != 0 ? size : 1);
    if (block == nullptr) return false;
    void* const bytes = GlobalLock(block);
    if (bytes != nullptr) {
        if (size != 0) std::memcpy(bytes, data, size);
        GlobalUnlock(block);
        opened->Unlock();
        // The system owns a block that it has accepted.
        if (EmptyClipboard() && ::SetClipboardData(format, block) != nullptr) return true;
    }
    const unsigned long error = LastError();
    GlobalFree(block);
    SetLastError(error);
    return false;
}

} // namespace ZoPrimitives::Platform
