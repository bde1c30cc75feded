// cereal: binary archive, shared_ptr (the only pointer that it tracks), polymorphic classes.

#include "model.h"
#include "streambufs.h"

#include <cereal/archives/binary.hpp>
#include <cereal/types/base_class.hpp>
#include <cereal/types/memory.hpp>
#include <cereal/types/polymorphic.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>

#include <istream>
#include <ostream>

namespace bench::cereal_model {

struct Building;
struct Storey;

struct Entity {
    std::string name;
    int number = 0;

    virtual ~Entity() = default;
    template <class Archive>
    void serialize(Archive& archive) {
        archive(name, number);
    }
};

struct Material : Entity {
    double elasticity = 0;
    double density = 0;

    template <class Archive>
    void serialize(Archive& archive) {
        archive(cereal::base_class<Entity>(this), elasticity, density);
    }
};

struct Section : Entity {
    double depth = 0;
    double area = 0;
    double inertia = 0;
    std::shared_ptr<Material> material;

    template <class Archive>
    void serialize(Archive& archive) {
        archive(cereal::base_class<Entity>(this), depth, area, inertia, material);
    }
};

struct Node : Entity {
    double x = 0;
    double y = 0;
    double z = 0;
    unsigned restraints = 0;
    bool supported = false;

    template <class Archive>
    void serialize(Archive& archive) {
        archive(cereal::base_class<Entity>(this), x, y, z, restraints, supported);
    }
};

struct Member : Entity {
    std::vector<double> loads;
    std::shared_ptr<Node> start;
    std::shared_ptr<Node> end;
    std::shared_ptr<Section> section;
    std::weak_ptr<Storey> storey;

    virtual bool IsColumn() const = 0;
    template <class Archive>
    void serialize(Archive& archive) {
        archive(cereal::base_class<Entity>(this), loads, start, end, section, storey);
    }
};

struct Column : Member {
    double rotation = 0;
    bool spliced = false;

    bool IsColumn() const override { return true; }
    template <class Archive>
    void serialize(Archive& archive) {
        archive(cereal::base_class<Member>(this), rotation, spliced);
    }
};

struct Girder : Member {
    double camber = 0;
    unsigned releases = 0;
    bool composite = false;

    bool IsColumn() const override { return false; }
    template <class Archive>
    void serialize(Archive& archive) {
        archive(cereal::base_class<Member>(this), camber, releases, composite);
    }
};

struct Storey : Entity {
    double elevation = 0;
    double height = 0;
    std::vector<double> masses;
    std::vector<std::shared_ptr<Node>> nodes;
    std::vector<std::shared_ptr<Member>> members;
    std::weak_ptr<Building> building;

    template <class Archive>
    void serialize(Archive& archive) {
        archive(cereal::base_class<Entity>(this), elevation, height, masses, nodes, members, building);
    }
};

struct Building : Entity {
    std::vector<unsigned char> thumbnail;
    std::vector<std::shared_ptr<Material>> materials;
    std::vector<std::shared_ptr<Section>> sections;
    std::vector<std::shared_ptr<Storey>> storeys;

    template <class Archive>
    void serialize(Archive& archive) {
        archive(cereal::base_class<Entity>(this), thumbnail, materials, sections, storeys);
    }
};

struct Link : Entity {
    std::shared_ptr<Link> next;

    template <class Archive>
    void serialize(Archive& archive) {
        archive(cereal::base_class<Entity>(this), next);
    }
};

struct Classes {
    using Building = cereal_model::Building;
    using Storey = cereal_model::Storey;
    using Node = cereal_model::Node;
    using Section = cereal_model::Section;
    using Material = cereal_model::Material;
    using Member = cereal_model::Member;
    using Column = cereal_model::Column;
    using Girder = cereal_model::Girder;
    using Link = cereal_model::Link;

    template <class T>
    using Holder = std::shared_ptr<T>;
    template <class T>
    static Holder<T> Make() {
        return std::make_shared<T>();
    }
    template <class List, class T>
    static void Add(List& list, const T& item) {
        list.push_back(item);
    }
    template <class List>
    static auto HolderOf(List& list) {
        return list.back();
    }
    template <class T>
    static T* Target(const std::shared_ptr<T>& link) {
        return link.get();
    }
    template <class T>
    static T* Target(const std::weak_ptr<T>& link) {
        return link.lock().get();
    }
    static void SetBlob(std::vector<unsigned char>& blob, const unsigned char* data, unsigned size) {
        blob.assign(data, data + size);
    }
    static std::size_t BlobSize(const std::vector<unsigned char>& blob) { return blob.size(); }
};

class CerealContender : public ModelContender<Classes> {
public:
    ~CerealContender() override {
        Unlink(chain);
        Unlink(openedChain);
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
        std::istream stream(&buffer);
        cereal::BinaryInputArchive archive(stream);
        archive(openedFrame, openedChain);
    }
    void OpenFile(const std::string& path) override { OpenMemory(Bytes::Load(path)); }
    void DropOpened() override {
        openedFrame.reset();
        Unlink(openedChain);
    }

private:
    void Save(Sink& sink) const {
        OutBuf buffer(sink);
        std::ostream stream(&buffer);
        cereal::BinaryOutputArchive archive(stream);
        archive(frame, chain);
    }
    static void Unlink(std::shared_ptr<Link>& link) {
        while (link != nullptr) link = std::exchange(link->next, nullptr);
    }
};

} // namespace bench::cereal_model

CEREAL_REGISTER_TYPE(bench::cereal_model::Material)
CEREAL_REGISTER_TYPE(bench::cereal_model::Section)
CEREAL_REGISTER_TYPE(bench::cereal_model::Node)
CEREAL_REGISTER_TYPE(bench::cereal_model::Column)
CEREAL_REGISTER_TYPE(bench::cereal_model::Girder)
CEREAL_REGISTER_TYPE(bench::cereal_model::Storey)
CEREAL_REGISTER_TYPE(bench::cereal_model::Building)
CEREAL_REGISTER_TYPE(bench::cereal_model::Link)

std::unique_ptr<bench::Contender> bench::MakeCereal() {
    return std::make_unique<cereal_model::CerealContender>();
}
