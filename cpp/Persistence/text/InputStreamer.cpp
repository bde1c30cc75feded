#include "ZoPrimitives/InputStreamer.h"

#include "Persistence/text/TextCodes.h"
#include "Persistence/text/TextLevel.h"
#include "Persistence/text/TextLosses.h"
#include "Platform/Platform.h"
#include "ZoPrimitives/FileInputStream.h"
#include "ZoPrimitives/NumberText.h"
#include "ZoPrimitives/UserText.h"
#include "ZoPrimitives/WholeText.h"
#include "ZoPrimitives/XStream.h"
#include "ZoPrimitives/xContainer.h"

#include <algorithm>
#include <climits>
#include <cstddef>

namespace ZoPrimitives {

namespace {

void RefuseTerminator(const ZoString& token, unsigned count) {
    const auto* end = TextCodes::TERMINATORS + count;
    if (std::find(TextCodes::TERMINATORS, end, token) != end) throw XEndSection();
}

[[noreturn]] void ThrowTooDeep() {
    throw XReadStream(Translated(TextCodes::TOO_DEEP), "InputStreamer::Read", TStreamFailure::Damaged);
}

/// Classes decide how deep objects nest. The code that runs between two tokens, and the exception, need the
/// reserve.
void RefuseShortStack() {
    constexpr std::size_t RESERVE = 128 * 1024;
    const Platform::Stack stack = Platform::CallersStack();
    if (stack.left < std::min(RESERVE, stack.size / 4)) ThrowTooDeep();
}

} // namespace

bool ValidInteger(const ZoString& text) {
    int ignored = 0;
    return WholeInt(text.c_str(), ignored);
}

TextLevel::TextLevel(InputStreamer& streamer, const ZoStreamableBase& read)
    : reader(streamer), object(&read), outer(streamer.innermost), outerDepth(streamer.depth),
      held(ZoReferenceCount::Count(object) != 0) {
    if (outer != object) {
        if (outerDepth == MAX_TEXT_NESTING) ThrowTooDeep();
        ++reader.depth;
    }
    reader.innermost = object;
    if (held) ZoReferenceCount::Add(object);
}

TextLevel::~TextLevel() {
    reader.innermost = outer;
    reader.depth = outerDepth;
    if (held) {
        ZoReferenceCount::Release(object);
    } else if (ZoReferenceCount::Count(object) == 1 && reader.members.erase(object) != 0) {
        ZoReferenceCount::Surrender(object); // no `pointer` took hold of it
    }
}

InputStreamer::InputStreamer(InputStream* source, StreamableFactory* factory) : stream(source) {
    if (factory != nullptr) AddFactory(factory);
}

InputStreamer::~InputStreamer() { ReleaseMade(); }

void InputStreamer::ReleaseMade() {
    for (const ZoStreamableBase* object : created) ZoReferenceCount::Release(object);
    created.RemoveAll();
}

void InputStreamer::HandOver() {
    for (const ZoStreamableBase* object : created) ZoReferenceCount::Surrender(object);
    created.RemoveAll();
    ResetHandles();
}

// Values

InputStream& InputStreamer::Source() {
    InputStream& source = *stream;
    if (source.GetRepeats() >= MAX_TEXT_NESTING) throw XEndOfStream();
    RefuseShortStack();
    return source;
}

#define ZO_FORWARD(Type)                                                                                     \
    InputStreamer& InputStreamer::operator>>(Type value) {                                                   \
        Source() >> value;                                                                                   \
        return *this;                                                                                        \
    }
ZO_FORWARD(ZoString&)
ZO_FORWARD(char*)
ZO_FORWARD(long double&)
ZO_FORWARD(double&)
ZO_FORWARD(float&)
ZO_FORWARD(unsigned int&)
ZO_FORWARD(int&)
ZO_FORWARD(unsigned short&)
ZO_FORWARD(short&)
ZO_FORWARD(bool&)
#undef ZO_FORWARD

void InputStreamer::SkipValue() { Source().SkipValue(); }

// Objects

InputStreamer& InputStreamer::operator>>(ZoStreamableBase& object) {
    const TextLevel level(*this, object);
    ZoString token;
    *this >> token;
    RefuseTerminator(token, TextCodes::TERMINATORS_OF_OBJECTS);
    object.Read(*this);
    return *this;
}

InputStreamer& InputStreamer::operator>>(ZoStreamableBase*& object) {
    ZoString token;
    *this >> token;
    RefuseTerminator(token, TextCodes::TERMINATORS_OF_POINTERS);
    object = RetrieveObject(GetHandle(token));
    return *this;
}

void InputStreamer::Read(ZoStreamableBase*& object,
                         TIContainerIterator<ZoString, pointer<ZoString>> terminators) {
    object = nullptr;
    ZoString token;
    *this >> token;
    for (terminators.First(); !terminators.IsDone(); terminators.Next()) {
        const ZoString* terminator = terminators.Current().get();
        if (terminator != nullptr && token == *terminator) throw XEndSection();
    }
    object = RetrieveObject(GetHandle(token));
}

ZoStreamableBase* InputStreamer::CreateObject(const ZoString& className) {
    if (factories.NItems() == 0) return nullptr;
    for (unsigned long long i = 1; i <= factories.NItems(); ++i) {
        const pointer<StreamableFactory> factory = factories[i];
        try {
            const pointer<ZoStreamableBase> object =
                factory ? factory->CreateObject(WholeText(className)) : nullptr;
            if (!object) continue;
            created.Add(object.get());
            ZoReferenceCount::Add(object.get());
            return object.get();
        } catch (const XUnknownObject&) {
            // Ask the next factory.
        }
    }
    SkipObject();
    Losses().AddUnknownClass(className);
    RefuseFault(strictClasses);
    return nullptr;
}

void InputStreamer::SkipObject() {
    try {
        ZoString value;
        int code = 0;
        for (*this >> code; code != TextCodes::OBJECT && code != TextCodes::END; *this >> code) {
            *this >> value;
        }
    } catch (const XStream&) {
        // The next read operation meets the rest.
    }
}

// What is lost

TextLosses& InputStreamer::Losses() {
    if (losses == nullptr) losses = std::make_unique<TextLosses>();
    return *losses;
}

TZoReadReport InputStreamer::Report() const { return losses != nullptr ? losses->Report() : TZoReadReport(); }

void InputStreamer::RefuseFault(unsigned fault) const {
    if ((strict & fault) != 0) throw XRefusedData(Report(), "InputStreamer::Read");
}

// Handles

void InputStreamer::SetHandle(ZoStreamableBase* object, int handle) {
    InputStream& source = *stream;
    byHandle[handle] = object;
    if (handle != 0) source.SetHandle(object, handle);
}

int InputStreamer::AddObject(ZoStreamableBase* object) {
    const int known = GetHandle(object);
    if (known != 0) return known;
    const int largest = byHandle.empty() ? 0 : std::max(byHandle.rbegin()->first, 0);
    if (object == nullptr || largest == INT_MAX) throw XInvalidHandle();
    SetHandle(object, largest + 1);
    return largest + 1;
}

void InputStreamer::RemoveObject(int handle) { byHandle.erase(handle); }

ZoStreamableBase* InputStreamer::RetrieveObject(int handle) {
    const auto found = byHandle.find(handle);
    if (found == byHandle.end() || found->second == nullptr) throw XInvalidHandle();
    ZoStreamableBase* object = found->second;
    if (ZoReferenceCount::Count(object) == 0) {
        members.insert(object);
        ZoReferenceCount::Add(object); // only its owner may delete it
    }
    return object;
}

int InputStreamer::GetHandle(const ZoStreamableBase* object) const {
    const int handle = stream->GetHandle(object);
    const auto found = byHandle.find(handle);
    return found != byHandle.end() && found->second == object && object != nullptr ? handle : 0;
}

int InputStreamer::GetHandle(const ZoString& token) const {
    int handle = 0;
    if (!WholeInt(token.c_str(), handle) || handle == 0) throw xInvalidConversion();
    return handle;
}

void InputStreamer::ResetHandles() {
    byHandle.clear();
    stream->ResetHandles();
}

void* InputStreamer::GetFile() const {
    const auto* file = dynamic_cast<const FileInputStream*>(&*stream);
    return file == nullptr ? nullptr : file->GetFile();
}

} // namespace ZoPrimitives
