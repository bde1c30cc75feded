#pragma once

// The floor: the cost of the bytes and the objects alone. This code, hand-written for the frame's classes,
// writes the library's bytes and reads them into new objects. It keeps the uid in the object, accesses
// members directly, and has no registry and no checks of a file's classes. It works on the library's own
// object classes and on those of the standard library.

#include "bench.h"

#include "ZoPrimitives/CRC32.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <vector>

namespace bench::floor {

enum ClassId { MATERIAL = 2, SECTION, NODE, MEMBER, COLUMN, GIRDER, STOREY, BUILDING, LINK };

struct Head {
    std::uint32_t marker, size, crc;
    std::int32_t classId, uid;
    std::uint32_t key;
};
constexpr std::uint32_t MARKER = 0xABCAABCA;
constexpr std::size_t HEADER_SIZE = 28;
constexpr std::size_t COUNT_OFFSET = 12;

inline std::uint32_t Sum(const unsigned char* data, std::size_t size) {
    ZoPrimitives::CRC32 crc;
    crc.update(data, static_cast<unsigned>(size));
    return crc.getUint32Value();
}

template <class List>
std::size_t Count(const List& list) {
    return static_cast<std::size_t>(list.end() - list.begin());
}

// Saving

class Writer {
public:
    explicit Writer(Sink& sink) : sink(sink) {}

    void PutRaw(const Bytes& bytes) {
        std::memcpy(sink.Room(bytes.size()), bytes.data(), bytes.size());
        sink.Advance(bytes.size());
        summed = sink.PendingSize();
    }
    /// `room` must be at least the payload's size.
    void Begin(std::size_t room) {
        head = sink.Room(room + sizeof(Head));
        next = head + sizeof(Head);
    }
    template <class T>
    void Put(T value) {
        std::memcpy(next, &value, sizeof value);
        next += sizeof value;
    }
    void PutBlock(const void* data, std::size_t size) {
        Put(static_cast<std::uint32_t>(size));
        std::memcpy(next, data, size);
        next += size;
    }
    template <class List>
    void PutDoubles(const List& list) {
        const auto count = Count(list);
        Put(static_cast<std::uint32_t>(count));
        std::memcpy(next, list.data(), count * sizeof(double));
        next += count * sizeof(double);
    }
    template <class List>
    void PutUids(const List& list) {
        Put(static_cast<std::uint32_t>(Count(list)));
        for (const auto& item : list) Put(item->uid);
    }
    template <class T>
    void PutUid(const T* target) {
        Put(target == nullptr ? 0 : target->uid);
    }
    void End(ClassId classId, int uid) {
        const auto size = static_cast<std::uint32_t>(next - (head + sizeof(Head)));
        const Head filled{MARKER, size, 0, classId, uid, 0};
        std::memcpy(head, &filled, sizeof filled);
        sink.Advance(size + sizeof(Head));
        // Summed some records later: summing data just stored in small pieces stalls.
        if (sink.PendingSize() - summed > LAG + BATCH) SumUpTo(sink.PendingSize() - LAG);
        if (sink.IsDue()) {
            SumUpTo(sink.PendingSize());
            sink.Flush();
            summed = 0;
        }
    }
    void Finish() { SumUpTo(sink.PendingSize()); }

private:
    static constexpr std::size_t LAG = 4 * 1024;
    static constexpr std::size_t BATCH = 8 * 1024;

    void SumUpTo(std::size_t end) {
        while (summed < end) {
            unsigned char* frame = sink.Pending() + summed;
            Head filled;
            std::memcpy(&filled, frame, sizeof filled);
            if (summed + sizeof(Head) + filled.size > end) break;
            filled.crc = Sum(frame + sizeof(Head), filled.size);
            std::memcpy(frame, &filled, sizeof filled);
            summed += sizeof(Head) + filled.size;
        }
    }

    Sink& sink;
    std::size_t summed = 0;
    unsigned char* head = nullptr;
    unsigned char* next = nullptr;
};

/// Writes the frame of a model `M` in the library's format.
template <class M>
struct FrameWriter {
    /// Gives uids in record order. Returns their number.
    static int Number(typename M::Building& building) {
        int uid = 0;
        building.uid = ++uid;
        for (const auto& material : building.materials) material->uid = ++uid;
        for (const auto& section : building.sections) section->uid = ++uid;
        for (const auto& storey : building.storeys) {
            storey->uid = ++uid;
            for (const auto& node : storey->nodes) node->uid = ++uid;
            for (const auto& member : storey->members) member->uid = ++uid;
        }
        return uid;
    }

