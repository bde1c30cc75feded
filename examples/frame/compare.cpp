#include "compare.h"

#include "words.h"

#include "ZoPrimitives/ZoUtf8.h"

#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Frame {

namespace {

class Walk {
public:
    Comparison Run(const Building& left, const Building& right) {
        owner = &left;
        Follow("itself", &left, &right);
        for (std::size_t i = 0; i < pairs.size() && result.difference.empty(); ++i) {
            owner = pairs[i].first;
            Objects(*pairs[i].first, *pairs[i].second);
        }
        result.objects = pairs.size();
        return result;
    }

private:
    void Differs(const char* field) {
        if (!result.difference.empty()) return;
        result.difference =
            Words("{1} {2} differs in \"{3}\"", {owner->Kind(), ZoPrimitives::ZoToUtf8(owner->name), field});
    }

    template <class Value>
    void Same(const char* field, const Value& left, const Value& right) {
        if (!(left == right)) Differs(field);
    }

    /// Compares quantities and points.
    template <class Object>
    void SameValue(const char* field, const Object& left, const Object& right) {
        ++result.values;
        if (!(left == right)) Differs(field);
    }

    /// Pairs two objects, or checks that they are already a pair.
    void Follow(const char* field, const Entity* left, const Entity* right) {
        if (left == nullptr || right == nullptr) return Same(field, left, right);
        const auto forth = counterpart.emplace(left, right);
        const auto back = origin.emplace(right, left);
        if (forth.first->second != right || back.first->second != left) return Differs(field);
        if (forth.second) pairs.emplace_back(left, right);
    }

    static const Entity* Target(const Entity* object) { return object; }
    template <class T>
    static const Entity* Target(const ZoPrimitives::pointer<T>& holder) {
        return holder.get();
    }

    template <class List>
    void FollowAll(const char* field, const List& left, const List& right) {
        if (left.NItems() != right.NItems()) return Differs(field);
        for (unsigned long long i = 1; i <= left.NItems(); ++i)
            Follow(field, Target(left[i]), Target(right[i]));
    }

    void Objects(const Entity& left, const Entity& right) {
        if (typeid(left) != typeid(right)) return Differs("class");
        Same("name", left.name, right.name);
        const bool known = Try<Catalogue>(left, right) || Try<Material>(left, right) ||
                           Try<Section>(left, right) || Try<LegendEntry>(left, right) ||
                           Try<Site>(left, right) || Try<Node>(left, right) || Try<Column>(left, right) ||
                           Try<Girder>(left, right) || Try<Storey>(left, right) || Try<Building>(left, right);
        if (!known) Differs("class");
    }
    template <class T>
    bool Try(const Entity& left, const Entity& right) {
        const T* object = dynamic_cast<const T*>(&left);
        if (object != nullptr) Fields(*object, static_cast<const T&>(right));
        return object != nullptr;
    }

    void Fields(const Catalogue& left, const Catalogue& right) {
        Same("edition", left.edition, right.edition);
    }
    void Fields(const Material& left, const Material& right) {
        SameValue("density", left.density, right.density);
    }
    void Fields(const Section& left, const Section& right) {
        SameValue("depth", left.depth, right.depth);
        SameValue("area", left.area, right.area);
        SameValue("inertia", left.inertia, right.inertia);
        Follow("material", left.material.get(), right.material.get());
        Follow("catalogue", left.catalogue.get(), right.catalogue.get());
    }
    void Fields(const LegendEntry& left, const LegendEntry& right) { Same("grey", left.grey, right.grey); }
    void Fields(const Site& left, const Site& right) { Same("seismic", left.seismic, right.seismic); }
    void Fields(const Node& left, const Node& right) {
        SameValue("place", left.place, right.place);
        Same("support", left.support, right.support);
    }
    void Ends(const Member& left, const Member& right) {
        Follow("section", left.section.get(), right.section.get());
        Follow("start", left.start.get(), right.start.get());
        Follow("end", left.end.get(), right.end.get());
    }
    void Fields(const Column& left, const Column& right) {
        Ends(left, right);
        Same("exterior", left.exterior, right.exterior);
    }
    void Fields(const Girder& left, const Girder& right) {
        Ends(left, right);
        if (left.loads.NItems() != right.loads.NItems()) return Differs("loads");
        for (unsigned long long i = 1; i <= left.loads.NItems(); ++i) {
            SameValue("loads", *left.loads[i], *right.loads[i]);
            ++result.listed;
        }
    }
    void Fields(const Storey& left, const Storey& right) {
        Same("mark", left.mark, right.mark);
        SameValue("level", left.level, right.level);
        SameValue("height", left.height, right.height);
        Same("underground", left.underground, right.underground);
        FollowAll("members", left.members, right.members);
        Follow("building", left.building.get(), right.building.get());
        FollowAll("floor", left.floor, right.floor);
    }
    void Fields(const Building& left, const Building& right) {
        Same("thumbnail", left.thumbnail, right.thumbnail);
        Same("lines", left.lines, right.lines);
        Follow("site", &left.site, &right.site);
        FollowAll("materials", left.materials, right.materials);
        FollowAll("sections", left.sections, right.sections);
        FollowAll("nodes", left.nodes, right.nodes);
        FollowAll("storeys", left.storeys, right.storeys);
        if (left.legend.NItems() != right.legend.NItems()) return Differs("legend");
        for (unsigned long long i = 1; i <= left.legend.NItems(); ++i) {
            Follow("legend", left.legend.KeyAt(i).get(), right.legend.KeyAt(i).get());
            Follow("legend", left.legend.ValueAt(i).get(), right.legend.ValueAt(i).get());
        }
        Follow("catalogue", left.catalogue.get(), right.catalogue.get());
    }

    Comparison result;
    const Entity* owner = nullptr; // the object whose fields are compared
    std::vector<std::pair<const Entity*, const Entity*>> pairs;
    std::unordered_map<const Entity*, const Entity*> counterpart;
    std::unordered_map<const Entity*, const Entity*> origin;
};

} // namespace

Comparison Compare(const Building& left, const Building& right) { return Walk().Run(left, right); }

Comparison Count(const Building& building) { return Walk().Run(building, building); }

} // namespace Frame
