// These five have all the containers.
#include "ZoPrimitives/IList.h"
#include "ZoPrimitives/IVector.h"
#include "ZoPrimitives/SDList.h"
#include "ZoPrimitives/dvector.h"
#include "ZoPrimitives/pointer.h"

#include "support/Assertions.h"
#include "support/Slots.h"

#include <algorithm>
#include <atomic>
#include <cstring>

using namespace ZoPrimitives;

namespace {

struct Item : ZoObject {
    explicit Item(int number = 0) : id(number) { ++alive; }
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;
    ~Item() override {
        --alive;
        if (onEnd) onEnd();
    }

    int id;
    std::function<void()> onEnd;

    static inline int alive = 0;
};

template <class List>
std::vector<typename List::ValueType> Values(const List& list) {
    return {list.begin(), list.end()};
}

template <class List>
std::vector<int> Ids(const List& list) {
    std::vector<int> ids;
    for (const auto& item : list) ids.push_back(item ? item->id : -1);
    return ids;
}

using Texts = std::vector<std::string>;
using Numbers = std::vector<int>;

/// As `Find` tells it: the end behind the last for what is not there.
template <class List, class Wanted>
unsigned long long PositionOf(const List& list, const Wanted& wanted) {
    unsigned long long position = 0;
    const bool found = list.Find(wanted, position);
    EXPECT_EQ(found, position <= list.NItems());
    return position;
}

// Long enough to live on the heap, so that a reference into a moved array is seen by the sanitizer.
std::string Long(const char* text) { return text + std::string(40, '.'); }

// Positions

template <class List>
void ExpectPositionsFrom1To(unsigned long long count, List& list, const char* source) {
    SCOPED_TRACE(source);
    for (unsigned long long position = 1; position <= count; ++position)
        EXPECT_EQ(&list[position], list.data() + position - 1);
    const auto expect = [&](const char* expression, const FailedAssertion& failed) {
        EXPECT_EQ(failed, (FailedAssertion{expression, source, failed.line}));
    };
    for (unsigned long long position : {0ULL, count + 1, ~0ULL}) {
        expect("index >= 1 && index <= NItems()", AssertionOf([&] { (void)list[position]; }));
        expect("index >= 1 && index <= NItems()", AssertionOf([&] { list.RemoveAt(position); }));
        if (position == count + 1) continue;
        expect("index >= 1 && index <= NItems() + 1", AssertionOf([&] { list.InsertAt(position, {}); }));
    }
    EXPECT_EQ(list.NItems(), count);
}

template <class... Lists>
void FillAndExpectPositions(const std::string& header) {
    const auto expect = [source = "public/include/ZoPrimitives/" + header](auto list) {
        ExpectPositionsFrom1To(0, list, source.c_str());
        EXPECT_THROW(list.First(), XZoAssert);
        EXPECT_THROW(list.Last(), XZoAssert);
        EXPECT_THROW(list.RemoveFirst(), XZoAssert);
        EXPECT_THROW(list.RemoveLast(), XZoAssert);
        list.Add({});
        list.InsertAt(2, {});
        ExpectPositionsFrom1To(2, list, source.c_str());
        EXPECT_EQ(&list.First(), &list[1]);
        EXPECT_EQ(&list.Last(), &list[2]);
    };
    (expect(Lists()), ...);
}

TEST(ContainerTests, PositionsCountFrom1) {
    FillAndExpectPositions<TDVector<int>, TDList<int>>("dvector");
    FillAndExpectPositions<TSDList<int>, TSIList<Item>>("SDList");
    FillAndExpectPositions<TIVector<Item>>("IVector");
    FillAndExpectPositions<TIList<Item>>("IList");
}

// Layout

#ifdef ZO_SLOTS_ARE_TOLD

TEST(ContainerTests, TDVectorKeepsBeginEndAndCapacity) {
    TDVector<int> v;
    v.Reserve(10);
    v.Add(7);
    const int* pointers[3];
    static_assert(sizeof v == 16 + sizeof pointers);
    std::memcpy(pointers, reinterpret_cast<const char*>(&v) + 16, sizeof pointers);
    EXPECT_TRUE(pointers[0] == v.data() && pointers[1] == v.data() + 1 && pointers[2] == v.data() + 10);
}
#endif

// Values

template <class List>
class ValueContainerTests : public testing::Test {
protected:
    static List Of(std::initializer_list<const char*> texts) {
        List list;
        for (const char* text : texts) list.Add(Long(text));
        return list;
    }
};
using ValueContainers = testing::Types<TDVector<std::string>, TDList<std::string>, TSDList<std::string>>;
TYPED_TEST_SUITE(ValueContainerTests, ValueContainers);

TYPED_TEST(ValueContainerTests, AddsAndRemovesInOrder) {
    TypeParam list;
    for (const char* text : {"a", "b", "c", "b"}) list.Add(text);
    EXPECT_FALSE(list.AddUnique("c"));
    EXPECT_FALSE(list.Remove("x"));
    EXPECT_TRUE(list.Remove("b"));
    EXPECT_TRUE(list.AddUnique("d"));
    EXPECT_EQ(Values(list), (Texts{"a", "c", "b", "d"}));
    list.InsertAt(1, "0");
    list.InsertAt(6, "e");
    list.InsertAt(3, "bb");
    list.AddFirst("-");
    EXPECT_EQ(Values(list), (Texts{"-", "0", "a", "bb", "c", "b", "d", "e"}));
    list.RemoveAt(3);
    list.RemoveFirst();
    list.RemoveLast();
    EXPECT_EQ(Values(list), (Texts{"0", "bb", "c", "b", "d"}));
    list.RemoveAll();
    EXPECT_EQ(list.NItems(), 0u);
    EXPECT_GE(list.Capacity(), 8u);
}

TYPED_TEST(ValueContainerTests, AValueOfTheContainerOrItselfMayBeGiven) {
    TypeParam list = this->Of({"a", "b", "c"});
    const auto fill = [&list] {
        while (list.NItems() < list.Capacity()) list.Add(Long("d"));
    };
    fill();
    list.Add(list[1]);
    EXPECT_EQ(list.Last(), Long("a"));
    list.RemoveLast();
    fill();
    list.InsertAt(2, list[3]);
    EXPECT_EQ(list[2], Long("c"));
    list.AddFirst(list[3]);
    EXPECT_EQ(list[1], Long("b"));
    EXPECT_TRUE(list.Remove(list[1]));
    EXPECT_EQ(list[1], Long("a"));

    while (list.NItems() > 2) list.RemoveLast();
    list.Append(list);
    const Texts expected{Long("a"), Long("c"), Long("a"), Long("c")};
    TypeParam& same = list;
    list = same;
    list = std::move(same);
    EXPECT_EQ(Values(list), expected);
}

TYPED_TEST(ValueContainerTests, CopiesAreIndependentAndEqual) {
    struct Other : TypeParam {};
    TypeParam list = this->Of({"a", "b"}), copy(list);
    Other other;
    other.Append(list);
    EXPECT_EQ(copy, list);
    EXPECT_FALSE(static_cast<const ZoObject&>(list) == static_cast<const ZoObject&>(other))
        << "another class";
    copy[2] = "b";
    EXPECT_TRUE(static_cast<const ZoObject&>(copy) != list);
    list = copy;
    EXPECT_EQ(list[2], "b");
    TypeParam moved(std::move(copy));
    EXPECT_EQ(copy.NItems(), 0u);
    EXPECT_NE(copy, list);
    copy = std::move(moved);
    EXPECT_EQ(copy, list);
}

TEST(ContainerTests, MoreThanCanExistIsNotReserved) {
    EXPECT_THROW(TDVector<int>().Reserve(~0ULL), xContainerSizeExceeded);
    EXPECT_THROW(TIVector<Item>().Reserve(~0ULL), xContainerSizeExceeded);
    EXPECT_THROW((TIMap<int, Item>().Reserve(~0ULL)), xContainerSizeExceeded);
}

// Searching

template <class List>
class SearchTests : public testing::Test {};
using Searched = testing::Types<TDVector<int>, TDVector<std::int64_t>, TDVector<double>, TDVector<short>,
                                TDVector<float>, TDVector<unsigned>, TDList<int>, TSDList<double>>;
TYPED_TEST_SUITE(SearchTests, Searched);

TYPED_TEST(SearchTests, FindGivesTheFirstMatch) {
    using T = typename TypeParam::ValueType;
    const T filler = 1, wanted = 2;
    for (std::size_t count : {0u, 1u, 7u, 16u, 33u, 999u, 1000u, 1001u, 5000u, 300000u}) {
        TypeParam list;
        for (std::size_t i = 0; i < count; ++i) list.Add(filler);
        EXPECT_EQ(PositionOf(list, wanted), count + 1);
        // From the end, so that every match stands before those of the rounds before.
        for (std::size_t index : {count, count - 1, count / 2 + 1, count / 3, std::size_t{1001},
                                  std::size_t{2}, std::size_t{1}}) {
            if (index < 1 || index > count) continue;
            list[index] = wanted;
            const auto first = std::find(list.begin(), list.end(), wanted) - list.begin();
            EXPECT_EQ(PositionOf(list, wanted), static_cast<std::size_t>(first) + 1) << count;
        }
    }
}

TEST(ContainerTests, EveryPlaceOfAShortArrayIsFound) {
    const auto expect = [](auto filler) {
        for (std::size_t count = 0; count < 70; ++count) {
            for (std::size_t place = 0; place <= count; ++place) {
                // One element in, so that the array is not aligned to more than its elements.
                std::vector<decltype(filler)> values(count + 2, filler);
                values[place + 1] = 2;
                EXPECT_EQ(ZoFindFirst(values.data() + 1, count, decltype(filler){2}), place);
            }
        }
    };
    expect(std::int32_t{1});
    expect(std::int64_t{1});
    expect(1.0);
}

TEST(ContainerTests, HalfOfA64BitValueIsNoMatch) {
    TDVector<std::int64_t> v;
    for (int i = 0; i < 64; ++i) v.Add(i % 2 == 0 ? 0x0000000700000008LL : 0x0000000800000007LL);
    for (const std::int64_t absent : {0x0000000700000007LL, 0x0000000800000008LL})
        EXPECT_FALSE(v.Contains(absent));
    EXPECT_TRUE(v.Contains(0x0000000800000007LL));
}

TEST(ContainerTests, DoublesAreComparedAsNumbers) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (int count : {1, 100, 2000}) {
        TDVector<double> v;
        for (int i = 0; i < count; ++i) v.Add(nan);
        EXPECT_FALSE(v.Contains(nan)) << count;
        EXPECT_NE(v, v) << count;
        v.Last() = -0.0;
        EXPECT_TRUE(v.Contains(0.0)) << count;
    }
}

