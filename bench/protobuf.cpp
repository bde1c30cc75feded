// protobuf, with ids by hand: the frame is converted to messages on an arena, and new objects are made from
// messages.

#include "plain_ids.h"

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

class ProtoReader {
public:
    Building* Run(const pb::Building& from) {
        auto building = std::make_unique<Building>();
        Begin(*building, from);
        building->thumbnail.assign(from.thumbnail().begin(), from.thumbnail().end());
        building->materials.reserve(static_cast<std::size_t>(from.materials_size()));
        for (const auto& one : from.materials()) {
            building->materials.emplace_back(new Material);
            Material& material = *building->materials.back();
            Begin(material, one);
            material.elasticity = one.elasticity();
            material.density = one.density();
        }
        building->sections.reserve(static_cast<std::size_t>(from.sections_size()));
        for (const auto& one : from.sections()) {
            building->sections.emplace_back(new Section);
            Section& section = *building->sections.back();
            Begin(section, one);
            section.depth = one.depth();
            section.area = one.area();
            section.inertia = one.inertia();
            section.material = ids.Get<Material>(one.material());
        }
        building->storeys.reserve(static_cast<std::size_t>(from.storeys_size()));
        for (const auto& one : from.storeys()) {
            building->storeys.emplace_back(new Storey);
            Fill(*building->storeys.back(), one, *building);
        }
        return building.release();
    }

private:
    template <class Message>
    void Begin(Entity& entity, const Message& from) {
        entity.name = from.name();
        entity.number = from.number();
        ids.Add(&entity);
    }
    void Fill(Storey& storey, const pb::Storey& from, Building& building) {
        Begin(storey, from);
        storey.elevation = from.elevation();
        storey.height = from.height();
        storey.masses.assign(from.masses().begin(), from.masses().end());
        storey.building = &building;
        storey.nodes.reserve(static_cast<std::size_t>(from.nodes_size()));
        for (const auto& one : from.nodes()) {
            storey.nodes.emplace_back(new Node);
            Node& node = *storey.nodes.back();
            Begin(node, one);
            node.x = one.x();
            node.y = one.y();
            node.z = one.z();
            node.restraints = one.restraints();
            node.supported = one.supported();
        }
        storey.members.reserve(static_cast<std::size_t>(from.members_size()));
        for (const auto& one : from.members()) {
            storey.members.emplace_back(Create(one));
            storey.members.back()->storey = &storey;
        }
    }
    Member* Create(const pb::Member& from) {
        Member* member = nullptr;
        if (from.girder()) {
            auto* girder = new Girder;
            girder->camber = from.camber();
            girder->releases = from.releases();
            girder->composite = from.composite();
            member = girder;
        } else {
            auto* column = new Column;
            column->rotation = from.rotation();
            column->spliced = from.spliced();
            member = column;
        }
        Begin(*member, from);
        member->loads.assign(from.loads().begin(), from.loads().end());
        member->start = ids.Get<Node>(from.start());
        member->end = ids.Get<Node>(from.end());
        member->section = ids.Get<Section>(from.section());
        return member;
    }

    Ids ids;
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
        openedFrame = ProtoReader().Run(message);
    }
    void OpenFile(const std::string& path) override { OpenMemory(Bytes::Load(path)); }
};

} // namespace

} // namespace bench::plain

std::unique_ptr<bench::Contender> bench::MakeProtobuf() { return std::make_unique<plain::ProtoContender>(); }
