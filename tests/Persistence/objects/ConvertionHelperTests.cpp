#include "ZoPrimitives/ConvertionHelper.h"
#include "ZoPrimitives/ZoRegister.h"
#include "ZoPrimitives/ZoStreamablePrimitives.h"
#include "support/Streaming.h"

#include <map>
#include <stdexcept>

using namespace ZoPrimitives;

// An application's own model, and what it saves of it.

namespace business {

struct Person : ZoObject {
    explicit Person(const char* personName = "") : name(personName) {}
    ZoString name;
    TIVector<Person> staff;
    Person* friendOf = nullptr;
    Alive alive;
};

struct Clerk : Person {
    using Person::Person;
    int desk = 0;
};

/// What nobody saves.
struct Cache : Person {};

} // namespace business

namespace saved {

/// Fails as soon as so many objects were filled.
int failsAt = -1;
int filled = 0;

void CountFill() {
    if (filled++ == failsAt) throw std::runtime_error("fill");
}

class Person : public ZoObjectStreamable {
    REGISTER_ZO_BEGIN(Person)
    DECLARE_ZO_FIELD(ZoString, name)
    DECLARE_ZO_FIELD_CHILD_LIST(Person, staff)
    DECLARE_ZO_FIELD_REFERENCE(Person, friendOf)
    REGISTER_ZO_END

    ZoObject* CreateBusinessObject() override { return new business::Person; }
    void FillBusinessObject(ZoObject* object, TStreamableToBusinessObjectConvertionHelper* helper) override {
        auto& person = dynamic_cast<business::Person&>(*object);
        const auto convert = [&](Person* other) {
            return dynamic_cast<business::Person*>(helper->Convert(other));
        };
        person.name = name;
        person.friendOf = convert(friendOf.get());
        for (const auto& one : staff) person.staff.Add(convert(one.get()));
        CountFill();
    }
    void FillFromBusinessObject(ZoObject* object,
                                TBusinessToStreamableObjectConvertionHelper* helper) override {
        auto& person = dynamic_cast<business::Person&>(*object);
        const auto convert = [&](business::Person* other) {
            return dynamic_cast<Person*>(helper->Convert(other));
        };
        name = person.name;
        friendOf = convert(person.friendOf);
        for (const auto& one : person.staff) staff.Add(convert(one.get()));
        CountFill();
    }
    Alive alive;
};

class Clerk : public Person {
    REGISTER_ZO_BEGIN(Clerk, Person)
    DECLARE_ZO_FIELD(int, desk)
    REGISTER_ZO_END

    ZoObject* CreateBusinessObject() override { return new business::Clerk; }
    void FillBusinessObject(ZoObject* object, TStreamableToBusinessObjectConvertionHelper* helper) override {
        dynamic_cast<business::Clerk&>(*object).desk = desk;
        Person::FillBusinessObject(object, helper);
    }
    void FillFromBusinessObject(ZoObject* object,
                                TBusinessToStreamableObjectConvertionHelper* helper) override {
        desk = dynamic_cast<business::Clerk&>(*object).desk;
        Person::FillFromBusinessObject(object, helper);
    }
};

} // namespace saved

namespace {

struct Factory : IStreamableConvertionFactory {
    ZoObjectStreamable* CreateStreamable(const ZoString& name) override {
        ++asked[Text(name)];
        if (name == "class business::Person") return new saved::Person;
        if (name == "class business::Clerk") return new saved::Clerk;
        return nullptr;
    }
    std::map<std::string, int> asked;
};

struct ConvertionHelperTests : testing::Test {
    ConvertionHelperTests() {
        saved::failsAt = -1;
        saved::filled = 0;
        before = Alive::Count();
    }
    ~ConvertionHelperTests() override { EXPECT_EQ(Alive::Count(), before); }

    /// The head of a firm with two of staff, one of whom has a trainee; they know each other and the head.
    static pointer<business::Person> Firm() {
        pointer<business::Person> head = new business::Person("head");
        auto* clerk = new business::Clerk("clerk");
        clerk->desk = 7;
        head->staff.Add(clerk);
        head->staff.Add(new business::Person("porter"));
        head->staff[2]->staff.Add(new business::Person("trainee"));
        head->staff[2]->staff[1]->friendOf = clerk;
        clerk->friendOf = head.get();
        head->friendOf = head->staff[2].get();
        return head;
    }

