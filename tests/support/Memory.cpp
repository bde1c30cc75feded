#include "support/Memory.h"

#include <atomic>
#include <cstddef>

#ifdef ZO_TEST_WATCHES_MEMORY

#include <malloc.h>
#include <mimalloc.h>
#include <new>

// The linker leads the calls of `malloc` and its kin here (--wrap), and those of the library's own heap.
extern "C" {
void* __real_mi_malloc(std::size_t size);
void* __real_mi_malloc_aligned(std::size_t size, std::size_t alignment);
void __real_mi_free(void* block);
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
}

namespace {

std::atomic<long long> inUse{0};
std::atomic<long long> peak{0};
std::atomic<long long> untilRefusal{0}; // 0: none is refused
std::atomic<bool> refusesForGood{false};
std::atomic<bool> refused{false};

/// The C library knows. Blocks bear no mark of ours: a run-time library in another module may release what we
/// allocate, and the other way round.
template <class Block>
long long SizeOf(Block* block) noexcept {
    if (block == nullptr) return 0;
    if constexpr (requires { malloc_usable_size(block); })
        return static_cast<long long>(malloc_usable_size(block));
    else
        return static_cast<long long>(_msize(block));
}

bool Refuses() noexcept {
    if (untilRefusal == 0) return false;
    if (untilRefusal == 1) {
        refused = true;
        if (!refusesForGood) untilRefusal = 0;
        return true;
    }
    --untilRefusal;
    return false;
}

long long OwnSizeOf(const void* block) noexcept { return static_cast<long long>(mi_usable_size(block)); }

/// The block; counts what it adds to the memory in use.
void* Counted(void* block, long long change) noexcept {
    if (block == nullptr) return nullptr;
    const long long now = inUse += change;
    for (long long highest = peak; highest < now && !peak.compare_exchange_weak(highest, now);) {
    }
    return block;
}
void* Counted(void* block) noexcept { return Counted(block, SizeOf(block)); }
void* OwnCounted(void* block) noexcept { return Counted(block, OwnSizeOf(block)); }

} // namespace

extern "C" {
void* __wrap_malloc(std::size_t size) { return Refuses() ? nullptr : Counted(__real_malloc(size)); }
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return Refuses() ? nullptr : Counted(__real_calloc(count, size));
}
void* __wrap_realloc(void* block, std::size_t size) {
    if (Refuses()) return nullptr;
    const long long before = SizeOf(block);
    void* moved = __real_realloc(block, size);
    return Counted(moved, SizeOf(moved) - before);
}
void __wrap_free(void* block) {
    inUse -= SizeOf(block);
    __real_free(block);
}
void* __wrap_mi_malloc(std::size_t size) { return Refuses() ? nullptr : OwnCounted(__real_mi_malloc(size)); }
void* __wrap_mi_malloc_aligned(std::size_t size, std::size_t alignment) {
    return Refuses() ? nullptr : OwnCounted(__real_mi_malloc_aligned(size, alignment));
}
void __wrap_mi_free(void* block) {
    inUse -= OwnSizeOf(block);
    __real_mi_free(block);
}
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return __wrap_malloc(size == 0 ? 1 : size);
}
void* operator new(std::size_t size) {
    void* block = __wrap_malloc(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, std::size_t) noexcept { __wrap_free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { __wrap_free(block); }

bool Memory::Watched() { return true; }
long long Memory::InUse() { return inUse; }
long long Memory::Peak() { return peak; }
void Memory::ResetPeak() { peak = inUse.load(); }

Memory::Shortage::Shortage(long long number, bool forGood) {
    refused = false;
    refusesForGood = forGood;
    untilRefusal = number;
}
Memory::Shortage::~Shortage() { untilRefusal = 0; }
bool Memory::Shortage::Met() { return refused; }

#else

bool Memory::Watched() { return false; }
long long Memory::InUse() { return 0; }
long long Memory::Peak() { return 0; }
void Memory::ResetPeak() {}
Memory::Shortage::Shortage(long long, bool) {}
Memory::Shortage::~Shortage() = default;
bool Memory::Shortage::Met() { return false; }

#endif
