#include "ZoPrimitives/MemoryBinOutStream.h"
#include "ZoPrimitives/ZoHandleTable.h"
#include "ZoPrimitives/ZoStreamable.h"
#include "support/Assertions.h"

#include <map>
#include <memory>
#include <random>
#include <vector>

using namespace ZoPrimitives;

namespace {

struct Thing : ZoStreamableBase {
    ZoString StreamableClassName() const override { return "class Thing"; }
};

TEST(ZoHandleTableTests, BehavesAsAMapOfItsOwn) {
    std::mt19937 random(3);
    const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
    std::vector<std::unique_ptr<Thing>> things(10);
    for (auto& thing : things) thing = std::make_unique<Thing>();
    struct Pair {
        ZoHandleTable table;
        std::map<const Thing*, int> expected;
    };
    std::vector<std::unique_ptr<Pair>> pairs(4);
    for (auto& pair : pairs) pair = std::make_unique<Pair>();
    for (int step = 0; step < 20'000; ++step) {
        std::unique_ptr<Pair>& pair = pairs[below(4)];
        Thing* thing = things[below(10)].get();
        switch (below(40)) {
        case 0:
            pair->table.Reset();
            pair->expected.clear();
            break;
        case 1:
            pair = std::make_unique<Pair>(); // the old one ends in the middle of its run
            break;
        case 2: {
            const ZoHandleTable copy = pair->table;
            ASSERT_EQ(copy.Get(thing), 0) << "handles are not copied";
            pair->table = pairs[below(4)]->table; // and an assignment leaves them
            break;
        }
        case 3:
            *thing = *things[below(10)];
            break; // they belong to the object's place
        case 4: {
            const Thing copy = *thing;
            for (const auto& other : pairs) ASSERT_EQ(other->table.Get(&copy), 0);
            break;
        }
        default:
            const int handle = step % 9 < 2 ? step % 9 - 1 : step;
            pair->table.Set(thing, handle);
            pair->expected[thing] = handle;
            pair->table.Set(nullptr, 5);
            ASSERT_EQ(pair->table.Get(nullptr), 0);
        }
        const auto& seen = *pairs[below(4)];
        for (const auto& each : things) {
            const auto found = seen.expected.find(each.get());
            ASSERT_EQ(seen.table.Get(each.get()), found == seen.expected.end() ? 0 : found->second)
                << "step " << step;
        }
    }
}

TEST(ZoHandleTableTests, AnObjectMayStandInManyStreams) {
    std::vector<std::unique_ptr<TMemoryBinOutStream>> streams(300);
    Thing thing, other;
    for (auto& stream : streams) {
        stream = std::make_unique<TMemoryBinOutStream>();
        EXPECT_EQ(stream->AllocateHandle(&other), 1);
        EXPECT_EQ(stream->AllocateHandle(&thing), 2);
    }
    for (std::size_t i = 0; i < streams.size(); i += 3) streams[i].reset();
    for (std::size_t i = 1; i < streams.size(); i += 3) streams[i]->ResetHandles();
    for (std::size_t i = 0; i < streams.size(); ++i) {
        if (streams[i] == nullptr) continue;
        EXPECT_EQ(streams[i]->GetHandle(&thing), i % 3 == 1 ? 0 : 2) << i;
        EXPECT_EQ(TMemoryBinOutStream(*streams[i]).GetHandle(&thing), 0) << "a copy gives its own";
    }
    EXPECT_EQ(streams[1]->AllocateHandle(&thing), 1) << "from 1 again";
    EXPECT_EQ(AssertionOf([&] { streams[1]->AllocateHandle(nullptr); }).source,
              "cpp/Persistence/BinOutStream");
}

} // namespace
