#include "ZoPrimitives/pointer.h"
#include "support/Assertions.h"

using namespace ZoPrimitives;

namespace {

struct Counted : ZoObject {
    Counted() { ++alive; }
    Counted(const Counted& other) : ZoObject(other), next(other.next) { ++alive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() override { --alive; }

    pointer<Counted> next;

    static inline int alive = 0;
};

struct Derived : Counted {};

class PointerTests : public testing::Test {
protected:
    void SetUp() override { Counted::alive = 0; }
    void TearDown() override { EXPECT_EQ(Counted::alive, 0) << "objects leaked or deleted twice"; }
};

TEST_F(PointerTests, TheLastOneDeletes) {
    pointer<Derived> derived(new Derived);
    Derived* plain = derived.get();
    pointer<Counted> base(derived);
    base = base.get();
    base.reset(base.get());
    pointer<Counted>& same = base;
    base = same;
    base = std::move(same);
    const crossRef<Counted> reference = crossRef<Derived>(derived); // holds nothing
    EXPECT_EQ(reference, plain);
    {
        const pointer<Derived> again(plain);
        EXPECT_EQ(ZoReferenceCount::Count(plain), 3u);
    }
    const pointer<Counted> copy(new Counted(*plain));
    *copy = *plain;
    EXPECT_EQ(ZoReferenceCount::Count(copy.get()), 1u) << "copies of objects start without holders";
    derived = nullptr;
    EXPECT_EQ(ZoReferenceCount::Count(plain), 1u);
    ZoReferenceCount::Add(plain);
    base.reset();
    ZoReferenceCount::Surrender(plain); // to this test
    EXPECT_EQ(Counted::alive, 2);
    delete plain;
}

TEST_F(PointerTests, MovingLeavesTheSourceEmpty) {
    pointer<Counted> a(new Counted), b(std::move(a)), c(new Counted);
    EXPECT_FALSE(a);
    c = std::move(b);
    EXPECT_FALSE(b);
    EXPECT_EQ(Counted::alive, 1);
    for (const bool moved : {true, false}) { // on in a chain
        c->next = new Counted;
        if (moved)
            c = std::move(c->next);
        else
            c = c->next;
        ASSERT_TRUE(c);
        EXPECT_EQ(Counted::alive, 1);
    }
}

TEST_F(PointerTests, LongChainsAreReleasedWithoutRecursion) {
    pointer<Counted> head;
    for (int i = 0; i < 1000000; ++i) {
        pointer<Counted> link(new Counted);
        link->next = std::move(head);
        head = std::move(link);
    }
    head.reset();
    EXPECT_EQ(Counted::alive, 0);
}

struct HoldsItself : Counted {
    ~HoldsItself() override {
        for (int i = 0; i < 3; ++i) {
            const pointer<HoldsItself> self(this);
            const pointer<HoldsItself> again(self);
        }
    }
};

TEST_F(PointerTests, AnObjectHeldByItsOwnDestructorIsDeletedOnce) {
    pointer<HoldsItself> a(new HoldsItself);
    a.reset();
    EXPECT_EQ(Counted::alive, 0);
}

TEST_F(PointerTests, UseOfAnEmptyPointerFailsTheAssertion) {
    const pointer<Counted> empty;
    const crossRef<Counted> none;
    for (const FailedAssertion& failed :
         {AssertionOf([&] { (void)empty->next; }), AssertionOf([&] { (void)*empty; }),
          AssertionOf([&] { (void)none->next; }), AssertionOf([&] { (void)*none; })})
        EXPECT_EQ(failed, (FailedAssertion{"object", "public/include/ZoPrimitives/pointer", failed.line}));
}

/// By both operators.
template <class A, class B>
bool Same(const A& a, const B& b) {
    EXPECT_NE(a == b, a != b);
    return a == b;
}

TEST_F(PointerTests, PointersCompareByObject) {
    const pointer<Counted> a(new Counted), same(a), b(new Counted), none;
    const crossRef<Counted> reference(a), sameReference(a.get()), other(b), nothing;
    const Counted* plain = a.get();
    EXPECT_TRUE(Same(a, same) && Same(a, plain) && Same(plain, a) && Same(none, nullptr));
    EXPECT_FALSE(Same(a, b) || Same(b, plain) || Same(plain, b) || Same(a, none) || Same(a, nullptr));
    EXPECT_TRUE(Same(reference, sameReference) && Same(reference, plain) && Same(nothing, nullptr));
    EXPECT_FALSE(Same(reference, other) || Same(other, plain) || Same(reference, nullptr));
    EXPECT_TRUE(reference && !nothing && &*reference == plain && &reference->next == &plain->next);
    const ZoObject &object = *a, &another = *b;
    EXPECT_TRUE(Same(object, *plain) && !Same(object, another));
}

} // namespace
