#pragma once

namespace ZoPrimitives {

constexpr double FULL_TURN = 6.283185307179586; // 2 pi

} // namespace ZoPrimitives
