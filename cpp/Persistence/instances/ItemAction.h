#pragma once

#include "ZoPrimitives/ZoStreamable.h"

#include <vector>

namespace ZoPrimitives {

/// A functor that passes each item, null or not, to a callable that takes a `ZoStreamableBase*`.
template <class Callable>
class ItemAction final : public ZoStreamableBaseFunctor {
public:
    explicit ItemAction(Callable callable) : call(callable) {}
    void operator()(ZoStreamableBase* item) override { call(item); }

private:
    Callable call;
};

/// A functor that appends each item that is not null to `list`, which must outlive it.
inline auto Gather(std::vector<ZoStreamableBase*>& list) {
    return ItemAction([&list](ZoStreamableBase* item) {
        if (item != nullptr) list.push_back(item);
    });
}

} // namespace ZoPrimitives
