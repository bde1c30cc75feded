#include "Platform/Platform.h"

#include <atomic>

namespace ZoPrimitives::Platform {

namespace {

std::atomic<Services*> installed = nullptr;

} // namespace

Services::~Services() = default;

Services& Current() {
    static Services system;
    Services* services = installed.load(std::memory_order_acquire);
    return services != nullptr ? *services : system;
}

Services* Install(Services* services) { return installed.exchange(services, std::memory_order_acq_rel); }

} // namespace ZoPrimitives::Platform
