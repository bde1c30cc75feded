#pragma once

#include "ZoPrimitives/IList.h"
#include "ZoPrimitives/InputStream.h"
#include "ZoPrimitives/StreamableFactory.h"
#include "ZoPrimitives/ZoReadReport.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/dvector.h"
#include "ZoPrimitives/pointer.h"

#include <map>
#include <memory>
#include <set>

namespace ZoPrimitives {

class TextLosses;

/// Whether the whole text is an `int`: an optional sign and digits, in range.
ZO_API bool ValidInteger(const ZoString& text);

/// Reads the objects that an `OutputStreamer` wrote. A class takes part through `ZoStreamableBase::Read` and
/// `ReadData`. docs/text-format.md describes the format.
///
/// Every operation throws `XEndOfStream` when no token is left. If the stream repeats its last token, the
/// streamer accepts it `MAX_TEXT_NESTING` times (a long token less often), so that every level of nested
/// objects can meet it, and then throws `XEndOfStream`. Objects nested deeper than `MAX_TEXT_NESTING` throw
/// `XReadStream`. So does every operation that finds the thread's stack nearly used up, because `Read` and
/// `ReadData` may nest as they like.
///
/// The streamer holds the objects that `CreateObject` made until it is destroyed, or until `HandOver`: hold
/// those that are to stay, and delete none meanwhile. When reading fails, the streamer deletes the others,
/// except objects that a text makes hold each other in a cycle of `pointer`s: hold only what one object owns.
class ZO_API InputStreamer : public ZoObject {
public:
    /// Holds both with a `pointer`: they must be on the heap. Without a stream every operation that reads
    /// fails the assertion "object"; without a factory no object is made.
    InputStreamer(InputStream* stream, StreamableFactory* factory);
    ~InputStreamer() override;
    InputStreamer(const InputStreamer&) = delete;
    InputStreamer& operator=(const InputStreamer&) = delete;

    /// Appends a factory; `CreateObject` asks the earlier ones first.
    void AddFactory(StreamableFactory* factory) { factories.Add(factory); }
    TIList<StreamableFactory, pointer<StreamableFactory>>& GetFactories() { return factories; }
    InputStream* GetStream() const { return stream.get(); }

    InputStreamer& operator>>(ZoString& value);
    /// As `InputStream::operator>>(char*)`: the caller's buffer must hold the longest token of the stream.
    InputStreamer& operator>>(char* buffer);
    InputStreamer& operator>>(long double& value);
    InputStreamer& operator>>(double& value);
    InputStreamer& operator>>(float& value);
    InputStreamer& operator>>(unsigned int& value);
    InputStreamer& operator>>(int& value);
    /// `OutputStreamer` writes a short as an int: on the clipboard, where sizes differ, read an int.
    InputStreamer& operator>>(unsigned short& value);
    InputStreamer& operator>>(short& value);
    InputStreamer& operator>>(bool& value);
    /// Reads an object of the caller's: one token, usually its class's name, and the data. Throws
    /// `XEndSection` when the token is a terminator ("ENDSEC", "ENDTAB", "ENDGROUP", "ENDGROUPELEMENTOS",
    /// "ENDGROUPELEMENTOPARARA"; not "ENDRAINDIV"). Later data may refer to the object: it must outlive the
    /// reading, unless `RemoveObject` forgets its handle.
    InputStreamer& operator>>(ZoStreamableBase& object);
    /// Reads a handle, after the code that announces it. Throws `XEndSection` for a terminator, "ENDRAINDIV"
    /// included, and as `GetHandle` and `RetrieveObject` do; the pointer is then unchanged.
    InputStreamer& operator>>(ZoStreamableBase*& object);
    /// As above, with the caller's own terminators; sets the pointer to null first.
    void Read(ZoStreamableBase*& object, TIContainerIterator<ZoString, pointer<ZoString>> terminators);
    /// Skips one token.
    void SkipValue();

    /// Binds the handle to this object; null unbinds it. Other handles of the object stay bound. Objects that
    /// were not written through a pointer all get the handle 0, to which no text can refer.
    void SetHandle(ZoStreamableBase* object, int handle);
    /// Gives a handle to an object that is not in the text but may be referred to, and returns it: the one it
    /// has, or one more than the largest. Throws `XInvalidHandle` for null and when no handle is left.
    int AddObject(ZoStreamableBase* object);
    /// Unbinds a handle; its object stays.
    void RemoveObject(int handle);
    /// Throws `XInvalidHandle` for a handle without an object. An object that no `pointer` holds is taken for
    /// a member of another object, or for the caller's own: from here on no `pointer` deletes it.
    ZoStreamableBase* RetrieveObject(int handle);
    /// Whether a handle gave out the object while no `pointer` held it. A `pointer` that may outlive the
    /// object's owner must not hold it.
    bool IsMember(const ZoStreamableBase* object) const { return members.count(object) != 0; }
    /// The handle that the object got last; 0 when it has none, or when that handle is no longer bound to it.
    int GetHandle(const ZoStreamableBase* object) const;

    /// The objects that `CreateObject` made, in order of creation.
    const TDVector<ZoStreamableBase*>& Objects() const { return created; }
    /// Makes the objects the caller's, whether or not anything holds them, and forgets all handles. The
    /// streamer deletes none of them afterwards.
    void HandOver();

    /// What was read over so far: objects of classes that no factory knows (their own objects are not told),
    /// codes that a class does not know as fields whose names are the codes, and references to objects that
    /// the text does not hold, or holds later.
    TZoReadReport Report() const;
    /// `TZoStrictness` bits: where one of these faults is met, reading ends in `XRefusedData`, whose report
    /// ends with it.
    void SetStrict(unsigned faults) { strict = faults; }

    /// A setting of the applications' readers, 0 by default; the library does not use it.
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
    /// Asks the factories in order for a new object. When none knows the class, skips the object's data and
    /// returns null; also null when there are no factories.
    ZoStreamableBase* CreateObject(const ZoString& className);
    /// Skips the rest of an object's data, code by code and value by value, up to and including its end or to
    /// the end of the stream. A reader of texts whose values take several tokens overrides it.
    virtual void SkipObject();
    /// The handle in a token. Throws `xInvalidConversion` unless the token is an `int` other than 0.
    int GetHandle(const ZoString& token) const;
    /// Forgets all handles.
    void ResetHandles();

private:
    friend class TextLevel;
    friend class ZoStreamableBase;
    InputStream& Source();
    TextLosses& Losses();
    void RefuseFault(unsigned fault) const;
    void ReleaseMade();

    pointer<InputStream> stream;
    TIList<StreamableFactory, pointer<StreamableFactory>> factories;
    std::map<int, ZoStreamableBase*> byHandle;
    int unidadePadraoDiametros = 0;
    TDVector<ZoStreamableBase*> created;       // each held once
    std::set<const ZoStreamableBase*> members; // each held once and never released
    std::unique_ptr<TextLosses> losses;        // null: none
    unsigned strict = strictNothing;
    const ZoStreamableBase* innermost = nullptr;
    int depth = 0;
};

} // namespace ZoPrimitives
