#pragma once

#include "ZoPrimitives/container.h"

#include <initializer_list>

namespace ZoPrimitives {

/// Vector of values. Searches among more than 1000 values run in parallel, so an overridden `Equal` must be
/// safe to call from several threads.
template <class T>
class TDVector : public TValueContainer<T, TDVector<T>> {
    using Base = TValueContainer<T, TDVector<T>>;

public:
    static constexpr bool SEARCHES_IN_PARALLEL = true;
    static constexpr ZoSite SITE{ZoSources::DVECTOR, __LINE__};

    TDVector() = default;
    TDVector(std::initializer_list<T> values) {
        this->Reserve(values.size());
        for (const T& value : values) this->Add(value);
    }
    TDVector(const TDVector&) = default;
    TDVector(TDVector&&) noexcept = default;
    ~TDVector() override = default;

    TDVector& operator=(const TDVector& other) override {
        this->Assign(other);
        return *this;
    }
    TDVector& operator=(TDVector&& other) {
        this->Assign(std::move(other));
        return *this;
    }
    using Base::operator==;
    bool operator==(const TDVector& other) const { return *this == static_cast<const ZoObject&>(other); }
};

/// List of values. Searches run in order on the calling thread, whatever the length.
template <class T>
class TDList : public TValueContainer<T, TDList<T>> {
    using Base = TValueContainer<T, TDList<T>>;

public:
    static constexpr bool SEARCHES_IN_PARALLEL = false;
    static constexpr ZoSite SITE{ZoSources::DVECTOR, __LINE__};

    TDList() = default;
    TDList(std::initializer_list<T> values) {
        this->Reserve(values.size());
        for (const T& value : values) this->Add(value);
    }
    TDList(const TDList&) = default;
    TDList(TDList&&) noexcept = default;
    ~TDList() override = default;

    TDList& operator=(const TDList& other) override {
        this->Assign(other);
        return *this;
    }
    TDList& operator=(TDList&& other) {
        this->Assign(std::move(other));
        return *this;
    }
    using Base::operator==;
    bool operator==(const TDList& other) const { return *this == static_cast<const ZoObject&>(other); }
};

} // namespace ZoPrimitives
