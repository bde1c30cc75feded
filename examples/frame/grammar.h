#pragma once

// The text form of this application's buildings, based on the codes and keywords of the library's text
// format. A code tells the form of its value, so that a reader can skip the values of unknown codes:
//
//     data     = { code value } 7
//     value    = token                                  of codes 1 to 99
//              | pointer                                of codes 100 to 199
//              | { pointer } 0 ENDGROUP                 of codes 200 to 299
//     pointer  = 5 handle                               an object already written
//              | 0 class data                           a new object
//              | 0 ENDGROUPELEMENTOS                    null
//
// A null pointer and a new object both begin with 0. The keyword after it, which is never a class's name,
// marks a null pointer or the end of a group. So an integer and a name never compete for the same place, and
// the same reader works on the clipboard, where they have different types.

#include "model.h"

#include "ZoPrimitives/InputStreamer.h"
#include "ZoPrimitives/OutputStreamer.h"

#include <optional>
#include <string>

namespace Frame {

// These write a value after its code.

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

/// Reads what the functions above wrote.
class TextReader : public ZoPrimitives::InputStreamer {
public:
    using InputStreamer::InputStreamer;

    /// The reader passed to an object's `ReadData`.
    static TextReader& Of(ZoPrimitives::InputStreamer& text) { return dynamic_cast<TextReader&>(text); }

    /// Sets null also for an object of another class.
    template <class Holder>
    void TakePointer(Holder& holder) {
        holder = dynamic_cast<typename Holder::ObjectType*>(Pointer().value_or(nullptr));
    }
    /// Reads an object that is a member of another.
    void TakeMember(ZoPrimitives::ZoStreamableBase& member);
    /// Leaves out items that are missing or of another class.
    template <class T, class List>
    void TakeGroup(List& list) {
        for (Item item = NextItem(); item.is_open; item = NextItem()) {
            T* object = dynamic_cast<T*>(item.object.value_or(nullptr));
            if (object != nullptr || item.object == nullptr) list.Add(object);
        }
    }
    void TakeLegend(ZoPrimitives::TIMap<Section, LegendEntry>& legend);
    /// Reads one line of a text; consecutive lines for one target are joined.
    void TakeLine(ZoString& target);
    /// Stores the lines read so far in their target.
    void FinishText();
    /// Skips the value of a code.
    void SkipValueOf(int code);

protected:
    void SkipObject() override;

private:
    /// Empty if the object is missing: its class is unknown, or its handle has no object.
    using Found = std::optional<ZoPrimitives::ZoStreamableBase*>;
    struct Item {
        bool is_open;
        Found object;
    };

    Item NextItem();
    Found Pointer() { return NextItem().object; }
    /// Skips a pointer; false at the end of a group.
    bool SkipPointer();

    ZoString* lineTarget = nullptr;
    std::string lines;
};

} // namespace Frame
