#pragma once

#include <algorithm>
#include <cstddef>
#include <unordered_map>
#include <vector>

namespace ZoPrimitives {

/// Some numbers that lie one after the other, elsewhere.
struct Numbers {
    const unsigned* first;
    const unsigned* last;

    const unsigned* begin() const { return first; }
    const unsigned* end() const { return last; }
    std::size_t size() const { return static_cast<std::size_t>(last - first); }
    unsigned operator[](std::size_t i) const { return first[i]; }
};

inline Numbers NumbersOf(const std::vector<unsigned>& numbers) {
    return {numbers.data(), numbers.data() + numbers.size()};
}

template <class Item>
void SortUnique(std::vector<Item>& items) {
    std::sort(items.begin(), items.end());
    items.erase(std::unique(items.begin(), items.end()), items.end());
}

/// Ranges of numbers, one after the other: `values` from starts[i] to starts[i + 1]; but those that were
/// changed since lie apart.
struct Ranges {
    std::vector<std::size_t> starts{0};
    std::vector<unsigned> values;

    std::size_t Count() const { return starts.size() - 1; }
    Numbers operator[](std::size_t i) const {
        if (!changed.empty()) {
            const auto found = changed.find(i);
            if (found != changed.end()) return NumbersOf(found->second);
        }
        if (i >= Count()) return {nullptr, nullptr};
        return {values.data() + starts[i], values.data() + starts[i + 1]};
    }
    const unsigned* Begin(std::size_t i) const { return (*this)[i].first; }
    const unsigned* End(std::size_t i) const { return (*this)[i].last; }
    std::size_t Size(std::size_t i) const { return (*this)[i].size(); }
    void EndRange() { starts.push_back(values.size()); }

    /// A range that may be changed; what was none is empty. It stays where it is.
    std::vector<unsigned>& Change(std::size_t i) {
        const auto [place, isNew] = changed.try_emplace(i);
        if (isNew && i < Count())
            place->second.assign(values.data() + starts[i], values.data() + starts[i + 1]);
        return place->second;
    }

private:
    std::unordered_map<std::size_t, std::vector<unsigned>> changed;
};

} // namespace ZoPrimitives
