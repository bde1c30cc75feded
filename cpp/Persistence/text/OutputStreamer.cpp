#include "ZoPrimitives/OutputStreamer.h"

#include "Persistence/text/TextCodes.h"
#include "ZoPrimitives/FileOutputStream.h"
#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"

#include <climits>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

namespace ZoPrimitives {

namespace {

[[noreturn]] void Throw(UserText message) {
    throw XWriteStream(Translated(message), "OutputStreamer::operator<<");
}

} // namespace

class OutputStreamer::Level {
public:
    explicit Level(OutputStreamer& writer) : depth(writer.depth) {
        if (depth == MAX_TEXT_NESTING) Throw(TextCodes::TOO_DEEP);
        ++depth;
    }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
    ~Level() { --depth; }

private:
    int& depth;
};

OutputStreamer::OutputStreamer(OutputStream* target) : stream(target) {}
OutputStreamer::~OutputStreamer() = default;

#define ZO_FORWARD(Type, Written)                                                                            \
    OutputStreamer& OutputStreamer::operator<<(Type value) {                                                 \
        *stream << Written;                                                                                  \
        return *this;                                                                                        \
    }
ZO_FORWARD(const ZoString&, value)
ZO_FORWARD(const char*, value)
ZO_FORWARD(long double, value)
ZO_FORWARD(double, value)
ZO_FORWARD(float, value)
ZO_FORWARD(unsigned int, value)
ZO_FORWARD(int, value)
ZO_FORWARD(unsigned short, int{value})
ZO_FORWARD(short, int{value})
ZO_FORWARD(bool, value)
#undef ZO_FORWARD

OutputStreamer& OutputStreamer::operator<<(ZoStreamableBase& object) {
    const Level level(*this);
    object.Write(*this);
    return *this;
}

OutputStreamer& OutputStreamer::operator<<(ZoStreamableBase* object) {
    if (object == nullptr) return *this << TextCodes::OBJECT;
    const int known = GetHandle(object);
    if (known != 0) return *this << TextCodes::REFERENCE << WholeText({std::to_string(known)});
    const Level level(*this);
    const ZoString name = object->StreamableClassName();
    if (name.c_str()[0] == '\0') throw std::bad_alloc(); // memory was short
    Number(object);
    *this << TextCodes::OBJECT << name;
    object->Write(*this);
    return *this;
}

void OutputStreamer::Number(ZoStreamableBase* object) {
    if (nextHandle == INT_MAX) Throw(UserText("Objetos demais"));
    written.Add(object);
    try {
        stream->SetHandle(object, nextHandle);
    } catch (...) {
        written.RemoveLast();
        throw;
    }
    ++nextHandle;
}

void OutputStreamer::MultiLineText(const ZoString& text, int code) {
    const char* line = text.c_str();
    if (*line == '\0') return;
    while (const char* feed = std::strchr(line, '\n')) {
        *this << code << WholeText({std::string_view(line, static_cast<std::size_t>(feed - line))});
        line = feed + 1;
    }
    *this << code << line;
}

void* OutputStreamer::GetFile() const {
    const auto* file = dynamic_cast<const FileOutputStream*>(&*stream);
    return file == nullptr ? nullptr : file->GetFile();
}

} // namespace ZoPrimitives