struct LastDigits : TDVector<int> {
    bool Equal(const int& a, const int& b) const override {
        ++calls;
        if (b < 0) throw std::runtime_error("negative");
        return a % 100000 == b % 100000;
    }
    mutable std::atomic<int> calls = 0;
};

TEST(ContainerTests, AnOverriddenEqualIsHonoured) {
    for (int count : {3, 1000, 1001, 60000}) {
        SCOPED_TRACE(count);
        LastDigits v;
        for (int i = 1; i <= count; ++i) v.Add(100000 + i);
        EXPECT_EQ(PositionOf(v, 700000 + count - 1), static_cast<unsigned>(count - 1));
        EXPECT_FALSE(v.AddUnique(count));
        EXPECT_TRUE(v.Remove(2));
        EXPECT_EQ(v[2], 100003);
        v.calls = 0;
        EXPECT_FALSE(v.Contains(0));
        EXPECT_EQ(v.calls, count - 1) << "each element once";
        EXPECT_THROW(v.Contains(-1), std::runtime_error);
        EXPECT_EQ(v.NItems(), static_cast<unsigned>(count - 1));
    }
}

// Objects

struct ItemTests : testing::Test {
    void SetUp() override { Item::alive = 0; }
    void TearDown() override { EXPECT_EQ(Item::alive, 0) << "objects leaked or deleted twice"; }
};

