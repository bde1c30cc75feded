#pragma once

#include "ZoPrimitives/Export.h"
#include "ZoPrimitives/ZoString.h"

#include <string>
#include <type_traits>
#include <utility>

namespace ZoPrimitives {

/// The path of a file, made of a text or of a `std::filesystem::path`.
///
/// On Windows a text is in the process's code page, which lacks most of the characters that names may have; a
/// `std::filesystem::path` names every file. Paths of any length that the system takes are allowed. Elsewhere
/// both are bytes, used as they are. A null text is empty. Making a path throws `std::bad_alloc` when memory
/// is short; a copy is then empty, as that of a string.
class ZO_API TZoPath {
public:
    TZoPath(const char* path = "") { Set(path); }
    TZoPath(const std::string& path) { Set(path.c_str()); }
    TZoPath(const ZoString& path) { Set(path.c_str()); }
    /// Takes a `std::filesystem::path`, of which this header need not know.
    template <class Path,
              class = std::enable_if_t<std::is_same_v<decltype(std::declval<const Path&>().native()),
                                                      const std::basic_string<typename Path::value_type>&>>>
    TZoPath(const Path& path) {
        Set(path.c_str());
    }
    static TZoPath FromUtf8(const char* path);
    TZoPath(const TZoPath&);
    TZoPath(TZoPath&&) noexcept;
    TZoPath& operator=(const TZoPath&);
    TZoPath& operator=(TZoPath&&) noexcept;
    ~TZoPath();

    /// The text it was made of. Of a `std::filesystem::path`: in the process's code page, with '?' for what
    /// that lacks.
    const ZoString& Text() const { return text; }
    /// UTF-8 on Windows; elsewhere the bytes as they are.
    const ZoString& Utf8() const { return utf8; }
    bool IsEmpty() const { return utf8.IsNull(); }

    /// The path with `suffix`, in ASCII, at the end of its name. Throws `std::bad_alloc` when memory is
    /// short.
    TZoPath With(const char* suffix) const;

private:
    void Set(const char* path);
    void Set(const wchar_t* path);

    ZoString utf8;
    ZoString text;
};

} // namespace ZoPrimitives
