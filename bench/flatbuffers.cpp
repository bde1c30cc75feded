// FlatBuffers, with ids by hand: the frame is converted to tables, and new objects are made from tables.

#include "table_reader.h"

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
        openedFrame = TableReader().Run(*fb::GetBuilding(bytes.data()));
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
