#include "ZoPrimitives/FileInputStream.h"

#include "Persistence/records/FileAccess.h"
#include "Persistence/text/TokenRead.h"
#include "ZoPrimitives/NumberText.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <utility>

namespace ZoPrimitives {

namespace {

void Copy(std::string_view token, char* buffer) {
    if (!token.empty()) std::memcpy(buffer, token.data(), token.size());
    buffer[token.size()] = '\0';
}

} // namespace

FileInputStream::FileInputStream(const char* name, bool callersFlag)
    : FileInputStream(TZoPath(name), callersFlag, TFileReading::Locking) {}
FileInputStream::FileInputStream(const char* name, TFileReading how)
    : FileInputStream(TZoPath(name), false, how) {}
FileInputStream::FileInputStream(const TZoPath& name, TFileReading how) : FileInputStream(name, false, how) {}
FileInputStream::FileInputStream(const TZoPath& name, bool callersFlag, TFileReading how)
    : flag(callersFlag), path(name.With("")), reading(how) {
    OpenFile(path);
    try {
        LoadFromFile();
    } catch (...) {
        delete[] buffer;
        Platform::Current().CloseFile(file);
        throw;
    }
}

FileInputStream::~FileInputStream() {
    delete[] buffer;
    Platform::Current().CloseFile(file);
}

void FileInputStream::OpenFile(const TZoPath& name) {
    file = OpenToRead(name, reading, "FileInputStream::OpenFile");
}

void FileInputStream::LoadFromFile() {
    if (reading == TFileReading::Viewing)
        LoadSteadily(path, [this] { LoadOnce(); });
    else
        LoadOnce();
}

void FileInputStream::LoadOnce() {
    constexpr const char* location = "FileInputStream::LoadFromFile";
    unsigned long long length = 0;
    unsigned long long start = 0;
    const bool sized = Platform::Current().FileSize(file, length);
    if (!sized) length = 0;
    if (length >= UINT32_MAX) ThrowUnreadable(path, location);
    char* fresh = new char[static_cast<std::size_t>(length) + 1];
    delete[] std::exchange(buffer, fresh);
    std::size_t done = 0;
    whole = sized && Platform::Current().SeekFile(file, 0, Platform::Origin::Begin, start) &&
            Platform::Current().ReadFile(file, buffer, static_cast<std::size_t>(length), done) &&
            done == length;
    size = static_cast<std::uint32_t>(done);
    buffer[size] = '\0';
    position = 0;
    atLastLine = false;
    SetRepeats(0);
}

void FileInputStream::CheckRead() {
    if (position >= size) throw XEndOfStream();
}

std::string_view FileInputStream::GetNextLine() {
    const char* line = buffer + position;
    const char* const end = buffer + size;
    const std::size_t left = static_cast<std::size_t>(end - line);
    const auto* feed = atLastLine ? nullptr : static_cast<const char*>(std::memchr(line, '\n', left));
    if (feed == nullptr) {
        if (std::exchange(atLastLine, true)) Repeat(left);
        return {line, left};
    }
    position = static_cast<std::uint32_t>(feed + 1 - buffer);
    if (feed != line && feed[-1] == '\r') --feed;
    return {line, static_cast<std::size_t>(feed - line)};
}

void FileInputStream::Repeat(std::size_t length) {
    // A reader that stops at the limit has read no more than a small multiple of the file.
    constexpr std::size_t SHORT_LINE = 64;
    const auto weight = static_cast<unsigned>(1 + length / SHORT_LINE);
    SetRepeats(GetRepeats() < UINT_MAX - weight ? GetRepeats() + weight : UINT_MAX);
}

std::string_view FileInputStream::Token() {
    CheckRead();
    const std::string_view line = GetNextLine();
    return line.substr(0, line.find('\0'));
}

InputStream& FileInputStream::operator>>(ZoString& value) {
    const std::string_view token = Token();
    AssignWhole(value, token.data(), static_cast<unsigned>(token.size()));
    return *this;
}

InputStream& FileInputStream::operator>>(char* target) {
    Copy(Token(), target);
    return *this;
}

InputStream& FileInputStream::operator>>(long double& value) {
    value = RealOf(Token());
    return *this;
}

InputStream& FileInputStream::operator>>(double& value) {
    value = RealOf(Token());
    return *this;
}

InputStream& FileInputStream::operator>>(float& value) {
    value = FloatOf(Token());
    return *this;
}

InputStream& FileInputStream::operator>>(unsigned int& value) {
    value = static_cast<unsigned>(std::clamp<long long>(IntegerOf(Token()), INT_MIN, UINT_MAX));
    return *this;
}

InputStream& FileInputStream::operator>>(int& value) {
    value = IntOf(Token());
    return *this;
}

InputStream& FileInputStream::operator>>(unsigned short& value) {
    value = static_cast<unsigned short>(IntOf(Token()));
    return *this;
}

InputStream& FileInputStream::operator>>(short& value) {
    value = static_cast<short>(IntOf(Token()));
    return *this;
}

InputStream& FileInputStream::operator>>(bool& value) {
    value = IntegerOf(Token()) != 0;
    return *this;
}

void FileInputStream::SkipValue() {
    CheckRead();
    GetNextLine();
}

bool FileInputStream::GetLine(char* target) {
    return ReadsToken([&] { Copy(Token(), target); });
}

} // namespace ZoPrimitives
