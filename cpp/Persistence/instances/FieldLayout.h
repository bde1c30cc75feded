#pragma once

#include <array>

namespace ZoPrimitives {

/// What a file does not tell of a field: how many integers stand behind the count of a list, and whether a
/// map's halves are lists or single objects. A reader takes a list that it does not know for one without
/// integers, and a map's halves for such lists.
struct FieldLayout {
    static constexpr signed char SINGLE = -1;

    std::array<signed char, 2> integers{}; // of a map's halves; a list has the first
};

} // namespace ZoPrimitives
