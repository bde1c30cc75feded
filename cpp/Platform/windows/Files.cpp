#include "Platform/Platform.h"
#include "Platform/windows/Interference.h"
#include "Platform/windows/Paths.h"
#include "Platform/windows/Windows.h"

#include <algorithm>

namespace ZoPrimitives::Platform {

namespace {

// Some servers refuse larger transfers.
constexpr std::size_t LargestTransfer = std::size_t{16} << 20;

} // namespace

FileHandle Services::OpenFile(const char* name, Access access, Share share, Creation creation) {
    const SystemPath path(name);
    if (!path) return nullptr;
    const bool create = creation != Creation::OpenExisting;
    const bool writes = access == Access::ReadWrite || create;
    DWORD kept = 0;
    if (writes) {
        const DWORD attributes = ::GetFileAttributesW(path.c_str());
        const bool known = attributes != INVALID_FILE_ATTRIBUTES;
        if (known && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
            SetLastError(ErrorAccessDenied);
            return nullptr;
        }
        // A file that has these is emptied only for who names them.
        if (known) kept = attributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    }
    DWORD shared = 0;
    if (share != Share::None) shared |= FILE_SHARE_READ;
    if (share == Share::ReadWrite) shared |= FILE_SHARE_WRITE;
    HANDLE file = INVALID_HANDLE_VALUE;
    const auto open = [&] {
        file = ::CreateFileW(path.c_str(), writes ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ, shared,
                             nullptr, create ? CREATE_ALWAYS : OPEN_EXISTING,
                             kept != 0 ? kept : FILE_ATTRIBUTE_NORMAL, nullptr);
        return file != INVALID_HANDLE_VALUE;
    };
    const bool opened = creation == Creation::FillTemporary
                            ? DespiteInterference(*this, {{path, GENERIC_WRITE}}, open)
                            : open();
    return opened ? file : nullptr;
}

bool Services::CloseFile(FileHandle file) { return ::CloseHandle(file) != 0; }

bool Services::ReadFile(FileHandle file, void* data, std::size_t size, std::size_t& done) {
    auto* bytes = static_cast<unsigned char*>(data);
    done = 0;
    while (done < size) {
        DWORD count = 0;
        const auto part = static_cast<DWORD>(std::min(size - done, LargestTransfer));
        if (::ReadFile(file, bytes + done, part, &count, nullptr) == 0) {
            const DWORD error = ::GetLastError();
            return error == ERROR_HANDLE_EOF || error == ERROR_BROKEN_PIPE;
        }
        if (count == 0) break;
        done += count;
    }
    return true;
}

bool Services::WriteFile(FileHandle file, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    while (size != 0) {
        DWORD count = 0;
        const auto part = static_cast<DWORD>(std::min(size, LargestTransfer));
        if (::WriteFile(file, bytes, part, &count, nullptr) == 0) return false;
        if (count == 0) {
            SetLastError(ErrorDevice);
            return false;
        }
        bytes += count;
        size -= count;
    }
    return true;
}

bool Services::SeekFile(FileHandle file, long long offset, Origin origin, unsigned long long& position) {
    LARGE_INTEGER distance, reached;
    distance.QuadPart = offset;
    const DWORD method = origin == Origin::Begin     ? FILE_BEGIN
                         : origin == Origin::Current ? FILE_CURRENT
                                                     : FILE_END;
    if (::SetFilePointerEx(file, distance, &reached, method) == 0) return false;
    position = static_cast<unsigned long long>(reached.QuadPart);
    return true;
}

bool Services::FileSize(FileHandle file, unsigned long long& size) {
    LARGE_INTEGER bytes;
    if (::GetFileSizeEx(file, &bytes) == 0) return false;
    if (::GetFileType(file) != FILE_TYPE_DISK) {
        SetLastError(ErrorInvalidFunction);
        return false;
    }
    size = static_cast<unsigned long long>(bytes.QuadPart);
    return true;
}

bool Services::TruncateFile(FileHandle file, unsigned long long size) {
    FILE_END_OF_FILE_INFO end;
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    return ::SetFileInformationByHandle(file, FileEndOfFileInfo, &end, sizeof end) != 0;
}

bool Services::SynchroniseFile(FileHandle file) {
    // A device that buffers nothing does not support the function.
    return ::FlushFileBuffers(file) != 0 || ::GetLastError() == ERROR_INVALID_FUNCTION;
}

} // namespace ZoPrimitives::Platform