    Factory factory;
    int before = 0;
};

template <class Person, class Clerk>
void ExpectFirm(const Person& head) {
    ASSERT_EQ(head.staff.NItems(), 2U);
    const auto* clerk = dynamic_cast<const Clerk*>(head.staff[1].get());
    const Person& porter = *head.staff[2];
    ASSERT_TRUE(clerk != nullptr && porter.staff.NItems() == 1);
    const Person& trainee = *porter.staff[1];
    EXPECT_EQ(head.name + clerk->name + porter.name + trainee.name, "headclerkportertrainee");
    EXPECT_EQ(clerk->desk, 7);
    EXPECT_TRUE(trainee.friendOf == clerk && clerk->friendOf == &head && head.friendOf == &porter);
}

TEST_F(ConvertionHelperTests, ConvertsACyclicGraphSavesItAndConvertsItBack) {
    TZoMetaData schema;
    saved::Person::Register(&schema);
    saved::Clerk::Register(&schema);
    const pointer<business::Person> head = Firm();

    TBusinessToStreamableObjectConvertionHelper toStreamable(&factory);
    business::Cache cache;
    EXPECT_TRUE(toStreamable.Convert(nullptr) == nullptr && toStreamable.Convert(&cache) == nullptr);
    factory.asked.clear();
    const pointer<ZoObjectStreamable> streamable = toStreamable.Convert(head.get());
    ExpectFirm<saved::Person, saved::Clerk>(dynamic_cast<saved::Person&>(*streamable));
    EXPECT_EQ(factory.asked,
              (std::map<std::string, int>{{"class business::Person", 3}, {"class business::Clerk", 1}}))
        << "once for each object, by the name of what it is";

    Opened opened(Save(schema, streamable.get()), schema);
    TStreamableToBusinessObjectConvertionHelper toBusiness;
    const pointer<ZoObject> back = toBusiness.Convert(&opened.Root<saved::Person>());
    ExpectFirm<business::Person, business::Clerk>(dynamic_cast<business::Person&>(*back));
    EXPECT_EQ(Alive::Count() - before, 1 + 4 * 4);
}

TEST_F(ConvertionHelperTests, AFailureEndsWhatWasMade) {
    const pointer<business::Person> head = Firm();
    const int model = Alive::Count();
    for (int at = 0; at < 4; ++at) {
        TBusinessToStreamableObjectConvertionHelper helper(&factory);
        saved::filled = 0;
        saved::failsAt = at;
        EXPECT_THROW(helper.Convert(head.get()), std::runtime_error);
        EXPECT_EQ(Alive::Count(), model) << "after " << at << " objects";
        // What was forgotten is made anew.
        saved::failsAt = -1;
        const pointer<ZoObjectStreamable> streamable = helper.Convert(head.get());
        ExpectFirm<saved::Person, saved::Clerk>(dynamic_cast<saved::Person&>(*streamable));

        TStreamableToBusinessObjectConvertionHelper back;
        const int both = Alive::Count();
        saved::filled = 0;
        saved::failsAt = at;
        EXPECT_THROW(back.Convert(streamable.get()), std::runtime_error);
        EXPECT_EQ(Alive::Count(), both) << "after " << at << " objects";
    }
}

TEST_F(ConvertionHelperTests, ConvertsChainsOfAnyLength) {
    constexpr int LENGTH = 200'000;
    const pointer<business::Person> first = new business::Person("1");
    business::Person* last = first.get();
    for (int i = 1; i < LENGTH; ++i) {
        last->staff.Add(new business::Person("2"));
        last = last->staff[1].get();
    }
    last->friendOf = first.get();
    TBusinessToStreamableObjectConvertionHelper helper(&factory);
    const pointer<ZoObjectStreamable> chain = helper.Convert(first.get());
    TStreamableToBusinessObjectConvertionHelper back;
    const pointer<ZoObject> again = back.Convert(chain.get());
    EXPECT_EQ(saved::filled, 2 * LENGTH);
    const auto* person = dynamic_cast<const business::Person*>(again.get());
    int length = 1;
    for (; person->staff.NItems() != 0; person = person->staff[1].get()) ++length;
    EXPECT_EQ(length, LENGTH);
    EXPECT_EQ(person->friendOf, again.get());

    saved::failsAt = saved::filled + LENGTH - 1;
    TBusinessToStreamableObjectConvertionHelper failing(&factory);
    const int three = Alive::Count();
    EXPECT_THROW(failing.Convert(first.get()), std::runtime_error);
    EXPECT_EQ(Alive::Count(), three);
}

} // namespace
