#pragma once

#include "floor.h"
#include "plain_model.h"

namespace bench::plain {

/// Maps ids to objects while a frame is opened, for formats that leave ids to their users.
class Ids {
public:
    template <class T>
    T* Add(T* object) {
        objects.push_back(object);
        return object;
    }
    template <class T>
    T* Get(int id) const {
        return id == 0 ? nullptr : static_cast<T*>(objects.at(static_cast<std::size_t>(id) - 1));
    }

private:
    std::vector<Entity*> objects;
};

inline int IdOf(const Entity* object) { return object == nullptr ? 0 : object->uid; }
inline void GiveIds(Building& building) { floor::FrameWriter<Classes>::Number(building); }

} // namespace bench::plain
