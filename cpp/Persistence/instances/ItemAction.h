#pragma once

#include "ZoPrimitives/ZoStreamable.h"

#include <vector>

namespace ZoPrimitives {

/// The action that hands each item to a callable taking a `ZoStreamableBase*`; null items come too.
template <class Callable>
class ItemAction final : public ZoStreamableBaseFunctor {
public:
    explicit ItemAction(Callable callable) : call(callable) {}
    void operator()(ZoStreamableBase* item) override { call(item); }

private:
    Callable call;
};

/// The action that appends the items that are there to `list`, which outlives it.
inline auto Gather(std::vector<ZoStreamableBase*>& list) {
    return ItemAction([&list](ZoStreamableBase* item) {
        if (item != nullptr) list.push_back(item);
    });
}

} // namespace ZoPrimitives