template <class List>
struct ObjectContainerTests : ItemTests {
    static List Of(std::initializer_list<int> ids) {
        List list;
        for (int id : ids) list.Add(new Item(id));
        return list;
    }
};
using ObjectContainers = testing::Types<TIVector<Item>, TIList<Item>, TSIList<Item>>;
TYPED_TEST_SUITE(ObjectContainerTests, ObjectContainers);

TYPED_TEST(ObjectContainerTests, TheLastHolderDeletes) {
    TypeParam list = this->Of({1, 2, 3});
    const TypeParam other(list);
    list.RemoveAll();
    EXPECT_EQ(Item::alive, 3);
    list = other;
    TypeParam moved;
    moved = std::move(list);
    list = moved;
    EXPECT_TRUE(moved == other && !(moved != other));
    EXPECT_EQ(Ids(list), (Numbers{1, 2, 3}));
    const pointer<Item> kept(list[2]);
    EXPECT_TRUE(list.Remove(kept));
    EXPECT_FALSE(list.Remove(kept));
    EXPECT_EQ(Ids(list), (Numbers{1, 3}));
    EXPECT_EQ(Ids(other), (Numbers{1, 2, 3}));
}

TYPED_TEST(ObjectContainerTests, AnItemOrTheContainerItselfMayBeGiven) {
    TypeParam list = this->Of({1, 2});
    list.Append(list);
    list.Add(list[2]);
    EXPECT_FALSE(list.AddUnique(list[1].get()));
    EXPECT_EQ(Ids(list), (Numbers{1, 2, 1, 2, 2}));
    list.Remove(list[1]);
    EXPECT_EQ(Ids(list), (Numbers{2, 1, 2, 2}));
    TypeParam& same = list;
    list = same;
    list = std::move(same);
    EXPECT_EQ(Ids(list), (Numbers{2, 1, 2, 2}));
}

