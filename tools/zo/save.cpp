#include "save.h"

#include "paths.h"
#include "system.h"
#include "tool.h"
#include "words.h"

#include <cstdio>
#include <filesystem>
#include <memory>

namespace ZoTool {

namespace fs = std::filesystem;

NewFile::NewFile(const std::string& utf8, const std::vector<std::string>& sources, bool replaces)
    : name(utf8) {
    RequireAnother(name, sources);
    std::error_code none;
    if (!replaces && fs::exists(PathOf(name), none))
        throw Trouble(name + ": " + Words("it exists; --force replaces it"));
    fs::remove(PathOf(PartName()), none);
}

NewFile::~NewFile() {
    std::error_code none;
    if (!isComplete) fs::remove(PathOf(PartName()), none);
}

std::string NewFile::PartName() const { return name + "~part"; }

void NewFile::Write(const std::function<void(Output&)>& body) {
    const std::string failure =
        Words("{}: cannot be written; is there such a folder, may you write there, is there room?", name);
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(OpenForWriting(PartName()), std::fclose);
    if (file == nullptr) throw Trouble(failure);
    Output out(file.get());
    body(out);
    out.Flush();
    if (std::fclose(file.release()) != 0) throw Trouble(failure);
}

void NewFile::Complete() {
    std::error_code error;
    fs::rename(PathOf(PartName()), PathOf(name), error);
    if (error) throw Trouble(Words("{}: cannot be replaced: {}", name, error.message()));
    isComplete = true;
}

void SaveResult(Tool& tool, const std::string& path, std::string_view contents, const std::string& source) {
    if (path == "-") return tool.out.Write(contents);
    NewFile made(path, {source}, true);
    made.Write([&](Output& out) { out.Write(contents); });
    made.Complete();
}

} // namespace ZoTool
