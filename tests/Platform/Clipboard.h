#pragma once

#include "Platform/Platform.h"

#include <optional>
#include <string>

/// Puts bytes on the clipboard, alone.
inline bool Copy(unsigned format, const std::string& bytes) {
    using ZoPrimitives::Platform::Current;
    if (!Current().OpenClipboard()) return false;
    const bool set = Current().SetClipboardData(format, bytes.data(), bytes.size());
    Current().CloseClipboard();
    return set;
}

/// What the clipboard holds, less the zeros that the system may put behind; none for none.
inline std::optional<std::string> Paste(unsigned format) {
    using ZoPrimitives::Platform::Current;
    if (!Current().OpenClipboard()) return std::nullopt;
    std::optional<std::string> bytes;
    std::size_t size = 0;
    if (const void* data = Current().ClipboardData(format, size)) {
        bytes = std::string(static_cast<const char*>(data), size);
        bytes->erase(bytes->find_last_not_of('\0') + 1);
    }
    Current().CloseClipboard();
    return bytes;
}
