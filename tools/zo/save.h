#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ZoTool {

class Output;
class Tool;

/// A file that is made beside its place, and takes it when it is complete. Throws `Trouble` if its place is
/// that of a file that is read, or if something is there and may not be replaced.
class NewFile {
public:
    NewFile(const std::string& utf8, const std::vector<std::string>& sources, bool replaces);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Where it is made.
    std::string PartName() const;
    /// Makes it of what `body` writes. Throws `Trouble`.
    void Write(const std::function<void(Output&)>& body);
    /// Throws `Trouble` if the place cannot be taken.
    void Complete();

private:
    std::string name;
    bool isComplete = false;
};

/// What a command makes of one file: into the file of that name, which is replaced when all is written, or to
/// standard output for "-". Throws `Trouble`, also when that would replace `source`.
void SaveResult(Tool& tool, const std::string& path, std::string_view contents, const std::string& source);

} // namespace ZoTool
