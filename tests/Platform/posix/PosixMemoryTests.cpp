#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/pointer.h"
#include "support/Memory.h"

#include <gtest/gtest.h>

#include <fstream>
#include <unistd.h>

using namespace ZoPrimitives;

namespace {

/// Bytes of the process that are in memory.
long long Resident() {
    long long pages = 0;
    std::ifstream status("/proc/self/statm");
    status >> pages >> pages;
    return pages * sysconf(_SC_PAGESIZE);
}

struct Block : ZoObject {
    char bytes[256] = {1};
};

TEST(PosixMemory, ManyObjectsThatEndGiveTheirMemoryBack) {
    if (!Memory::Watched()) GTEST_SKIP() << "the C heap is in use";
    constexpr int COUNT = 300'000;
    TIVector<Block> model;
    model.Reserve(COUNT);
    ZoTrimMemory(); // what earlier tests left
    const long long before = Resident();
    for (int i = 0; i < COUNT; ++i) model.Add(new Block);
    const long long grown = Resident() - before;
    EXPECT_GT(grown, 64LL * COUNT); // the rest lies in pages that earlier tests touched
    model.RemoveAll();
    for (int i = 0; i < 100'000; ++i) const pointer<Block> few(new Block); // the heap is asked now and then
    EXPECT_LT(Resident() - before, grown / 2);
}

} // namespace
