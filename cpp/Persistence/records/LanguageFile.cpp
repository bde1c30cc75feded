#include "Persistence/records/FileAccess.h"
#include "Platform/Platform.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/ZoFrames.h"
#include "ZoPrimitives/ZoLanguage.h"

#include <string>
#include <string_view>

namespace ZoPrimitives {

namespace {

constexpr const char* WHERE = "ZoLoadLanguage";
constexpr unsigned LARGEST_FILE = 64 * 1024;

std::string_view Trimmed(std::string_view text) {
    constexpr const char* BLANKS = " \t\r";
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(BLANKS) + 1 - first);
}

/// The language that the text names first; empty for none.
ZoString NamedIn(std::string_view text) {
    if (constexpr std::string_view MARK = "\xEF\xBB\xBF"; text.substr(0, MARK.size()) == MARK)
        text.remove_prefix(MARK.size());
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = Trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty() || std::string_view(";#[").find(line[0]) != std::string_view::npos) continue;
        const std::size_t sign = line.find('=');
        if (sign == std::string_view::npos) return line;
        if (ZoString(Trimmed(line.substr(0, sign))).Equal("Language", false))
            return Trimmed(line.substr(sign + 1));
    }
    return {};
}

} // namespace

bool ZoLoadLanguage(const TZoPath& path) {
    if (!Platform::Current().FileExists(path.Utf8().c_str(), nullptr)) {
        if (Platform::NotFound(Platform::LastError())) return false;
        ThrowUnreadable(path, WHERE);
    }
    TZoFileBytes file(path);
    std::string text(LARGEST_FILE, '\0');
    text.resize(file.Read(0, text.data(), LARGEST_FILE));
    try {
        ZoSetLanguage(NamedIn(text));
    } catch (XInvalidLanguage& failure) {
        failure.SetPath(path);
        throw;
    }
    return true;
}

bool ZoLoadLanguage() {
    const std::string folder = Platform::ApplicationFolder();
    if (folder.empty()) ThrowUnreadable("Language.ini", WHERE);
    return ZoLoadLanguage(TZoPath::FromUtf8((folder + "Language.ini").c_str()));
}

} // namespace ZoPrimitives
