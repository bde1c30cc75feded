#pragma once

// The frame in classes of the standard library alone, as users of the peers would write them: owners hold
// unique_ptrs, references are plain pointers, and each object stores the id that hand-written code gives it.

#include "model.h"

#include <memory>
#include <string>
#include <vector>

namespace bench::plain {

struct Building;
struct Storey;

struct Entity {
    virtual ~Entity() = default;
    std::string name;
    int number = 0;
    int uid = 0;
};

struct Material : Entity {
    double elasticity = 0;
    double density = 0;
};

struct Section : Entity {
    double depth = 0;
    double area = 0;
    double inertia = 0;
    Material* material = nullptr;
};

struct Node : Entity {
    double x = 0;
    double y = 0;
    double z = 0;
    unsigned restraints = 0;
    bool supported = false;
};

struct Member : Entity {
    std::vector<double> loads;
    Node* start = nullptr;
    Node* end = nullptr;
    Section* section = nullptr;
    Storey* storey = nullptr;

    virtual bool IsColumn() const = 0;
};

struct Column : Member {
    double rotation = 0;
    bool spliced = false;

    bool IsColumn() const override { return true; }
};

struct Girder : Member {
    double camber = 0;
    unsigned releases = 0;
    bool composite = false;

    bool IsColumn() const override { return false; }
};

struct Storey : Entity {
    double elevation = 0;
    double height = 0;
    std::vector<double> masses;
    std::vector<std::unique_ptr<Node>> nodes;
    std::vector<std::unique_ptr<Member>> members;
    Building* building = nullptr;
};

struct Building : Entity {
    std::vector<unsigned char> thumbnail;
    std::vector<std::unique_ptr<Material>> materials;
    std::vector<std::unique_ptr<Section>> sections;
    std::vector<std::unique_ptr<Storey>> storeys;
};

struct Link : Entity {
    Link* next = nullptr; // unused: no chain is built
};

struct Classes {
    using Entity = plain::Entity;
    using Building = plain::Building;
    using Storey = plain::Storey;
    using Node = plain::Node;
    using Section = plain::Section;
    using Material = plain::Material;
    using Member = plain::Member;
    using Column = plain::Column;
    using Girder = plain::Girder;
    using Link = plain::Link;

    template <class T>
    using Holder = T*; // the frame's builder gives each object to its owner at once
    template <class T>
    static T* Make() {
        return new T;
    }
    template <class Base, class T>
    static void Add(std::vector<std::unique_ptr<Base>>& list, T* item) {
        list.emplace_back(item);
    }
    static void Add(std::vector<double>& list, double value) { list.push_back(value); }
    template <class List>
    static auto HolderOf(List& list) {
        return list.back().get();
    }
    template <class T>
    static T* Target(const std::unique_ptr<T>& link) {
        return link.get();
    }
    template <class T>
    static T* Target(T* link) {
        return link;
    }
    static void SetBlob(std::vector<unsigned char>& blob, const unsigned char* data, std::size_t size) {
        blob.assign(data, data + size);
    }
    static const unsigned char* BlobData(const std::vector<unsigned char>& blob) { return blob.data(); }
    static std::size_t BlobSize(const std::vector<unsigned char>& blob) { return blob.size(); }
    static void SetText(std::string& text, const char* bytes, unsigned count) { text.assign(bytes, count); }
    static void SetNumbers(std::vector<double>& list, const unsigned char* bytes, std::size_t count) {
        list.resize(count);
        if (count != 0) std::memcpy(list.data(), bytes, count * sizeof(double));
    }
    template <class T>
    static void Reserve(std::vector<T>& list, std::size_t count) {
        list.reserve(count);
    }
};

/// Owns the models, and saves and opens only the frame: ids by hand make the chain's depth irrelevant.
class PlainContender : public ModelContender<Classes> {
public:
    PlainContender() = default;
    PlainContender(const PlainContender&) = delete;
    PlainContender& operator=(const PlainContender&) = delete;
    ~PlainContender() override {
        delete frame;
        delete openedFrame;
    }
    void DropOpened() override {
        delete openedFrame;
        openedFrame = nullptr;
    }
};

} // namespace bench::plain
