#include "save.h"

#include "tool.h"
#include "words.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace ZoTool {

namespace fs = std::filesystem;

namespace {

fs::path PathOf(const std::string& utf8) { return std::u8string(utf8.begin(), utf8.end()); }

} // namespace

void SaveFile(const std::string& path, std::string_view contents) {
    const fs::path target = PathOf(path);
    fs::path beside = target;
    beside += ".part";
    std::error_code error;
    std::ofstream file(beside, std::ios::binary | std::ios::trunc);
    file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    file.close();
    if (!file) {
        fs::remove(beside, error);
        throw Trouble(Words(
            "{}: cannot be written; is there such a folder, may you write there, is there room?", path));
    }
    fs::rename(beside, target, error);
    if (!error) return;
    const std::string why = error.message();
    fs::remove(beside, error);
    throw Trouble(Words("{}: cannot be replaced: {}", path, why));
}

void SaveResult(Tool& tool, const std::string& path, std::string_view contents, const std::string& source) {
    if (path == "-") return tool.out.Write(contents);
    std::error_code error;
    if (fs::equivalent(PathOf(path), PathOf(source), error)) {
        throw Trouble(Words("the result would replace the file itself; give it another name"));
    }
    SaveFile(path, contents);
}

} // namespace ZoTool
