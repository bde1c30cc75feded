#include "grammar.h"

#include "ZoPrimitives/xContainer.h"

namespace Frame {

using namespace ZoPrimitives;

namespace {

constexpr int END = 7;
constexpr const char* REFERENCE = "5";
constexpr const char* END_GROUP = "ENDGROUP";
constexpr const char* NO_OBJECT = "ENDGROUPELEMENTOS";

bool Within(int code, int first) { return code >= first && code < first + 100; }

} // namespace

void PutPointer(OutputStreamer& text, ZoStreamableBase* object) {
    const bool isNew = text.GetHandle(object) == 0;
    text << object;
    if (object == nullptr) {
        text << NO_OBJECT;
    } else if (isNew) {
        text << END;
    }
}

void EndGroup(OutputStreamer& text) { text << END_GROUP; }

TextReader::Found TextReader::Pointer() {
    ZoString kind;
    *this >> kind;
    return PointerOfKind(kind);
}

TextReader::Found TextReader::PointerOfKind(const ZoString& kind) {
    ZoStreamableBase* object = nullptr;
    if (kind == REFERENCE) {
        try {
            *this >> object;
        } catch (const XInvalidHandle&) {
            return {};
        }
        return object;
    }
    ZoString className;
    *this >> className;
    if (className == NO_OBJECT) return nullptr;
    object = CreateObject(className);
    if (object == nullptr) return {};
    object->Read(*this);
    return object;
}

TextReader::Item TextReader::NextItem() {
    ZoString kind;
    *this >> kind;
    if (kind == END_GROUP) return {false, {}};
    return {true, PointerOfKind(kind)};
}

void TextReader::TakeMember(ZoStreamableBase& member) {
    SkipValue();     // the 0
    *this >> member; // its class, which is known, and its data
}

void TextReader::TakeLegend(TIMap<Section, LegendEntry>& legend) {
    for (Item key = NextItem(); key.is_open; key = NextItem()) {
        const Found entry = Pointer();
        if (!key.object || !entry) continue;
        legend.Append(dynamic_cast<Section*>(*key.object), dynamic_cast<LegendEntry*>(*entry));
    }
}

void TextReader::TakeLine(ZoString& target) {
    ZoString line;
    *this >> line;
    if (&target == lineTarget) {
        lines += '\n';
    } else {
        FinishText();
        lineTarget = &target;
    }
    lines += line.c_str();
}

void TextReader::FinishText() {
    if (lineTarget != nullptr) *lineTarget = lines.c_str();
    lineTarget = nullptr;
    lines.clear();
}

// Passing over what is not known

void TextReader::SkipValueOf(int code) {
    ZoString kind;
    if (Within(code, 100)) {
        *this >> kind;
        SkipPointer(kind);
    } else if (Within(code, 200)) {
        for (*this >> kind; kind != END_GROUP; *this >> kind) SkipPointer(kind);
    } else {
        SkipValue();
    }
}

void TextReader::SkipPointer(const ZoString& kind) {
    ZoString next; // a handle, a class or a keyword
    *this >> next;
    if (kind != REFERENCE && next != NO_OBJECT) SkipObject();
}

void TextReader::SkipObject() {
    const Level level(*this);
    int code = 0;
    for (*this >> code; code != 0 && code != END; *this >> code) SkipValueOf(code);
}

} // namespace Frame
