#pragma once

#include "Platform/windows/Windows.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace ZoPrimitives::Platform {

/// A path as the system takes it: wide, and beyond 260 characters with the prefix that lifts this limit.
class SystemPath {
public:
    /// From UTF-8; null is empty. False, with the last error set, for what cannot be a path.
    explicit SystemPath(const char* path);
    SystemPath(const SystemPath&) = delete;
    SystemPath& operator=(const SystemPath&) = delete;

    explicit operator bool() const { return text != nullptr; }
    const wchar_t* c_str() const { return text; }

private:
    wchar_t* Room(std::size_t size);
    bool Lengthen();

    wchar_t small[MAX_PATH];
    std::unique_ptr<wchar_t[]> large;
    const wchar_t* text = nullptr;
};

/// With drive and all folders; empty on failure.
std::wstring FullPath(const wchar_t* path);
/// The folder that holds a file, with the separator at its end; "." for a bare name.
std::wstring FolderOf(std::wstring_view path);
/// Whether a full path names a server.
bool NamesServer(std::wstring_view full);

} // namespace ZoPrimitives::Platform
