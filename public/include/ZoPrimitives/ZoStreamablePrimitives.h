#pragma once

// Values and lists for use where the streamers expect an object: as a root, as the target of a pointer or as
// an item of a list. They have no parent class in a schema.

#include "ZoPrimitives/ZoRegister.h"

namespace ZoPrimitives {

class ZO_API ZoBoolean : public ZoObjectStreamable {
    ZO_BEGIN_NAMES(ZoBoolean, "0", "NULL", "NULL")
    DECLARE_ZO_FIELD(bool, value)
    REGISTER_ZO_END
    ZoBoolean();
    explicit ZoBoolean(bool value);
    explicit ZoBoolean(StreamableInit init);
    ZoBoolean(const ZoBoolean& other);
    ZoBoolean& operator=(const ZoBoolean& other);
    ~ZoBoolean() override;
    ZoString ToString() const override;
};

class ZO_API ZoInteger : public ZoObjectStreamable {
    ZO_BEGIN_NAMES(ZoInteger, "0", "NULL", "NULL")
    DECLARE_ZO_FIELD(int, value)
    REGISTER_ZO_END
    explicit ZoInteger(int value);
    explicit ZoInteger(StreamableInit init);
    ZoInteger(const ZoInteger& other);
    ZoInteger& operator=(const ZoInteger& other);
    ~ZoInteger() override;
    ZoString ToString() const override;
};

class ZO_API ZoUnsigned : public ZoObjectStreamable {
    ZO_BEGIN_NAMES(ZoUnsigned, "0", "NULL", "NULL")
    DECLARE_ZO_FIELD(unsigned, value)
    REGISTER_ZO_END
    explicit ZoUnsigned(unsigned value);
    explicit ZoUnsigned(StreamableInit init);
    ZoUnsigned(const ZoUnsigned& other);
    ZoUnsigned& operator=(const ZoUnsigned& other);
    ~ZoUnsigned() override;
    ZoString ToString() const override;
};

class ZO_API ZoFloat : public ZoObjectStreamable {
    ZO_BEGIN_NAMES(ZoFloat, "0", "NULL", "NULL")
    DECLARE_ZO_FIELD(float, value)
    REGISTER_ZO_END
    explicit ZoFloat(float value);
    explicit ZoFloat(StreamableInit init);
    ZoFloat(const ZoFloat& other);
    ZoFloat& operator=(const ZoFloat& other);
    ~ZoFloat() override;
    ZoString ToString() const override;
};

class ZO_API ZoDouble : public ZoObjectStreamable {
    ZO_BEGIN_NAMES(ZoDouble, "0", "NULL", "NULL")
    DECLARE_ZO_FIELD(double, value)
    REGISTER_ZO_END
    explicit ZoDouble(double value);
    explicit ZoDouble(StreamableInit init);
    ZoDouble(const ZoDouble& other);
    ZoDouble& operator=(const ZoDouble& other);
    ~ZoDouble() override;
    ZoString ToString() const override;
};

class ZO_API StreamableZoString : public ZoObjectStreamable {
    ZO_BEGIN_NAMES(StreamableZoString, "0", "NULL", "NULL")
    DECLARE_ZO_FIELD(ZoString, value)
    REGISTER_ZO_END
    explicit StreamableZoString(const ZoString& value);
    explicit StreamableZoString(StreamableInit init);
    StreamableZoString(const StreamableZoString& other);
    StreamableZoString& operator=(const StreamableZoString& other);
    ~StreamableZoString() override;
    ZoString ToString() const override;
};

/// Shares ownership of its items: a copy holds the same objects.
class ZO_API StreamableList : public ZoObjectStreamable {
    ZO_BEGIN_NAMES(StreamableList, "0", "NULL", "NULL")
    DECLARE_ZO_FIELD_CHILD_LIST(ZoObjectStreamable, list)
    REGISTER_ZO_END
    StreamableList();
    explicit StreamableList(StreamableInit init);
    StreamableList(const StreamableList& other);
    StreamableList& operator=(const StreamableList& other);
    ~StreamableList() override;

    TIVector<ZoObjectStreamable, pointer<ZoObjectStreamable>>& GetList() { return list; }
    /// The factory for readers: returns a new, empty list, owned by the caller.
    static ZoStreamableBase* Create(TZoMetaData* fileSchema, TZoMetaData* schema, TZoClass* cls);
};

/// Registers all of the above.
ZO_API void ZoRegisterPrimitives(TZoMetaData* schema);

} // namespace ZoPrimitives
