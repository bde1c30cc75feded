#pragma once

// The frame in this library's classes, declared as an application would.

#include "model.h"

#include "ZoPrimitives/ZoBlob.h"
#include "ZoPrimitives/ZoRegister.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "ZoPrimitives/pointer.h"

namespace bench::zo {

using ZoPrimitives::TDVector;
using ZoPrimitives::ZoBlob;
using ZoPrimitives::ZoString;

class Building;
class Storey;

class Entity : public ZoPrimitives::ZoStreamableBase {
    REGISTER_ZO_BEGIN(Entity)
    DECLARE_ZO_FIELD(ZoString, name)
    DECLARE_ZO_FIELD(int, number)
    REGISTER_ZO_END

    int uid = 0; // for hand-written code; not a field
};

class Material : public Entity {
    REGISTER_ZO_BEGIN(Material, Entity)
    DECLARE_ZO_FIELD(double, elasticity)
    DECLARE_ZO_FIELD(double, density)
    REGISTER_ZO_END
};

class Section : public Entity {
    REGISTER_ZO_BEGIN(Section, Entity)
    DECLARE_ZO_FIELD(double, depth)
    DECLARE_ZO_FIELD(double, area)
    DECLARE_ZO_FIELD(double, inertia)
    DECLARE_ZO_FIELD_REFERENCE(Material, material)
    REGISTER_ZO_END
};

class Node : public Entity {
    REGISTER_ZO_BEGIN(Node, Entity)
    DECLARE_ZO_FIELD(double, x)
    DECLARE_ZO_FIELD(double, y)
    DECLARE_ZO_FIELD(double, z)
    DECLARE_ZO_FIELD(unsigned, restraints)
    DECLARE_ZO_FIELD(bool, supported)
    REGISTER_ZO_END
};

class Member : public Entity {
    REGISTER_ZO_BEGIN(Member, Entity)
    DECLARE_ZO_FIELD_LIST(double, loads)
    DECLARE_ZO_FIELD_REFERENCE(Node, start)
    DECLARE_ZO_FIELD_REFERENCE(Node, end)
    DECLARE_ZO_FIELD_REFERENCE(Section, section)
    DECLARE_ZO_FIELD_REFERENCE(Storey, storey)
    REGISTER_ZO_END

    virtual bool IsColumn() const = 0;
};

class Column : public Member {
    REGISTER_ZO_BEGIN(Column, Member)
    DECLARE_ZO_FIELD(double, rotation)
    DECLARE_ZO_FIELD(bool, spliced)
    REGISTER_ZO_END

    bool IsColumn() const override { return true; }
};

class Girder : public Member {
    REGISTER_ZO_BEGIN(Girder, Member)
    DECLARE_ZO_FIELD(double, camber)
    DECLARE_ZO_FIELD(unsigned, releases)
    DECLARE_ZO_FIELD(bool, composite)
    REGISTER_ZO_END

    bool IsColumn() const override { return false; }
};

class Storey : public Entity {
    REGISTER_ZO_BEGIN(Storey, Entity)
    DECLARE_ZO_FIELD(double, elevation)
    DECLARE_ZO_FIELD(double, height)
    DECLARE_ZO_FIELD_LIST(double, masses)
    DECLARE_ZO_FIELD_CHILD_LIST(Node, nodes)
    DECLARE_ZO_FIELD_CHILD_LIST(Member, members)
    DECLARE_ZO_FIELD_REFERENCE(Building, building)
    REGISTER_ZO_END
};

class Building : public Entity {
    REGISTER_ZO_BEGIN(Building, Entity)
    DECLARE_ZO_FIELD(ZoBlob, thumbnail)
    DECLARE_ZO_FIELD_CHILD_LIST(Material, materials)
    DECLARE_ZO_FIELD_CHILD_LIST(Section, sections)
    DECLARE_ZO_FIELD_CHILD_LIST(Storey, storeys)
    REGISTER_ZO_END
};

class Link : public Entity {
    REGISTER_ZO_BEGIN(Link, Entity)
    DECLARE_ZO_FIELD_CHILD(Link, next)
    REGISTER_ZO_END
};

/// A rare object among many; only in the model for reading a part.
class Pin : public Node {
    REGISTER_ZO_BEGIN(Pin, Node)
    DECLARE_ZO_FIELD(double, stiffness)
    DECLARE_ZO_FIELD_REFERENCE(Pin, next)
    REGISTER_ZO_END
};

struct Classes {
    using Entity = zo::Entity;
    using Building = zo::Building;
    using Storey = zo::Storey;
    using Node = zo::Node;
    using Section = zo::Section;
    using Material = zo::Material;
    using Member = zo::Member;
    using Column = zo::Column;
    using Girder = zo::Girder;
    using Link = zo::Link;

    template <class T>
    using Holder = ZoPrimitives::pointer<T>;
    template <class T>
    static Holder<T> Make() {
        return new T;
    }
    template <class List, class T>
    static void Add(List& list, const Holder<T>& item) {
        list.Add(item.get());
    }
    template <class List, class T>
    static void Add(List& list, T* item) {
        list.Add(item);
    }
    static void Add(TDVector<double>& list, double value) { list.Add(value); }
    template <class List>
    static auto HolderOf(List& list) {
        return list.Last();
    }
    template <class Link>
    static auto* Target(const Link& link) {
        return link.get();
    }
    static void SetBlob(ZoBlob& blob, const void* data, unsigned size) { blob.Assign(data, size); }
    static const void* BlobData(const ZoBlob& blob) { return blob.Data(); }
    static std::size_t BlobSize(const ZoBlob& blob) { return static_cast<std::size_t>(blob.Size()); }
    static void SetText(ZoString& text, const char* bytes, unsigned count) { text.Assign(bytes, count); }
    static void SetNumbers(TDVector<double>& list, const unsigned char* bytes, std::size_t count) {
        list.Reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            double value = 0;
            std::memcpy(&value, bytes + i * sizeof value, sizeof value);
            list.Add(value);
        }
    }
    template <class List>
    static void Reserve(List& list, std::size_t count) {
        list.Reserve(count);
    }
};

/// The application's schema, with the classes in the order above.
ZoPrimitives::TZoMetaData& Schema();

inline constexpr unsigned VERSION = 3;
inline constexpr unsigned RELEASE = 2026;

class ZoContender : public ModelContender<Classes> {
public:
    Bytes SaveMemory() override;
    void SaveFile(const std::string& path) override;
    void OpenMemory(const Bytes& bytes) override;
    void OpenFile(const std::string& path) override;
    void DropOpened() override;

protected:
    ZoPrimitives::ZoStreamableBase* Root() const;
    void TakeRoot(ZoPrimitives::ZoStreamableBase* root);
};

} // namespace bench::zo
