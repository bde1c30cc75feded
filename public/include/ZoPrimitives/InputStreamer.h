#pragma once

#include "ZoPrimitives/IList.h"
#include "ZoPrimitives/InputStream.h"
#include "ZoPrimitives/StreamableFactory.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/dvector.h"
#include "ZoPrimitives/pointer.h"

#include <map>
#include <set>

namespace ZoPrimitives {

/// Whether a text is an `int` and nothing else: an optional sign and digits, in range.
ZO_API bool ValidInteger(const ZoString& text);

/// Reads the objects that an `OutputStreamer` wrote. An object takes part through `ZoStreamableBase::Read`
/// and `ReadData`. docs/text-format.md has the format.
///
/// Every operation throws `XEndOfStream` when no token is left. A last token that the stream gives again and
/// again is taken `MAX_TEXT_NESTING` times, a long one less often, so that every level of nested objects may
/// meet it; then it is the end. Objects deeper than `MAX_TEXT_NESTING` inside each other throw `XReadStream`,
/// as does every operation that finds the thread's stack nearly used up: classes may read on in `Read` and
/// `ReadData` as they like.
///
/// The objects that `CreateObject` made are held by the streamer until it goes, or `HandOver`: take hold of
/// what is to stay, and delete none of them meanwhile. When reading fails, the others go with the streamer,
/// but for those that a text lets hold each other in a circle of `pointer`s: hold only what is owned by one.
class ZO_API InputStreamer : public ZoObject {
public:
    /// Holds both with a `pointer`: they must be on the heap. Without a stream every operation that reads
    /// fails the assertion "object"; without a factory no object is made.
    InputStreamer(InputStream* stream, StreamableFactory* factory);
    ~InputStreamer() override;
    InputStreamer(const InputStreamer&) = delete;
    InputStreamer& operator=(const InputStreamer&) = delete;

    /// Asked after those that are there.
    void AddFactory(StreamableFactory* factory) { factories.Add(factory); }
    TIList<StreamableFactory, pointer<StreamableFactory>>& GetFactories() { return factories; }
    InputStream* GetStream() const { return stream.get(); }

    InputStreamer& operator>>(ZoString& value);
    /// See `InputStream::operator>>(char*)`: the caller's buffer must hold whatever the stream holds.
    InputStreamer& operator>>(char* buffer);
    InputStreamer& operator>>(long double& value);
    InputStreamer& operator>>(double& value);
    InputStreamer& operator>>(float& value);
    InputStreamer& operator>>(unsigned int& value);
    InputStreamer& operator>>(int& value);
    /// `OutputStreamer` writes an int: on the clipboard, where that has another size, read an int.
    InputStreamer& operator>>(unsigned short& value);
    InputStreamer& operator>>(short& value);
    InputStreamer& operator>>(bool& value);
    /// Reads an object of the caller's: a token, usually its class's name, and the data. Throws `XEndSection`
    /// when the token closes something ("ENDSEC", "ENDTAB", "ENDGROUP", "ENDGROUPELEMENTOS",
    /// "ENDGROUPELEMENTOPARARA"; "ENDRAINDIV" does not here). Whatever follows may refer to the object: let
    /// it outlive the reading, or `RemoveObject` its handle.
    InputStreamer& operator>>(ZoStreamableBase& object);
    /// Reads a handle, behind a code that says so. Throws `XEndSection` for a token that closes something,
    /// "ENDRAINDIV" included, and as `GetHandle` and `RetrieveObject`; the pointer is unchanged then.
    InputStreamer& operator>>(ZoStreamableBase*& object);
    /// The same with a reader's own tokens for `XEndSection`; null at first.
    void Read(ZoStreamableBase*& object, TIContainerIterator<ZoString, pointer<ZoString>> terminators);
    /// Passes over one token.
    void SkipValue();

    /// Has the handle stand for this object, for none if null. Other handles of the object go on standing for
    /// it. Objects that were not written through a pointer all have the handle 0, to which no text can refer.
    void SetHandle(ZoStreamableBase* object, int handle);
    /// Gives an object that the text does not hold, for it to refer to, the handle that it has or one more
    /// than the largest, and returns it. Throws `XInvalidHandle` when there is none.
    int AddObject(ZoStreamableBase* object);
    /// Forgets a handle; its object stays.
    void RemoveObject(int handle);
    /// Throws `XInvalidHandle` for a handle that stands for no object. An object that no `pointer` holds is
    /// taken for a member of another, or the caller's own: from here on no `pointer` ends it.
    ZoStreamableBase* RetrieveObject(int handle);
    /// Whether a handle gave out the object while no `pointer` held it. No `pointer` that may outlive such an
    /// object's owner must hold it.
    bool IsMember(const ZoStreamableBase* object) const { return members.count(object) != 0; }
    /// The last one that the object got; 0 when it has none, or that one stands for it no more.
    int GetHandle(const ZoStreamableBase* object) const;

    /// The objects that `CreateObject` made, in this order.
    const TDVector<ZoStreamableBase*>& Objects() const { return made; }
    /// Makes the objects the caller's, whether somebody holds them or not, and forgets all handles: from here
    /// the streamer deletes none.
    void HandOver();

    /// A setting of the applications' readers, 0 at first, without a meaning here.
    int GetUnidadePadraoDiametros() const { return unidadePadraoDiametros; }
    void SetUnidadePadraoDiametros(int unidade) { unidadePadraoDiametros = unidade; }
    /// The file of a `FileInputStream`; null for other streams.
    void* GetFile() const;

    using ZoObject::operator==;
    using ZoObject::operator!=;
    /// Whether both read from the same stream.
    bool operator==(const InputStreamer& other) const { return stream == other.stream; }
    bool operator!=(const InputStreamer& other) const { return stream != other.stream; }

protected:
    /// Asks the factories, in order, for a new object. When none knows the class the object's data are
    /// skipped; null then, and when there are no factories.
    ZoStreamableBase* CreateObject(const ZoString& className);
    /// Passes over the rest of an object's data, code by code and value by value, its end included. The end
    /// of the stream ends it too. A reader of texts with other values than of one token overrides it.
    virtual void SkipObject();
    /// The handle in a token. Throws `xInvalidConversion` unless the token is an `int` other than 0.
    int GetHandle(const ZoString& token) const;
    /// Forgets all handles.
    void ResetHandles();

private:
    friend class TextLevel;
    InputStream& Source();
    void ReleaseMade();

    pointer<InputStream> stream;
    TIList<StreamableFactory, pointer<StreamableFactory>> factories;
    std::map<int, ZoStreamableBase*> objects;
    int unidadePadraoDiametros = 0;
    TDVector<ZoStreamableBase*> made;          // each held once
    std::set<const ZoStreamableBase*> members; // each held once, for good
    const ZoStreamableBase* innermost = nullptr;
    int depth = 0;
};

} // namespace ZoPrimitives
