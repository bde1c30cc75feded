// Boost.Serialization: binary archive, polymorphic classes, tracked plain pointers (its fastest), base parts
// serialized directly (base objects are not tracked by themselves), no class versions.

#include "model.h"
#include "streambufs.h"

#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/serialization/export.hpp>
#include <boost/serialization/string.hpp>
#include <boost/serialization/vector.hpp>

namespace bench::boost_model {

struct Building;
struct Storey;

struct Entity {
    std::string name;
    int number = 0;

    virtual ~Entity() = default;
    template <class Archive>
    void Fields(Archive& archive) {
        archive& name& number;
    }
};

struct Material : Entity {
    double elasticity = 0;
    double density = 0;

    template <class Archive>
    void serialize(Archive& archive, unsigned) {
        Fields(archive);
        archive& elasticity& density;
    }
};

struct Section : Entity {
    double depth = 0;
    double area = 0;
    double inertia = 0;
    Material* material = nullptr;

    template <class Archive>
    void serialize(Archive& archive, unsigned) {
        Fields(archive);
        archive& depth& area& inertia& material;
    }
};

struct Node : Entity {
    double x = 0;
    double y = 0;
    double z = 0;
    unsigned restraints = 0;
    bool supported = false;

    template <class Archive>
    void serialize(Archive& archive, unsigned) {
        Fields(archive);
        archive& x& y& z& restraints& supported;
    }
};

struct Member : Entity {
    std::vector<double> loads;
    Node* start = nullptr;
    Node* end = nullptr;
    Section* section = nullptr;
    Storey* storey = nullptr;

    virtual bool IsColumn() const = 0;
    template <class Archive>
    void MemberFields(Archive& archive) {
        Fields(archive);
        archive& loads& start& end& section& storey;
    }
    template <class Archive>
    void serialize(Archive&, unsigned) {}
};

struct Column : Member {
    double rotation = 0;
    bool spliced = false;

    bool IsColumn() const override { return true; }
    template <class Archive>
    void serialize(Archive& archive, unsigned) {
        boost::serialization::void_cast_register<Column, Member>();
        MemberFields(archive);
        archive& rotation& spliced;
    }
};

struct Girder : Member {
    double camber = 0;
    unsigned releases = 0;
    bool composite = false;

    bool IsColumn() const override { return false; }
    template <class Archive>
    void serialize(Archive& archive, unsigned) {
        boost::serialization::void_cast_register<Girder, Member>();
        MemberFields(archive);
        archive& camber& releases& composite;
    }
};

struct Storey : Entity {
    double elevation = 0;
    double height = 0;
    std::vector<double> masses;
    std::vector<Node*> nodes;
    std::vector<Member*> members;
    Building* building = nullptr;

    ~Storey() override {
        for (Node* node : nodes) delete node;
        for (Member* member : members) delete member;
    }
    template <class Archive>
    void serialize(Archive& archive, unsigned) {
        Fields(archive);
        archive& elevation& height& masses& nodes& members& building;
    }
};

struct Building : Entity {
    std::vector<unsigned char> thumbnail;
    std::vector<Material*> materials;
    std::vector<Section*> sections;
    std::vector<Storey*> storeys;

    ~Building() override {
        for (Storey* storey : storeys) delete storey;
        for (Section* section : sections) delete section;
        for (Material* material : materials) delete material;
    }
    template <class Archive>
    void serialize(Archive& archive, unsigned) {
        Fields(archive);
        archive& thumbnail& materials& sections& storeys;
    }
};

struct Link : Entity {
    Link* next = nullptr; // owned; chains are deleted link by link

    template <class Archive>
    void serialize(Archive& archive, unsigned) {
        Fields(archive);
        archive& next;
    }
};

struct Classes {
    using Building = boost_model::Building;
    using Storey = boost_model::Storey;
    using Node = boost_model::Node;
    using Section = boost_model::Section;
    using Material = boost_model::Material;
    using Member = boost_model::Member;
    using Column = boost_model::Column;
    using Girder = boost_model::Girder;
    using Link = boost_model::Link;

    template <class T>
    using Holder = T*;
    template <class T>
    static T* Make() {
        return new T;
    }
    template <class List, class T>
    static void Add(List& list, T item) {
        list.push_back(item);
    }
    template <class List>
    static auto HolderOf(List& list) {
        return list.back();
    }
    template <class T>
    static T* Target(T* link) {
        return link;
    }
    static void SetBlob(std::vector<unsigned char>& blob, const unsigned char* data, unsigned size) {
        blob.assign(data, data + size);
    }
    static std::size_t BlobSize(const std::vector<unsigned char>& blob) { return blob.size(); }
};

class BoostContender : public ModelContender<Classes> {
public:
    ~BoostContender() override {
        Drop(frame, chain);
        Drop(openedFrame, openedChain);
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
    void OpenMemory(const Bytes& bytes) override {
        InBuf buffer(bytes);
        boost::archive::binary_iarchive archive(buffer, boost::archive::no_codecvt);
        archive >> openedFrame >> openedChain;
    }
    void OpenFile(const std::string& path) override { OpenMemory(Bytes::Load(path)); }
    void DropOpened() override { Drop(openedFrame, openedChain); }

private:
    void Save(Sink& sink) const {
        OutBuf buffer(sink);
        boost::archive::binary_oarchive archive(buffer, boost::archive::no_codecvt);
        archive << frame << chain;
    }
    static void Drop(Building*& frame, Link*& chain) {
        delete std::exchange(frame, nullptr);
        while (chain != nullptr) delete std::exchange(chain, chain->next);
    }
};

} // namespace bench::boost_model

#define BENCH_BOOST_CLASS(Class)                                                                             \
    BOOST_CLASS_IMPLEMENTATION(bench::boost_model::Class, boost::serialization::object_serializable)         \
    BOOST_CLASS_TRACKING(bench::boost_model::Class, boost::serialization::track_always)

BENCH_BOOST_CLASS(Material)
BENCH_BOOST_CLASS(Section)
BENCH_BOOST_CLASS(Node)
BENCH_BOOST_CLASS(Member)
BENCH_BOOST_CLASS(Column)
BENCH_BOOST_CLASS(Girder)
BENCH_BOOST_CLASS(Storey)
BENCH_BOOST_CLASS(Building)
BENCH_BOOST_CLASS(Link)

BOOST_CLASS_EXPORT(bench::boost_model::Material)
BOOST_CLASS_EXPORT(bench::boost_model::Section)
BOOST_CLASS_EXPORT(bench::boost_model::Node)
BOOST_CLASS_EXPORT(bench::boost_model::Column)
BOOST_CLASS_EXPORT(bench::boost_model::Girder)
BOOST_CLASS_EXPORT(bench::boost_model::Storey)
BOOST_CLASS_EXPORT(bench::boost_model::Building)
BOOST_CLASS_EXPORT(bench::boost_model::Link)

std::unique_ptr<bench::Contender> bench::MakeBoost() {
    return std::make_unique<boost_model::BoostContender>();
}
