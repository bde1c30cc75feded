#pragma once

// A building frame of a given number of objects, with the same content for every library. `M` provides a
// library's classes (Building, Storey, Node, Section, Material, Member, Column, Girder, Link) and the
// operations to make and link them:
//
//     Holder<T>         owns an object while the model is built
//     Make<T>()         makes an object
//     Add(list, item)   appends to a list of objects or of numbers
//     Target(link)      returns the object behind a list's item or a reference
//     SetBlob / BlobSize
//
// An object has about 60 bytes of fields on average: strings, numbers, lists of numbers, references within
// the storey and to the one below, and back to the storey and the building.

#include "bench.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

namespace bench {

inline constexpr int GRID_LINES = 10; // columns stand at the crossings of 10 by 10 lines
inline constexpr double BAY = 9.144;  // m
inline constexpr double STOREY_HEIGHT = 3.9624;
inline constexpr unsigned THUMBNAIL_SIZE = 4096;

struct SectionRow {
    const char* name;
    double depth, area, inertia; // in, in2, in4
};
inline constexpr SectionRow SECTIONS[] = {
    {"W14x233", 16.0, 68.5, 3010}, {"W14x257", 16.4, 75.6, 3400}, {"W14x283", 16.7, 83.3, 3840},
    {"W14x370", 17.9, 109, 5440},  {"W14x455", 19.0, 134, 7190},  {"W14x500", 19.6, 147, 8210},
    {"W24x68", 23.7, 20.1, 1830},  {"W27x84", 26.7, 24.7, 2850},  {"W30x99", 29.7, 29.0, 3990},
    {"W36x135", 35.6, 39.9, 7800}, {"W36x160", 36.0, 47.0, 9760},
};
inline constexpr std::size_t COLUMN_SECTIONS = 6; // the rest are for girders

template <class M>
class FrameBuilder {
public:
    using Building = typename M::Building;

    /// Exactly `objects` objects; at least 16.
    static typename M::template Holder<Building> Build(std::size_t objects) {
        FrameBuilder builder(objects);
        builder.Run();
        return builder.building;
    }

private:
    template <class T>
    using Holder = typename M::template Holder<T>;
    using Storey = typename M::Storey;
    using Node = typename M::Node;
    using Section = typename M::Section;
    using Material = typename M::Material;

    explicit FrameBuilder(std::size_t objects) : left(objects) {}

    template <class T>
    Holder<T> Make(const char* prefix) {
        Holder<T> made = M::template Make<T>();
        char name[32];
        std::snprintf(name, sizeof name, "%s%d", prefix, ++number);
        made->name = name;
        made->number = number;
        --left;
        return made;
    }

    void Run() {
        building = Make<Building>("Frame ");
        std::vector<unsigned char> thumbnail(THUMBNAIL_SIZE);
        for (unsigned i = 0; i < THUMBNAIL_SIZE; ++i) thumbnail[i] = static_cast<unsigned char>(i * 7);
        M::SetBlob(building->thumbnail, thumbnail.data(), THUMBNAIL_SIZE);
        auto steel = Make<Material>("A992-");
        steel->elasticity = 200e9;
        steel->density = 7850;
        M::Add(building->materials, steel);
        for (const SectionRow& row : SECTIONS) {
            auto section = Make<Section>("S");
            section->name = row.name;
            section->depth = row.depth;
            section->area = row.area;
            section->inertia = row.inertia;
            section->material = steel;
            M::Add(building->sections, section);
            sections.push_back(section);
        }
        for (int level = 0; left != 0; ++level) AddStorey(level);
    }

    void AddStorey(int level) {
        auto storey = Make<Storey>("L");
        storey->elevation = level * STOREY_HEIGHT;
        storey->height = STOREY_HEIGHT;
        M::Add(storey->masses, 1.01e6 + level);
        M::Add(storey->masses, 0.989e6);
        storey->building = building;
        M::Add(building->storeys, storey);

        std::vector<Holder<Node>> above;
        for (int i = 0; i < GRID_LINES * GRID_LINES && left != 0; ++i) {
            auto node = Make<Node>("N");
            node->x = BAY * (i % GRID_LINES);
            node->y = BAY * (i / GRID_LINES);
            node->z = storey->elevation;
            node->restraints = level == 0 ? 0x3Fu : 0u;
            node->supported = level == 0;
            M::Add(storey->nodes, node);
            above.push_back(node);
        }
        for (std::size_t i = 0; i < below.size() && i < above.size() && left != 0; ++i) {
            auto column = Make<typename M::Column>("C");
            column->rotation = i % 2 == 0 ? 0.0 : 90.0;
            column->spliced = level % 2 == 0;
            M::Add(column->loads, -12.5e3 * level);
            AddMember(*storey, column, below[i], above[i],
                      sections[(i + static_cast<unsigned>(number)) % COLUMN_SECTIONS]);
        }
        for (std::size_t i = 0; i < above.size() && left != 0; ++i) {
            if (i % GRID_LINES != GRID_LINES - 1 && i + 1 < above.size())
                AddGirder(*storey, above[i], above[i + 1]);
            if (i + GRID_LINES < above.size() && left != 0)
                AddGirder(*storey, above[i], above[i + GRID_LINES]);
        }
        below = std::move(above);
    }