TYPED_TEST(ObjectContainerTests, ItemsMayBeNull) {
    TypeParam list = this->Of({1});
    list.Add(nullptr);
    list.AddFirst(nullptr);
    EXPECT_EQ(PositionOf(list, nullptr), 1u);
    EXPECT_FALSE(list.AddUnique(nullptr));
    EXPECT_TRUE(list.Remove(nullptr));
    EXPECT_EQ(Ids(list), (Numbers{1, -1}));
    EXPECT_THROW(list.InsertAt(4, new Item), XZoAssert) << "which deletes it";
}

template <class List>
struct ById : List {
    bool Equal(const Item& a, const Item& b) const override { return a.id == b.id; }
};

TYPED_TEST(ObjectContainerTests, SearchIsForTheSameObjectUnlessEqualIsOverridden) {
    for (int count : {5, 1000, 1001, 40000}) {
        SCOPED_TRACE(count);
        TypeParam list;
        ById<TypeParam> byId, other;
        for (auto* each : std::initializer_list<TypeParam*>{&list, &byId, &other}) {
            each->Add(nullptr);
            for (int i = 2; i <= count; ++i) each->Add(new Item(i));
        }
        for (unsigned long long wanted = 1; wanted <= list.NItems(); wanted += 1 + list.NItems() / 5)
            EXPECT_EQ(PositionOf(list, list[wanted].get()), wanted);
        const Item like(count - 1), absent(-5);
        EXPECT_EQ(PositionOf(list, &like), list.NItems() + 1);
        EXPECT_EQ(PositionOf(byId, &like), static_cast<unsigned>(count - 1));
        EXPECT_FALSE(byId.Contains(&absent));
        EXPECT_TRUE(static_cast<const ZoObject&>(byId) == other);
        other.Last()->id = 1;
        EXPECT_FALSE(static_cast<const ZoObject&>(byId) == other);
    }
}

TYPED_TEST(ObjectContainerTests, ADyingItemMayUseItsContainer) {
    TypeParam list = this->Of({1, 2, 3});
    std::vector<unsigned long long> seen;
    for (auto& item : list) item->onEnd = [&] { seen.push_back(list.NItems()); };
    list.RemoveAt(1);
    list.RemoveAll();
    EXPECT_EQ(seen, (std::vector<unsigned long long>{2, 0, 0}));
    EXPECT_GE(list.Capacity(), 3u);
    list.Add(new Item(4));
    list.Last()->onEnd = [&] { list.Add(new Item(5)); };
    list.RemoveAll();
    EXPECT_EQ(Ids(list), Numbers{5});
}

// Iterators

