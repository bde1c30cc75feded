#pragma once

#include "ZoPrimitives/IContainer.h"
#include "ZoPrimitives/IMap.h"

namespace ZoPrimitives {

/// List of objects, held through `P`. Searches run in order on the calling thread, whatever the length.
template <class T, class P = pointer<T>>
class TIList : public TObjectContainer<T, P, TIList<T, P>> {
    using Base = TObjectContainer<T, P, TIList<T, P>>;

public:
    static constexpr bool SEARCHES_IN_PARALLEL = false;
    static constexpr ZoSite SITE{ZoSources::ILIST, __LINE__};

    TIList() = default;
    TIList(const TIList&) = default;
    TIList(TIList&&) noexcept = default;
    ~TIList() override = default;

    TIList& operator=(const TIList& other) override {
        this->Assign(other);
        return *this;
    }
    TIList& operator=(TIList&& other) {
        this->Assign(std::move(other));
        return *this;
    }
    using Base::operator==;
    bool operator==(const TIList& other) const { return *this == static_cast<const ZoObject&>(other); }
};

} // namespace ZoPrimitives
