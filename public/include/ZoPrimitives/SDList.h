#pragma once

#include "ZoPrimitives/IContainer.h"
#include "ZoPrimitives/container.h"

namespace ZoPrimitives {

/// List of values, contiguous like `TDList`: access by position takes constant time. Searches run in order on
/// the calling thread.
template <class T>
class TSDList : public TValueContainer<T, TSDList<T>> {
    using Base = TValueContainer<T, TSDList<T>>;

public:
    static constexpr bool SEARCHES_IN_PARALLEL = false;
    static constexpr ZoSite SITE{ZoSources::SDLIST, __LINE__};

    TSDList() = default;
    TSDList(const TSDList&) = default;
    TSDList(TSDList&&) noexcept = default;
    ~TSDList() override = default;

    TSDList& operator=(const TSDList& other) override {
        this->Assign(other);
        return *this;
    }
    TSDList& operator=(TSDList&& other) {
        this->Assign(std::move(other));
        return *this;
    }
    using Base::operator==;
    bool operator==(const TSDList& other) const { return *this == static_cast<const ZoObject&>(other); }
};

/// List of objects, held through `P`, contiguous like `TIList`: access by position takes constant time.
/// Searches run in order on the calling thread.
template <class T, class P = pointer<T>>
class TSIList : public TObjectContainer<T, P, TSIList<T, P>> {
    using Base = TObjectContainer<T, P, TSIList<T, P>>;

public:
    static constexpr bool SEARCHES_IN_PARALLEL = false;
    static constexpr ZoSite SITE{ZoSources::SDLIST, __LINE__};

    TSIList() = default;
    TSIList(const TSIList&) = default;
    TSIList(TSIList&&) noexcept = default;
    ~TSIList() override = default;

    TSIList& operator=(const TSIList& other) override {
        this->Assign(other);
        return *this;
    }
    TSIList& operator=(TSIList&& other) {
        this->Assign(std::move(other));
        return *this;
    }
    using Base::operator==;
    bool operator==(const TSIList& other) const { return *this == static_cast<const ZoObject&>(other); }
};

/// Walks a `TSIList`.
template <class T, class P = pointer<T>>
class TSIContainerIterator : public TIContainerIterator<T, P> {
public:
    TSIContainerIterator() = default;
    explicit TSIContainerIterator(const TSIList<T, P>& walked) noexcept : TIContainerIterator<T, P>(walked) {}
};

} // namespace ZoPrimitives
