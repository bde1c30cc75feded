#include "Platform/windows/Paths.h"

#include "Platform/Platform.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <new>

namespace ZoPrimitives::Platform {

namespace {

constexpr std::wstring_view VERBATIM = L"\\\\?\\";
constexpr std::wstring_view VERBATIM_SERVER = L"\\\\?\\UNC";

/// What the system's functions for files in bytes would take.
UINT CodePageOfFiles() { return ::AreFileApisANSI() != 0 ? ::GetACP() : ::GetOEMCP(); }

std::wstring Widened(UINT page, const char* text) {
    const int size = ::MultiByteToWideChar(page, 0, text, -1, nullptr, 0);
    std::wstring wide(size > 0 ? static_cast<std::size_t>(size) : 1, L'\0');
    ::MultiByteToWideChar(page, 0, text, -1, wide.data(), size);
    wide.pop_back();
    return wide;
}

std::string Narrowed(UINT page, const std::wstring& text) {
    // A similar character would name another file.
    const DWORD flags = page == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS;
    const int size = ::WideCharToMultiByte(page, flags, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string bytes(size > 0 ? static_cast<std::size_t>(size) : 1, '\0');
    ::WideCharToMultiByte(page, flags, text.c_str(), -1, bytes.data(), size, nullptr, nullptr);
    bytes.pop_back();
    return bytes;
}

bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

/// Not every system says this of a name that is too long; some find no such file.
bool NamesFit(std::wstring_view path) {
    constexpr std::ptrdiff_t LONGEST_NAME = 255;
    for (auto name = path.begin();; ++name) {
        const auto end = std::find_if(name, path.end(), IsSeparator);
        if (end - name > LONGEST_NAME) return false;
        if (end == path.end()) return true;
        name = end;
    }
}

bool StartsWith(std::wstring_view text, std::wstring_view start) {
    return text.substr(0, start.size()) == start;
}

} // namespace

std::string PathFromText(const char* text) { return Narrowed(CP_UTF8, Widened(CodePageOfFiles(), text)); }
std::string TextOfPath(const char* path) { return Narrowed(CodePageOfFiles(), Widened(CP_UTF8, path)); }

std::string ApplicationFolder() {
    constexpr std::size_t LONGEST_PATH = 32768;
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (size == 0) return {};
        if (size < path.size()) {
            path.resize(size);
            return Narrowed(CP_UTF8, FolderOf(path));
        }
        if (path.size() > LONGEST_PATH) return {};
        path.resize(2 * path.size());
    }
}

SystemPath::SystemPath(const char* path) {
    if (path == nullptr) path = "";
    const int size = ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path, -1, nullptr, 0);
    if (size <= 0) {
        ::SetLastError(ErrorInvalidName);
        return;
    }
    wchar_t* const room = Room(static_cast<std::size_t>(size));
    if (room == nullptr) return;
    ::MultiByteToWideChar(CP_UTF8, 0, path, -1, room, size);
    if (!NamesFit({room, static_cast<std::size_t>(size) - 1})) {
        ::SetLastError(ErrorInvalidName);
        return;
    }
    text = room;
    if (!Lengthen()) text = nullptr;
}

wchar_t* SystemPath::Room(std::size_t size) {
    if (size <= std::size(small)) return small;
    large.reset(new (std::nothrow) wchar_t[size]);
    if (large == nullptr) ::SetLastError(ErrorNotEnoughMemory);
    return large.get();
}

/// Makes a path that is long with its folders a full one with the prefix. A short one stays as it is.
bool SystemPath::Lengthen() {
    const DWORD size = ::GetFullPathNameW(text, 0, nullptr, nullptr);
    if (size <= MAX_PATH) return true;
    std::unique_ptr<wchar_t[]> room(new (std::nothrow) wchar_t[VERBATIM_SERVER.size() + size]);
    if (room == nullptr) {
        ::SetLastError(ErrorNotEnoughMemory);
        return false;
    }
    wchar_t* full = room.get() + VERBATIM_SERVER.size();
    const DWORD length = ::GetFullPathNameW(text, size, full, nullptr);
    if (length == 0 || length >= size) return false;
    if (!StartsWith(full, VERBATIM) && !StartsWith(full, L"\\\\.\\")) {
        const bool server = NamesServer(full);
        const std::wstring_view prefix = server ? VERBATIM_SERVER : VERBATIM;
        if (server) ++full; // one of its two separators
        full -= prefix.size();
        std::copy(prefix.begin(), prefix.end(), full);
    }
    large = std::move(room);
    text = full;
    return true;
}

std::wstring FullPath(const wchar_t* path) {
    std::wstring full(MAX_PATH, L'\0');
    for (int attempt = 0; attempt < 3; ++attempt) {
        const DWORD length = ::GetFullPathNameW(path, static_cast<DWORD>(full.size()), full.data(), nullptr);
        const bool fits = length < full.size();
        full.resize(length);
        if (fits) return full;
    }
    return {};
}

std::wstring FolderOf(std::wstring_view path) {
    const std::wstring_view folder = path.substr(0, path.find_last_of(L"\\/:") + 1);
    return std::wstring(folder.empty() ? L".\\" : folder);
}

bool NamesServer(std::wstring_view full) {
    if (!StartsWith(full, L"\\\\")) return false;
    const std::wstring_view second = full.substr(2, 2);
    if (second != L"?\\" && second != L".\\") return true;
    // Only this is a server among the names that begin so.
    const std::wstring device(full.substr(4, 4));
    return ::lstrcmpiW(device.c_str(), L"UNC\\") == 0;
}

} // namespace ZoPrimitives::Platform
