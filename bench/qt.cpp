// Qt's QDataStream, with ids by hand: owners write the objects they own, references are ids.

#include "plain_ids.h"

#include <QtCore/QBuffer>
#include <QtCore/QByteArray>
#include <QtCore/QDataStream>
#include <QtCore/QFile>

#include <cstdlib>

namespace bench::plain {

namespace {

class QtWriter {
public:
    explicit QtWriter(QDataStream& target) : out(target) {}

    void Run(const Building& building) {
        Begin(building);
        out << Raw(building.thumbnail.data(), building.thumbnail.size());
        Count(building.materials);
        for (const auto& material : building.materials) {
            Begin(*material);
            out << material->elasticity << material->density;
        }
        Count(building.sections);
        for (const auto& section : building.sections) {
            Begin(*section);
            out << section->depth << section->area << section->inertia << IdOf(section->material);
        }
        Count(building.storeys);
        for (const auto& storey : building.storeys) Put(*storey);
    }

private:
    static QByteArray Raw(const void* data, std::size_t size) {
        return QByteArray::fromRawData(static_cast<const char*>(data), static_cast<int>(size));
    }
    template <class List>
    void Count(const List& list) {
        out << static_cast<quint32>(list.size());
    }
    void Numbers(const std::vector<double>& list) {
        Count(list);
        for (const double value : list) out << value;
    }
    void Begin(const Entity& entity) { out << Raw(entity.name.data(), entity.name.size()) << entity.number; }
    void Put(const Storey& storey) {
        Begin(storey);
        out << storey.elevation << storey.height;
        Numbers(storey.masses);
        Count(storey.nodes);
        for (const auto& node : storey.nodes) {
            Begin(*node);
            out << node->x << node->y << node->z << node->restraints << node->supported;
        }
        Count(storey.members);
        for (const auto& member : storey.members) Put(*member);
    }
    void Put(const Member& member) {
        out << member.IsColumn();
        Begin(member);
        Numbers(member.loads);
        out << IdOf(member.start) << IdOf(member.end) << IdOf(member.section);
        if (member.IsColumn()) {
            const auto& column = static_cast<const Column&>(member);
            out << column.rotation << column.spliced;
        } else {
            const auto& girder = static_cast<const Girder&>(member);
            out << girder.camber << girder.releases << girder.composite;
        }
    }

    QDataStream& out;
};

class QtReader {
public:
    explicit QtReader(QDataStream& source) : in(source) {}

    Building* Run() {
        auto building = std::make_unique<Building>();
        Begin(*building);
        const auto thumbnail = Take<QByteArray>();
        building->thumbnail.assign(thumbnail.begin(), thumbnail.end());
        Each(building->materials, [this](Material& material) {
            Begin(material);
            in >> material.elasticity >> material.density;
        });
        Each(building->sections, [this](Section& section) {
            Begin(section);
            in >> section.depth >> section.area >> section.inertia;
            section.material = Referred<Material>();
        });
        Each(building->storeys, [&](Storey& storey) {
            Begin(storey);
            storey.building = building.get();
            Get(storey);
        });
        if (in.status() != QDataStream::Ok) throw std::runtime_error("Qt cannot read");
        return building.release();
    }

private:
    template <class T>
    T Take() {
        T value;
        in >> value;
        return value;
    }
    template <class T>
    T* Referred() {
        return ids.Get<T>(Take<qint32>());
    }
    template <class T, class Fill>
    void Each(std::vector<std::unique_ptr<T>>& list, Fill fill) {
        const auto count = Take<quint32>();
        list.reserve(count);
        for (quint32 i = 0; i < count; ++i) {
            list.emplace_back(new T);
            fill(*list.back());
        }
    }
    void Begin(Entity& entity) {
        const auto name = Take<QByteArray>();
        entity.name.assign(name.constData(), static_cast<std::size_t>(name.size()));
        in >> entity.number;
        ids.Add(&entity);
    }
    void Numbers(std::vector<double>& list) {
        list.resize(Take<quint32>());
        for (double& value : list) in >> value;
    }
    void Get(Storey& storey) {
        in >> storey.elevation >> storey.height;
        Numbers(storey.masses);
        Each(storey.nodes, [this](Node& node) {
            Begin(node);
            in >> node.x >> node.y >> node.z >> node.restraints >> node.supported;
        });
        const auto count = Take<quint32>();
        storey.members.reserve(count);
        for (quint32 i = 0; i < count; ++i) {
            storey.members.emplace_back(Create());
            storey.members.back()->storey = &storey;
        }
    }
    Member* Create() {
        auto* column = Take<bool>() ? new Column : nullptr;
        auto* girder = column == nullptr ? new Girder : nullptr;
        Member* member = column != nullptr ? static_cast<Member*>(column) : girder;
        Begin(*member);
        Numbers(member->loads);
        member->start = Referred<Node>();
        member->end = Referred<Node>();
        member->section = Referred<Section>();
        if (column != nullptr) {
            in >> column->rotation >> column->spliced;
        } else {
            in >> girder->camber >> girder->releases >> girder->composite;
        }
        return member;
    }

    QDataStream& in;
    Ids ids;
};

class QtContender : public PlainContender {
public:
    Bytes SaveMemory() override {
        const auto bytes = std::make_shared<QByteArray>();
        QBuffer buffer(bytes.get());
        buffer.open(QIODevice::WriteOnly);
        Save(buffer);
        return Bytes(reinterpret_cast<const unsigned char*>(bytes->constData()),
                     static_cast<std::size_t>(bytes->size()), bytes);
    }
    void SaveFile(const std::string& path) override {
        QFile file(QString::fromStdString(path));
        if (!file.open(QIODevice::WriteOnly)) throw std::runtime_error("Qt cannot create");
        Save(file);
    }
    void OpenMemory(const Bytes& from) override {
        const auto raw = QByteArray::fromRawData(reinterpret_cast<const char*>(from.data()),
                                                 static_cast<int>(from.size()));
        QDataStream in(raw);
        openedFrame = QtReader(in).Run();
    }
    void OpenFile(const std::string& path) override {
        QFile file(QString::fromStdString(path));
        if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("Qt cannot open");
        QDataStream in(&file);
        openedFrame = QtReader(in).Run();
    }

private:
    void Save(QIODevice& device) {
        GiveIds(*frame);
        QDataStream out(&device);
        QtWriter(out).Run(*frame);
    }
};

} // namespace

} // namespace bench::plain

std::unique_ptr<bench::Contender> bench::MakeQt() { return std::make_unique<plain::QtContender>(); }