    /// Opens a record with the fields that all classes have.
    static void Begin(Writer& out, const typename M::Entity& entity, std::size_t room) {
        const std::size_t length = entity.name.length();
        out.Begin(room + length + 8);
        out.PutBlock(entity.name.c_str(), length);
        out.Put(entity.number);
    }

    static void Write(Writer& out, const typename M::Material& material) {
        Begin(out, material, 16);
        out.Put(material.elasticity);
        out.Put(material.density);
        out.End(MATERIAL, material.uid);
    }

    static void Write(Writer& out, const typename M::Section& section) {
        Begin(out, section, 28);
        out.Put(section.depth);
        out.Put(section.area);
        out.Put(section.inertia);
        out.PutUid(M::Target(section.material));
        out.End(SECTION, section.uid);
    }

    static void Write(Writer& out, const typename M::Node& node) {
        Begin(out, node, 29);
        out.Put(node.x);
        out.Put(node.y);
        out.Put(node.z);
        out.Put(node.restraints);
        out.Put(node.supported);
        out.End(NODE, node.uid);
    }

    static void Write(Writer& out, const typename M::Member& member) {
        Begin(out, member, 33 + Count(member.loads) * 8);
        out.PutDoubles(member.loads);
        out.PutUid(M::Target(member.start));
        out.PutUid(M::Target(member.end));
        out.PutUid(M::Target(member.section));
        out.PutUid(M::Target(member.storey));
        if (member.IsColumn()) {
            const auto& column = static_cast<const typename M::Column&>(member);
            out.Put(column.rotation);
            out.Put(column.spliced);
            out.End(COLUMN, column.uid);
        } else {
            const auto& girder = static_cast<const typename M::Girder&>(member);
            out.Put(girder.camber);
            out.Put(girder.releases);
            out.Put(girder.composite);
            out.End(GIRDER, girder.uid);
        }
    }

    static void Write(Writer& out, const typename M::Storey& storey) {
        Begin(out, storey, 32 + Count(storey.masses) * 8 + (Count(storey.nodes) + Count(storey.members)) * 4);
        out.Put(storey.elevation);
        out.Put(storey.height);
        out.PutDoubles(storey.masses);
        out.PutUids(storey.nodes);
        out.PutUids(storey.members);
        out.PutUid(M::Target(storey.building));
        out.End(STOREY, storey.uid);
        for (const auto& node : storey.nodes) Write(out, *node);
        for (const auto& member : storey.members) Write(out, *member);
    }

    static void Write(Writer& out, const typename M::Building& building) {
        Begin(out, building,
              16 + M::BlobSize(building.thumbnail) +
                  (Count(building.materials) + Count(building.sections) + Count(building.storeys)) * 4);
        out.PutBlock(M::BlobData(building.thumbnail), M::BlobSize(building.thumbnail));
        out.PutUids(building.materials);
        out.PutUids(building.sections);
        out.PutUids(building.storeys);
        out.End(BUILDING, building.uid);
        for (const auto& material : building.materials) Write(out, *material);
        for (const auto& section : building.sections) Write(out, *section);
        for (const auto& storey : building.storeys) Write(out, *storey);
    }
};

// Opening

struct Cursor {
    const unsigned char* next;

    template <class T>
    T Take() {
        T value;
        std::memcpy(&value, next, sizeof value);
        next += sizeof value;
        return value;
    }
    template <class T>
    void Take(T& value) {
        value = Take<T>();
    }
    const unsigned char* Skip(std::size_t size) {
        next += size;
        return next - size;
    }
};

/// Creates the frame of a model `M` from the library's format.
template <class M>
class FrameReader {
    using Entity = typename M::Entity;
    using Material = typename M::Material;
    using Section = typename M::Section;
    using Node = typename M::Node;
    using Member = typename M::Member;
    using Column = typename M::Column;
    using Girder = typename M::Girder;
    using Storey = typename M::Storey;
    using Building = typename M::Building;

public:
    Entity* Run(const unsigned char* data, std::size_t size) {
        const unsigned char* end = data + size;
        std::uint32_t records = 0;
        std::memcpy(&records, data + COUNT_OFFSET, sizeof records);
        objects.resize(records); // the schema record has no uid
        const unsigned char* first = data + HEADER_SIZE;
        first += sizeof(Head) + Checked(first, end).size;
        for (const unsigned char* at = first; at < end;) {
            const Head head = Checked(at, end);
            objects.at(static_cast<std::size_t>(head.uid)) = Make(head.classId);
            at += sizeof(Head) + head.size;
        }
        for (const unsigned char* at = first; at < end;) {
            Head head;
            std::memcpy(&head, at, sizeof head);
            Fill(head, at + sizeof head);
            at += sizeof(Head) + head.size;
        }
        return objects.at(1);
    }

private:
    static Head Checked(const unsigned char* at, const unsigned char* end) {
        Head head;
        const auto left = static_cast<std::size_t>(end - at);
        if (left < sizeof head) throw std::runtime_error("truncated");
        std::memcpy(&head, at, sizeof head);
        if (head.marker != MARKER || head.size > left - sizeof head ||
            Sum(at + sizeof head, head.size) != head.crc) {
            throw std::runtime_error("damaged");
        }
        return head;
    }

