#pragma once

#include "ZoPrimitives/ZoObject.h"
#include "ZoPrimitives/ZoString.h"

#include <cstdint>
#include <utility>

namespace ZoPrimitives {

class InputStreamer;
class OutputStreamer;
class TBinInStream;
class TBusinessToStreamableObjectConvertionHelper;
class TStreamableToBusinessObjectConvertionHelper;
class TZoClass;
class TZoClassField;
class TZoMetaData;

/// How deep objects may nest in a text: each level takes several nested calls to write or read.
inline constexpr int MAX_TEXT_NESTING = 500;

/// Base of every object that the streamers save and open.
///
/// A class describes itself to a `TZoMetaData` with the macros of ZoRegister.h. The streamers call the
/// virtual operations; the versions here suit a class without special needs.
class ZO_API ZoStreamableBase : public ZoObject {
public:
    /// Selects the constructor that makes an empty object for a reader to fill.
    enum StreamableInit { InitEmpty = 0 };
    /// What a compiler names where a field line of ZoRegister.h has no REGISTER_ZO_BEGIN before it.
    struct REGISTER_ZO_BEGIN_must_stand_before_the_field_lines {};
    static REGISTER_ZO_BEGIN_must_stand_before_the_field_lines ZoNextField(...);

    ZoStreamableBase();
    ZoStreamableBase(const ZoStreamableBase& other);
    explicit ZoStreamableBase(StreamableInit init);
    ZoStreamableBase& operator=(const ZoStreamableBase& other);
    ~ZoStreamableBase() override;

    /// "class " and the run-time type's name without "ZoPrimitives::".
    virtual ZoString StreamableClassName() const = 0;
    /// Text output: writes the object's data as codes and values, without an end. The base writes the code 3
    /// and the handle; an override calls its parent's first, then writes its own codes.
    virtual void Write(OutputStreamer& streamer);
    /// Called by the binary writer before the object's fields are written, once for each class level. It may
    /// let go of objects; see `TBinOutStreamer::WriteObject`.
    virtual void WillWrite();
    /// Text input: passes each code to `ReadData` until a code 0 or 7. For a code that the class does not
    /// know, skips one token as its value. Drops a value whose handle has no object.
    virtual void Read(InputStreamer& streamer);
    /// Whether the object, as read, may stay in the model. True by default.
    virtual bool GetIsValid() const;
    /// The application's class of this object: the one that a factory (and so a reader) made it for.
    /// Otherwise, or if that class has left its schema, the latest registration that is still in a schema;
    /// null if there is none.
    virtual TZoClass* GetClass() const;
    /// The class under which the object is registered in a schema; null if it is not registered.
    virtual TZoClass* GetOriginalClass(TZoMetaData* schema) const;
    /// Called after the object's fields were read; its pointers are not resolved yet. `substituted`: the
    /// object replaces one of a class that the application does not know. False makes the object invalid.
    virtual bool OnRead(TBinInStream* stream, bool substituted);
    /// Whether an object of this class may replace one of an unknown derived class. True by default.
    virtual bool CanBeConvertedToBaseClass() const;
    /// Called after the setter of `field`, the application's field, received `target` (may be null); `uid` is
    /// the target's uid in the file.
    virtual void OnReadPointer(TZoClassField* field, ZoStreamableBase* target, unsigned uid);
    /// Called for each field that the file has and the class lacks, with the stream at the field's value,
    /// which `operator>>` may read: the report then takes it for read. `field` is the file's and gives name
    /// and kind. See docs/evolution.md.
    virtual void HandleExcludedField(TZoClassField* field, TBinInStream* stream);
    /// Passes every excluded field of the record just read to `HandleExcludedField`.
    virtual void CheckForExcludedFields(TBinInStream* stream);
    /// A human-readable text.
    virtual ZoString ToString() const;

protected:
    /// Text input: reads the value of one code; returns false, having read nothing, if the class does not
    /// know the code. The base knows the code 3. An override reads its own codes and leaves the others to its
    /// parent.
    virtual bool ReadData(int code, InputStreamer& streamer);

private:
    friend class HandleAccess;
    friend class KeptParts;
    friend struct ZoMadeFor;
    // The handle that a stream gave to this object, and that stream's run. They belong to the object's
    // address: copying and assignment leave them out.
    mutable std::int32_t handle = 0;
    mutable std::uint64_t handleRun : 40;
    // The registration that the object was made for (`ZoMadeFor`); copies keep it.
    std::uint64_t madeFor : 23;
    // Parts of a newer version's file are kept for this object (`TBinInStreamer::KeepUnknown`), or refer to
    // it. Belongs to its address, too.
    std::uint64_t kept : 1;
};

/// The item type of object lists, which own nothing.
using ZoStreamablePointer = ZoStreamableBase*;

/// Base of streamable objects that have a counterpart in an application's own model.
class ZO_API ZoObjectStreamable : public ZoStreamableBase {
public:
    ZoObjectStreamable();
    ZoObjectStreamable(const ZoObjectStreamable& other);
    explicit ZoObjectStreamable(StreamableInit init);
    ZoObjectStreamable& operator=(const ZoObjectStreamable& other);
    ~ZoObjectStreamable() override;

    // The helpers of ConvertionHelper.h call these; these call `Convert` for the objects they refer to.
    /// A new, empty counterpart, owned by the caller. The base returns null: there is none.
    virtual ZoObject* CreateBusinessObject();
    // Fill the new counterpart from this object, or this object from its counterpart. The base does nothing.
    virtual void FillBusinessObject(ZoObject* business, TStreamableToBusinessObjectConvertionHelper* helper);
    virtual void FillFromBusinessObject(ZoObject* business,
                                        TBusinessToStreamableObjectConvertionHelper* helper);
};

/// Applied by list fields to each of their items, which may be null.
class ZO_API ZoStreamableBaseFunctor {
public:
    virtual ~ZoStreamableBaseFunctor();
    virtual void operator()(ZoStreamableBase* item) = 0;
};

/// A functor that passes each item, null or not, to a callable that takes a `ZoStreamableBase*`.
template <class Callable>
class ZoItemAction final : public ZoStreamableBaseFunctor {
public:
    explicit ZoItemAction(Callable callable) : call(std::move(callable)) {}
    void operator()(ZoStreamableBase* item) override { call(item); }

private:
    Callable call;
};

} // namespace ZoPrimitives
