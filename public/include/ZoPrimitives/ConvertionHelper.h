#pragma once

#include "ZoPrimitives/ZoStreamable.h"

#include <memory>

// Conversion between an application's business objects and the streamable objects that are saved for them.
//
// A helper converts one graph, or several that share objects: as long as it lives it remembers each object
// with its counterpart, so both must be there until then. A counterpart is filled when `Convert` returns, but
// for one that is met again while it is being filled (a cycle), and one that lies more than
// `ZO_CONVERTION_DEPTH` conversions deep: these are when the outermost `Convert` returns. A chain of any
// length therefore takes little stack.
//
// When the outermost `Convert` returns, the objects that it made are the caller's, whoever holds them. When
// it throws, they are forgotten, and those that no `pointer` holds are deleted: objects that convert must
// own each other through `pointer`s or not at all, and those that own each other in a circle stay. A failure
// that a filling function catches itself leaves the object concerned as it is.

namespace ZoPrimitives {

/// How many conversions may be under way inside each other before filling is put off.
inline constexpr int ZO_CONVERTION_DEPTH = 500;

/// Makes the streamable counterparts of an application's business objects.
class ZO_API IStreamableConvertionFactory {
public:
    /// A new, empty streamable object for a business object whose run-time type has that name: "class " and
    /// the type's name without "ZoPrimitives::", on every compiler (`ZoStreamableClassName` gives it too).
    /// Null for objects that are not saved.
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

    /// The object's counterpart, the same one each time: made by the factory and filled by its own
    /// `FillFromBusinessObject`, which calls here for what `business` refers to. Null for null, and where the
    /// factory makes none.
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

    /// The object's counterpart, the same one each time: made by `CreateBusinessObject` of `streamable` and
    /// filled by its `FillBusinessObject`, which calls here for what it refers to. Null for null, and where
    /// none is made.
    ZoObject* Convert(ZoObjectStreamable* streamable);

private:
    class Conversion;
    std::unique_ptr<Conversion> conversion;
};

} // namespace ZoPrimitives
