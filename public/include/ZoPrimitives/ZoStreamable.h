#pragma once

#include "ZoPrimitives/ZoObject.h"
#include "ZoPrimitives/ZoString.h"

#include <cstdint>

namespace ZoPrimitives {

class InputStreamer;
class OutputStreamer;
class TBinInStream;
class TBusinessToStreamableObjectConvertionHelper;
class TStreamableToBusinessObjectConvertionHelper;
class TZoClass;
class TZoClassField;
class TZoMetaData;

/// The deepest that objects may lie inside each other in a text: writing and reading one goes some calls
/// deeper for each level.
inline constexpr int MAX_TEXT_NESTING = 500;

/// Base of every object that the streamers save and open.
///
/// A class describes itself to a `TZoMetaData` through the macros of ZoRegister.h. The virtual operations are
/// called by the streamers; the versions here suit a class that needs nothing special.
class ZO_API ZoStreamableBase : public ZoObject {
public:
    /// Selects the constructor of an empty object, which a reader then fills.
    enum StreamableInit { InitEmpty = 0 };

    ZoStreamableBase();
    ZoStreamableBase(const ZoStreamableBase& other);
    explicit ZoStreamableBase(StreamableInit init);
    ZoStreamableBase& operator=(const ZoStreamableBase& other);
    ~ZoStreamableBase() override;

    /// "class " and the run-time type's name without "ZoPrimitives::".
    virtual ZoString StreamableClassName() const = 0;
    /// Text output: the object's data as codes and values, without their end. Here the code 3 and the handle;
    /// a class calls its parent's first and goes on with codes of its own.
    virtual void Write(OutputStreamer& streamer);
    /// Called by the binary writer before the object's fields are written, once for each class level. It may
    /// let go of objects; see `TBinOutStreamer::WriteObject`.
    virtual void WillWrite();
    /// Text input: hands each code to `ReadData`, up to a code 0 or 7. The value of a code that the class
    /// does not know is passed over: one token. A value with a handle that stands for nothing is dropped.
    virtual void Read(InputStreamer& streamer);
    /// Whether the object, as read, may stay in the model. True here.
    virtual bool GetIsValid() const;
    /// The application's class of this object: the one that it was made for by a factory, as readers do, or
    /// else, and when that one has left its schema, the class as registered last of those that still stand in
    /// one; null for none.
    virtual TZoClass* GetClass() const;
    /// The class under which the object is registered in a schema; null when it is not.
    virtual TZoClass* GetOriginalClass(TZoMetaData* schema) const;
    /// Called when the object's fields have been read, pointers excepted. `substituted` tells that the object
    /// stands for one of a class that the application does not know. False makes the object invalid.
    virtual bool OnRead(TBinInStream* stream, bool substituted);
    /// Whether an object of this class may stand for one of an unknown class that derives from it. True here.
    virtual bool CanBeConvertedToBaseClass() const;
    /// Called after a pointer was handed to the setter of `field`, the application's field, with the target
    /// (or null) and its uid in the file.
    virtual void OnReadPointer(TZoClassField* field, ZoStreamableBase* target, unsigned uid);
    /// Called for each field that the file holds and the class does not, with the stream at the field's
    /// value, which may be read with `operator>>`. `field` is the file's: its name and kind.
    virtual void HandleExcludedField(TZoClassField* field, TBinInStream* stream);
    /// Offers every excluded field of the record just read to `HandleExcludedField`.
    virtual void CheckForExcludedFields(TBinInStream* stream);
    /// A text for people.
    virtual ZoString ToString() const;

protected:
    /// Text input of the value of one code; false, with nothing read, when the class does not know it. Here
    /// the code 3. A class reads its own codes and leaves the others to its parent.
    virtual bool ReadData(int code, InputStreamer& streamer);

private:
    friend class HandleAccess;
    friend struct ZoMadeFor;
    // The handle that a stream gave to this object, and the run of that stream. They belong to the object's
    // address: never copied, never assigned.
    mutable std::int32_t handle = 0;
    mutable std::uint64_t handleRun : 40;
    // The registration that the object was made for (`ZoMadeFor`); a copy keeps it.
    std::uint64_t madeFor : 24;
};

/// As lists of objects hold them: nothing is owned.
using ZoStreamablePointer = ZoStreamableBase*;

/// Base of the streamable objects that have a counterpart in an application's own model.
class ZO_API ZoObjectStreamable : public ZoStreamableBase {
public:
    ZoObjectStreamable();
    ZoObjectStreamable(const ZoObjectStreamable& other);
    explicit ZoObjectStreamable(StreamableInit init);
    ZoObjectStreamable& operator=(const ZoObjectStreamable& other);
    ~ZoObjectStreamable() override;

    // Called by the helpers of ConvertionHelper.h, which convert what an object refers to by their `Convert`.
    /// A new, empty counterpart, owned by the caller. Null here: there is none.
    virtual ZoObject* CreateBusinessObject();
    // Fill the counterpart that was made, or this object from the one that it was made for. Nothing here.
    virtual void FillBusinessObject(ZoObject* business, TStreamableToBusinessObjectConvertionHelper* helper);
    virtual void FillFromBusinessObject(ZoObject* business,
                                        TBusinessToStreamableObjectConvertionHelper* helper);
};

/// What list fields apply to each of their items. Items may be null.
class ZO_API ZoStreamableBaseFunctor {
public:
    virtual ~ZoStreamableBaseFunctor();
    virtual void operator()(ZoStreamableBase* item) = 0;
};

} // namespace ZoPrimitives
