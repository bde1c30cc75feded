#include "ZoPrimitives/FileOutputStream.h"

#include "Persistence/records/FileAccess.h"
#include "ZoPrimitives/NumberText.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/ZoSources.h"

#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <utility>

namespace ZoPrimitives {

namespace {

constexpr const char* LINE_END = "\r\n";

/// A string with room for `size` bytes, or for as many as memory allows.
std::string WithRoom(std::size_t size) {
    std::string text;
    for (;; size /= 2) {
        try {
            text.reserve(size); // a short one allocates nothing
            return text;
        } catch (const std::bad_alloc&) {
            continue;
        }
    }
}

} // namespace

FileOutputStream::FileOutputStream(const char* fileName, bool keepOpen)
    : FileOutputStream(TZoPath(fileName), keepOpen) {}
FileOutputStream::FileOutputStream(const TZoPath& name, bool keepOpen)
    : path(name.With("")), file(nullptr), tokens(new TDList<ZoString>), keepsOpen(keepOpen) {
    // Empty the file only when nothing else can fail.
    file = Platform::Current().OpenFile(path.Utf8().c_str(), Platform::Access::ReadWrite,
                                        Platform::Share::Read, Platform::Creation::CreateAlways);
    if (file == nullptr) ThrowUnwritten(Platform::LastError(), "FileOutputStream::FileOutputStream", path);
}

FileOutputStream::FileOutputStream(void* openFile)
    : file(openFile), tokens(new TDList<ZoString>), keepsOpen(true) {
    if (file == nullptr)
        AssertWithFunctor("file", "[zoerror] file not defined", ZoSources::FILE_OUTPUT_STREAM, __LINE__);
}

FileOutputStream::~FileOutputStream() {
    if (!finalized) SaveToFile();
    Close();
}

OutputStream& FileOutputStream::Add(std::string_view token) {
    ZO_ASSERT(!finalized, "!finalized && \"[zoerror] a stream writes one file\"",
              ZoSources::FILE_OUTPUT_STREAM);
    tokens->Add(ZoString());
    try {
        AssignWhole(tokens->Last(), token.data(), static_cast<unsigned>(token.size()));
    } catch (...) {
        tokens->RemoveLast();
        throw;
    }
    return *this;
}

OutputStream& FileOutputStream::operator<<(const ZoString& value) { return Add(value.c_str()); }
OutputStream& FileOutputStream::operator<<(const char* value) { return Add(value != nullptr ? value : ""); }
OutputStream& FileOutputStream::operator<<(long double value) { return *this << static_cast<double>(value); }
OutputStream& FileOutputStream::operator<<(double value) { return Add(RealText(value).Text()); }
OutputStream& FileOutputStream::operator<<(float value) { return *this << static_cast<double>(value); }
OutputStream& FileOutputStream::operator<<(unsigned int value) { return Add(std::to_string(value)); }
OutputStream& FileOutputStream::operator<<(int value) { return Add(std::to_string(value)); }
OutputStream& FileOutputStream::operator<<(unsigned short value) { return *this << int{value}; }
OutputStream& FileOutputStream::operator<<(short value) { return *this << int{value}; }
OutputStream& FileOutputStream::operator<<(bool value) { return Add(value ? "1" : "0"); }

bool FileOutputStream::GetHasEOF() const {
    for (const ZoString& token : *tokens)
        if (std::strcmp(token.c_str(), "EOF") == 0) return true;
    return false;
}

bool FileOutputStream::SaveToFile() {
    if (tokens->NItems() == 0) return true;
    std::size_t size = 0;
    for (const ZoString& token : *tokens) size += std::strlen(token.c_str()) + std::strlen(LINE_END);
    std::string text = WithRoom(size);
    bool saved = true;
    const auto put = [&](std::string_view piece) {
        if (piece.size() > text.capacity() - text.size()) {
            saved = saved && Platform::Current().WriteFile(file, text.data(), text.size());
            text.clear();
        }
        if (piece.size() <= text.capacity()) {
            text += piece;
        } else {
            saved = saved && Platform::Current().WriteFile(file, piece.data(), piece.size());
        }
    };
    for (const ZoString& token : *tokens) {
        if (std::exchange(begun, true)) put(LINE_END);
        put(token.c_str());
    }
    tokens->RemoveAll();
    return saved && Platform::Current().WriteFile(file, text.data(), text.size());
}

bool FileOutputStream::Close() {
    return keepsOpen || file == nullptr || Platform::Current().CloseFile(std::exchange(file, nullptr));
}

void FileOutputStream::Finalize() {
    if (finalized) return;
    const bool saved = SaveToFile();
    finalized = true;
    const unsigned long writeError = Platform::LastError();
    const bool closed = Close();
    if (!saved) ThrowUnwritten(writeError, "FileOutputStream::Finalize", path);
    if (!closed) ThrowUnwritten(Platform::LastError(), "FileOutputStream::Finalize", path);
}

} // namespace ZoPrimitives
