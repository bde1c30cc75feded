#include "ZoPrimitives/FactoryManager.h"
#include "support/Streaming.h"

using namespace ZoPrimitives;

namespace {

class Factory : public IZoFactory {
public:
    explicit Factory(const char* factoryName) : name(factoryName) {}
    ZoPortableString GetName() const override { return name; }

private:
    ZoString name;
    Alive alive;
};

class FactoryManagerTests : public testing::Test {
protected:
    FactoryManagerTests() : before(Alive::Count()) { TFactoryManager::ClearAllFactories(); }
    ~FactoryManagerTests() override {
        TFactoryManager::ClearAllFactories();
        EXPECT_EQ(Alive::Count(), before);
    }
    int before;
};

TEST_F(FactoryManagerTests, FindsTheNewestFactoryOfAName) {
    auto* doors = new Factory("doors");
    auto* windows = new Factory("windows");
    TFactoryManager::AddFactory(doors);
    TFactoryManager::AddFactory(windows);
    EXPECT_EQ(TFactoryManager::GetFactory("doors"), doors);
    EXPECT_EQ(TFactoryManager::GetFactory("Doors"), nullptr);
    EXPECT_EQ(TFactoryManager::GetFactory(""), nullptr);
    auto* newDoors = new Factory("doors");
    for (int times = 0; times < 2; ++times) TFactoryManager::AddFactory(newDoors);
    EXPECT_EQ(TFactoryManager::GetFactory("doors"), newDoors);
    EXPECT_EQ(ZoReferenceCount::Count(newDoors), 1U);
    EXPECT_EQ(TFactoryManager::GetFactory("windows"), windows);
    EXPECT_EQ(Alive::Count() - before, 2) << "the first doors are gone";
}

TEST_F(FactoryManagerTests, ClearsAllButWhatOthersHold) {
    const pointer<Factory> held = new Factory("held");
    TFactoryManager::AddFactory(held.get());
    TFactoryManager::AddFactory(new Factory("let go"));
    TFactoryManager::ClearAllFactories();
    EXPECT_EQ(TFactoryManager::GetFactory("held"), nullptr);
    EXPECT_EQ(Alive::Count() - before, 1);
    EXPECT_EQ(AssertionOf([] { TFactoryManager::AddFactory(nullptr); }).expression, "factory");
}

} // namespace
