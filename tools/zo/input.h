#pragma once

#include "tool.h"

#include "ZoPrimitives/ZoFrames.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ZoTool {

/// A word of the command line that names a file, as messages show it.
std::string NameOf(const std::string& word);

/// One file of the command line, or standard input where its name is "-".
class Input {
public:
    /// What the null device is: nothing that can be read, or, as where git compares with no file, a file
    /// without objects.
    enum class Null { Nothing, IsEmpty };
    explicit Input(const std::string& given, Null null = Null::Nothing);

    /// As messages and the column `file` show it.
    const std::string& Name() const { return name; }
    ZoPrimitives::TZoBytes& Bytes() const { return *bytes; }

private:
    std::string name;
    std::string standardInput;
    std::unique_ptr<ZoPrimitives::TZoBytes> bytes;
};

/// The files that words of a command line name: a folder stands for the object files in it and below, sorted
/// by name. Those are the files that end in ".zo", and others that begin as an object file does.
std::vector<std::string> FilesOf(const std::vector<std::string>& words);

/// Runs `body` on each file. What one throws is told, and the others follow: the worst end is the result.
Exit ForEach(Tool& tool, const std::vector<std::string>& files,
             const std::function<Exit(const Input&)>& body);

} // namespace ZoTool
