#include "grammar.h"

#include "ZoPrimitives/xContainer.h"

#include <new>

namespace Frame {

using namespace ZoPrimitives;

namespace {

constexpr int REFERENCE = 5;
constexpr int END = 7;
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

void EndGroup(OutputStreamer& text) { text << 0 << END_GROUP; }

TextReader::Item TextReader::NextItem() {
    int kind = 0;
    *this >> kind;
    ZoStreamableBase* object = nullptr;
    if (kind == REFERENCE) {
        try {
            *this >> object;
        } catch (const XInvalidHandle&) {
            return {true, {}};
        }
        return {true, object};
    }
    ZoString name;
    *this >> name;
    if (name == END_GROUP) return {false, {}};
    if (name == NO_OBJECT) return {true, nullptr};
    object = CreateObject(name);
    if (object == nullptr) return {true, {}};
    object->Read(*this);
    return {true, object};
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
    if (lineTarget != nullptr) {
        *lineTarget = lines.c_str();
        if (lineTarget->length() != lines.size()) throw std::bad_alloc(); // memory was short
    }
    lineTarget = nullptr;
    lines.clear();
}

// Skipping unknown data

void TextReader::SkipValueOf(int code) {
    if (Within(code, 100)) {
        SkipPointer();
    } else if (Within(code, 200)) {
        while (SkipPointer()) continue;
    } else {
        SkipValue();
    }
}

bool TextReader::SkipPointer() {
    int kind = 0;
    ZoString next; // a handle, a class or a keyword
    *this >> kind >> next;
    if (kind != REFERENCE && next == END_GROUP) return false;
    if (kind != REFERENCE && next != NO_OBJECT) SkipObject();
    return true;
}

void TextReader::SkipObject() {
    int code = 0;
    for (*this >> code; code != 0 && code != END; *this >> code) SkipValueOf(code);
}

} // namespace Frame
