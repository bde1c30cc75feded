#include "input.h"
#include "paths.h"
#include "words.h"

#include "ZoPrimitives/XStream.h"

#include <algorithm>
#include <array>

namespace ZoTool {

using namespace ZoPrimitives;
namespace fs = std::filesystem;

namespace {

/// Header, and a schema without classes.
const unsigned EMPTY[] = {0, 0, 0, 1, 0, 0, 0, 0xABCAABCA, 4, 0x2144DF1C, 0, 0, 0, 0};

std::string ReadStandardInput() {
    std::string bytes;
    std::array<char, 1 << 16> block;
    while (const std::size_t size = std::fread(block.data(), 1, block.size(), stdin))
        bytes.append(block.data(), size);
    if (std::ferror(stdin) != 0) throw Trouble(Words("it cannot be read"));
    return bytes;
}

bool LooksLikeAnObjectFile(const fs::path& path) {
    if (path.extension() == ".zo") return true;
    try {
        TZoFileBytes bytes(path);
        unsigned marker = 0;
        TZoFrameReader frames(bytes);
        return frames.GetHeaderState() == TZoHeaderState::Right &&
               bytes.Read(frames.GetFirstOffset(), &marker, sizeof marker) == sizeof marker &&
               (marker == 0xABCAABCA || marker == 0xABCDABCD);
    } catch (const XReadStream&) { // not a file that can be read
        return false;
    }
}

std::vector<std::string> FilesIn(const fs::path& folder) {
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && LooksLikeAnObjectFile(entry.path()))
            files.push_back(Utf8Of(entry.path().generic_u8string())); // with "/" on every system
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

std::string NameOf(const std::string& word) { return word == "-" ? Words("standard input") : word; }

Input::Input(const std::string& given, Null null) : name(NameOf(given)) {
    std::error_code error;
    if (given == "-") {
        standardInput = ReadStandardInput();
        bytes = std::make_unique<TZoMemoryBytes>(standardInput.data(), standardInput.size());
    } else if (null == Null::IsEmpty && (given == "/dev/null" || given == "nul")) {
        bytes = std::make_unique<TZoMemoryBytes>(EMPTY, sizeof EMPTY);
    } else if (fs::is_directory(PathOf(given), error)) {
        throw Trouble(Words("it is a folder, or one without object files; name a file"));
    } else {
        bytes = std::make_unique<TZoFileBytes>(TZoPath::FromUtf8(given.c_str()));
    }
}

std::vector<std::string> FilesOf(const std::vector<std::string>& words) {
    std::vector<std::string> files;
    for (const std::string& word : words) {
        std::error_code error;
        if (word != "-" && fs::is_directory(PathOf(word), error)) {
            const std::vector<std::string> found = FilesIn(PathOf(word));
            files.insert(files.end(), found.begin(), found.end());
            if (found.empty()) files.push_back(word); // which opening it tells
        } else {
            files.push_back(word);
        }
    }
    return files;
}

Exit ForEach(Tool& tool, const std::vector<std::string>& files,
             const std::function<Exit(const Input&)>& body) {
    Exit worst = Exit::Good;
    for (const std::string& file : files) {
        worst = Worse(worst, tool.Try(NameOf(file), [&] { return body(Input(file)); }));
    }
    return worst;
}

} // namespace ZoTool
