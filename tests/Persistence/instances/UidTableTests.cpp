#include "Persistence/instances/UidTable.h"
#include "ZoPrimitives/ZoStreamable.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <map>
#include <random>

using namespace ZoPrimitives;

namespace {

TEST(UidTableTests, FindsWhatWasSetLast) {
    std::mt19937 random(7);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const struct {
        const char* name;
        std::function<int(int)> uid; // of the object that comes as that number
    } cases[] = {
        {"dense", [](int i) { return i + 1; }},
        {"falling", [](int i) { return 1'000'000 - 100 * i; }},
        {"by chance, far", [&](int) { return below(INT_MAX); }},
        {"few of them, again and again", [&](int) { return 5'000 * below(50); }},
        {"negative ones too", [&](int i) { return i % 3 == 0 ? -below(1'000) : 90 * i; }},
        {"far first, near later", [&](int i) { return i < 200 ? 2'000 + i : below(4'000); }},
    };
    // Addresses of nothing: the table does not look at what it holds.
    char places[2'000] = {};
    for (const auto& row : cases) {
        UidTable table;
        std::map<int, ZoStreamableBase*> expected;
        for (int i = 0; i < 2'000; ++i) {
            const int uid = row.uid(i);
            auto* object = i % 11 == 0 ? nullptr : reinterpret_cast<ZoStreamableBase*>(&places[i]);
            table.Set(uid, object);
            if (uid != 0) expected[uid] = object;
        }
        for (const auto& [uid, object] : expected)
            ASSERT_EQ(table.Get(uid), object) << row.name << ' ' << uid;
        for (const int uid : {0, -1, 1, 999'999, INT_MAX, INT_MIN}) {
            if (expected.count(uid) != 0) continue;
            EXPECT_EQ(table.Get(uid), nullptr) << row.name << ' ' << uid;
        }
    }
}

} // namespace
