#include "ZoPrimitives/ZoBlob.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace ZoPrimitives {

namespace {

unsigned char* Allocated(unsigned long long size, bool zeroed) {
    if (size == 0) return nullptr;
    if (size > PTRDIFF_MAX) throw std::bad_alloc();
    const auto count = static_cast<std::size_t>(size);
    void* bytes = zeroed ? std::calloc(count, 1) : std::malloc(count);
    if (bytes == nullptr) throw std::bad_alloc();
    return static_cast<unsigned char*>(bytes);
}

} // namespace

ZoBlob::ZoBlob(unsigned long long count) : bytes(Allocated(count, true)), size(count), capacity(count) {}

ZoBlob::ZoBlob(const void* data, unsigned long long count) { Assign(data, count); }

ZoBlob::ZoBlob(const ZoBlob& other) : ZoObject(other) { Assign(other.bytes, other.size); }

ZoBlob::ZoBlob(ZoBlob&& other) noexcept
    : ZoObject(other), bytes(std::exchange(other.bytes, nullptr)), size(std::exchange(other.size, 0)),
      capacity(std::exchange(other.capacity, 0)) {}

ZoBlob::~ZoBlob() { std::free(bytes); }

ZoBlob& ZoBlob::operator=(const ZoBlob& other) {
    if (this != &other) Assign(other.bytes, other.size);
    return *this;
}

ZoBlob& ZoBlob::operator=(ZoBlob&& other) noexcept {
    if (this != &other) {
        std::free(std::exchange(bytes, std::exchange(other.bytes, nullptr)));
        size = std::exchange(other.size, 0);
        capacity = std::exchange(other.capacity, 0);
    }
    return *this;
}

ZoBlob ZoBlob::TakeOver(void* block, unsigned long long count) noexcept {
    ZoBlob taken;
    taken.bytes = static_cast<unsigned char*>(block);
    taken.size = taken.capacity = block == nullptr ? 0 : count;
    return taken;
}

void ZoBlob::Assign(const void* data, unsigned long long count) {
    if (data == nullptr) count = 0;
    if (count > capacity) {
        unsigned char* fresh = Allocated(count, false);
        std::memcpy(fresh, data, static_cast<std::size_t>(count));
        std::free(std::exchange(bytes, fresh));
        capacity = count;
    } else if (count > 0) {
        std::memmove(bytes, data, static_cast<std::size_t>(count));
    }
    size = count;
}

bool ZoBlob::operator==(const ZoObject& other) const {
    const auto* blob = dynamic_cast<const ZoBlob*>(&other);
    return blob != nullptr && SameBytes(*blob);
}

bool ZoBlob::SameBytes(const ZoBlob& other) const noexcept {
    return size == other.size &&
           (size == 0 || std::memcmp(bytes, other.bytes, static_cast<std::size_t>(size)) == 0);
}

} // namespace ZoPrimitives
