#include "ZoPrimitives/FileBinInStream.h"

#include "Persistence/records/ErrorText.h"
#include "Persistence/records/FileAccess.h"
#include "Platform/Platform.h"
#include "ZoPrimitives/XStream.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <typeinfo>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr const char* HEADER = "TFileBinInStream::TFileBinInStream";
constexpr unsigned long INVALID_SEEK = 29; // the C run-time's number

} // namespace

TFileBinInStream::TFileBinInStream(const char* name, bool ownsSource)
    : TFileBinInStream(name, ANY_VERSION, ownsSource) {}
TFileBinInStream::TFileBinInStream(const char* name, unsigned supportedVersion, bool ownsSource)
    : TBinInStream(supportedVersion, ownsSource), named(true) {
    SetPath(name);
}
TFileBinInStream::TFileBinInStream(const char* name, int supportedVersion, bool ownsSource)
    : TFileBinInStream(name, static_cast<unsigned>(supportedVersion), ownsSource) {}
TFileBinInStream::TFileBinInStream(const char* name, TFileReading how, unsigned supportedVersion)
    : TFileBinInStream(TZoPath(name), how, supportedVersion) {}
TFileBinInStream::TFileBinInStream(const TZoPath& path, TFileReading how, unsigned supportedVersion)
    : TBinInStream(supportedVersion, true), named(true), asked(how) {
    SetPath(path);
}
TFileBinInStream::TFileBinInStream(void* openFile, bool ownsSource, unsigned supportedVersion)
    : TBinInStream(supportedVersion, ownsSource), file(openFile), named(false) {}

TFileBinInStream::~TFileBinInStream() { Close(); }

void TFileBinInStream::Initialize() {
    try {
        OpenFile();
        ReadHeader(HEADER);
    } catch (...) {
        Close();
        throw;
    }
}

void TFileBinInStream::InitializeKeepingLocked() {
    if (file == nullptr)
        OpenFile();
    else
        Load();
    ReadHeader(HEADER);
}

void TFileBinInStream::OpenFile() {
    if (named) OpenFile(GetFilePath());
    Load();
}

void TFileBinInStream::OpenFile(const TZoPath& name) {
    Close();
    reading = asked;
    file = OpenToRead(name, reading, "TFileBinInStream::OpenFile");
}

void TFileBinInStream::Load() {
    if (named && reading == TFileReading::Viewing)
        LoadSteadily(GetFilePath(), [this] { LoadOnce(); });
    else
        LoadOnce();
}

void TFileBinInStream::LoadOnce() {
    Unload();
    unsigned long long size = 0;
    unsigned long long position = 0;
    const bool sized = Platform::Current().FileSize(file, size);
    const bool rewound = Platform::Current().SeekFile(file, 0, Platform::Origin::Begin, position);
    if (sized && rewound && size < SIZE_MAX) {
        const auto wanted = static_cast<std::size_t>(size);
        std::size_t done = 0;
        copy = static_cast<unsigned char*>(std::malloc(wanted + 1)); // never of 0 bytes
        if (copy != nullptr) {
            if (Platform::Current().ReadFile(file, copy, wanted, done) && done == wanted) {
                SetWindow(copy, copy + wanted);
                SetAsksRead(!TFileBinInStream::GetsDirectly());
                return;
            }
            Unload();
            SeekFar(0, 0);
        }
    }
}

void TFileBinInStream::Unload() {
    SetWindow(nullptr, nullptr);
    std::free(std::exchange(copy, nullptr));
}

void TFileBinInStream::Close() {
    Unload();
    if (file != nullptr && (named || GetOwnsSource()))
        Platform::Current().CloseFile(std::exchange(file, nullptr));
}

bool TFileBinInStream::Read(void* data, unsigned size, unsigned& done) {
    if (HasWindow()) return ReadWindow(data, size, done);
    std::size_t count = 0;
    const bool read = Platform::Current().ReadFile(file, data, size, count);
    SetReadError(read ? 0 : DEVICE_ERROR, static_cast<unsigned>(Platform::LastError()));
    done = static_cast<unsigned>(count);
    return done != 0 || (read && size == 0);
}

const unsigned char* TFileBinInStream::ReadFileBuffer(unsigned long long& size) const {
    size = HasWindow() ? WindowSize() : 0;
    return copy;
}

unsigned long long TFileBinInStream::SeekFar(long long offset, int origin) {
    unsigned long long position = 0;
    bool valid = origin >= 0 && origin <= 2;
    if (valid && HasWindow()) {
        const unsigned long long from = origin == 0 ? 0 : origin == 1 ? WindowPosition() : WindowSize();
        // Two's complement: a negative offset that leads before the beginning wraps to above `from`.
        position = from + static_cast<unsigned long long>(offset);
        valid = offset >= 0 || position < from;
        if (valid) {
            position = std::min(position, WindowSize());
            SetWindowPosition(position);
        }
    } else if (valid) {
        const Platform::Origin origins[] = {Platform::Origin::Begin, Platform::Origin::Current,
                                            Platform::Origin::End};
        valid = Platform::Current().SeekFile(file, offset, origins[origin], position);
    }
    if (!valid) throw XReadStream(ErrorText(INVALID_SEEK), "TFileBinInStream::Seek", TStreamFailure::Device);
    return position;
}

bool TFileBinInStream::GetsDirectly() const { return typeid(*this) == typeid(TFileBinInStream); }

} // namespace ZoPrimitives
