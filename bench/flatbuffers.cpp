// FlatBuffers, with ids by hand: the frame is converted to tables, and new objects are made from tables.

#include "plain_ids.h"

#include "frame_generated.h"

namespace bench::plain {

namespace {

using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;

class FlatWriter {
public:
    explicit FlatWriter(FlatBufferBuilder& target) : out(target) {}

    void Run(const Building& building) {
        const auto materials = All<fb::Material>(building.materials);
        const auto sections = All<fb::Section>(building.sections);
        const auto storeys = All<fb::Storey>(building.storeys);
        const auto name = Text(building);
        const auto thumbnail = out.CreateVector(building.thumbnail);
        out.Finish(fb::CreateBuilding(out, name, building.number, thumbnail, materials, sections, storeys));
    }

private:
    Offset<flatbuffers::String> Text(const Entity& entity) { return out.CreateString(entity.name); }
    template <class Table, class List>
    Offset<flatbuffers::Vector<Offset<Table>>> All(const List& list) {
        std::vector<Offset<Table>> tables;
        tables.reserve(list.size());
        for (const auto& item : list) tables.push_back(One(*item));
        return out.CreateVector(tables);
    }
    Offset<fb::Material> One(const Material& material) {
        return fb::CreateMaterial(out, Text(material), material.number, material.elasticity,
                                  material.density);
    }
    Offset<fb::Section> One(const Section& section) {
        return fb::CreateSection(out, Text(section), section.number, section.depth, section.area,
                                 section.inertia, IdOf(section.material));
    }
    Offset<fb::Node> One(const Node& node) {
        return fb::CreateNode(out, Text(node), node.number, node.x, node.y, node.z, node.restraints,
                              node.supported);
    }
    Offset<fb::Member> One(const Member& member) {
        const auto name = Text(member);
        const auto loads = out.CreateVector(member.loads);
        const int start = IdOf(member.start);
        const int end = IdOf(member.end);
        const int section = IdOf(member.section);
        if (member.IsColumn()) {
            const auto& column = static_cast<const Column&>(member);
            return fb::CreateMember(out, name, column.number, loads, start, end, section, false,
                                    column.rotation, column.spliced);
        }
        const auto& girder = static_cast<const Girder&>(member);
        return fb::CreateMember(out, name, girder.number, loads, start, end, section, true, 0, false,
                                girder.camber, girder.releases, girder.composite);
    }
    Offset<fb::Storey> One(const Storey& storey) {
        const auto nodes = All<fb::Node>(storey.nodes);
        const auto members = All<fb::Member>(storey.members);
        const auto name = Text(storey);
        const auto masses = out.CreateVector(storey.masses);
        return fb::CreateStorey(out, name, storey.number, storey.elevation, storey.height, masses, nodes,
                                members);
    }

    FlatBufferBuilder& out;
};

class FlatReader {
public:
    Building* Run(const fb::Building& from) {
        auto building = std::make_unique<Building>();
        Begin(*building, from);
        building->thumbnail.assign(from.thumbnail()->begin(), from.thumbnail()->end());
        building->materials.reserve(from.materials()->size());
        for (const auto* material : *from.materials()) building->materials.emplace_back(Create(*material));
        building->sections.reserve(from.sections()->size());
        for (const auto* section : *from.sections()) building->sections.emplace_back(Create(*section));
        building->storeys.reserve(from.storeys()->size());
        for (const auto* storey : *from.storeys()) {
            building->storeys.emplace_back(new Storey);
            Fill(*building->storeys.back(), *storey, *building);
        }
        return building.release();
    }

private:
    template <class Table>
    void Begin(Entity& entity, const Table& from) {
        entity.name.assign(from.name()->c_str(), from.name()->size());
        entity.number = from.number();
        ids.Add(&entity);
    }
    static void Numbers(std::vector<double>& list, const flatbuffers::Vector<double>& from) {
        list.assign(from.begin(), from.end());
    }
    Material* Create(const fb::Material& from) {
        auto* material = new Material;
        Begin(*material, from);
        material->elasticity = from.elasticity();
        material->density = from.density();
        return material;
    }
    Section* Create(const fb::Section& from) {
        auto* section = new Section;
        Begin(*section, from);
        section->depth = from.depth();
        section->area = from.area();
        section->inertia = from.inertia();
        section->material = ids.Get<Material>(from.material());
        return section;
    }
    Node* Create(const fb::Node& from) {
        auto* node = new Node;
        Begin(*node, from);
        node->x = from.x();
        node->y = from.y();
        node->z = from.z();
        node->restraints = from.restraints();
        node->supported = from.supported();
        return node;
    }
    Member* Create(const fb::Member& from) {
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
        Numbers(member->loads, *from.loads());
        member->start = ids.Get<Node>(from.start());
        member->end = ids.Get<Node>(from.end());
        member->section = ids.Get<Section>(from.section());
        return member;
    }
    void Fill(Storey& storey, const fb::Storey& from, Building& building) {
        Begin(storey, from);
        storey.elevation = from.elevation();
        storey.height = from.height();
        Numbers(storey.masses, *from.masses());
        storey.building = &building;
        storey.nodes.reserve(from.nodes()->size());
        for (const auto* node : *from.nodes()) storey.nodes.emplace_back(Create(*node));
        storey.members.reserve(from.members()->size());
        for (const auto* member : *from.members()) {
            storey.members.emplace_back(Create(*member));
            storey.members.back()->storey = &storey;
        }
    }

    Ids ids;
};

class FlatContender : public PlainContender {
public:
    Bytes SaveMemory() override {
        FlatBufferBuilder out;
        Save(out);
        std::size_t capacity = 0;
        std::size_t offset = 0;
        const std::shared_ptr<unsigned char[]> block(out.ReleaseRaw(capacity, offset));
        return Bytes(block.get() + offset, capacity - offset, block);
    }
    void SaveFile(const std::string& path) override {
        FlatBufferBuilder out;
        Save(out);
        Bytes(out.GetBufferPointer(), out.GetSize(), nullptr).Store(path);
    }
    void OpenMemory(const Bytes& bytes) override {
        openedFrame = FlatReader().Run(*fb::GetBuilding(bytes.data()));
    }
    void OpenFile(const std::string& path) override { OpenMemory(Bytes::Load(path)); }

private:
    void Save(FlatBufferBuilder& out) {
        GiveIds(*frame);
        FlatWriter(out).Run(*frame);
    }
};

} // namespace

} // namespace bench::plain

std::unique_ptr<bench::Contender> bench::MakeFlatBuffers() {
    return std::make_unique<plain::FlatContender>();
}
