#include "paths.h"

#include "tool.h"
#include "words.h"

namespace ZoTool {

std::filesystem::path PathOf(const std::string& utf8) { return std::u8string(utf8.begin(), utf8.end()); }

std::string Utf8Of(const std::filesystem::path& path) {
    const std::u8string utf8 = path.u8string();
    return {utf8.begin(), utf8.end()};
}

void RequireAnother(const std::string& target, const std::vector<std::string>& sources) {
    std::error_code none; // of a file that is not there
    for (const std::string& source : sources) {
        if (source != "-" && std::filesystem::equivalent(PathOf(source), PathOf(target), none))
            throw Trouble(Words("the result would replace a file that is read; give it another name"));
    }
}

} // namespace ZoTool
