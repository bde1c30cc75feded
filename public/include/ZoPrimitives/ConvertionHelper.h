#pragma once

#include "ZoPrimitives/ZoStreamable.h"

#include <memory>

// Conversion between an application's business objects and the streamable objects that are saved for them.
//
// A helper converts one graph, or several that share objects. It remembers each object with its counterpart,
// so both must live as long as the helper. `Convert` returns a counterpart that is filled, with two
// exceptions: one that is being filled already (a cycle), and one more than `ZO_CONVERTION_DEPTH` conversions
// deep. These are filled when the outermost `Convert` returns, so a chain of any length takes little stack.
//
// When the outermost `Convert` returns, the objects that it made belong to the caller. When it throws, the
// helper forgets them and deletes those that no `pointer` holds: objects that convert must own each other
// through `pointer`s or not at all, and objects that own each other in a cycle leak. If a filling function
// catches a failure itself, the object concerned stays as far as it was filled.

namespace ZoPrimitives {

/// How deep conversions may nest before filling is deferred.
inline constexpr int ZO_CONVERTION_DEPTH = 500;

/// Makes the streamable counterparts of an application's business objects.
class ZO_API IStreamableConvertionFactory {
public:
    /// A new, empty streamable object for a business object whose run-time type has that name: "class " and
    /// the type's name without "ZoPrimitives::", on every compiler (see `ZoStreamableClassName`). Null for
    /// objects that are not saved.
    virtual ZoObjectStreamable* CreateStreamable(const ZoString& businessClassName) = 0;
    virtual ~IStreamableConvertionFactory();
};

/// Converts a graph of business objects into streamable ones.
class ZO_API TBusinessToStreamableObjectConvertionHelper {
public:
    /// The factory is not owned.
    explicit TBusinessToStreamableObjectConvertionHelper(IStreamableConvertionFactory* factory);
    ~TBusinessToStreamableObjectConvertionHelper();
    TBusinessToStreamableObjectConvertionHelper(const TBusinessToStreamableObjectConvertionHelper&) = delete;
    TBusinessToStreamableObjectConvertionHelper&
    operator=(const TBusinessToStreamableObjectConvertionHelper&) = delete;

    /// Returns the object's counterpart, always the same one. The factory makes it, and its own
    /// `FillFromBusinessObject` fills it, calling `Convert` for the objects that `business` refers to. Null
    /// for null, and where the factory returns null.
    ZoObjectStreamable* Convert(ZoObject* business);

private:
    class Conversion;
    std::unique_ptr<Conversion> conversion;
};

/// Converts a graph of streamable objects into business ones.
class ZO_API TStreamableToBusinessObjectConvertionHelper {
public:
    TStreamableToBusinessObjectConvertionHelper();
    ~TStreamableToBusinessObjectConvertionHelper();
    TStreamableToBusinessObjectConvertionHelper(const TStreamableToBusinessObjectConvertionHelper&) = delete;
    TStreamableToBusinessObjectConvertionHelper&
    operator=(const TStreamableToBusinessObjectConvertionHelper&) = delete;

    /// Returns the object's counterpart, always the same one. `streamable` makes it with
    /// `CreateBusinessObject` and fills it with `FillBusinessObject`, which calls `Convert` for the objects
    /// that it refers to. Null for null, and where `CreateBusinessObject` returns null.
    ZoObject* Convert(ZoObjectStreamable* streamable);

private:
    class Conversion;
    std::unique_ptr<Conversion> conversion;
};

} // namespace ZoPrimitives
