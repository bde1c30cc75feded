#include "Platform/Platform.h"

#include <chrono>
#include <thread>

namespace ZoPrimitives::Platform {

void Services::Wait(unsigned milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace ZoPrimitives::Platform
