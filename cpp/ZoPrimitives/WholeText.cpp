#include "ZoPrimitives/WholeText.h"

#include <limits>
#include <string>

namespace ZoPrimitives {

ZoString WholeText(std::initializer_list<std::string_view> parts) {
    std::string joined;
    std::size_t size = 0;
    for (const std::string_view part : parts) size += part.size();
    if (size >= std::numeric_limits<unsigned>::max()) throw std::bad_alloc();
    joined.reserve(size);
    for (const std::string_view part : parts) joined += part;
    ZoString text;
    AssignWhole(text, joined.data(), static_cast<unsigned>(size));
    return text;
}

} // namespace ZoPrimitives