template <class Iterator, class List>
void ExpectWalks() {
    List list;
    for (int items = 0; items < 3; ++items, list.Add({})) {
        Iterator i(list);
        if (items > 0) i.Next(); // and from there back to the first
        unsigned long long position = 1;
        for (i.First(); !i.IsDone(); i.Next(), ++position) {
            EXPECT_EQ(i.Position(), position);
            EXPECT_EQ(&i.Current(), &list[position]);
        }
        EXPECT_EQ(position, list.NItems() + 1);
        EXPECT_THROW(i.Next(), xIteratorOverrunContainerLimit);
        EXPECT_THROW((void)i.Current(), xIteratorOverrunContainerLimit);
    }
}

TEST(ContainerTests, IteratorsWalkToTheEndAndNoFurther) {
    ExpectWalks<TContainerIterator<int>, TDVector<int>>();
    ExpectWalks<TContainerIterator<int>, TSDList<int>>();
    ExpectWalks<TIContainerIterator<Item>, TIList<Item>>();
    ExpectWalks<TIContainerVectorIterator<Item>, TIVector<Item>>();
    ExpectWalks<TSIContainerIterator<Item>, TSIList<Item>>();
}

TEST(ContainerTests, IteratorsKnowTheirEnd) {
    TDVector<int> v{1, 2};
    TContainerIterator<int> i(v);
    i.Next();
    v.RemoveAll(); // which it notices
    EXPECT_TRUE(i.IsDone());
    TIContainerIterator<Item> none; // without container
    EXPECT_TRUE(none.IsDone());
    EXPECT_THROW(none.Next(), xIteratorOverrunContainerLimit);
}

// Map

using MapTests = ItemTests;

TEST_F(MapTests, AnExistingKeyGetsTheNewObjectInItsPlace) {
    TIMap<int, Item> map;
    for (int key : {5, 3, 4}) map.Add(key, new Item(key));
    map.Add(3, new Item(33));
    map.Add(3, map.Find(3));
    EXPECT_EQ(Item::alive, 3);
    ASSERT_EQ(map.NItems(), 3u);
    EXPECT_EQ(map.KeyAt(2), 3);
    EXPECT_EQ(map.ValueAt(2)->id, 33);
    EXPECT_EQ(map.Find(9), nullptr);
    EXPECT_TRUE(map.Remove(map.KeyAt(1)));
    EXPECT_FALSE(map.Remove(5));
    EXPECT_EQ(map.KeyAt(1), 3);
    EXPECT_EQ(map.Find(4)->id, 4);
    EXPECT_THROW((void)map.KeyAt(0), XZoAssert);
    EXPECT_THROW((void)map.ValueAt(3), XZoAssert);
    map.RemoveAll();
    EXPECT_EQ(Item::alive, 0);
}

TEST_F(MapTests, ObjectKeysAreToldApartByIdentity) {
    TIMap<Item, Item> map;
    auto* key = new Item(1);
    map.Add(key, nullptr);
    map.Add(new Item(1), new Item(2));
    EXPECT_TRUE(map.Contains(key));
    EXPECT_EQ(map.Find(key), nullptr);
    EXPECT_EQ(map.Find(map.KeyAt(2).get())->id, 2);
    const Item stranger(1);
    EXPECT_FALSE(map.Contains(&stranger));
    const TIMap<Item, Item> copy(map);
    EXPECT_EQ(copy, map);
    EXPECT_TRUE(map.Remove(key));
    EXPECT_NE(copy, map);
}

TEST_F(MapTests, AnAppendedPairIsNotLookedFor) {
    TIMap<std::string, Item> map;
    map.Append("a", new Item(1));
    map.Append("a", new Item(2));
    TIMap<std::string, Item>& same = map;
    map = same; // nothing happens to it
    map = std::move(same);
    EXPECT_EQ(map.NItems(), 2u);
    EXPECT_EQ(map.Find("a")->id, 1);
}

TEST(ContainerTests, TakeTheirValuesInBraces) {
    EXPECT_EQ(Values(TDVector<int>{3, 1, 3}), (Numbers{3, 1, 3}));
    EXPECT_EQ(Values(TDList<std::string>{"a", "b"}), (Texts{"a", "b"}));
}

} // namespace
