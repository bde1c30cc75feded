#pragma once

#include "ZoPrimitives/IContainer.h"
#include "ZoPrimitives/IMap.h"

namespace ZoPrimitives {

/// Vector of objects, held through `P`. Searches among more than 1000 objects run in parallel, so an
/// overridden `Equal` must be safe to call from several threads.
template <class T, class P = pointer<T>>
class TIVector : public TObjectContainer<T, P, TIVector<T, P>> {
    using Base = TObjectContainer<T, P, TIVector<T, P>>;

public:
    static constexpr bool SEARCHES_IN_PARALLEL = true;
    static constexpr ZoSite SITE{ZoSources::IVECTOR, __LINE__};

    TIVector() = default;
    TIVector(const TIVector&) = default;
    TIVector(TIVector&&) noexcept = default;
    ~TIVector() override = default;

    TIVector& operator=(const TIVector& other) override {
        this->Assign(other);
        return *this;
    }
    TIVector& operator=(TIVector&& other) {
        this->Assign(std::move(other));
        return *this;
    }
    using Base::operator==;
    bool operator==(const TIVector& other) const { return *this == static_cast<const ZoObject&>(other); }
};

/// Walks a `TIVector`.
template <class T, class P = pointer<T>>
class TIContainerVectorIterator : public TIContainerIterator<T, P> {
public:
    TIContainerVectorIterator() = default;
    explicit TIContainerVectorIterator(const TIVector<T, P>& walked) noexcept
        : TIContainerIterator<T, P>(walked) {}
};

} // namespace ZoPrimitives
