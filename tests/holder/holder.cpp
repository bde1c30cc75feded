#include "ZoPrimitives/FileBinInStream.h"
#include "ZoPrimitives/FileBinOutStream.h"
#include "ZoPrimitives/XStream.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

using namespace ZoPrimitives;

// holder read|view|write FILE HELD RELEASE: opens the file, makes a file HELD, and waits until there is a
// file RELEASE.
int main(int, char** arguments) {
    const std::string how = arguments[1];
    try {
        TFileBinInStream in(arguments[2], how == "view" ? TFileReading::Viewing : TFileReading::Locking);
        const std::unique_ptr<TFileBinOutStream> out(TFileBinOutStream::Create(arguments[2], false));
        how == "write" ? out->Initialize() : in.OpenFile();
        std::ofstream(arguments[3]) << how;
        for (int i = 0; i < 10'000 && !std::filesystem::exists(arguments[4]); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    } catch (const XStream&) {
        return 1;
    }
    return 0;
}
