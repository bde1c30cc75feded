// The floor: what the bytes and the objects cost by themselves. Hand-written for these classes, it writes the
// same bytes and reads them into the same objects, with the uid held in the object, members accessed
// directly, and neither registry nor checks of what classes a file may hold.

#include "zo_model.h"

#include "ZoPrimitives/BinOutStreamer.h"
#include "ZoPrimitives/CRC32.h"
#include "ZoPrimitives/MemoryBinOutStream.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace bench::zo {

namespace {

enum ClassId { MATERIAL = 2, SECTION, NODE, MEMBER, COLUMN, GIRDER, STOREY, BUILDING, LINK };

struct Head {
    std::uint32_t marker, size, crc;
    std::int32_t classId, uid;
    std::uint32_t key;
};
constexpr std::uint32_t MARKER = 0xABCAABCA;
constexpr std::size_t HEADER_SIZE = 28;
constexpr std::size_t COUNT_OFFSET = 12;

std::uint32_t Sum(const unsigned char* data, std::size_t size) {
    ZoPrimitives::CRC32 crc;
    crc.update(data, static_cast<unsigned>(size));
    return crc.getUint32Value();
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
    /// `room`: at least the payload's size.
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
    void PutDoubles(const TDVector<double>& list) {
        const auto count = static_cast<std::size_t>(list.end() - list.begin());
        Put(static_cast<std::uint32_t>(count));
        std::memcpy(next, list.data(), count * sizeof(double));
        next += count * sizeof(double);
    }
    template <class List>
    void PutUids(const List& list) {
        Put(static_cast<std::uint32_t>(list.end() - list.begin()));
        for (const auto& item : list) Put(item.get()->uid);
    }
    template <class T>
    void PutUid(const T& reference) {
        const auto* target = reference.get();
        Put(target == nullptr ? 0 : target->uid);
    }
    void End(ClassId classId, int uid) {
        const auto size = static_cast<std::uint32_t>(next - (head + sizeof(Head)));
        const Head filled{MARKER, size, 0, classId, uid, 0};
        std::memcpy(head, &filled, sizeof filled);
        sink.Advance(size + sizeof(Head));
        // Summed some records later: a sum that reads what was just stored in small pieces stalls.
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

/// Gives the uids, in the order of the records. Returns their number.
int Number(Building& building) {
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

/// Opens a record with what all classes have.
void Begin(Writer& out, const Entity& entity, std::size_t room) {
    const std::size_t length = entity.name.length();
    out.Begin(room + length + 8);
    out.PutBlock(entity.name.c_str(), length);
    out.Put(entity.number);
}

void Write(Writer& out, const Material& material) {
    Begin(out, material, 16);
    out.Put(material.elasticity);
    out.Put(material.density);
    out.End(MATERIAL, material.uid);
}

void Write(Writer& out, const Section& section) {
    Begin(out, section, 28);
    out.Put(section.depth);
    out.Put(section.area);
    out.Put(section.inertia);
    out.PutUid(section.material);
    out.End(SECTION, section.uid);
}

void Write(Writer& out, const Node& node) {
    Begin(out, node, 29);
    out.Put(node.x);
    out.Put(node.y);
    out.Put(node.z);
    out.Put(node.restraints);
    out.Put(node.supported);
    out.End(NODE, node.uid);
}

void Write(Writer& out, const Member& member) {
    Begin(out, member, 33 + member.loads.NItems() * 8);
    out.PutDoubles(member.loads);
    out.PutUid(member.start);
    out.PutUid(member.end);
    out.PutUid(member.section);
    out.PutUid(member.storey);
    if (member.IsColumn()) {
        const auto& column = static_cast<const Column&>(member);
        out.Put(column.rotation);
        out.Put(column.spliced);
        out.End(COLUMN, column.uid);
    } else {
        const auto& girder = static_cast<const Girder&>(member);
        out.Put(girder.camber);
        out.Put(girder.releases);
        out.Put(girder.composite);
        out.End(GIRDER, girder.uid);
    }
}

void Write(Writer& out, const Storey& storey) {
    Begin(out, storey,
          32 + storey.masses.NItems() * 8 + (storey.nodes.NItems() + storey.members.NItems()) * 4);
    out.Put(storey.elevation);
    out.Put(storey.height);
    out.PutDoubles(storey.masses);
    out.PutUids(storey.nodes);
    out.PutUids(storey.members);
    out.PutUid(storey.building);
    out.End(STOREY, storey.uid);
    for (const auto& node : storey.nodes) Write(out, *node);
    for (const auto& member : storey.members) Write(out, *member);
}

void Write(Writer& out, const Building& building) {
    Begin(out, building,
          16 + static_cast<std::size_t>(building.thumbnail.Size()) +
              (building.materials.NItems() + building.sections.NItems() + building.storeys.NItems()) * 4);
    out.PutBlock(building.thumbnail.Data(), static_cast<std::size_t>(building.thumbnail.Size()));
    out.PutUids(building.materials);
    out.PutUids(building.sections);
    out.PutUids(building.storeys);
    out.End(BUILDING, building.uid);
    for (const auto& material : building.materials) Write(out, *material);
    for (const auto& section : building.sections) Write(out, *section);
    for (const auto& storey : building.storeys) Write(out, *storey);
}

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

class Reader {
public:
    Entity* Run(const unsigned char* data, std::size_t size) {
        const unsigned char* end = data + size;
        std::uint32_t records = 0;
        std::memcpy(&records, data + COUNT_OFFSET, sizeof records);
        objects.resize(records); // the schema's record has no uid
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
    template <class T>
    void Point(Cursor& in, ZoPrimitives::crossRef<T>& reference) const {
        reference = Object<T>(in.Take<std::uint32_t>());
    }
    static void Doubles(Cursor& in, TDVector<double>& list) {
        const auto count = in.Take<std::uint32_t>();
        list.Reserve(count);
        for (std::uint32_t i = 0; i < count; ++i) list.Add(in.Take<double>());
    }
    template <class T>
    void Children(Cursor& in, ZoPrimitives::TIVector<T>& list) const {
        const auto count = in.Take<std::uint32_t>();
        list.Reserve(count);
        for (std::uint32_t i = 0; i < count; ++i) list.Add(Object<T>(in.Take<std::uint32_t>()));
    }

    void Fill(const Head& head, const unsigned char* payload) {
        Cursor in{payload};
        Entity* entity = objects[static_cast<std::size_t>(head.uid)];
        const auto length = in.Take<std::uint32_t>();
        entity->name.Assign(reinterpret_cast<const char*>(in.Skip(length)), length);
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
            building.thumbnail.Assign(in.Skip(size), size);
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

/// No chain here: nothing about it could differ but the depth.
class FloorContender : public ZoContender {
public:
    void BuildFrame(std::size_t count) override {
        ZoContender::BuildFrame(count);
        MakePrefix(static_cast<std::uint32_t>(count) + 1);
    }

    Bytes SaveMemory() override {
        Sink sink;
        Save(sink);
        return sink.Take();
    }
    void SaveFile(const std::string& path) override {
        Sink sink(path);
        Save(sink);
        sink.Close();
    }
    void OpenMemory(const Bytes& bytes) override { TakeRoot(Reader().Run(bytes.data(), bytes.size())); }
    void OpenFile(const std::string& path) override { OpenMemory(Bytes::Load(path)); }

private:
    void Save(Sink& sink) {
        Number(*frame);
        Writer writer(sink);
        writer.PutRaw(prefix);
        Write(writer, *frame);
        writer.Finish();
    }

    /// The header and the schema's record are the library's own.
    void MakePrefix(std::uint32_t records) {
        ZoPrimitives::TMemoryBinOutStream stream(VERSION, RELEASE);
        stream.Initialize();
        ZoPrimitives::TBinOutStreamer(&stream, &Schema()).WriteObjectMetaData(Root());
        unsigned long long size = 0;
        unsigned char* block = stream.Detach(size);
        std::memcpy(block + COUNT_OFFSET, &records, sizeof records);
        prefix = Bytes(block, static_cast<std::size_t>(size));
    }

    Bytes prefix;
};

} // namespace

} // namespace bench::zo

std::unique_ptr<bench::Contender> bench::MakeFloor() { return std::make_unique<zo::FloorContender>(); }
