#include "input.h"

#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/MemoryBinInStream.h"

#include <array>
#include <filesystem>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

std::string ReadStandardInput() {
    std::string bytes;
    std::array<char, 1 << 16> block;
    while (const std::size_t size = std::fread(block.data(), 1, block.size(), stdin))
        bytes.append(block.data(), size);
    if (std::ferror(stdin) != 0) throw Trouble("standard input cannot be read");
    return bytes;
}

unsigned long long SizeOf(const std::string& path) {
    const std::filesystem::path file(std::u8string(path.begin(), path.end()));
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) throw Trouble("it is a folder; name a file in it");
    const auto size = std::filesystem::file_size(file, error);
    if (error == std::errc::no_such_file_or_directory)
        throw Trouble("there is no such file; look at its name and its folder");
    if (error) throw Trouble("it cannot be opened: " + error.message());
    return size;
}

} // namespace

Input::Input(const std::string& given)
    : path(given == "-" ? "" : given), name(given == "-" ? "standard input" : given) {
    if (path.empty()) bytes = ReadStandardInput();
    size = path.empty() ? bytes.size() : SizeOf(path);
}

std::unique_ptr<TBinInStream> Input::OpenStream() const {
    if (path.empty()) {
        auto stream =
            std::make_unique<TMemoryBinInStream>(bytes.data(), bytes.size(), TFileBinInStream::ANY_VERSION);
        stream->Initialize();
        return stream;
    }
    auto stream = std::make_unique<TFileBinInStream>(TZoPath::FromUtf8(path.c_str()), TFileReading::Viewing);
    stream->Initialize();
    return stream;
}

Exit ForEach(Tool& tool, const std::vector<std::string>& files,
             const std::function<Exit(const Input&)>& body) {
    Exit worst = Exit::Good;
    for (const std::string& file : files) {
        worst =
            Worse(worst, tool.Try(file == "-" ? "standard input" : file, [&] { return body(Input(file)); }));
    }
    return worst;
}

} // namespace ZoTool
