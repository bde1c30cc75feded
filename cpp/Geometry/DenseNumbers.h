#pragma once

#include <cstddef>
#include <vector>

namespace ZoPrimitives {

/// Numbers from 1, without gaps, of items that have indices from 0, some of which are of none. An item keeps
/// its number while others come and go, but for the last one, which takes the number of one that went.
class DenseNumbers {
public:
    /// Item i has the number i + 1.
    void Reset(std::size_t newCount) {
        count = newCount;
        numbers.clear();
        indices.clear();
    }
    std::size_t Count() const { return count; }
    unsigned NumberOf(unsigned index) const { return numbers.empty() ? index + 1 : numbers[index]; }
    unsigned IndexOf(unsigned number) const { return indices.empty() ? number - 1 : indices[number - 1]; }
    /// An item has come, has gone, or neither.
    void Set(unsigned index, bool isThere) {
        if (numbers.empty()) BeginChanges();
        if (index >= numbers.size()) numbers.resize(index + std::size_t{1});
        unsigned& number = numbers[index];
        if (isThere == (number != 0)) return;
        if (isThere) {
            indices.push_back(index);
            number = static_cast<unsigned>(++count);
            return;
        }
        const unsigned last = indices.back();
        indices[number - 1] = last;
        numbers[last] = number;
        number = 0;
        indices.pop_back();
        --count;
    }

private:
    void BeginChanges() {
        numbers.resize(count);
        indices.resize(count);
        for (unsigned i = 0; i < count; ++i) {
            numbers[i] = i + 1;
            indices[i] = i;
        }
    }

    std::size_t count = 0;
    std::vector<unsigned> numbers; // of items, 0 if there is none; both are empty until something changes
    std::vector<unsigned> indices;
};

} // namespace ZoPrimitives
