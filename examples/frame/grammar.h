#pragma once

// How the buildings of this application stand in a text, over the codes and keywords of the library's text
// format. The code tells what follows it, so that whoever does not know a code can pass over its value:
//
//     data     = { code value } 7
//     value    = token                                  of codes 1 to 99
//              | pointer                                of codes 100 to 199
//              | { pointer } 0 ENDGROUP                 of codes 200 to 299
//     pointer  = 5 handle                               an object that was there before
//              | 0 class data                           a new one
//              | 0 ENDGROUPELEMENTOS                    none
//
// A null pointer and a new object both begin with 0: the keyword behind it, which is no class's name, tells
// the null pointer, and the end of a group. So an integer never stands where a name may stand, and the same
// reader reads from the clipboard, where they are not alike.

#include "model.h"

#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"

#include <optional>
#include <string>

namespace Frame {

// Writing a value, behind its code.

void PutPointer(ZoPrimitives::OutputStreamer& text, ZoPrimitives::ZoStreamableBase* object);
void EndGroup(ZoPrimitives::OutputStreamer& text);

inline Entity* ObjectOf(Entity* object) { return object; }
template <class T>
Entity* ObjectOf(const ZoPrimitives::pointer<T>& holder) {
    return holder.get();
}
template <class List>
void PutGroup(ZoPrimitives::OutputStreamer& text, const List& list) {
    for (const auto& item : list) PutPointer(text, ObjectOf(item));
    EndGroup(text);
}

/// Reads what these wrote.
class TextReader : public ZoPrimitives::InputStreamer {
public:
    using InputStreamer::InputStreamer;

    /// The reader that an object is handed in `ReadData`.
    static TextReader& Of(ZoPrimitives::InputStreamer& text) { return dynamic_cast<TextReader&>(text); }

    /// Null for an object of another class too.
    template <class Holder>
    void TakePointer(Holder& holder) {
        holder = dynamic_cast<typename Holder::ObjectType*>(Pointer().value_or(nullptr));
    }
    /// An object that is a member of another.
    void TakeMember(ZoPrimitives::ZoStreamableBase& member);
    /// What is not there, or of another class, is left out.
    template <class T, class List>
    void TakeGroup(List& list) {
        for (Item item = NextItem(); item.is_open; item = NextItem()) {
            T* object = dynamic_cast<T*>(item.object.value_or(nullptr));
            if (object != nullptr || item.object == nullptr) list.Add(object);
        }
    }
    void TakeLegend(ZoPrimitives::TIMap<Section, LegendEntry>& legend);
    /// One line of a text whose lines follow each other.
    void TakeLine(ZoString& target);
    /// Puts the lines taken so far where they belong.
    void FinishText();
    /// Passes over the value of a code.
    void SkipValueOf(int code);

protected:
    void SkipObject() override;

private:
    /// No value where the object is not there: its class is not known, or its handle stands for nothing.
    using Found = std::optional<ZoPrimitives::ZoStreamableBase*>;
    struct Item {
        bool is_open;
        Found object;
    };

    Item NextItem();
    Found Pointer() { return NextItem().object; }
    /// Passes over a pointer; false for the end of a group.
    bool SkipPointer();

    ZoString* lineTarget = nullptr;
    std::string lines;
};

} // namespace Frame
