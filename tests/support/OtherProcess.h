#pragma once

#include "support/TemporaryFolder.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

namespace ZoPrimitives::Testing {

/// Another process that has the file "plan.zo" of a folder open while this lives, to "read", "view" or
/// "write" it (tests/holder).
class OtherProcess {
public:
    OtherProcess(const std::string& how, const TemporaryFolder& place) : folder(place) {
        std::string command = std::filesystem::path::preferred_separator == '\\' ? "call " : "";
        command += Quoted(std::filesystem::path(ZO_TEST_HOLDER).make_preferred().string()) + " " + how;
        for (const char* name : {"plan.zo", "held", "release"}) command += " " + Quoted(folder.Path(name));
        process = std::thread([this, command] {
            static_cast<void>(std::system(command.c_str()));
            ended = true;
        });
        while (!folder.Has("held") && !ended) std::this_thread::yield();
        if (!folder.Has("held")) {
            process.join();
            throw std::runtime_error("cannot run " + command);
        }
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;
    ~OtherProcess() {
        folder.Write("release", "");
        process.join();
        for (const char* name : {"held", "release"}) std::filesystem::remove(folder.Path(name));
    }

private:
    static std::string Quoted(const std::string& text) { return '"' + text + '"'; }

    const TemporaryFolder& folder;
    std::atomic<bool> ended = false;
    std::thread process;
};

} // namespace ZoPrimitives::Testing