    void AddGirder(Storey& storey, const Holder<Node>& start, const Holder<Node>& end) {
        auto girder = Make<typename M::Girder>("G");
        girder->camber = 0.012;
        girder->releases = 0x21;
        girder->composite = number % 3 != 0;
        M::Add(girder->loads, 18.2e3);
        M::Add(girder->loads, 9.6e3);
        M::Add(girder->loads, 1.2e3 + number);
        AddMember(
            storey, girder, start, end,
            sections[COLUMN_SECTIONS + static_cast<unsigned>(number) % (sections.size() - COLUMN_SECTIONS)]);
    }

    template <class T>
    void AddMember(Storey& storey, const Holder<T>& member, const Holder<Node>& start,
                   const Holder<Node>& end, const Holder<Section>& section) {
        member->start = start;
        member->end = end;
        member->section = section;
        member->storey = M::HolderOf(building->storeys);
        M::Add(storey.members, member);
    }

    std::size_t left;
    int number = 0;
    Holder<Building> building{};
    std::vector<Holder<Section>> sections;
    std::vector<Holder<Node>> below;
};

/// Mixes every value, and which object each reference points to, into one number.
template <class M>
class Digester {
public:
    static Digest OfFrame(const typename M::Building& building) {
        Digester digester;
        digester.Frame(building);
        return digester.digest;
    }
    static Digest OfChain(const typename M::Link* link) {
        Digester digester;
        for (; link != nullptr; link = M::Target(link->next)) digester.Entity(*link);
        return digester.digest;
    }

private:
    void Frame(const typename M::Building& building) {
        Entity(building);
        Mix(M::BlobSize(building.thumbnail));
        for (const auto& item : building.materials) {
            const auto& material = *M::Target(item);
            Entity(material);
            Number(material.elasticity);
            Number(material.density);
        }
        for (const auto& item : building.sections) {
            const auto& section = *M::Target(item);
            Entity(section);
            Number(section.depth);
            Number(section.area);
            Number(section.inertia);
            Reference(section.material);
        }
        for (const auto& item : building.storeys) {
            const auto& storey = *M::Target(item);
            Entity(storey);
            Number(storey.elevation);
            Number(storey.height);
            for (double mass : storey.masses) Number(mass);
            Mix(M::Target(storey.building) == &building);
            for (const auto& node : storey.nodes) OfNode(*M::Target(node));
            for (const auto& member : storey.members) OfMember(*M::Target(member), storey);
        }
    }

    void OfNode(const typename M::Node& node) {
        Entity(node);
        Number(node.x);
        Number(node.y);
        Number(node.z);
        Mix(node.restraints);
        Mix(node.supported);
    }

    void OfMember(const typename M::Member& member, const typename M::Storey& storey) {
        Entity(member);
        for (double load : member.loads) Number(load);
        Reference(member.start);
        Reference(member.end);
        Reference(member.section);
        Mix(M::Target(member.storey) == &storey);
        if (const auto* column = dynamic_cast<const typename M::Column*>(&member)) {
            Number(column->rotation);
            Mix(column->spliced);
        } else {
            const auto& girder = dynamic_cast<const typename M::Girder&>(member);
            Number(girder.camber);
            Mix(girder.releases);
            Mix(girder.composite);
        }
    }

    template <class T>
    void Entity(const T& entity) {
        ++digest.objects;
        for (const char* c = entity.name.c_str(); *c != '\0'; ++c) Mix(static_cast<unsigned char>(*c));
        Mix(static_cast<std::uint64_t>(entity.number));
    }
    template <class Link>
    void Reference(const Link& link) {
        Mix(static_cast<std::uint64_t>(M::Target(link)->number));
    }
    void Number(double value) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        Mix(bits);
    }
    void Mix(std::uint64_t value) { digest.values = (digest.values ^ value) * 0x9E3779B97F4A7C15u + 1; }

    Digest digest;
};

/// The parts of a contender that only build, compare and drop.
template <class M>
class ModelContender : public Contender {
public:
    void BuildFrame(std::size_t objects) override { frame = FrameBuilder<M>::Build(objects); }
    void BuildChain(std::size_t objects) override {
        for (std::size_t i = objects; i != 0; --i) {
            typename M::template Holder<typename M::Link> link = M::template Make<typename M::Link>();
            link->name = "link";
            link->number = static_cast<int>(i);
            link->next = std::move(chain);
            chain = std::move(link);
        }
    }
    Digest Built() const override { return Of(frame, chain); }
    Digest Opened() const override { return Of(openedFrame, openedChain); }

protected:
    using Frame = typename M::template Holder<typename M::Building>;
    using Chain = typename M::template Holder<typename M::Link>;

    static Digest Of(const Frame& frame, const Chain& chain) {
        return frame != nullptr ? Digester<M>::OfFrame(*frame) : Digester<M>::OfChain(M::Target(chain));
    }

    // Either the frame or the chain is set.
    Frame frame{};
    Chain chain{};
    Frame openedFrame{};
    Chain openedChain{};
};

} // namespace bench
