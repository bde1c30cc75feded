// protobuf, with ids by hand: the frame is converted to messages on an arena, and new objects are made from
// messages.

#include "table_reader.h"

#include "frame.pb.h"

#include <cstdlib>

namespace bench::plain {

namespace {

class ProtoWriter {
public:
    static void Run(const Building& building, pb::Building& to) {
        Begin(building, to);
        to.set_thumbnail(building.thumbnail.data(), building.thumbnail.size());
        for (const auto& material : building.materials) {
            auto& one = *to.add_materials();
            Begin(*material, one);
            one.set_elasticity(material->elasticity);
            one.set_density(material->density);
        }
        for (const auto& section : building.sections) {
            auto& one = *to.add_sections();
            Begin(*section, one);
            one.set_depth(section->depth);
            one.set_area(section->area);
            one.set_inertia(section->inertia);
            one.set_material(IdOf(section->material));
        }
        for (const auto& storey : building.storeys) Fill(*storey, *to.add_storeys());
    }

private:
    template <class Message>
    static void Begin(const Entity& entity, Message& to) {
        to.set_name(entity.name);
        to.set_number(entity.number);
    }
    static void Fill(const Storey& storey, pb::Storey& to) {
        Begin(storey, to);
        to.set_elevation(storey.elevation);
        to.set_height(storey.height);
        to.mutable_masses()->Add(storey.masses.begin(), storey.masses.end());
        for (const auto& node : storey.nodes) {
            auto& one = *to.add_nodes();
            Begin(*node, one);
            one.set_x(node->x);
            one.set_y(node->y);
            one.set_z(node->z);
            one.set_restraints(node->restraints);
            one.set_supported(node->supported);
        }
        for (const auto& member : storey.members) Fill(*member, *to.add_members());
    }
    static void Fill(const Member& member, pb::Member& to) {
        Begin(member, to);
        to.mutable_loads()->Add(member.loads.begin(), member.loads.end());
        to.set_start(IdOf(member.start));
        to.set_end(IdOf(member.end));
        to.set_section(IdOf(member.section));
        if (member.IsColumn()) {
            const auto& column = static_cast<const Column&>(member);
            to.set_rotation(column.rotation);
            to.set_spliced(column.spliced);
        } else {
            const auto& girder = static_cast<const Girder&>(member);
            to.set_girder(true);
            to.set_camber(girder.camber);
            to.set_releases(girder.releases);
            to.set_composite(girder.composite);
        }
    }
};

class ProtoContender : public PlainContender {
public:
    Bytes SaveMemory() override {
        GiveIds(*frame);
        google::protobuf::Arena arena;
        auto& message = *google::protobuf::Arena::CreateMessage<pb::Building>(&arena);
        ProtoWriter::Run(*frame, message);
        const std::size_t size = message.ByteSizeLong();
        auto* block = static_cast<unsigned char*>(std::malloc(size));
        message.SerializeWithCachedSizesToArray(block);
        return Bytes(block, size);
    }
    void SaveFile(const std::string& path) override { SaveMemory().Store(path); }
    void OpenMemory(const Bytes& bytes) override {
        google::protobuf::Arena arena;
        auto& message = *google::protobuf::Arena::CreateMessage<pb::Building>(&arena);
        if (!message.ParseFromArray(bytes.data(), static_cast<int>(bytes.size())))
            throw std::runtime_error("protobuf cannot parse");
        openedFrame = TableReader().Run(message);
    }
    void OpenFile(const std::string& path) override { OpenMemory(Bytes::Load(path)); }
};

} // namespace

} // namespace bench::plain

std::unique_ptr<bench::Contender> bench::MakeProtobuf() { return std::make_unique<plain::ProtoContender>(); }