    static Entity* Make(int classId) {
        switch (classId) {
        case MATERIAL:
            return new Material;
        case SECTION:
            return new Section;
        case NODE:
            return new Node;
        case COLUMN:
            return new Column;
        case GIRDER:
            return new Girder;
        case STOREY:
            return new Storey;
        case BUILDING:
            return new Building;
        }
        throw std::runtime_error("unknown class");
    }

    template <class T>
    T* Object(std::uint32_t uid) const {
        return uid == 0 ? nullptr : static_cast<T*>(objects.at(uid));
    }
    template <class Reference>
    void Point(Cursor& in, Reference& reference) const {
        using T = std::remove_pointer_t<decltype(M::Target(reference))>;
        reference = Object<T>(in.Take<std::uint32_t>());
    }
    template <class List>
    static void Doubles(Cursor& in, List& list) {
        const auto count = in.Take<std::uint32_t>();
        M::SetNumbers(list, in.Skip(count * sizeof(double)), count);
    }
    template <class List>
    void Children(Cursor& in, List& list) const {
        using T = std::remove_pointer_t<decltype(M::Target(*list.begin()))>;
        const auto count = in.Take<std::uint32_t>();
        M::Reserve(list, count);
        for (std::uint32_t i = 0; i < count; ++i) M::Add(list, Object<T>(in.Take<std::uint32_t>()));
    }

    void Fill(const Head& head, const unsigned char* payload) {
        Cursor in{payload};
        Entity* entity = objects[static_cast<std::size_t>(head.uid)];
        const auto length = in.Take<std::uint32_t>();
        M::SetText(entity->name, reinterpret_cast<const char*>(in.Skip(length)), length);
        in.Take(entity->number);
        switch (head.classId) {
        case MATERIAL: {
            auto& material = static_cast<Material&>(*entity);
            in.Take(material.elasticity);
            in.Take(material.density);
            break;
        }
        case SECTION: {
            auto& section = static_cast<Section&>(*entity);
            in.Take(section.depth);
            in.Take(section.area);
            in.Take(section.inertia);
            Point(in, section.material);
            break;
        }
        case NODE: {
            auto& node = static_cast<Node&>(*entity);
            in.Take(node.x);
            in.Take(node.y);
            in.Take(node.z);
            in.Take(node.restraints);
            in.Take(node.supported);
            break;
        }
        case COLUMN: {
            auto& column = static_cast<Column&>(*entity);
            FillMember(in, column);
            in.Take(column.rotation);
            in.Take(column.spliced);
            break;
        }
        case GIRDER: {
            auto& girder = static_cast<Girder&>(*entity);
            FillMember(in, girder);
            in.Take(girder.camber);
            in.Take(girder.releases);
            in.Take(girder.composite);
            break;
        }
        case STOREY: {
            auto& storey = static_cast<Storey&>(*entity);
            in.Take(storey.elevation);
            in.Take(storey.height);
            Doubles(in, storey.masses);
            Children(in, storey.nodes);
            Children(in, storey.members);
            Point(in, storey.building);
            break;
        }
        case BUILDING: {
            auto& building = static_cast<Building&>(*entity);
            const auto size = in.Take<std::uint32_t>();
            M::SetBlob(building.thumbnail, in.Skip(size), size);
            Children(in, building.materials);
            Children(in, building.sections);
            Children(in, building.storeys);
            break;
        }
        }
    }

    void FillMember(Cursor& in, Member& member) const {
        Doubles(in, member.loads);
        Point(in, member.start);
        Point(in, member.end);
        Point(in, member.section);
        Point(in, member.storey);
    }

    std::vector<Entity*> objects; // by uid
};

} // namespace bench::floor
