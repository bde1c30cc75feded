#pragma once

// Makes the frame from tables that refer by ids, as FlatBuffers and protobuf give them: their accessors are
// named alike; one gives pointers where the other gives references.

#include "plain_ids.h"

#include <type_traits>

namespace bench::plain {

class TableReader {
public:
    template <class Table>
    Building* Run(const Table& from) {
        auto made = std::make_unique<Building>();
        building = made.get();
        Begin(*made, from);
        const auto& thumbnail = At(from.thumbnail());
        made->thumbnail.assign(thumbnail.begin(), thumbnail.end());
        MakeAll(made->materials, At(from.materials()));
        MakeAll(made->sections, At(from.sections()));
        MakeAll(made->storeys, At(from.storeys()));
        return made.release();
    }

private:
    template <class T>
    static const T& At(const T& value) {
        return value;
    }
    template <class T>
    static const T& At(const T* value) {
        return *value;
    }

    template <class List, class Tables>
    void MakeAll(List& list, const Tables& tables) {
        list.reserve(static_cast<std::size_t>(tables.size()));
        for (const auto& table : tables) {
            using T = std::decay_t<decltype(*list.back())>;
            list.emplace_back(New<T>(At(table)));
            Begin(*list.back(), At(table));
            Fill(*list.back(), At(table));
        }
    }
    template <class T, class Table>
    static T* New(const Table& from) {
        if constexpr (std::is_same_v<T, Member>) {
            if (from.girder()) return new Girder;
            return new Column;
        } else {
            return new T;
        }
    }
    template <class Table>
    void Begin(Entity& entity, const Table& from) {
        entity.name.assign(At(from.name()).c_str(), At(from.name()).size());
        entity.number = from.number();
        ids.Add(&entity);
    }

    template <class Table>
    void Fill(Material& material, const Table& from) {
        material.elasticity = from.elasticity();
        material.density = from.density();
    }
    template <class Table>
    void Fill(Section& section, const Table& from) {
        section.depth = from.depth();
        section.area = from.area();
        section.inertia = from.inertia();
        section.material = ids.Get<Material>(from.material());
    }
    template <class Table>
    void Fill(Storey& made, const Table& from) {
        storey = &made;
        made.elevation = from.elevation();
        made.height = from.height();
        made.masses.assign(At(from.masses()).begin(), At(from.masses()).end());
        made.building = building;
        MakeAll(made.nodes, At(from.nodes()));
        MakeAll(made.members, At(from.members()));
    }
    template <class Table>
    void Fill(Node& node, const Table& from) {
        node.x = from.x();
        node.y = from.y();
        node.z = from.z();
        node.restraints = from.restraints();
        node.supported = from.supported();
    }
    template <class Table>
    void Fill(Member& member, const Table& from) {
        member.loads.assign(At(from.loads()).begin(), At(from.loads()).end());
        member.start = ids.Get<Node>(from.start());
        member.end = ids.Get<Node>(from.end());
        member.section = ids.Get<Section>(from.section());
        member.storey = storey;
        if (from.girder()) {
            auto& girder = static_cast<Girder&>(member);
            girder.camber = from.camber();
            girder.releases = from.releases();
            girder.composite = from.composite();
        } else {
            auto& column = static_cast<Column&>(member);
            column.rotation = from.rotation();
            column.spliced = from.spliced();
        }
    }

    Ids ids;
    Building* building = nullptr; // the one under way
    Storey* storey = nullptr;
};

} // namespace bench::plain
