#include "ZoPrimitives/IList.h"
#include "ZoPrimitives/ZoAssert.h"
#include "ZoPrimitives/pointer.h"

#include <gtest/gtest.h>
#include <utility>

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
    pointer<Counted> a(new Counted);
    pointer<Counted> b(a);
    a = nullptr;
    EXPECT_EQ(Counted::alive, 1);
    b.reset();
    EXPECT_EQ(Counted::alive, 0);
}

TEST_F(PointerTests, APlainPointerBecomesAPointerAgain) {
    const pointer<Counted> a(new Counted);
    Counted* plain = a.get();
    {
        const pointer<Counted> b(plain);
        EXPECT_EQ(ZoReferenceCount::Count(plain), 2u);
    }
    EXPECT_EQ(ZoReferenceCount::Count(plain), 1u);
    EXPECT_EQ(Counted::alive, 1);
}

TEST_F(PointerTests, AssigningAPointerToItselfKeepsTheObject) {
    pointer<Counted> a(new Counted);
    pointer<Counted>& same = a;
    a = same;
    a = std::move(same);
    a = a.get();
    a.reset(a.get());
    ASSERT_TRUE(a);
    EXPECT_EQ(ZoReferenceCount::Count(a.get()), 1u);
}

TEST_F(PointerTests, MovingLeavesTheSourceEmpty) {
    pointer<Counted> a(new Counted);
    pointer<Counted> b(std::move(a));
    EXPECT_FALSE(a);
    pointer<Counted> c(new Counted);
    c = std::move(b);
    EXPECT_FALSE(b);
    EXPECT_EQ(Counted::alive, 1);
}

TEST_F(PointerTests, MovingOnInAChainReleasesWhatIsPassed) {
    pointer<Counted> walker(new Counted);
    walker->next = new Counted;
    walker = std::move(walker->next);
    ASSERT_TRUE(walker);
    EXPECT_EQ(Counted::alive, 1);
    walker->next = new Counted;
    walker = walker->next;
    EXPECT_EQ(Counted::alive, 1);
}

TEST_F(PointerTests, CopiesOfObjectsStartWithoutHolders) {
    const pointer<Counted> a(new Counted);
    const pointer<Counted> copy(new Counted(*a));
    *copy = *a;
    EXPECT_EQ(ZoReferenceCount::Count(a.get()), 1u);
    EXPECT_EQ(ZoReferenceCount::Count(copy.get()), 1u);
}

TEST_F(PointerTests, ADerivedObjectIsHeldByItsBase) {
    pointer<Derived> derived(new Derived);
    const pointer<Counted> base(derived);
    derived.reset();
    EXPECT_EQ(Counted::alive, 1);
}

TEST_F(PointerTests, SurrenderLeavesTheObjectToItsOwner) {
    Counted* object = new Counted;
    ZoReferenceCount::Add(object);
    ZoReferenceCount::Surrender(object);
    EXPECT_EQ(Counted::alive, 1);
    delete object;
}

TEST_F(PointerTests, ALongChainIsReleasedWithoutRecursion) {
    pointer<Counted> head;
    for (int i = 0; i < 1000000; ++i) {
        pointer<Counted> link(new Counted);
        link->next = std::move(head);
        head = std::move(link);
    }
    head.reset();
    EXPECT_EQ(Counted::alive, 0);
}

struct Tree : Counted {
    TIList<Tree> children;
};

TEST_F(PointerTests, AListAtEveryLinkOfALongChainIsReleasedWithoutRecursion) {
    TIList<Tree> roots;
    roots.Add(new Tree);
    Tree* deepest = roots[1].get();
    for (int i = 0; i < 200000; ++i) {
        deepest->children.Add(new Tree);
        deepest->children.Add(new Tree);
        deepest = deepest->children[1].get();
    }
    roots.RemoveAll();
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
    const crossRef<Counted> emptyReference;
    EXPECT_THROW((void)empty->next, XZoAssert);
    EXPECT_THROW((void)*empty, XZoAssert);
    EXPECT_THROW((void)emptyReference->next, XZoAssert);
    EXPECT_THROW((void)*emptyReference, XZoAssert);
    SetAssertionFunctor(new ZoAssertFunctor);
    XZoAssert::ShowMessageBox(false);
    try {
        (void)*empty;
        ADD_FAILURE();
    } catch (const XZoAssert& failure) {
        EXPECT_STREQ(failure.Message(), "Error: ( object )");
    }
    XZoAssert::ShowMessageBox(true);
    SetAssertionFunctor(nullptr);
}

TEST_F(PointerTests, ACrossReferenceHoldsNothing) {
    pointer<Counted> a(new Counted);
    const crossRef<Counted> reference(a);
    EXPECT_EQ(reference, a.get());
    const pointer<Derived> derived(new Derived);
    crossRef<Counted> base = derived;
    base = crossRef<Derived>(derived);
    EXPECT_EQ(base, derived.get());
    EXPECT_EQ(ZoReferenceCount::Count(a.get()), 1u);
}

} // namespace
