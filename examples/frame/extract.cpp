#include "extract.h"

#include "failure.h"
#include "words.h"

#include "ZoPrimitives/ZoUtf8.h"

#include <map>

namespace Frame {

using namespace ZoPrimitives;

namespace {

const Storey& FindStorey(const Building& building, const std::string& mark) {
    std::string marks;
    for (const auto& storey : building.storeys) {
        const std::string found = ZoToUtf8(storey->mark);
        if (found == mark) return *storey;
        marks += (marks.empty() ? "" : ", ") + found;
    }
    throw Failure(Words("There is no storey \"{1}\": there are {2}.", {mark, marks}));
}

/// Copies each object once, even if several refer to it.
class Extraction {
public:
    explicit Extraction(const Building& building) : whole(building), part(new Building) {
        model.objects.Add(part);
        model.building = part;
        part->lines = building.lines;
        part->site = building.site;
        part->saved = building.saved;
        part->catalogue = Copy(building.catalogue.get());
    }

    Model Take(const Storey& storey) {
        part->name = whole.name + ", " + storey.name;
        auto* copy = new Storey;
        part->storeys.Add(copy);
        copy->name = storey.name;
        copy->mark = storey.mark;
        copy->level = storey.level;
        copy->height = storey.height;
        copy->underground = storey.underground;
        copy->building = part;
        for (Node* node : storey.floor) copy->floor.Add(Copy(node));
        for (const auto& member : storey.members) copy->members.Add(CopyOf(*member));
        return model;
    }

private:
    /// The copy of an object; null for null. `add` gives a new copy to its owner in the part.
    template <class T, class Add>
    T* CopyOnce(T* object, Add add) {
        if (object == nullptr) return nullptr;
        ZoStreamableBase*& copy = copies[object];
        if (copy == nullptr) {
            auto* newCopy = new T(*object);
            copy = newCopy;
            add(newCopy);
        }
        return static_cast<T*>(copy);
    }

    Node* Copy(Node* node) {
        return CopyOnce(node, [&](Node* copy) { part->nodes.Add(copy); });
    }
    Material* Copy(Material* material) {
        return CopyOnce(material, [&](Material* copy) { part->materials.Add(copy); });
    }
    Catalogue* Copy(Catalogue* catalogue) {
        return CopyOnce(catalogue, [&](Catalogue* copy) { model.objects.Add(copy); }); // no building owns it
    }
    Section* Copy(Section* section) {
        return CopyOnce(section, [&](Section* copy) {
            part->sections.Add(copy);
            copy->material = Copy(section->material.get());
            copy->catalogue = Copy(section->catalogue.get());
            if (const LegendEntry* entry = whole.legend.Find(section))
                part->legend.Add(copy, new LegendEntry(*entry));
        });
    }
    static Girder* CopyOf(const Girder& girder) {
        auto* copy = new Girder(girder);
        for (auto& load : copy->loads) load = new GForcaLinear(*load); // so far shared with the other girder
        return copy;
    }
    Member* CopyOf(const Member& member) {
        const auto* girder = dynamic_cast<const Girder*>(&member);
        Member* copy = girder != nullptr ? static_cast<Member*>(CopyOf(*girder))
                                         : new Column(dynamic_cast<const Column&>(member));
        copy->section = Copy(member.section.get());
        copy->start = Copy(member.start.get());
        copy->end = Copy(member.end.get());
        return copy;
    }

    const Building& whole;
    Model model;
    Building* part;
    std::map<const ZoStreamableBase*, ZoStreamableBase*> copies;
};

} // namespace

Model ExtractStorey(const Building& building, const std::string& mark) {
    const Storey& storey = FindStorey(building, mark);
    return Extraction(building).Take(storey);
}

} // namespace Frame
