#pragma once

#include "tool.h"

#include "ZoPrimitives/BinInStream.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ZoTool {

/// One file of the command line, or standard input where its name is "-".
class Input {
public:
    explicit Input(const std::string& given);

    /// As messages and the column `file` show it.
    const std::string& Name() const { return name; }
    /// The size in bytes.
    unsigned long long Size() const { return size; }
    /// A stream that has read the file's header.
    std::unique_ptr<ZoPrimitives::TBinInStream> OpenStream() const;

private:
    std::string path; // empty: standard input
    std::string name;
    std::string bytes; // of standard input
    unsigned long long size;
};

/// Runs `body` on each file. What one throws is told, and the others follow: the worst end is the result.
Exit ForEach(Tool& tool, const std::vector<std::string>& files,
             const std::function<Exit(const Input&)>& body);

} // namespace ZoTool
