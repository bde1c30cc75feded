#include "ZoPrimitives/ZoMemory.h"

#include "ZoPrimitives/ZoObject.h"
#include "ZoPrimitives/dvector.h"
#include "support/Memory.h"

#include <gtest/gtest.h>

#include <new>
#include <thread>

using namespace ZoPrimitives;

namespace {

struct Plain : ZoObject {
    double value = 7;
};

struct alignas(64) Wide : ZoObject {
    double value = 7;
};

TEST(ZoMemory, HoldsObjectsOfEveryAlignmentFromEveryThread) {
    const long long before = Memory::InUse();
    ZoObject* plain = new Plain;
    ZoObject* wide = new Wide;
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(plain) % alignof(std::max_align_t));
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(wide) % 64);
    EXPECT_EQ(Memory::Watched(), Memory::InUse() > before);
    std::thread([&] {
        delete plain;
        delete wide;
    }).join();
    EXPECT_EQ(before, Memory::InUse());

    alignas(Plain) unsigned char place[sizeof(Plain)];
    auto* placed = new (place) Plain;
    EXPECT_EQ(static_cast<void*>(place), placed);
    placed->~Plain();
}

TEST(ZoMemory, TellsOfAShortage) {
    if (!Memory::Watched()) GTEST_SKIP() << "the C heap is in use";
    const Memory::Shortage none(1, true);
    EXPECT_THROW(new Plain, std::bad_alloc);
    EXPECT_THROW(new Wide, std::bad_alloc);
    EXPECT_EQ(nullptr, new (std::nothrow) Plain);
    EXPECT_THROW(ZoAllocate(0), std::bad_alloc);
    TDVector<int> list;
    EXPECT_THROW(list.Add(1), std::bad_alloc);
    ZoFree(nullptr);
}

} // namespace
